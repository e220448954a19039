#pragma once

#include "Base/PropertyList.h"

#include <optional>
#include <string>

namespace quorvel {

/// Reads a property list from a file, see `PropertyList::parseDictionary`. Returns std::nullopt if
/// the file can't be read as well. `keys` limits what is returned of the top level.
[[nodiscard]] std::optional<PropertyListDictionary> readPropertyList(const std::string& file,
                                                                     PropertyList::Keys keys = {});

} // namespace quorvel
