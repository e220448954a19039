#pragma once

#include "Base/Text.h"
#include "Platform/desktop/UserLocale.h"

#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace quorvel {

/// Moves every record to its place: the one at `order[i]` to `i`. Follows the cycles of the
/// permutation, since a second list of thousands of large records costs as much as sorting them.
template<typename Record>
void permute(std::vector<Record>& records, std::vector<std::size_t> order) {
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (order[start] == start) {
            continue;
        }
        Record first = std::move(records[start]);
        std::size_t place = start;
        while (order[place] != start) {
            const std::size_t next = std::exchange(order[place], place);
            records[place] = std::move(records[next]);
            place = next;
        }
        records[place] = std::move(first);
        order[place] = place;
    }
}

/// Returns the records in the order of the names that `name` returns for them, by the user's locale
/// and ignoring case. Records with equal names keep their order.
template<typename Record, typename Projection>
[[nodiscard]] std::vector<Record> sortedByName(std::vector<Record> records, Projection name) {
    std::vector<std::string_view> names;
    names.reserve(records.size());
    for (const Record& record : records) {
        names.push_back(std::invoke(name, record));
    }
    permute(records, Text::sortedOrder(names, UserLocale::forOrder()));
    return records;
}

} // namespace quorvel
