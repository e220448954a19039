#pragma once

#include "CommandLine/Surroundings.h"
#include "LaunchKit/IconLabel.h"
#include "LaunchKit/Icons/IcnsFile.h"

#include <string>
#include <vector>

namespace quorvel {

/// What the options of `quorvelctl icon` set.
struct IconOptions {
    std::string source{};
    bool list = false; ///< print what the source holds; the rest is then ignored
    std::string label{};
    std::string color = "#FFFFFF";
    IconLabel::Position position = IconLabel::Position::bottom;
    std::string output{};
};

/// Prints the entries of the container `source`, or draws the label onto it and prints the path of
/// the file that was written. Throws `UsageError` (no label or no output file),
/// `CommandError` (no icon container) or `IconComposer::ComposeError`.
void iconCommand(const Surroundings& with, const IconOptions& options, bool json);

/// Returns one line per entry: type, encoding and size in pixels.
[[nodiscard]] std::string listing(const std::vector<IcnsEntry>& entries);

} // namespace quorvel
