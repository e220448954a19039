#pragma once

#include "LaunchKit/Copying/CopyFindings.h"
#include "QuorvelApp/model/AppServices.h"
#include "QuorvelApp/model/BackgroundCopy.h"

#include <memory>

namespace quorvel {

/// The outcome of copying the original's data into a new clone.
struct CopiedSeed {
    FolderCopyReport data{};
    CopyFindings findings{};
};

/// Returns a function that makes clones which start with their original's data. It throws what
/// `seedFor` and `createCloneWithData` throw, and fills in `seed`, which must not be used before
/// it returns.
[[nodiscard]] AppServices::WrapperMaker
seededMaker(std::shared_ptr<const BackgroundCopy::Control> control,
            std::shared_ptr<CopiedSeed> seed);

} // namespace quorvel
