#pragma once

#include "LaunchKit/Records/EnumNames.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

/// How plain records are described for JSON: one table per record, one row per key. A row names a
/// member; how its value is read and written follows from the member's type.
namespace quorvel {

struct RecordType;

/// An enumeration in a record, read and written by the names of its cases.
struct EnumPlace {
    using Assign = bool (*)(void* value, std::string_view name);
    using Name = std::string_view (*)(const void* value);

    void* value;
    Assign assign; ///< returns false for an unknown name
    Name name;     ///< returns the name of the value's case
};

/// A record inside another one.
struct RecordPlace {
    void* record;
};

/// A member of a record in memory, by the JSON form of its value.
using Place = std::variant<bool*, std::string*, std::vector<std::string>*,
                           std::map<std::string, std::string>*, EnumPlace, RecordPlace>;

/// One row of a table.
struct FieldType {
    using HasValue = bool (*)(const void* record);
    using Locate = Place (*)(void* record);

    std::string_view key{};
    bool required = false;      ///< present and not null; other keys keep their default if missing
    HasValue present = nullptr; ///< returns whether it has a value to write
    Locate place = nullptr;     ///< makes an absent optional present
    const RecordType* nested = nullptr; ///< the type of a record inside
};

/// A record's table, with the keys in ascending order.
struct RecordType {
    using Reset = void (*)(void* record);

    std::string_view name{}; ///< as messages name it: "configuration"
    std::span<const FieldType> fields{};
    Reset reset = nullptr; ///< resets every member to its default
};

/// Specialize for a record with `static constexpr std::string_view name` and `static constexpr auto
/// fields`, a result of `sortedByKey`.
template<typename Record>
struct RecordTable;

template<typename Record>
inline constexpr RecordType recordType{RecordTable<Record>::name, RecordTable<Record>::fields,
                                       [](void* record) {
                                           std::destroy_at(static_cast<Record*>(record));
                                           std::construct_at(static_cast<Record*>(record));
                                       }};

namespace detail {

template<typename Value>
inline constexpr bool isOptional = false;
template<typename Value>
inline constexpr bool isOptional<std::optional<Value>> = true;

template<typename Value>
struct Required {
    using Type = Value;
};
template<typename Value>
struct Required<std::optional<Value>> {
    using Type = Value;
};

template<typename Value>
inline constexpr bool isPlain = std::is_same_v<Value, bool> || std::is_same_v<Value, std::string> ||
                                std::is_same_v<Value, std::vector<std::string>> ||
                                std::is_same_v<Value, std::map<std::string, std::string>>;

template<typename Value>
inline constexpr bool isNested = !isPlain<Value> && !std::is_enum_v<Value>;

/// Sets the enumeration at `value` to the case with that name. Returns false, and leaves it
/// unchanged, if there is no such case.
template<NamedEnum Case>
bool assignNamed(void* value, std::string_view name) {
    const std::optional<Case> known = caseNamed<Case>(name);
    if (known) {
        *static_cast<Case*>(value) = *known;
    }
    return known.has_value();
}

/// Returns the name of the case at `value`.
template<NamedEnum Case>
std::string_view nameOf(const void* value) {
    return rawString(*static_cast<const Case*>(value));
}

/// Returns the place of a member, by its type. An absent optional becomes present.
template<typename Value>
Place placeOf(Value& value) {
    if constexpr (isOptional<Value>) {
        return placeOf(value ? *value : value.emplace());
    } else if constexpr (isPlain<Value>) {
        return Place(std::in_place_type<Value*>, &value);
    } else if constexpr (std::is_enum_v<Value>) {
        return EnumPlace{&value, assignNamed<Value>, nameOf<Value>};
    } else {
        return RecordPlace{&value};
    }
}

template<typename Record, auto member>
using MemberOf = std::remove_reference_t<decltype(std::declval<Record&>().*member)>;

} // namespace detail

/// Makes the rows of a record's table: `Row<Record>::of<&Record::member>("key")`.
template<typename Record>
struct Row {
    /// Returns the row of a member that may be missing in a file.
    template<auto member>
    [[nodiscard]] static constexpr FieldType of(std::string_view key) {
        return row<member>(key, false);
    }

    /// Returns the row of a member that every file must have.
    template<auto member>
    [[nodiscard]] static constexpr FieldType required(std::string_view key) {
        return row<member>(key, true);
    }

private:
    template<auto member>
    static constexpr FieldType row(std::string_view key, bool required) {
        using Member = detail::MemberOf<Record, member>;
        using Value = typename detail::Required<Member>::Type;
        FieldType field{key, required};
        field.present = [](const void* record) {
            if constexpr (detail::isOptional<Member>) {
                return (static_cast<const Record*>(record)->*member).has_value();
            } else {
                return record != nullptr;
            }
        };
        field.place = [](void* record) {
            return detail::placeOf(static_cast<Record*>(record)->*member);
        };
        if constexpr (detail::isNested<Value>) {
            field.nested = &recordType<Value>;
        }
        return field;
    }
};

/// Returns the rows in ascending order of their keys, as `RecordType` requires. Does not compile if
/// a key appears twice.
template<std::size_t count>
[[nodiscard]] consteval std::array<FieldType, count>
sortedByKey(std::array<FieldType, count> rows) {
    static_assert(count <= 64, "the reader keeps one bit per key");
    std::sort(rows.begin(), rows.end(),
              [](const FieldType& a, const FieldType& b) { return a.key < b.key; });
    for (std::size_t index = 1; index < count; ++index) {
        if (rows[index - 1].key == rows[index].key) {
            throw "a key appears twice"; // not a constant expression, so an error here
        }
    }
    return rows;
}

} // namespace quorvel
