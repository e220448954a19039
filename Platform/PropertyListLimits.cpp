#include "Platform/PropertyListLimits.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace quorvel::PropertyListLimits {
namespace {

bool isOpeningContainer(std::string_view tag) {
    return tag.starts_with("<dict") || tag.starts_with("<array");
}

bool isClosingContainer(std::string_view tag) {
    return tag.starts_with("</dict") || tag.starts_with("</array");
}

// Tags inside comments count as well, which can only make the answer stricter.
bool xmlWithin(std::string_view bytes) {
    std::size_t depth = 0;
    std::size_t values = 0;
    for (std::size_t at = bytes.find('<'); at != bytes.npos; at = bytes.find('<', at + 1)) {
        const std::string_view tag = bytes.substr(at, 8);
        const std::size_t end = bytes.find('>', at);
        const bool selfClosing = end != bytes.npos && end > at && bytes[end - 1] == '/';
        if (isOpeningContainer(tag) && !selfClosing) {
            ++depth;
        } else if (isClosingContainer(tag) && depth > 0) {
            --depth;
        }
        if (depth > maximumDepth || ++values > 2 * maximumValues) {
            return false;
        }
    }
    return true;
}

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes) {
        value = (value << 8U) | static_cast<unsigned char>(byte);
    }
    return value;
}

// The object graph of the binary form, walked without recursion. Each object's size is what it
// unfolds to, so that one shared by many counts as often as the parser would copy it.
class BinaryGraph {
public:
    explicit BinaryGraph(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] bool within() {
        if (!readTrailer()) {
            return true;
        }
        unfolded_.assign(count_, 0);
        std::vector<Visit> stack;
        std::vector<bool> open(count_, false);
        if (!enter(root_, stack, open)) {
            return false;
        }
        while (!stack.empty()) {
            Visit& visit = stack.back();
            if (visit.next < visit.references) {
                const std::optional<std::uint64_t> child = reference(visit, visit.next++);
                if (!child) {
                    return true;
                }
                if (unfolded_[*child] != 0) {
                    if (!add(visit, unfolded_[*child])) {
                        return false;
                    }
                } else if (open[*child] || !enter(*child, stack, open)) {
                    return false;
                }
                continue;
            }
            const Visit done = visit;
            stack.pop_back();
            open[done.object] = false;
            unfolded_[done.object] = done.unfolded;
            if (!stack.empty() && !add(stack.back(), done.unfolded)) {
                return false;
            }
        }
        return true;
    }

private:
    struct Visit {
        std::uint64_t object = 0;
        std::size_t firstReference = 0;
        std::uint64_t references = 0;
        std::uint64_t next = 0;
        std::uint64_t unfolded = 1;
    };

    static bool add(Visit& visit, std::uint64_t values) {
        visit.unfolded += values;
        return visit.unfolded <= maximumValues;
    }

    bool readTrailer() {
        if (bytes_.size() < 40) {
            return false;
        }
        const std::string_view trailer = bytes_.substr(bytes_.size() - 32);
        offsetSize_ = static_cast<unsigned char>(trailer[6]);
        referenceSize_ = static_cast<unsigned char>(trailer[7]);
        count_ = bigEndian(trailer.substr(8, 8));
        root_ = bigEndian(trailer.substr(16, 8));
        table_ = bigEndian(trailer.substr(24, 8));
        return offsetSize_ >= 1 && offsetSize_ <= 8 && referenceSize_ >= 1 && referenceSize_ <= 8 &&
               count_ <= bytes_.size() && root_ < count_ && table_ <= bytes_.size() &&
               count_ * offsetSize_ <= bytes_.size() - table_;
    }

    // Containers are 0xA0 (array), 0xC0 (set) and 0xD0 (dictionary); 0xF in the low half announces
    // an integer object with the count.
    bool enter(std::uint64_t object, std::vector<Visit>& stack, std::vector<bool>& open) {
        Visit visit;
        visit.object = object;
        std::size_t at = bigEndian(bytes_.substr(table_ + object * offsetSize_, offsetSize_));
        if (at < bytes_.size()) {
            const auto marker = static_cast<unsigned char>(bytes_[at++]);
            const unsigned kind = marker & 0xF0U;
            if (kind == 0xA0U || kind == 0xC0U || kind == 0xD0U) {
                std::uint64_t length = marker & 0x0FU;
                if (length == 0x0FU && at < bytes_.size()) {
                    const std::size_t width = std::size_t{1}
                                              << (static_cast<unsigned char>(bytes_[at++]) & 0x3U);
                    length = at + width <= bytes_.size() ? bigEndian(bytes_.substr(at, width)) : 0;
                    at += width;
                }
                visit.firstReference = at;
                // Longer than the file can hold: malformed, and the parser says so.
                visit.references = length <= bytes_.size() ? length : 0;
                if (kind == 0xD0U) {
                    visit.references *= 2;
                }
            }
        }
        stack.push_back(visit);
        open[object] = true;
        return stack.size() <= maximumDepth;
    }

    [[nodiscard]] std::optional<std::uint64_t> reference(const Visit& visit,
                                                         std::uint64_t index) const {
        const std::size_t at = visit.firstReference + index * referenceSize_;
        if (at + referenceSize_ > bytes_.size()) {
            return std::nullopt;
        }
        const std::uint64_t object = bigEndian(bytes_.substr(at, referenceSize_));
        return object < count_ ? std::optional(object) : std::nullopt;
    }

    std::string_view bytes_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t root_ = 0;
    std::uint64_t table_ = 0;
    std::vector<std::uint64_t> unfolded_;
};

} // namespace

bool within(std::string_view bytes) {
    return bytes.starts_with("bplist") ? BinaryGraph(bytes).within() : xmlWithin(bytes);
}

} // namespace quorvel::PropertyListLimits
