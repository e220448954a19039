#include "WebHost/Preview/SiteHead.h"

#include "Base/AsciiCase.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t mostIcons = 50;
constexpr std::size_t longestAddress = 2000;
constexpr std::size_t longestTitle = 1000;
constexpr std::string_view blanks = " \t\r\n\f";

bool isBlank(char byte) {
    return blanks.find(byte) != std::string_view::npos;
}

struct Reference {
    std::string_view name;
    std::string_view text;
};
constexpr std::array<Reference, 7> references{{{"amp;", "&"},
                                               {"lt;", "<"},
                                               {"gt;", ">"},
                                               {"quot;", "\""},
                                               {"apos;", "'"},
                                               {"#39;", "'"},
                                               {"nbsp;", " "}}};

// Only the most common references; all others stay as they are.
std::string withoutReferences(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const auto* const found =
            text.front() != '&'
                ? references.end()
                : std::find_if(references.begin(), references.end(), [&](const Reference& one) {
                      return text.substr(1).starts_with(one.name);
                  });
        if (found == references.end()) {
            result += text.front();
            text.remove_prefix(1);
        } else {
            result += found->text;
            text.remove_prefix(found->name.size() + 1);
        }
    }
    return result;
}

// The attributes of a tag, whose text begins after its name and ends before ">".
class Attributes {
public:
    explicit Attributes(std::string_view text) : rest_(text) {}

    struct Attribute {
        std::string name{};
        std::string value{};
    };
    std::optional<Attribute> next() {
        skip([](char byte) { return isBlank(byte) || byte == '/' || byte == '='; });
        if (rest_.empty()) {
            return std::nullopt;
        }
        Attribute attribute{
            asciiLower(take([](char byte) { return isBlank(byte) || byte == '=' || byte == '/'; })),
            {}};
        skip(isBlank);
        if (rest_.starts_with('=')) {
            rest_.remove_prefix(1);
            skip(isBlank);
            attribute.value = withoutReferences(value());
        }
        return attribute;
    }

private:
    template<typename Predicate>
    std::string_view take(Predicate ends) {
        const auto* const end = std::find_if(rest_.begin(), rest_.end(), ends);
        const auto length = static_cast<std::size_t>(end - rest_.begin());
        const std::string_view taken = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return taken;
    }
    template<typename Predicate>
    void skip(Predicate skipped) {
        (void)take([&](char byte) { return !skipped(byte); });
    }
    std::string_view value() {
        if (rest_.empty() || (rest_.front() != '"' && rest_.front() != '\'')) {
            return take(isBlank);
        }
        const char quote = rest_.front();
        rest_.remove_prefix(1);
        const std::string_view text = take([&](char byte) { return byte == quote; });
        rest_.remove_prefix(rest_.empty() ? 0 : 1);
        return text;
    }

    std::string_view rest_;
};

// The end of a tag; a ">" within quotation marks is not one.
std::size_t endOfTag(std::string_view text) {
    char quote = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (quote != 0) {
            quote = text[at] == quote ? '\0' : quote;
        } else if (text[at] == '"' || text[at] == '\'') {
            quote = text[at];
        } else if (text[at] == '>') {
            return at;
        }
    }
    return text.size();
}

struct Icon {
    std::string address{};
    int side = 0; ///< in pixels, as far as the page says
};

int sideIn(std::string_view sizes) {
    constexpr int ofDrawings = 1024;
    constexpr int largest = 4096;
    int widest = asciiLower(sizes) == "any" ? ofDrawings : 0;
    const char* const end = sizes.data() + sizes.size();
    for (const char* at = sizes.data(); at < end; ++at) {
        int side = 0;
        // Also a number that is too large is passed over as a whole.
        const auto result = std::from_chars(at, end, side);
        if (result.ec == std::errc{} && side > 0 && side <= largest) {
            widest = std::max(widest, side);
        }
        at = std::min(result.ptr, end - 1);
    }
    return widest;
}

std::optional<Icon> iconIn(std::string_view tag) {
    constexpr int usualTouchIcon = 180;
    constexpr int usualIcon = 32;
    Attributes attributes(tag);
    std::string relation;
    Icon icon;
    while (const auto attribute = attributes.next()) {
        if (attribute->name == "rel") {
            relation = " " + asciiLower(attribute->value) + " ";
        } else if (attribute->name == "href") {
            icon.address = attribute->value;
        } else if (attribute->name == "sizes") {
            icon.side = sideIn(attribute->value);
        }
    }
    const bool isTouchIcon = relation.find(" apple-touch-icon") != std::string::npos;
    const bool isIcon = relation.find(" icon ") != std::string::npos;
    if ((!isTouchIcon && !isIcon) || icon.address.empty() || icon.address.size() > longestAddress) {
        return std::nullopt;
    }
    icon.side = icon.side > 0 ? icon.side : isTouchIcon ? usualTouchIcon : usualIcon;
    return icon;
}

std::string textBefore(std::string_view end, std::string_view html) {
    std::string text = withoutReferences(html.substr(0, std::min(html.find(end), longestTitle)));
    std::replace_if(text.begin(), text.end(), isBlank, ' ');
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

bool isTag(std::string_view rest, std::string_view name) {
    return rest.size() > name.size() && asciiLower(rest.substr(0, name.size())) == name &&
           (isBlank(rest[name.size()]) || rest[name.size()] == '>' || rest[name.size()] == '/');
}

} // namespace

SiteHead siteHead(std::string_view html) {
    SiteHead head;
    std::vector<Icon> icons;
    while (icons.size() < mostIcons) {
        const std::size_t open = html.find('<');
        if (open == std::string_view::npos) {
            break;
        }
        html.remove_prefix(open + 1);
        if (isTag(html, "body")) {
            break;
        }
        if (isTag(html, "title") && head.title.empty()) {
            html.remove_prefix(std::min(endOfTag(html) + 1, html.size()));
            head.title = textBefore("<", html);
        } else if (isTag(html, "link")) {
            const std::size_t end = endOfTag(html);
            if (auto icon = iconIn(html.substr(4, end - 4))) {
                icons.push_back(std::move(*icon));
            }
            html.remove_prefix(end);
        }
    }
    std::stable_sort(icons.begin(), icons.end(),
                     [](const Icon& a, const Icon& b) { return a.side > b.side; });
    for (Icon& icon : icons) {
        head.icons.push_back(std::move(icon.address));
    }
    return head;
}

} // namespace quorvel
