#pragma once

#include "Base/PropertyList.h"

#include <string>
#include <string_view>

/// Shortens documents before they are parsed, since the parser spends most of its time on values
/// that nobody asked for.
namespace quorvel::PropertyListPruning {

/// Returns the XML document without the top-level values of other keys. Leaves out only values that
/// are written so plainly that any parser accepts them; from the first other one on, everything
/// stays as it is.
[[nodiscard]] std::string pruned(std::string_view document, PropertyList::Keys keys);

} // namespace quorvel::PropertyListPruning
