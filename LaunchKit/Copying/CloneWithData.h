#pragma once

#include "LaunchKit/Changes/CloneCreation.h"
#include "LaunchKit/Copying/CopiedData.h"
#include "LaunchKit/Copying/CopyFindings.h"

#include <functional>
#include <vector>

namespace quorvel {

/// The data that a new clone begins with.
struct InitialData {
    std::vector<DataPart> parts{};
    FolderCopyOptions copy{};
    /// If set, called with what the user should know about the copy, before the clone is made.
    std::function<void(const CopyFindings&)> found{};
};

/// A clone that was made with copied data.
struct CloneWithData {
    MadeClone clone{};
    FolderCopyReport data{};
    CopyFindings findings{};
};

/// Returns the data folder that a clone made from the request would have. Throws `DataCopyError` if
/// it would have none, and `InvalidRequest` for an invalid name.
[[nodiscard]] std::filesystem::path dataFolderFor(const WrapperFactory::Request& request);

/// Makes a clone as `createClone` does, with copies of these folders as its data. At any moment
/// there is either nothing of it or all, except for what `CopiedData::removeUnfinished` removes.
/// Throws what `createClone`, `dataFolderFor` and `CopiedData` throw; nothing is made then.
[[nodiscard]] CloneWithData createCloneWithData(const WrapperFactory& factory,
                                                const WrapperFactory::Request& request,
                                                const RequestPermissions& permissions,
                                                const InitialData& initial,
                                                const WrapperFactory::Warning& warn = {});

} // namespace quorvel
