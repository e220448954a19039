#include "Platform/watching/DconfDatabase_linux.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace quorvel {
namespace {

constexpr std::string_view signature = "GVariant";

// Thrown inside this file only.
struct Malformed {};

// A range of the file, as the file names it.
struct Range {
    std::uint32_t start = 0;
    std::uint32_t end = 0;
};

// One item of the hash table. The settings of a folder have the folder's item as their parent, and
// only the rest of their path as their own key.
struct Item {
    std::uint32_t hash = 0;
    std::uint32_t parent = 0;
    std::uint32_t keyStart = 0;
    std::uint16_t keySize = 0;
    char type = 0;
    char unused = 0;
    Range value{};
};
static_assert(sizeof(Item) == 24);

constexpr std::uint32_t noParent = 0xFFFFFFFFU;
constexpr char valueType = 'v';

class Database {
public:
    explicit Database(std::string_view bytes) : bytes_(bytes) {
        constexpr std::size_t rootAt = 16;
        if (!bytes.starts_with(signature)) {
            throw Malformed();
        }
        readItems(part(read<Range>(rootAt)));
    }

    [[nodiscard]] std::map<std::string, std::string> settings() const {
        std::map<std::string, std::string> settings;
        std::size_t used = 0;
        for (const Item& item : items_) {
            if (item.type != valueType) {
                continue;
            }
            std::string path = pathOf(item);
            const std::string_view value = part(item.value);
            // Values that many items share could expand to any size.
            used += path.size() + value.size();
            if (used > maxUnfolded * bytes_.size()) {
                throw Malformed();
            }
            settings.insert_or_assign(std::move(path), std::string(value));
        }
        return settings;
    }

private:
    static constexpr std::size_t maxUnfolded = 16; // paths repeat the names of their folders
    static constexpr std::size_t maxPath = 4096;
    static constexpr int maxDepth = 64;

    template<typename Value>
    [[nodiscard]] Value read(std::size_t at) const {
        if (at > bytes_.size() || bytes_.size() - at < sizeof(Value)) {
            throw Malformed();
        }
        Value value;
        std::memcpy(&value, bytes_.data() + at, sizeof value);
        return value;
    }

    [[nodiscard]] std::string_view part(const Range& range) const {
        if (range.start > range.end || range.end > bytes_.size()) {
            throw Malformed();
        }
        return bytes_.substr(range.start, range.end - range.start);
    }

    // The table: the sizes of a filter and of the buckets, both, and then the items.
    void readItems(std::string_view table) {
        constexpr std::uint32_t filterMask = (1U << 27U) - 1;
        constexpr std::size_t word = 4;
        const auto start = static_cast<std::size_t>(table.data() - bytes_.data());
        const std::size_t filter = read<std::uint32_t>(start) & filterMask;
        const std::size_t buckets = read<std::uint32_t>(start + word);
        const std::size_t before = (2 + filter + buckets) * word;
        if (before > table.size()) {
            throw Malformed();
        }
        const std::size_t count = (table.size() - before) / sizeof(Item);
        items_.reserve(count);
        for (std::size_t index = 0; index < count; ++index) {
            items_.push_back(read<Item>(start + before + index * sizeof(Item)));
        }
    }

    [[nodiscard]] std::string pathOf(const Item& item) const {
        std::string path(part({item.keyStart, item.keyStart + item.keySize}));
        std::uint32_t parent = item.parent;
        for (int depth = 0; parent != noParent; ++depth) {
            if (parent >= items_.size() || depth == maxDepth) {
                throw Malformed();
            }
            const Item& folder = items_[parent];
            path.insert(0, part({folder.keyStart, folder.keyStart + folder.keySize}));
            parent = folder.parent;
            if (path.size() > maxPath) {
                throw Malformed();
            }
        }
        return path;
    }

    std::string_view bytes_;
    std::vector<Item> items_{};
};

} // namespace

std::optional<std::map<std::string, std::string>> dconfSettings(std::string_view bytes) {
    try {
        return Database(bytes).settings();
    } catch (const Malformed&) {
        return std::nullopt;
    }
}

} // namespace quorvel
