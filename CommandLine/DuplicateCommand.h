#pragma once

#include "CommandLine/CommandContext.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// What the arguments of `quorvelctl duplicate` set.
struct DuplicateOptions {
    std::string name{};
    std::optional<std::filesystem::path> runner{}; ///< absent: the one that is found
    bool withData = false;
};

/// Makes a second clone like the first and prints its path; what was copied and what to know about
/// it goes to the error stream.
void duplicateCommand(const CommandContext& context, const std::string& clone,
                      const DuplicateOptions& options, bool json);

} // namespace quorvel
