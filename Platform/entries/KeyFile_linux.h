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
    /// Returns std::nullopt if a line has another form or the text contains a NUL byte. Only the
    /// translations into `languages` are kept ("de_DE", "de"). `separator` divides lists.
    [[nodiscard]] static std::optional<KeyFile>
    parse(std::string_view text, const std::vector<std::string>& languages, char separator = ';');

    KeyFile();
    /// Sets the value of a key; creates the group if it is missing.
    void set(const std::string& group, const char* key, const std::string& value);
    /// Sets "true" or "false".
    void set(const std::string& group, const char* key, bool value);
    /// Sets a list, each entry followed by the separator.
    void set(const std::string& group, const char* key, const std::vector<std::string>& values);

    /// Returns whether the group exists.
    [[nodiscard]] bool hasGroup(const std::string& group) const;
    /// Returns whether the group exists and has the key.
    [[nodiscard]] bool has(const std::string& group, const char* key) const;

    /// Returns the value with its escapes resolved.
    [[nodiscard]] std::string text(const std::string& group, const char* key) const;
    /// Returns the entries of a list.
    [[nodiscard]] std::vector<std::string> list(const std::string& group, const char* key) const;
    /// Returns true for "true" only.
    [[nodiscard]] bool boolean(const std::string& group, const char* key) const;
    /// Returns 0 if the value is not a whole number.
    [[nodiscard]] int number(const std::string& group, const char* key) const;

    /// Returns the value in the first of the languages that has one, else untranslated.
    [[nodiscard]] std::string translated(const std::string& group, const char* key) const;
    /// Returns the entries of the list that `translated` would return.
    [[nodiscard]] std::vector<std::string> translatedList(const std::string& group,
                                                          const char* key) const;

    /// Returns the text of the whole file.
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

/// Returns the languages of the user's texts, the best first ("de_DE.UTF-8", "de_DE", "de"), as
/// gettext takes them from `LANGUAGE`, `LC_ALL`, `LC_MESSAGES` and `LANG`.
[[nodiscard]] std::vector<std::string> userLanguages();

} // namespace quorvel
