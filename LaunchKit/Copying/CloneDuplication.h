#pragma once

#include "LaunchKit/Changes/CloneCreation.h"
#include "LaunchKit/Copying/CopiedData.h"
#include "LaunchKit/Copying/CopyFindings.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"

#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// How a clone is duplicated.
struct DuplicationOptions {
    std::string name{};
    bool withData = false;
    FolderCopyOptions copy{};
    std::function<void(const CopyFindings&)> found{}; ///< see `InitialData`
    WrapperFactory::Warning warn{};
};

/// The duplicate of a clone.
struct DuplicatedClone {
    MadeClone clone{};
    std::optional<FolderCopyReport> data{}; ///< absent if no data was copied
    CopyFindings findings{};
};

/// Returns the request for a duplicate, which has the options, the icon and the folder of the
/// original, and what the user put into its wrapper, but its own identifier and data folder. Throws
/// `InvalidRequest` for an invalid name.
[[nodiscard]] WrapperFactory::Request duplicateRequest(const InstanceRegistry& registry,
                                                       const InstanceRecord& original,
                                                       const std::string& name);

/// Makes a second clone like `original`, with a copy of its data or an empty data folder. Never
/// replaces a clone. Throws what `createCloneWithData` throws, and `HomeInUse` if the data is to be
/// copied while something of the clone runs. Blocks. Any thread.
[[nodiscard]] DuplicatedClone duplicateClone(const WrapperFactory& factory,
                                             const InstanceRegistry& registry,
                                             const InstanceRecord& original,
                                             const DuplicationOptions& options);

} // namespace quorvel
