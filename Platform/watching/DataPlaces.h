#pragma once

#include "Platform/processes/Environment.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// A folder of the user's where applications keep data.
struct DataPlace {
    enum class Kind { data, settings, containers };

    std::string folder{}; ///< absolute, without a trailing slash; need not exist
    Kind kind = Kind::data;
    /// Folders are watched under any name down to this level below `folder`.
    std::size_t levels = 1;
    bool hiddenOnly = false; ///< of the items in `folder`, only those whose names begin with "."
    /// All applications write to the same files, whose names don't say for whom.
    bool isShared = false;
};

/// The values of settings, as they are stored, by their names, which say whose they are.
using Settings = std::map<std::string, std::string>;

/// Returns the settings in a place that `isShared`, none if it is missing; std::nullopt if they
/// can't be read.
[[nodiscard]] std::optional<Settings> sharedSettings(const DataPlace& place);

/// Returns where applications that are not bundles keep the data of the user with this home, in a
/// session with this environment. If several contain a path, the first says what it is. Empty on
/// macOS.
[[nodiscard]] std::vector<DataPlace> dataPlaces(const std::string& home,
                                                const Environment& session);

} // namespace quorvel
