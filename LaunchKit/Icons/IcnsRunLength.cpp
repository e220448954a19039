#include "LaunchKit/Icons/IcnsRunLength.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr std::size_t shortestRun = 3;
constexpr std::size_t longestRun = 130;
constexpr std::size_t longestLiteral = 128;
constexpr std::size_t firstRunCode = 128;

std::size_t runLength(std::span<const std::uint8_t> bytes) {
    const auto different = std::find_if(bytes.begin(), bytes.end(),
                                        [&](std::uint8_t byte) { return byte != bytes.front(); });
    return std::min<std::size_t>(static_cast<std::size_t>(different - bytes.begin()), longestRun);
}

// Returns the number of bytes before the next run that is worth packing.
std::size_t literalLength(std::span<const std::uint8_t> bytes) {
    std::size_t length = 0;
    while (length < bytes.size() && length < longestLiteral &&
           runLength(bytes.subspan(length)) < shortestRun) {
        ++length;
    }
    return length;
}

} // namespace

std::optional<std::vector<std::uint8_t>> unpackRuns(std::string_view packed, std::size_t size) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(size);
    while (bytes.size() < size && !packed.empty()) {
        const auto code = static_cast<std::uint8_t>(packed.front());
        packed.remove_prefix(1);
        const std::size_t remaining = size - bytes.size();
        if (code < firstRunCode) {
            const std::size_t length = std::min<std::size_t>({code + 1U, remaining, packed.size()});
            bytes.insert(bytes.end(), packed.begin(),
                         packed.begin() + static_cast<std::ptrdiff_t>(length));
            packed.remove_prefix(length);
        } else if (!packed.empty()) {
            const std::size_t length = code - firstRunCode + shortestRun;
            bytes.insert(bytes.end(), std::min(length, remaining),
                         static_cast<std::uint8_t>(packed.front()));
            packed.remove_prefix(1);
        }
    }
    return bytes.size() == size ? std::optional(std::move(bytes)) : std::nullopt;
}

void packRuns(std::span<const std::uint8_t> bytes, std::string& packed) {
    while (!bytes.empty()) {
        if (const std::size_t run = runLength(bytes); run >= shortestRun) {
            packed += static_cast<char>(run - shortestRun + firstRunCode);
            packed += static_cast<char>(bytes.front());
            bytes = bytes.subspan(run);
        } else {
            const std::size_t literal = literalLength(bytes);
            packed += static_cast<char>(literal - 1);
            packed.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(literal));
            bytes = bytes.subspan(literal);
        }
    }
}

} // namespace quorvel
