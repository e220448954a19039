#pragma once

#include <glib.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// The groups and keys of a desktop entry, an icon theme's index, and other files of that form.
/// Where a group or a key is missing, or a value is not UTF-8, the answer is as if it were empty.
class KeyFile {
public:
    /// Returns std::nullopt if a line is none of that form, or if the text holds a NUL byte. Of the
    /// translations, only those into `languages` are kept ("de_DE", "de"). Lists are divided by
    /// `separator`.
    [[nodiscard]] static std::optional<KeyFile>
    parse(std::string_view text, const std::vector<std::string>& languages, char separator = ';');

    KeyFile();
    void set(const std::string& group, const char* key, const std::string& value);
    void set(const std::string& group, const char* key, bool value);
    void set(const std::string& group, const char* key, const std::vector<std::string>& values);

    [[nodiscard]] bool hasGroup(const std::string& group) const;
    [[nodiscard]] bool has(const std::string& group, const char* key) const;

    [[nodiscard]] std::string text(const std::string& group, const char* key) const;
    [[nodiscard]] std::vector<std::string> list(const std::string& group, const char* key) const;
    [[nodiscard]] bool boolean(const std::string& group, const char* key) const;
    /// 0 for what is no whole number.
    [[nodiscard]] int number(const std::string& group, const char* key) const;

    /// In the first of the languages there is, else not translated.
    [[nodiscard]] std::string translated(const std::string& group, const char* key) const;
    [[nodiscard]] std::vector<std::string> translatedList(const std::string& group,
                                                          const char* key) const;

    /// The file's text.
    [[nodiscard]] std::string text() const;

private:
    struct Release {
        void operator()(GKeyFile* file) const noexcept;
    };
    [[nodiscard]] std::optional<std::string> find(const std::string& group, const char* key) const;
    [[nodiscard]] std::optional<std::vector<std::string>> findList(const std::string& group,
                                                                   const char* key) const;

    std::unique_ptr<GKeyFile, Release> file_;
    std::vector<std::string> languages_{}; ///< those that it has translations into
};

/// The languages of the user's texts, the best first ("de_DE.UTF-8", "de_DE", "de"), as gettext
/// takes them from `LANGUAGE`, `LC_ALL`, `LC_MESSAGES` and `LANG`.
[[nodiscard]] std::vector<std::string> userLanguages();

} // namespace quorvel
