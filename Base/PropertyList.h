#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quorvel {

/// One value of a property list. Dates, data and identifiers, which nothing here looks at, are read
/// as `std::monostate`, which can't be written.
struct PropertyListValue;
using PropertyListArray = std::vector<PropertyListValue>;
using PropertyListDictionary = std::map<std::string, PropertyListValue>;

struct PropertyListValue {
    using Storage = std::variant<std::monostate, bool, std::int64_t, double, std::string,
                                 PropertyListArray, PropertyListDictionary>;
    Storage storage{};

    PropertyListValue() = default;
    PropertyListValue(bool value) : storage(value) {}
    PropertyListValue(std::int64_t value) : storage(value) {}
    PropertyListValue(double value) : storage(value) {}
    PropertyListValue(std::string value) : storage(std::move(value)) {}
    PropertyListValue(const char* value) : storage(std::string(value)) {}
    PropertyListValue(PropertyListArray value);
    PropertyListValue(PropertyListDictionary value);

    bool operator==(const PropertyListValue&) const = default;

    /// The text when this is a string, else null. Valid as long as this value.
    [[nodiscard]] const std::string* string() const { return std::get_if<std::string>(&storage); }
    /// True or false for a boolean and for a number that is exactly 1 or 0; else std::nullopt.
    [[nodiscard]] std::optional<bool> boolean() const;
};

namespace PropertyList {

/// The largest file that is read.
inline constexpr std::size_t maximumFileSize = std::size_t{8} << 20U;

/// The keys that are wanted of a dictionary's top level; none of them means all. The rest costs
/// less when it is not wanted.
using Keys = std::initializer_list<const char*>;

/// Parses an XML (UTF-8 or UTF-16) or binary property list whose root is a dictionary. Returns
/// std::nullopt if it is over `maximumFileSize`, is malformed, uses entities of its own, nests
/// deeper than 256 levels or would take more than 64 MiB of memory. A string that is not valid
/// UTF-8 is taken as ISO 8859-1. Only one large list is parsed at a time.
[[nodiscard]] std::optional<PropertyListDictionary> parseDictionary(std::string_view bytes,
                                                                    Keys keys = {});

/// The text of the string under `key`; std::nullopt if the key is missing or holds no string.
[[nodiscard]] std::optional<std::string> stringFor(const PropertyListDictionary& dictionary,
                                                   const std::string& key);

/// Throws `std::invalid_argument` if the text holds what XML 1.0 can't carry, not even escaped:
/// most control characters, U+FFFE, U+FFFF, bytes that are not UTF-8.
void requireWritable(const std::string& text);

/// The XML document, version 1.0. Throws `std::invalid_argument` if a text is not writable.
[[nodiscard]] std::string xml(const PropertyListDictionary& dictionary);

} // namespace PropertyList
} // namespace quorvel
