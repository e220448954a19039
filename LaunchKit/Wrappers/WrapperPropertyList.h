#pragma once

#include "Base/PropertyList.h"
#include "LaunchKit/WrapperGenerator.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The property list of a wrapper.
namespace quorvel::WrapperPropertyList {

/// Returns the whole dictionary. `iconFile` is the icon's name if one was installed.
[[nodiscard]] PropertyListDictionary infoPlist(const WrapperGenerator::Options& options,
                                               const std::optional<std::string>& iconFile);

/// Throws `std::invalid_argument` if `infoPlist` would contain a text that can't be written.
void requireWritableTexts(const InstanceConfig& config);

/// Returns `wanted` with the user's changes of an older list: where `found` differs from what was
/// `written`, unless `wanted` differs from that, too. Appends the names of the entries to `kept`,
/// as "KEY in Info.plist". Throws `Error` if such an entry can't be written again.
[[nodiscard]] PropertyListDictionary withUsersChanges(PropertyListDictionary wanted,
                                                      const PropertyListDictionary& written,
                                                      const PropertyListDictionary& found,
                                                      std::vector<std::string>& kept);

/// Returns what a free text means in a property list: a boolean, a whole number, or the text
/// itself.
[[nodiscard]] PropertyListValue coercePlistValue(std::string_view text);

} // namespace quorvel::WrapperPropertyList
