#pragma once

#include "Presentation/Translation.h"

#include <string>

namespace quorvel {

/// What the user should know before a running clone is deleted.
struct DeletionWarning {
    std::string title{}; ///< without a full stop
    std::string text{};
};

/// Returns the warning about the running clone `name`, whose data is deleted, too, if
/// `includingData`.
[[nodiscard]] DeletionWarning deletionWarning(const std::string& name, bool includingData,
                                              const Translate& translate);

} // namespace quorvel
