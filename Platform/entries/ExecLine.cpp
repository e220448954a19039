#include "Platform/entries/ExecLine.h"

#include "Base/PathText.h"
#include "Platform/entries/ExecWords.h"
#include "Platform/entries/FileUrl.h"

#include <algorithm>
#include <optional>

namespace quorvel {
namespace {

// Makes one start's arguments out of the words. A code that means several texts begins a new
// argument between them.
class Expansion {
public:
    Expansion(const std::vector<std::string>& items, const ExecLine::Fields& fields)
        : items_(items),
          fields_(fields) {}

    void add(const ExecLine::Word& word) {
        current_.clear();
        isArgument_ = word.quoted;
        for (std::size_t index = 0; index < word.text.size(); ++index) {
            const char next = index + 1 < word.text.size() ? word.text[index + 1] : '\0';
            if (word.text[index] == '%' && next != '\0') {
                addCode(next);
                ++index;
            } else {
                append(std::string_view(word.text).substr(index, 1));
            }
        }
        finishArgument();
    }

    std::vector<std::string> finish() {
        if (taken_ == 0 && !items_.empty()) {
            add({"%f"});
        }
        return std::move(arguments_);
    }

private:
    void addCode(char code) {
        switch (code) {
        case '%':
            append("%");
            break;
        case 'f':
        case 'u':
            if (taken_ < items_.size()) {
                addItem(items_[taken_++], code == 'u');
            }
            break;
        case 'F':
        case 'U':
            addItems(code == 'U');
            break;
        case 'i':
            if (!fields_.icon.empty()) {
                append("--icon");
                finishArgument();
                append(fields_.icon);
            }
            break;
        case 'c':
            append(fields_.name);
            break;
        case 'k':
            append(fields_.file);
            break;
        default:
            break;
        }
    }

    void addItems(bool mayBeUrl) {
        for (bool first = true; taken_ < items_.size(); first = false) {
            if (!first) {
                finishArgument();
            }
            addItem(items_[taken_++], mayBeUrl);
        }
    }

    // Local files are passed as paths even where a URL is allowed, as most desktops do.
    void addItem(const std::string& item, bool mayBeUrl) {
        const auto path = pathOfFileUrl(item);
        if (path || mayBeUrl || item.starts_with('/')) {
            append(path.value_or(item));
        }
    }

    void append(std::string_view text) {
        current_ += text;
        isArgument_ = isArgument_ || !text.empty();
    }

    void finishArgument() {
        if (isArgument_) {
            arguments_.push_back(std::move(current_));
        }
        current_.clear();
        isArgument_ = false;
    }

    const std::vector<std::string>& items_;
    const ExecLine::Fields& fields_;
    std::vector<std::string> arguments_{};
    std::string current_{};
    bool isArgument_ = false;
    std::size_t taken_ = 0;
};

std::string withoutCodes(const ExecLine::Word& word) {
    static const std::vector<std::string> noItems;
    static const ExecLine::Fields noFields;
    Expansion expansion(noItems, noFields);
    expansion.add(word);
    const std::vector<std::string> result = expansion.finish();
    return result.empty() ? std::string() : result.front();
}

bool isEnv(const ExecLine::Word& word) {
    const std::string text = withoutCodes(word);
    return baseName(text) == "env";
}

// Takes the options of an "env"; returns the index of the word after them.
std::size_t takeEnvOptions(const std::vector<ExecLine::Word>& words, std::size_t index,
                           ExecLine& line) {
    constexpr std::string_view longUnset = "--unset=";
    for (; index < words.size(); ++index) {
        const std::string word = withoutCodes(words[index]);
        if (word == "--") {
            return index + 1;
        }
        if (!word.starts_with('-')) {
            return index;
        }
        if (word == "-u" || word == "--unset") {
            if (++index < words.size()) {
                line.unset.push_back(withoutCodes(words[index]));
            }
        } else if (word.starts_with(longUnset)) {
            line.unset.push_back(word.substr(longUnset.size()));
        } else if (word.starts_with("-u")) {
            line.unset.push_back(word.substr(2));
        } else {
            throw ExecLineError("“env” is given an option that can’t be followed: " + word);
        }
    }
    return index;
}

// Takes the options and assignments of an "env"; returns the index of the word after them.
std::size_t takeEnv(const std::vector<ExecLine::Word>& words, std::size_t index, ExecLine& line) {
    for (index = takeEnvOptions(words, index, line); index < words.size(); ++index) {
        const std::string word = withoutCodes(words[index]);
        if (word.find('=') == std::string::npos) {
            break;
        }
        line.environment.push_back(word);
    }
    return index;
}

bool hasCode(const std::vector<ExecLine::Word>& words, std::string_view codes) {
    return std::any_of(words.begin(), words.end(), [&](const ExecLine::Word& word) {
        for (std::size_t at = word.text.find('%'); at != std::string::npos;
             at = word.text.find('%', at + 2)) {
            if (at + 1 < word.text.size() &&
                codes.find(word.text[at + 1]) != std::string_view::npos) {
                return true;
            }
        }
        return false;
    });
}

} // namespace

ExecLine ExecLine::parse(std::string_view exec) {
    std::vector<Word> words = execWords(exec);
    ExecLine line;
    std::size_t index = 0;
    while (index < words.size() && isEnv(words[index])) {
        index = takeEnv(words, index + 1, line);
    }
    line.program = index < words.size() ? withoutCodes(words[index]) : std::string();
    if (line.program.empty()) {
        throw ExecLineError("no program is named");
    }
    words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(index) + 1);
    line.words = std::move(words);
    return line;
}

std::vector<std::string> ExecLine::toArguments(const std::vector<std::string>& items,
                                               const Fields& fields) const {
    Expansion expansion(items, fields);
    for (const Word& word : words) {
        expansion.add(word);
    }
    return expansion.finish();
}

bool ExecLine::takesItems() const {
    return hasCode(words, "fFuU");
}

void ExecLine::applyTo(Environment& variables) const {
    for (const std::string& name : unset) {
        variables.erase(name);
    }
    for (const std::string& assignment : environment) {
        const std::size_t equals = assignment.find('=');
        variables.insert_or_assign(assignment.substr(0, equals), assignment.substr(equals + 1));
    }
}

bool ExecLine::takesSeveral() const {
    return hasCode(words, "FU");
}

ExecLine ExecLine::takingSeveral() const {
    ExecLine line = *this;
    for (Word& word : line.words) {
        if (word.text == "%f" || word.text == "%u") {
            word.text = word.text == "%f" ? "%F" : "%U";
        }
    }
    return line;
}

std::size_t ExecLine::engineArgumentsIndex(const std::vector<std::string>& arguments) const {
    if (baseName(program) != "flatpak" || arguments.empty() || arguments.front() != "run") {
        return 0;
    }
    const auto id = std::find_if(arguments.begin() + 1, arguments.end(),
                                 [](const std::string& word) { return !word.starts_with('-'); });
    return id == arguments.end() ? arguments.size()
                                 : static_cast<std::size_t>(id - arguments.begin()) + 1;
}

std::string ExecLine::text(const std::vector<std::string>& command, std::string_view codes) {
    if (command.empty() || command.front().empty()) {
        throw ExecLineError("no program is named");
    }
    if (command.front().find('=') != std::string::npos) {
        throw ExecLineError("the program’s path contains an equals sign");
    }
    std::string line;
    for (const std::string& word : command) {
        line.append(line.empty() ? "" : " ").append(quotedExecWord(word));
    }
    return codes.empty() ? line : line.append(" ").append(codes);
}

} // namespace quorvel
