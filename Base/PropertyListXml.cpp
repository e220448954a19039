#include "Base/PropertyListXml.h"

#include "Base/Utf8.h"

namespace quorvel::PropertyListXml {
namespace {

using namespace std::string_view_literals;

// Copies a document tag by tag. Its functions return false if the document is malformed.
class Copier {
public:
    explicit Copier(std::string_view document) : rest_(document) {}

    [[nodiscard]] std::optional<std::string> copy() {
        result_.reserve(rest_.size());
        while (!rest_.empty()) {
            result_.append(take(rest_.find('<')));
            if (!rest_.empty() && !copyMarkup()) {
                return std::nullopt;
            }
        }
        return std::move(result_);
    }

private:
    bool copyMarkup() {
        if (rest_.starts_with("<!--")) {
            return skipPast("<!--", "-->");
        }
        if (rest_.starts_with("<?")) {
            return skipPast("<?", "?>");
        }
        if (rest_.starts_with("<![CDATA[")) {
            const std::string_view from = rest_;
            const bool ends = skipPast("<![CDATA[", "]]>");
            result_.append(from.substr(0, from.size() - rest_.size()));
            return ends;
        }
        return rest_.starts_with("<!") ? skipDeclaration() : copyTag();
    }

    bool copyTag() {
        const std::size_t start = rest_.starts_with("</") ? 2 : 1;
        const std::size_t end = rest_.find_first_of(" \t\r\n/>", start);
        if (end == start || end == std::string_view::npos) {
            return false;
        }
        result_.append(take(end));
        inRoot_ = true;
        char before = ' ';
        while (!rest_.empty()) {
            const char character = rest_.front();
            if (character == '>') {
                result_.append(before == '/' ? "/>" : ">");
                rest_.remove_prefix(1);
                return true;
            }
            before = character;
            if (character == '<' || !skipQuotedOrOne()) {
                return false;
            }
        }
        return false;
    }

    // Skips the document type declaration, which may contain further brackets.
    bool skipDeclaration() {
        if (inRoot_ || !rest_.starts_with("<!DOCTYPE")) {
            return false;
        }
        rest_.remove_prefix("<!DOCTYPE"sv.size());
        while (!rest_.empty() && rest_.front() != '>') {
            if (rest_.front() == '[' ? !skipSubset() : !skipQuotedOrOne()) {
                return false;
            }
        }
        return !take(1).empty();
    }

    bool skipSubset() {
        rest_.remove_prefix(1);
        while (!rest_.empty() && rest_.front() != ']') {
            const bool skipped = rest_.starts_with("<!--") ? skipPast("<!--", "-->")
                                 : rest_.starts_with("<?") ? skipPast("<?", "?>")
                                                           : skipQuotedOrOne();
            if (!skipped) {
                return false;
            }
        }
        return !take(1).empty();
    }

    bool skipQuotedOrOne() {
        const char first = rest_.front();
        rest_.remove_prefix(1);
        if (first != '"' && first != '\'') {
            return true;
        }
        const std::size_t end = rest_.find(first);
        take(end);
        return !take(1).empty();
    }

    bool skipPast(std::string_view start, std::string_view end) {
        rest_.remove_prefix(start.size());
        const std::size_t found = rest_.find(end);
        take(found == std::string_view::npos ? rest_.size() : found + end.size());
        return found != std::string_view::npos;
    }

    std::string_view take(std::size_t count) {
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest_;
    std::string result_{};
    bool inRoot_ = false;
};

} // namespace

std::optional<std::string_view> asUtf8(std::string_view document, std::string& buffer) {
    const bool bigEndian = document.starts_with("\xFE\xFF"sv) || document.starts_with("\0<"sv);
    if (bigEndian || document.starts_with("\xFF\xFE"sv) || document.starts_with("<\0"sv)) {
        auto text = utf8FromUtf16(document, bigEndian);
        if (!text) {
            return std::nullopt;
        }
        buffer = std::move(*text);
        document = buffer;
    }
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return document.starts_with(mark) ? document.substr(mark.size()) : document;
}

std::optional<std::string> simplified(std::string_view document) {
    return Copier(document).copy();
}

} // namespace quorvel::PropertyListXml
