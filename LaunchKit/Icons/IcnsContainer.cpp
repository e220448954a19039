#include "LaunchKit/Icons/IcnsContainer.h"

#include "LaunchKit/Icons/Bytes.h"

#include <deque>

namespace quorvel {
namespace {

constexpr std::size_t headerSize = 8;
constexpr int maximumDepth = 4;

struct NestedFamily {
    std::string_view payload;
    int depth;
};

// Returns the chunks after the container's header, up to its declared size or the end of the bytes.
std::string_view withoutHeader(std::string_view bytes) {
    const std::size_t declared = bigEndian32(bytes.substr(4));
    const bool truthful = declared >= headerSize && declared <= bytes.size();
    return bytes.substr(headerSize, truthful ? declared - headerSize : std::string_view::npos);
}

bool isImagePart(IcnsCode code) {
    return icnsType(code) != nullptr || isAlphaMask(code);
}

class FamilyWalk {
public:
    explicit FamilyWalk(std::string_view bytes) { pending_.push_back({bytes, 0}); }

    std::vector<IcnsFamily> families() {
        std::vector<IcnsFamily> families;
        while (!pending_.empty()) {
            const NestedFamily next = pending_.front();
            pending_.pop_front();
            families.push_back(family(
                isIcns(next.payload) ? withoutHeader(next.payload) : next.payload, next.depth));
        }
        return families;
    }

private:
    IcnsFamily family(std::string_view rest, int depth) {
        IcnsFamily chunks;
        while (rest.size() >= headerSize && count_ < maximumIcnsChunks) {
            const std::size_t size = bigEndian32(rest.substr(4));
            if (size < headerSize || size > rest.size()) {
                break;
            }
            take({bigEndian32(rest), rest.substr(headerSize, size - headerSize)}, chunks, depth);
            rest.remove_prefix(size);
        }
        return chunks;
    }

    void take(IcnsChunk chunk, IcnsFamily& chunks, int depth) {
        const bool nested = isNestedFamily(chunk.code) && depth < maximumDepth;
        if (nested) {
            pending_.push_back({chunk.payload, depth + 1});
        } else if (isImagePart(chunk.code)) {
            chunks.push_back(chunk);
        }
        count_ += nested || isImagePart(chunk.code) ? 1 : 0;
    }

    std::deque<NestedFamily> pending_{};
    std::size_t count_ = 0;
};

} // namespace

bool isIcns(std::string_view bytes) noexcept {
    return bytes.size() >= headerSize && bytes.starts_with("icns");
}

std::vector<IcnsFamily> icnsFamilies(std::string_view bytes) {
    return isIcns(bytes) ? FamilyWalk(bytes).families() : std::vector<IcnsFamily>{};
}

} // namespace quorvel
