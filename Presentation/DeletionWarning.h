#pragma once

#include "Presentation/Translation.h"

#include <string>

namespace quorvel {

/// Why the data of a running clone should not be deleted.
struct DeletionWarning {
    std::string title{}; ///< without a full stop
    std::string text{};
};

/// Returns the warning about the running clone `name`.
[[nodiscard]] DeletionWarning deletionWarning(const std::string& name,
                                              const Translate& translate = inEnglish);

} // namespace quorvel
