#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quorvel {

/// The JSON object with nothing in it but the first member of each of these keys, its value in the
/// form that `form` gives it. What is left out may hold anything that the grammar allows, also what
/// no parser can represent: numbers without bound, half a surrogate, any depth. std::nullopt if
/// the text is not a JSON object.
[[nodiscard]] std::optional<std::string> withMembersOnly(
    std::string_view json, std::span<const std::string_view> keys,
    const std::function<std::string(std::string_view key, std::string_view value)>& form =
        [](auto /*key*/, auto value) { return std::string(value); });

} // namespace quorvel
