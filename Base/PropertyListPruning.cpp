#include "Base/PropertyListPruning.h"

#include <algorithm>
#include <vector>

namespace quorvel::PropertyListPruning {
namespace {

constexpr std::string_view blanks = " \t\r\n";

bool isKeyByte(char byte) {
    return byte != '&' && static_cast<unsigned char>(byte) > 0x20;
}

bool isTextByte(char byte) {
    return byte != '&' && (static_cast<unsigned char>(byte) >= 0x20 ||
                           blanks.find(byte) != std::string_view::npos);
}

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

// Reads piece by piece. Its functions return false if something else follows, and may have read a
// part of that.
class Reader {
public:
    explicit Reader(std::string_view document) : rest_(document) {}

    [[nodiscard]] std::string_view rest() const { return rest_; }

    void skipBlanks() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size()));
    }

    bool skip(std::string_view text) {
        const bool found = rest_.starts_with(text);
        rest_.remove_prefix(found ? text.size() : 0);
        return found;
    }

    // A tag or declaration without further brackets in it.
    bool skipMarkup(std::string_view start) {
        const std::size_t end = rest_.find('>');
        if (!rest_.starts_with(start) || end == std::string_view::npos ||
            rest_.substr(1, end).find_first_of("<[") != std::string_view::npos) {
            return false;
        }
        rest_.remove_prefix(end + 1);
        return true;
    }

    // Everything before the root's first key.
    bool skipHead() {
        skipBlanks();
        for (const char* start : {"<?xml ", "<!DOCTYPE ", "<plist"}) {
            (void)skipMarkup(start);
            skipBlanks();
        }
        return skip("<dict>");
    }

    bool readKey(std::string_view& key) {
        return readContents("<key>", "</key>", key) && !key.empty() &&
               std::all_of(key.begin(), key.end(), isKeyByte);
    }

    // A value with all that it contains. Nested containers are followed without recursion.
    bool skipValue() {
        constexpr std::size_t deepest = 32;
        std::vector<bool> dictionaries; // which of the open containers are dictionaries
        do {
            skipBlanks();
            if (!dictionaries.empty() && skip(dictionaries.back() ? "</dict>" : "</array>")) {
                dictionaries.pop_back();
                continue;
            }
            std::string_view key;
            if (!dictionaries.empty() && dictionaries.back() && !readKey(key)) {
                return false;
            }
            skipBlanks();
            if (skip("<dict>")) {
                dictionaries.push_back(true);
            } else if (skip("<array>")) {
                dictionaries.push_back(false);
            } else if (!skipScalar()) {
                return false;
            }
        } while (!dictionaries.empty() && dictionaries.size() <= deepest);
        return dictionaries.empty();
    }

private:
    bool readContents(std::string_view start, std::string_view end, std::string_view& contents) {
        if (!skip(start)) {
            return false;
        }
        contents = rest_.substr(0, rest_.find('<'));
        rest_.remove_prefix(contents.size());
        return skip(end);
    }

    bool skipScalar() {
        std::string_view text;
        if (skip("<true/>") || skip("<false/>")) {
            return true;
        }
        if (rest_.starts_with("<integer>")) {
            constexpr std::size_t longest = 18;
            return readContents("<integer>", "</integer>", text) && !text.empty() &&
                   text.size() <= longest && std::all_of(text.begin(), text.end(), isDigit);
        }
        return readContents("<string>", "</string>", text) &&
               std::all_of(text.begin(), text.end(), isTextByte);
    }

    std::string_view rest_;
};

} // namespace

std::string pruned(std::string_view document, PropertyList::Keys keys) {
    Reader reader(document);
    if (!reader.skipHead()) {
        return std::string(document);
    }
    std::string result(document.substr(0, document.size() - reader.rest().size()));
    while (true) {
        reader.skipBlanks();
        const std::string_view before = reader.rest();
        std::string_view key;
        if (!reader.readKey(key) || !reader.skipValue()) {
            return result.append(before);
        }
        if (std::find(keys.begin(), keys.end(), key) != keys.end()) {
            result.append(before.substr(0, before.size() - reader.rest().size()));
        }
    }
}

} // namespace quorvel::PropertyListPruning
