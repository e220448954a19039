#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns the JSON object reduced to the first member with each of these keys, its value as
/// returned by `form`. The members left out may be anything that the grammar allows, even what no
/// parser can represent: numbers of any size, unpaired surrogates, any depth. Returns std::nullopt
/// if the text is not a JSON object.
[[nodiscard]] std::optional<std::string> withMembersOnly(
    std::string_view json, std::span<const std::string_view> keys,
    const std::function<std::string(std::string_view key, std::string_view value)>& form =
        [](auto /*key*/, auto value) { return std::string(value); });

} // namespace quorvel
