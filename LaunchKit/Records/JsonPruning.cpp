#include "LaunchKit/Records/JsonPruning.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace quorvel {
namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view hexadecimals = "0123456789abcdefABCDEF";

// Scans JSON without recursion. Functions return false if the text is not JSON.
class JsonWalker {
public:
    explicit JsonWalker(std::string_view json) : json_(json) {}

    [[nodiscard]] bool atEnd() {
        skipBlanks();
        return at_ == json_.size();
    }

    [[nodiscard]] bool skip(char expected) {
        skipBlanks();
        return takeIf(expected);
    }

    /// Returns a string as written, quotes included.
    [[nodiscard]] std::optional<std::string_view> string() {
        skipBlanks();
        const std::size_t start = at_;
        return skipString() ? std::optional(json_.substr(start, at_ - start)) : std::nullopt;
    }

    /// Returns any value as written.
    [[nodiscard]] std::optional<std::string_view> value() {
        skipBlanks();
        const std::size_t start = at_;
        std::vector<char> open; // the brackets that have to be closed
        do {
            if (!skipScalarOrOpen(open) || !closeAll(open)) {
                return std::nullopt;
            }
        } while (!open.empty());
        return json_.substr(start, at_ - start);
    }

private:
    // Advances to the next position where a value must follow, or to the end of the outermost one.
    bool closeAll(std::vector<char>& open) {
        while (!open.empty() && !opened_) {
            if (skip(',')) {
                return open.back() == ']' || skipKey();
            }
            if (!skip(open.back())) {
                return false;
            }
            open.pop_back();
        }
        opened_ = false;
        return true;
    }

    bool skipScalarOrOpen(std::vector<char>& open) {
        skipBlanks();
        const char first = at_ < json_.size() ? json_[at_] : '\0';
        if (first == '[' || first == '{') {
            ++at_;
            const char end = first == '[' ? ']' : '}';
            if (skip(end)) {
                return true;
            }
            open.push_back(end);
            opened_ = true;
            return first == '[' || skipKey();
        }
        return first == '"' ? skipString() : skipNumber() || skipLiteral();
    }

    bool skipKey() { return string().has_value() && skip(':'); }

    bool skipString() {
        if (!takeIf('"')) {
            return false;
        }
        while (at_ < json_.size() && static_cast<unsigned char>(json_[at_]) >= 0x20) {
            const char character = json_[at_++];
            if (character == '"') {
                return true;
            }
            if (character == '\\' && !skipEscape()) {
                return false;
            }
        }
        return false;
    }

    bool skipEscape() {
        if (!takeIf('u')) {
            return takeAny("\"\\/bfnrt");
        }
        return takeAny(hexadecimals) && takeAny(hexadecimals) && takeAny(hexadecimals) &&
               takeAny(hexadecimals);
    }

    bool skipNumber() {
        const std::size_t start = at_;
        takeIf('-');
        bool sound = takeIf('0') || takeMany();
        sound = sound && (!takeIf('.') || takeMany());
        if (sound && takeAny("eE")) {
            takeAny("+-");
            sound = takeMany();
        }
        at_ = sound ? at_ : start;
        return sound;
    }

    bool skipLiteral() {
        for (const std::string_view literal : {"true", "false", "null"}) {
            if (json_.substr(at_).starts_with(literal)) {
                at_ += literal.size();
                return true;
            }
        }
        return false;
    }

    bool takeMany() {
        const std::size_t start = at_;
        at_ = std::min(json_.find_first_not_of(digits, at_), json_.size());
        return at_ > start;
    }

    bool takeAny(std::string_view characters) {
        const bool found =
            at_ < json_.size() && characters.find(json_[at_]) != std::string_view::npos;
        at_ += found ? 1U : 0U;
        return found;
    }

    bool takeIf(char character) { return takeAny({&character, 1}); }

    void skipBlanks() { at_ = std::min(json_.find_first_not_of(" \t\r\n", at_), json_.size()); }

    std::string_view json_;
    std::size_t at_ = 0;
    bool opened_ = false; ///< a bracket was just opened, so a value follows
};

// Returns the text between the quotes; escapes beyond ASCII, which our keys never need, become "?".
std::string plainKey(std::string_view quoted) {
    std::string key;
    for (std::size_t at = 1; at + 1 < quoted.size(); ++at) {
        if (quoted[at] != '\\') {
            key += quoted[at];
        } else if (quoted[++at] == 'u') {
            unsigned code = 0;
            std::from_chars(quoted.data() + at + 1, quoted.data() + at + 5, code, 16);
            key += code < 0x80 ? static_cast<char>(code) : '?';
            at += 4;
        } else {
            key += '?';
        }
    }
    return key;
}

} // namespace

std::optional<std::string> withMembersOnly(
    std::string_view json, std::span<const std::string_view> keys,
    const std::function<std::string(std::string_view key, std::string_view value)>& form) {
    JsonWalker walker(json);
    std::string result = "{";
    std::vector<std::string_view> wanted(keys.begin(), keys.end());
    if (!walker.skip('{')) {
        return std::nullopt;
    }
    bool more = !walker.skip('}');
    while (more) {
        const auto name = walker.string();
        const bool separated = name && walker.skip(':');
        const auto value = separated ? walker.value() : std::nullopt;
        if (!value) {
            return std::nullopt;
        }
        const auto key = std::find(wanted.begin(), wanted.end(), plainKey(*name));
        if (key != wanted.end()) {
            result.append(result.size() > 1 ? "," : "")
                .append(*name)
                .append(":")
                .append(form(*key, *value));
            wanted.erase(key);
        }
        more = walker.skip(',');
        if (!more && !walker.skip('}')) {
            return std::nullopt;
        }
    }
    return walker.atEnd() ? std::optional(result + "}") : std::nullopt;
}

} // namespace quorvel
