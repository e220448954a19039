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

/// One value of a property list. Dates, data and identifiers, which nothing here uses, are read as
/// `std::monostate`, which can't be written.
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

    /// Returns the text if this is a string, otherwise null. Valid as long as this value is
    /// unchanged.
    [[nodiscard]] const std::string* string() const { return std::get_if<std::string>(&storage); }
    /// Returns true or false for a boolean and for a number that is exactly 1 or 0, otherwise
    /// std::nullopt.
    [[nodiscard]] std::optional<bool> boolean() const;
};

namespace PropertyList {

/// The largest list that is read, in bytes.
inline constexpr std::size_t maximumFileSize = std::size_t{8} << 20U;

/// The top-level keys to return; empty for all. Others are skipped, which saves converting them.
using Keys = std::initializer_list<const char*>;

/// Parses an XML (UTF-8 or UTF-16) or binary property list whose root is a dictionary. Returns
/// std::nullopt if it is larger than `maximumFileSize`, is malformed, defines entities, or exceeds
/// `PropertyListLimits`. A string that is not valid UTF-8 is read as ISO 8859-1. Only one large
/// list is parsed at a time.
[[nodiscard]] std::optional<PropertyListDictionary> parseDictionary(std::string_view bytes,
                                                                    Keys keys = {});

/// Returns the string under `key`, or std::nullopt if the key is missing or its value is not a
/// string.
[[nodiscard]] std::optional<std::string> stringFor(const PropertyListDictionary& dictionary,
                                                   const std::string& key);

/// Throws `std::invalid_argument` if the text contains something that XML 1.0 can't represent, even
/// escaped: most control characters, U+FFFE, U+FFFF, bytes that are not UTF-8.
void requireWritable(const std::string& text);

/// Returns the dictionary as an XML document. Throws `std::invalid_argument` if it contains an
/// empty value or a text that `requireWritable` rejects.
[[nodiscard]] std::string xml(const PropertyListDictionary& dictionary);

} // namespace PropertyList
} // namespace quorvel
