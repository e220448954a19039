#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Simplifies property lists that are valid XML but beyond what the parser reads.
namespace quorvel::PropertyListXml {

/// Returns the document as UTF-8, without a byte-order mark. UTF-16, recognized by its mark or its
/// first character, is converted into `buffer`; anything else is returned unchanged. Returns
/// std::nullopt if the document is malformed UTF-16.
[[nodiscard]] std::optional<std::string_view> asUtf8(std::string_view document,
                                                     std::string& buffer);

/// Returns the document without the parts that have no meaning in a property list: the prolog (with
/// an internal subset, whose entities are never expanded), comments, processing instructions and
/// attributes. Returns std::nullopt if a tag is unterminated or misplaced.
[[nodiscard]] std::optional<std::string> simplified(std::string_view document);

} // namespace quorvel::PropertyListXml
