#include "LaunchKit/Icons/SimplePng.h"

#include "LaunchKit/Icons/Bytes.h"
#include "LaunchKit/Icons/ImageFile.h"

#include <algorithm>
#include <optional>

namespace quorvel {
namespace {

constexpr std::size_t markSize = 8;
constexpr std::size_t numberSize = 4;

struct Part {
    std::string_view kind;
    std::string_view data;
};
// Takes the next part of the file off `rest`; std::nullopt if it is cut short.
std::optional<Part> takePart(std::string_view& rest) {
    constexpr std::size_t around = 3 * numberSize; // length and kind, and the checksum after it
    if (rest.size() < around || bigEndian32(rest) > rest.size() - around) {
        return std::nullopt;
    }
    const std::size_t length = bigEndian32(rest);
    const Part part{rest.substr(numberSize, numberSize), rest.substr(2 * numberSize, length)};
    rest.remove_prefix(around + length);
    return part;
}

bool isSimpleHead(const Part& head, unsigned largestSide) {
    constexpr std::size_t size = 13;
    if (head.kind != "IHDR" || head.data.size() != size) {
        return false;
    }
    const std::uint32_t width = bigEndian32(head.data);
    const std::uint32_t height = bigEndian32(head.data.substr(numberSize));
    const std::string_view format = head.data.substr(2 * numberSize);
    using namespace std::string_view_literals;
    return width > 0 && height > 0 && std::max(width, height) <= largestSide &&
           (format == "\x08\x02\0\0\0"sv || format == "\x08\x06\0\0\0"sv);
}

} // namespace

bool isSimplePng(std::string_view bytes, unsigned largestSide) {
    if (!isPng(bytes)) {
        return false;
    }
    std::string_view rest = bytes.substr(markSize);
    const auto head = takePart(rest);
    if (!head || !isSimpleHead(*head, largestSide)) {
        return false;
    }
    bool hasPixels = false;
    while (const auto part = takePart(rest)) {
        if (part->kind == "IEND") {
            return hasPixels && part->data.empty() && rest.empty();
        }
        // Some writers add sBIT, the number of bits in use.
        if (part->kind != "IDAT" && (part->kind != "sBIT" || hasPixels)) {
            return false;
        }
        hasPixels = hasPixels || part->kind == "IDAT";
    }
    return false;
}

} // namespace quorvel
