#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorvel::testing {

inline std::string bigEndian(std::uint64_t value, int width) {
    std::string bytes;
    for (int byte = width - 1; byte >= 0; --byte) {
        bytes.push_back(static_cast<char>((value >> (8 * byte)) & 0xFFU));
    }
    return bytes;
}

/// Builds a binary property list object by object; references and offsets take four bytes each.
class BinaryList {
public:
    std::uint64_t add(const std::string& object) {
        offsets_.push_back(bytes_.size());
        bytes_ += object;
        return offsets_.size() - 1;
    }

    static std::string text(const std::string& ascii) { return start(0x50, ascii.size()) + ascii; }

    static std::string data(const std::string& bytes) { return start(0x40, bytes.size()) + bytes; }

    /// In UTF-16, as characters that take three bytes in UTF-8.
    static std::string wideText(const std::string& ascii) {
        std::string object = start(0x60, ascii.size());
        for (const char character : ascii) {
            object += {'\x4E', character};
        }
        return object;
    }

    static std::string container(int kind, std::uint64_t count,
                                 const std::vector<std::uint64_t>& references) {
        std::string object = start(kind, count);
        for (const std::uint64_t reference : references) {
            object += bigEndian(reference, 4);
        }
        return object;
    }

    static std::string array(const std::vector<std::uint64_t>& items) {
        return container(0xA0, items.size(), items);
    }

    static std::string dictionary(std::uint64_t key, std::uint64_t value) {
        return container(0xD0, 1, {key, value});
    }

    struct Trailer {
        int offsetSize = 4;
        int referenceSize = 4;
        std::optional<std::uint64_t> count{};
        std::optional<std::uint64_t> table{};
    };

    [[nodiscard]] std::string finish(std::uint64_t root) const { return finish(root, Trailer{}); }

    [[nodiscard]] std::string finish(std::uint64_t root, const Trailer& trailer) const {
        std::string result = bytes_;
        for (const std::uint64_t offset : offsets_) {
            result += bigEndian(offset, 4);
        }
        result += std::string(6, '\0');
        result.push_back(static_cast<char>(trailer.offsetSize));
        result.push_back(static_cast<char>(trailer.referenceSize));
        return result + bigEndian(trailer.count.value_or(offsets_.size()), 8) + bigEndian(root, 8) +
               bigEndian(trailer.table.value_or(bytes_.size()), 8);
    }

private:
    static std::string start(int kind, std::uint64_t count) {
        if (count < 15) {
            return {static_cast<char>(kind | static_cast<int>(count))};
        }
        return static_cast<char>(kind | 0xF) + ("\x13" + bigEndian(count, 8));
    }

    std::string bytes_ = "bplist00";
    std::vector<std::uint64_t> offsets_;
};

} // namespace quorvel::testing
