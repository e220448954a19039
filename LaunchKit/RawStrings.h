#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace quorvel {

/// The strings that stand for an enumeration's cases in files, in the order of the cases.
template<typename Case, std::size_t count>
using RawStrings = std::array<std::pair<Case, std::string_view>, count>;

template<typename Case, std::size_t count>
[[nodiscard]] constexpr std::string_view rawStringIn(const RawStrings<Case, count>& table,
                                                     Case value) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&](const auto& entry) { return entry.first == value; });
    return row == table.end() ? std::string_view{} : row->second;
}

template<typename Case, std::size_t count>
[[nodiscard]] constexpr std::optional<Case> caseIn(const RawStrings<Case, count>& table,
                                                   std::string_view rawString) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&](const auto& entry) { return entry.second == rawString; });
    return row == table.end() ? std::nullopt : std::optional(row->first);
}

} // namespace quorvel
