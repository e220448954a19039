#include "Platform/entries/ExecWords.h"

#include <utility>

namespace quorvel {
namespace {

class Splitter {
public:
    explicit Splitter(std::string_view text) : text_(text) {}

    std::vector<ExecLine::Word> split() {
        while (position_ < text_.size()) {
            const char character = text_[position_++];
            switch (character) {
            case ' ':
            case '\t':
            case '\n':
                finishWord();
                break;
            case '\'':
                takeSingleQuoted();
                break;
            case '"':
                takeDoubleQuoted();
                break;
            case '\\':
                takeEscaped();
                break;
            case '#':
                if (isInWord_) {
                    take(character);
                } else {
                    skipComment();
                }
                break;
            default:
                take(character);
            }
        }
        finishWord();
        return std::move(words_);
    }

private:
    void take(char character) {
        word_.text.push_back(character);
        isInWord_ = true;
    }

    char next() {
        if (position_ == text_.size()) {
            throw ExecLineError("a quote is never closed");
        }
        return text_[position_++];
    }

    void beginQuotes() {
        word_.quoted = true;
        isInWord_ = true;
    }

    void takeSingleQuoted() {
        beginQuotes();
        for (char character = next(); character != '\''; character = next()) {
            take(character);
        }
    }

    void takeDoubleQuoted() {
        constexpr std::string_view escapable = "\"\\`$\n";
        beginQuotes();
        for (char character = next(); character != '"'; character = next()) {
            if (character != '\\') {
                take(character);
                continue;
            }
            const char escaped = next();
            if (escapable.find(escaped) == std::string_view::npos) {
                take('\\');
            }
            take(escaped);
        }
    }

    void takeEscaped() {
        if (position_ == text_.size()) {
            throw ExecLineError("it ends with a backslash");
        }
        const char escaped = text_[position_++];
        if (escaped != '\n') {
            take(escaped);
        }
    }

    void skipComment() {
        const std::size_t end = text_.find('\n', position_);
        position_ = end == std::string_view::npos ? text_.size() : end;
    }

    void finishWord() {
        if (isInWord_) {
            words_.push_back(std::exchange(word_, {}));
        }
        isInWord_ = false;
    }

    std::string_view text_;
    std::size_t position_ = 0;
    std::vector<ExecLine::Word> words_{};
    ExecLine::Word word_{};
    bool isInWord_ = false;
};

} // namespace

std::vector<ExecLine::Word> execWords(std::string_view exec) {
    return Splitter(exec).split();
}

std::string quotedExecWord(std::string_view word) {
    constexpr std::string_view reserved = " \t\"'\\><~|&;$*?#()`";
    constexpr std::string_view escaped = "\"`$\\";
    const bool needsQuotes = word.empty() || word.find_first_of(reserved) != std::string_view::npos;
    std::string text(needsQuotes ? "\"" : "");
    for (const char character : word) {
        if (character == '\0') {
            throw ExecLineError("a NUL byte can’t be written into a menu entry");
        }
        if (character == '\n' || character == '\r') {
            throw ExecLineError("a line break can’t be written into a menu entry");
        }
        text.append(escaped.find(character) != std::string_view::npos ? "\\" : "");
        text.append(character == '%' ? 2 : 1, character);
    }
    return text.append(needsQuotes ? "\"" : "");
}

} // namespace quorvel
