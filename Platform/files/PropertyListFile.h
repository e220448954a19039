#pragma once

#include "Base/PropertyList.h"

#include <optional>
#include <string>

namespace quorvel {

/// Reads a property list from a file. Returns std::nullopt if the file is unreadable or
/// `PropertyList::parseDictionary` rejects it. `keys` limits the top-level keys that are returned.
[[nodiscard]] std::optional<PropertyListDictionary> readPropertyList(const std::string& file,
                                                                     PropertyList::Keys keys = {});

} // namespace quorvel
