#include "Platform/programs/LauncherScript.h"

#include "Base/PathText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <optional>

namespace quorvel {
namespace {

bool isNameCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

class ShellWords {
public:
    explicit ShellWords(std::string_view text) : text_(text) {}

    std::vector<std::string> split() {
        while (position_ < text_.size()) {
            take(text_[position_]);
        }
        finishWord();
        return std::move(words_);
    }

private:
    void take(char character) {
        ++position_;
        if (!quote_) {
            takeUnquoted(character);
        } else if (character == *quote_) {
            quote_.reset();
        } else if (quote_ == '"') {
            takeExpanded(character);
        } else {
            append(character);
        }
    }

    void takeUnquoted(char character) {
        constexpr std::string_view separators = " \t\r\n;|&()<>";
        if (separators.find(character) != std::string_view::npos) {
            finishWord();
        } else if (character == '#' && !isInWord_) {
            position_ = std::min(text_.find('\n', position_), text_.size());
        } else if (character == '"' || character == '\'') {
            quote_ = character;
            isInWord_ = true;
        } else {
            takeExpanded(character);
        }
    }

    void takeExpanded(char character) {
        if (character == '\\') {
            takeEscaped();
        } else if (character == '$') {
            takeVariable();
        } else {
            isKnown_ = isKnown_ && character != '`';
            append(character);
        }
    }

    void append(char character) {
        constexpr std::size_t maxLength = 4096;
        isInWord_ = true;
        isKnown_ = isKnown_ && word_.size() < maxLength;
        if (isKnown_) {
            word_.push_back(character);
        }
    }

    void takeEscaped() {
        const char escaped = position_ < text_.size() ? text_[position_++] : '\n';
        if (escaped != '\n') {
            append(escaped);
        }
    }

    void takeVariable() {
        isInWord_ = true;
        const bool braced = position_ < text_.size() && text_[position_] == '{';
        const std::size_t start = position_ + (braced ? 1 : 0);
        std::size_t end = start;
        while (end < text_.size() && isNameCharacter(text_[end])) {
            ++end;
        }
        const auto value = values_.find(std::string(text_.substr(start, end - start)));
        const bool closed = !braced || (end < text_.size() && text_[end] == '}');
        if (value == values_.end() || !closed) {
            isKnown_ = false;
            return;
        }
        position_ = end + (braced ? 1 : 0);
        for (const char character : value->second) {
            append(character);
        }
    }

    void finishWord() {
        const std::size_t equals = word_.find('=');
        if (isInWord_ && equals != std::string::npos && equals > 0 &&
            std::all_of(word_.begin(), word_.begin() + static_cast<std::ptrdiff_t>(equals),
                        isNameCharacter)) {
            assign(word_.substr(0, equals), word_.substr(equals + 1));
        } else if (isKnown_ && !word_.empty()) {
            words_.push_back(word_);
        }
        word_.clear();
        isInWord_ = false;
        isKnown_ = true;
    }

    void assign(const std::string& name, const std::string& value) {
        if (isKnown_) {
            values_[name] = value;
            words_.push_back(value);
        } else {
            values_.erase(name);
        }
    }

    std::string_view text_;
    std::size_t position_ = 0;
    std::optional<char> quote_{}; ///< of the quotation that is open
    std::string word_{};
    bool isInWord_ = false;
    bool isKnown_ = true; ///< nothing in the word has to be found out by running the script
    std::map<std::string, std::string> values_{};
    std::vector<std::string> words_{};
};

} // namespace

std::string interpreterOf(std::string_view text) {
    if (!text.starts_with("#!")) {
        return {};
    }
    std::string_view line = text.substr(2, text.find('\n') - 2);
    bool isNamedByEnv = false;
    while (true) {
        line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
        const std::string_view word = line.substr(0, line.find_first_of(" \t\r"));
        line.remove_prefix(word.size());
        const bool isForEnv =
            isNamedByEnv && (word.starts_with('-') || word.find('=') != std::string_view::npos);
        if (!word.empty() && baseName(word) == "env") {
            isNamedByEnv = true;
        } else if (!isForEnv) {
            return std::string(word);
        }
    }
}

bool isPosixShell(std::string_view name) {
    constexpr std::array<std::string_view, 8> shells{"sh",   "ash", "bash", "busybox",
                                                     "dash", "ksh", "mksh", "zsh"};
    return std::find(shells.begin(), shells.end(), name) != shells.end();
}

LauncherScript LauncherScript::parse(std::string_view text) {
    LauncherScript script{std::string(baseName(interpreterOf(text)))};
    if (isPosixShell(script.interpreter)) {
        script.words = ShellWords(text).split();
    }
    return script;
}

bool LauncherScript::mentionsJava() const {
    return std::any_of(words.begin(), words.end(),
                       [](const std::string& word) { return baseName(word) == "java"; });
}

bool LauncherScript::namesJar() const {
    return std::any_of(words.begin(), words.end(),
                       [](const std::string& word) { return word.ends_with(".jar"); });
}

bool LauncherScript::startsElectron() const {
    const auto isElectron = [](std::string_view word) {
        constexpr std::string_view name = "electron";
        const std::string_view file = baseName(word);
        return file.starts_with(name) &&
               file.find_first_not_of("0123456789", name.size()) == std::string_view::npos;
    };
    return std::any_of(words.begin(), words.end(), isElectron) &&
           std::any_of(words.begin(), words.end(),
                       [](const std::string& word) { return word.ends_with(".asar"); });
}

} // namespace quorvel
