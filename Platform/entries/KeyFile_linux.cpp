#include "Platform/entries/KeyFile_linux.h"

#include <algorithm>
#include <glib.h>

namespace quorvel {
namespace {

using OwnedText = std::unique_ptr<char, decltype(&g_free)>;
using OwnedTexts = std::unique_ptr<char*, decltype(&g_strfreev)>;

bool isKeyCharacter(char character) {
    return g_ascii_isalnum(character) || character == '-';
}

bool endsLanguage(char character) {
    return character == ']' || character == '[' || character == '=';
}

// The language of a line KEY[LANGUAGE]=VALUE; empty for any other.
std::string_view languageOf(std::string_view line) {
    const auto* const bracket = std::find_if_not(line.begin(), line.end(), isKeyCharacter);
    if (bracket == line.begin() || bracket == line.end() || *bracket != '[') {
        return {};
    }
    const auto* const start = std::next(bracket);
    const auto* const end = std::find_if(start, line.end(), endsLanguage);
    const std::string_view language(start, static_cast<std::size_t>(end - start));
    const std::string_view rest(end, static_cast<std::size_t>(line.end() - end));
    return rest.starts_with("]=") ? language : std::string_view{};
}

// Most lines of an ordinary entry are translations that nobody will read. Leaving them out first
// makes reading the entry several times faster. `present` becomes those of the languages that
// remain.
std::string withoutForeignTranslations(std::string_view text,
                                       const std::vector<std::string>& languages,
                                       std::vector<std::string>& present) {
    std::string kept;
    kept.reserve(text.size());
    std::vector<bool> isPresent(languages.size());
    std::size_t start = 0; // of lines that are kept
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size(); at = end) {
        end = std::min(text.find('\n', at), text.size() - 1) + 1;
        const std::string_view language = languageOf(text.substr(at, end - at));
        if (language.empty()) {
            continue;
        }
        const auto known = std::find(languages.begin(), languages.end(), language);
        if (known != languages.end()) {
            isPresent[static_cast<std::size_t>(known - languages.begin())] = true;
            continue;
        }
        kept.append(text.substr(start, at - start));
        start = end;
    }
    kept.append(text.substr(start));
    for (std::size_t index = 0; index < languages.size(); ++index) {
        if (isPresent[index]) {
            present.push_back(languages[index]);
        }
    }
    return kept;
}

} // namespace

void KeyFile::Release::operator()(GKeyFile* file) const noexcept {
    g_key_file_free(file);
}

KeyFile::KeyFile() : file_(g_key_file_new()) {}

std::optional<KeyFile> KeyFile::parse(std::string_view text,
                                      const std::vector<std::string>& languages, char separator) {
    if (text.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    KeyFile result;
    const std::string kept = withoutForeignTranslations(text, languages, result.languages_);
    g_key_file_set_list_separator(result.file_.get(), separator);
    // GLib rejects an empty text, which is merely one without groups.
    if (!kept.empty() && !g_key_file_load_from_data(result.file_.get(), kept.data(), kept.size(),
                                                    G_KEY_FILE_KEEP_TRANSLATIONS, nullptr)) {
        return std::nullopt;
    }
    return result;
}

void KeyFile::set(const std::string& group, const char* key, const std::string& value) {
    g_key_file_set_string(file_.get(), group.c_str(), key, value.c_str());
}

void KeyFile::set(const std::string& group, const char* key, bool value) {
    g_key_file_set_boolean(file_.get(), group.c_str(), key, value ? TRUE : FALSE);
}

void KeyFile::set(const std::string& group, const char* key,
                  const std::vector<std::string>& values) {
    std::vector<const char*> texts;
    texts.reserve(values.size());
    for (const std::string& value : values) {
        texts.push_back(value.c_str());
    }
    g_key_file_set_string_list(file_.get(), group.c_str(), key, texts.data(), texts.size());
}

bool KeyFile::hasGroup(const std::string& group) const {
    return g_key_file_has_group(file_.get(), group.c_str()) != FALSE;
}

// Always asked first, since GLib composes an error text for every missing key.
bool KeyFile::has(const std::string& group, const char* key) const {
    return g_key_file_has_key(file_.get(), group.c_str(), key, nullptr) != FALSE;
}

std::optional<std::string> KeyFile::find(const std::string& group, const char* key) const {
    if (!has(group, key)) {
        return std::nullopt;
    }
    // An unknown escape is an error, but the value is returned nevertheless.
    const OwnedText value(g_key_file_get_string(file_.get(), group.c_str(), key, nullptr), g_free);
    return value ? std::optional<std::string>(value.get()) : std::nullopt;
}

std::optional<std::vector<std::string>> KeyFile::findList(const std::string& group,
                                                          const char* key) const {
    if (!has(group, key)) {
        return std::nullopt;
    }
    gsize count = 0;
    const OwnedTexts values(
        g_key_file_get_string_list(file_.get(), group.c_str(), key, &count, nullptr), g_strfreev);
    return values ? std::optional(std::vector<std::string>(values.get(), values.get() + count))
                  : std::nullopt;
}

std::string KeyFile::text(const std::string& group, const char* key) const {
    return find(group, key).value_or("");
}

std::vector<std::string> KeyFile::list(const std::string& group, const char* key) const {
    return findList(group, key).value_or(std::vector<std::string>{});
}

bool KeyFile::boolean(const std::string& group, const char* key) const {
    return has(group, key) &&
           g_key_file_get_boolean(file_.get(), group.c_str(), key, nullptr) != FALSE;
}

int KeyFile::number(const std::string& group, const char* key) const {
    return has(group, key) ? g_key_file_get_integer(file_.get(), group.c_str(), key, nullptr) : 0;
}

std::string KeyFile::translated(const std::string& group, const char* key) const {
    for (const std::string& language : languages_) {
        if (auto value = find(group, (std::string(key) + "[" + language + "]").c_str())) {
            return *value;
        }
    }
    return text(group, key);
}

std::vector<std::string> KeyFile::translatedList(const std::string& group, const char* key) const {
    for (const std::string& language : languages_) {
        if (auto values = findList(group, (std::string(key) + "[" + language + "]").c_str())) {
            return *values;
        }
    }
    return list(group, key);
}

std::string KeyFile::text() const {
    gsize length = 0;
    const OwnedText bytes(g_key_file_to_data(file_.get(), &length, nullptr), g_free);
    return {bytes.get(), length};
}

std::vector<std::string> userLanguages() {
    std::vector<std::string> languages;
    for (const char* const* name = g_get_language_names(); *name != nullptr; ++name) {
        languages.emplace_back(*name);
    }
    return languages;
}

} // namespace quorvel
