#pragma once

#include <cstddef>

namespace quorvel {

/// A share of the memory that all images together may take while they are decoded, in every thread.
/// Waits for others to be done when there is not enough; one that is more than all there is waits
/// to be alone. Not to be nested.
class DecodingMemory {
public:
    static constexpr std::size_t all = std::size_t{128} << 20U;

    explicit DecodingMemory(std::size_t bytes);
    DecodingMemory(const DecodingMemory&) = delete;
    DecodingMemory& operator=(const DecodingMemory&) = delete;
    ~DecodingMemory();

private:
    std::size_t bytes_;
};

} // namespace quorvel
