#pragma once

#include <cstddef>

namespace quorvel {

/// A share of the memory that all threads together may use to decode images. The constructor waits
/// for others to finish if there is not enough left; a share larger than the total waits to be the
/// only one. Must not be nested.
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
