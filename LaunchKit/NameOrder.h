#pragma once

#include "Base/Text.h"
#include "Platform/desktop/UserLocale.h"

#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace quorvel {

/// Returns the records in the order of the names that `name` returns for them, by the user's locale
/// and ignoring case. Records with equal names keep their order.
template<typename Record, typename Projection>
[[nodiscard]] std::vector<Record> sortedByName(std::vector<Record> records, Projection name) {
    std::vector<std::string_view> names;
    names.reserve(records.size());
    for (const Record& record : records) {
        names.push_back(std::invoke(name, record));
    }
    std::vector<Record> sorted;
    sorted.reserve(records.size());
    for (const std::size_t index : Text::sortedOrder(names, UserLocale::forOrder())) {
        sorted.push_back(std::move(records[index]));
    }
    return sorted;
}

} // namespace quorvel
