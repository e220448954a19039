#include "Base/PropertyListLimits.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace quorvel::PropertyListLimits {
namespace {

// Measured: the parser takes up to 136 bytes per value, our own form of it about 80 more.
constexpr std::size_t bytesPerValue = 256;
constexpr std::size_t maximumValues = maximumBytes / bytesPerValue;
// A text exists in the parser's form and in our own, which may be twice as long, and callers make
// copies of it.
constexpr std::size_t copiesOfText = 12;

// Follows the tags of the XML form as the parser does, to find how deeply they nest. Rejects the
// document where the parser might see another end of a tag, since nesting could be hidden there.
class XmlTags {
public:
    explicit XmlTags(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] std::optional<std::size_t> neededBytes() {
        while (skipText()) {
            if (!skipTag() || depth_ > maximumDepth || values_ > maximumValues) {
                return std::nullopt;
            }
        }
        const std::size_t needed = values_ * bytesPerValue + texts_ * copiesOfText;
        return needed <= maximumBytes ? std::optional(needed) : std::nullopt;
    }

private:
    // Returns whether a tag follows.
    bool skipText() {
        const std::size_t end = std::min(bytes_.find('<', at_), bytes_.size());
        texts_ += end - at_;
        at_ = end;
        return at_ < bytes_.size();
    }

    bool skipTag() {
        const std::string_view rest = bytes_.substr(at_);
        if (rest.starts_with("<!--")) {
            return skipPast("-->");
        }
        if (rest.starts_with("<![CDATA[")) {
            return skipPast("]]>");
        }
        const std::size_t end = bytes_.find('>', at_ + 1);
        if (end == std::string_view::npos) {
            return false;
        }
        const std::string_view tag = bytes_.substr(at_, end - at_);
        at_ = end + 1;
        if (tag.find('<', 1) != std::string_view::npos || mayHoldQuotedEnd(tag)) {
            return false;
        }
        if (tag.starts_with("<!")) {
            return depth_ == 0 && tag.find('[') == std::string_view::npos;
        }
        if (tag.starts_with("<?")) {
            return depth_ == 0 && tag.ends_with('?');
        }
        count(tag);
        return true;
    }

    void count(std::string_view tag) {
        values_ += tag.starts_with("</") ? 0U : 1U;
        if (isContainer(tag.substr(1))) {
            depth_ += tag.ends_with('/') ? 0U : 1U;
        } else if (tag.starts_with("</") && isContainer(tag.substr(2)) && depth_ > 0) {
            --depth_;
        }
    }

    bool skipPast(std::string_view end) {
        const std::size_t start = at_;
        const std::size_t found = bytes_.find(end, at_ + 4);
        at_ = found == std::string_view::npos ? bytes_.size() : found + end.size();
        texts_ += at_ - start;
        return true;
    }

    static bool isContainer(std::string_view name) {
        return name.starts_with("dict") || name.starts_with("array");
    }

    // Whether a quotation may still be open at the end of the tag.
    static bool mayHoldQuotedEnd(std::string_view tag) {
        const auto doubles = std::count(tag.begin(), tag.end(), '"');
        const auto singles = std::count(tag.begin(), tag.end(), '\'');
        return (doubles != 0 && singles != 0) || doubles % 2 != 0 || singles % 2 != 0;
    }

    std::string_view bytes_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;
    std::size_t values_ = 0;
    std::size_t texts_ = 0; ///< bytes
};

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes) {
        value = (value << 8U) | static_cast<unsigned char>(byte);
    }
    return value;
}

// The object graph of the binary form, walked without recursion. Each object's size includes all
// that it references, so that a shared object counts as often as the parser copies it.
class BinaryGraph {
public:
    explicit BinaryGraph(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] std::optional<std::size_t> neededBytes() {
        return isSound() ? std::optional(expanded_[root_]) : std::nullopt;
    }

private:
    struct Visit {
        std::uint64_t object = 0;
        std::size_t firstReference = 0;
        std::uint64_t references = 0;
        std::uint64_t keys = 0; ///< the number of leading references that are keys
        std::uint64_t next = 0;
        std::uint64_t expanded = bytesPerValue;
    };

    [[nodiscard]] bool isSound() {
        if (!readTrailer()) {
            return false;
        }
        expanded_.assign(count_, 0);
        soundKeys_.assign(count_, false);
        std::vector<Visit> stack;
        std::vector<bool> open(count_, false);
        if (!enter(root_, stack, open)) {
            return false;
        }
        while (!stack.empty()) {
            if (stack.back().next < stack.back().references) {
                if (!followNext(stack, open)) {
                    return false;
                }
                continue;
            }
            const Visit done = stack.back();
            stack.pop_back();
            open[done.object] = false;
            expanded_[done.object] = done.expanded;
            if (!stack.empty() && !add(stack.back(), done.expanded)) {
                return false;
            }
        }
        return true;
    }

    // Adds what the object at the top of the stack references next, or enters it.
    bool followNext(std::vector<Visit>& stack, std::vector<bool>& open) {
        Visit& visit = stack.back();
        const std::uint64_t index = visit.next++;
        const std::optional<std::uint64_t> child = reference(visit, index);
        if (!child || (index < visit.keys && !isSoundKey(*child))) {
            return false;
        }
        if (expanded_[*child] != 0) {
            return add(visit, expanded_[*child]);
        }
        return !open[*child] && enter(*child, stack, open);
    }

    static bool add(Visit& visit, std::uint64_t bytes) {
        visit.expanded += bytes;
        return visit.expanded <= maximumBytes;
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
               count_ <= maximumValues && root_ < count_ && table_ <= bytes_.size() &&
               count_ * offsetSize_ <= bytes_.size() - table_;
    }

    // Containers are 0xA0 (array), 0xC0 (set) and 0xD0 (dictionary).
    bool enter(std::uint64_t object, std::vector<Visit>& stack, std::vector<bool>& open) {
        Visit visit;
        visit.object = object;
        const std::size_t at = offsetOf(object);
        const unsigned kind = byteAt(at) & 0xF0U;
        if (kind == 0xA0U || kind == 0xC0U || kind == 0xD0U) {
            if (!readCount(at, visit)) {
                return false;
            }
            if (kind == 0xD0U) {
                visit.keys = visit.references;
                visit.references *= 2;
            }
        } else if (!addContents(at, kind, visit)) {
            return false;
        }
        stack.push_back(visit);
        open[object] = true;
        return stack.size() <= maximumDepth;
    }

    // Data are 0x40, texts 0x50 (ASCII), 0x60 (UTF-16, of which a unit may become three bytes) and
    // 0x70 (UTF-8). The parser copies them for every reference.
    [[nodiscard]] bool addContents(std::size_t at, unsigned kind, Visit& visit) const {
        if (kind < 0x40U || kind > 0x70U) {
            return true;
        }
        Visit contents;
        const std::size_t unit = kind == 0x60U ? 2 : 1;
        if (!readCount(at, contents) ||
            contents.firstReference + contents.references * unit > bytes_.size()) {
            return false;
        }
        const std::size_t unitInMemory = kind == 0x60U ? 3 : 1;
        return add(visit, contents.references * unitInMemory * copiesOfText);
    }

    // 0xF in the low half of the marker announces an integer object with the count.
    [[nodiscard]] bool readCount(std::size_t marker, Visit& visit) const {
        visit.references = byteAt(marker) & 0x0FU;
        visit.firstReference = marker + 1;
        if (visit.references == 0x0FU) {
            const std::size_t width = std::size_t{1} << (byteAt(marker + 1) & 0x0FU);
            if (width > 8 || marker + 2 + width > bytes_.size()) {
                return false;
            }
            visit.references = bigEndian(bytes_.substr(marker + 2, width));
            visit.firstReference = marker + 2 + width;
        }
        return visit.references <= bytes_.size();
    }

    [[nodiscard]] std::size_t offsetOf(std::uint64_t object) const {
        return bigEndian(bytes_.substr(table_ + object * offsetSize_, offsetSize_));
    }

    // The parser aborts the program on a key that contains a NUL. Shared keys are checked once.
    [[nodiscard]] bool isSoundKey(std::uint64_t object) {
        if (soundKeys_[object]) {
            return true;
        }
        const std::size_t at = offsetOf(object);
        const unsigned kind = byteAt(at) & 0xF0U;
        // Texts are 0x50 (ASCII), 0x60 (UTF-16) and 0x70 (UTF-8).
        const std::size_t unit = kind == 0x60U ? 2 : 1;
        Visit text;
        if (kind < 0x50U || kind > 0x70U || !readCount(at, text) ||
            text.firstReference + text.references * unit > bytes_.size()) {
            return false;
        }
        for (std::size_t index = 0; index < text.references; ++index) {
            if (bigEndian(bytes_.substr(text.firstReference + index * unit, unit)) == 0) {
                return false;
            }
        }
        soundKeys_[object] = true;
        return true;
    }

    [[nodiscard]] unsigned byteAt(std::size_t at) const {
        return at < bytes_.size() ? static_cast<unsigned char>(bytes_[at]) : 0U;
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
    std::vector<std::uint64_t> expanded_;
    std::vector<bool> soundKeys_;
};

} // namespace

std::optional<std::size_t> neededBytes(std::string_view bytes) {
    return bytes.starts_with("bplist") ? BinaryGraph(bytes).neededBytes()
                                       : XmlTags(bytes).neededBytes();
}

} // namespace quorvel::PropertyListLimits
