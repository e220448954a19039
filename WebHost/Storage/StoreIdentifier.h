#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// The stores in which the system, and not the data folder, keeps a clone's web data.
namespace quorvel {

/// Returns the data folder that a store was opened for last; an empty text if that is unknown.
using StoreOwner = std::function<std::string(const std::string& store)>;

/// Returns the UUID of the store of the clone with that data folder, from a file in it, so that it
/// goes with the folder and a new clone never finds what another one left. It is a new one if there
/// is none, or if the folder is a copy of one that is still there. Throws `PlatformError` if it
/// can't be kept.
[[nodiscard]] std::string storeIdentifier(const std::filesystem::path& home,
                                          const StoreOwner& ownerOf);

/// Returns those of the stores whose data folder was removed, or now has another store. Stores
/// about which this is uncertain are left out, such as one whose folder is on a disk that is not
/// connected.
[[nodiscard]] std::vector<std::string> abandonedStores(const std::vector<std::string>& stores,
                                                       const StoreOwner& ownerOf);

} // namespace quorvel
