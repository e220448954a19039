#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace quorvel {

/// One case of an enumeration and the name it has in files.
template<typename Case>
using EnumName = std::pair<Case, std::string_view>;

namespace detail {

/// Returns whether `value` is one of its enumeration's cases, which the compiler writes by name;
/// any other value it writes as a number.
template<auto value>
constexpr bool isCase() {
    const std::string_view signature = __PRETTY_FUNCTION__;
    const std::size_t start = signature.find_last_of("=)", signature.size() - 1);
    const std::size_t at = signature.find_first_not_of(" )", start + 1);
    const char first = at == std::string_view::npos ? '-' : signature[at];
    return first != '-' && (first < '0' || first > '9');
}

/// Returns how many cases follow each other from `count` on, plus `count`.
template<typename Case, std::size_t count = 0>
constexpr std::size_t countCases() {
    if constexpr (isCase<static_cast<Case>(count)>()) {
        return countCases<Case, count + 1>();
    } else {
        return count;
    }
}

} // namespace detail

/// The number of an enumeration's cases, which must be numbered from 0 without a gap.
template<typename Case>
inline constexpr std::size_t caseCount = detail::countCases<Case>();

/// Returns the names of all cases, in the order of the cases. Does not compile if one is missing,
/// out of order or has no name.
template<typename Case, std::size_t count>
[[nodiscard]] consteval std::array<std::string_view, count>
namesOfAllCases(const EnumName<Case> (&rows)[count]) {
    static_assert(count == caseCount<Case>, "every case needs exactly one name");
    std::array<std::string_view, count> names{};
    for (std::size_t index = 0; index < count; ++index) {
        if (rows[index].first != static_cast<Case>(index) || rows[index].second.empty()) {
            throw "the names must be in the order of the cases"; // not a constant expression, so an
                                                                 // error here
        }
        names[index] = rows[index].second;
    }
    return names;
}

/// The names of an enumeration's cases in files and on the command line, in the order of the cases.
/// Specialize it beside the enumeration, with `namesOfAllCases`.
template<typename Case>
inline constexpr std::nullptr_t enumNames{};

template<typename Case>
concept NamedEnum = requires {
    enumNames<Case>.size();
};

/// Returns all cases, in their order.
template<NamedEnum Case>
[[nodiscard]] constexpr std::array<Case, caseCount<Case>> allCases() {
    std::array<Case, caseCount<Case>> cases{};
    for (std::size_t index = 0; index < cases.size(); ++index) {
        cases[index] = static_cast<Case>(index);
    }
    return cases;
}

/// Returns the name of a case.
template<NamedEnum Case>
[[nodiscard]] constexpr std::string_view rawString(Case value) {
    return enumNames<Case>.at(static_cast<std::size_t>(value));
}

/// Returns the case with that name; std::nullopt for any other text.
template<NamedEnum Case>
[[nodiscard]] constexpr std::optional<Case> caseNamed(std::string_view name) {
    for (std::size_t index = 0; index < enumNames<Case>.size(); ++index) {
        if (enumNames<Case>[index] == name) {
            return static_cast<Case>(index);
        }
    }
    return std::nullopt;
}

} // namespace quorvel
