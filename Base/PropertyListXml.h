#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Property lists as XML allows them to be written, but not every parser reads them.
namespace quorvel::PropertyListXml {

/// The document as UTF-8, without a byte-order mark: what is UTF-16, by its mark or its first
/// character, is put into `room`, anything else comes back as it is. std::nullopt if it is
/// broken UTF-16.
[[nodiscard]] std::optional<std::string_view> asUtf8(std::string_view document, std::string& room);

/// The same document without what means nothing in a property list: prolog (with an internal
/// subset, none of whose entities is ever opened), comments, processing instructions, attributes.
/// std::nullopt if a tag does not end or stands where it can't.
[[nodiscard]] std::optional<std::string> withoutOrnaments(std::string_view document);

} // namespace quorvel::PropertyListXml
