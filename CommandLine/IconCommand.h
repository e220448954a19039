#pragma once

#include "CommandLine/CommandContext.h"
#include "LaunchKit/IconLabel.h"
#include "LaunchKit/Icons/IcnsFile.h"

#include <string>
#include <vector>

namespace quorvel {

/// The options of `quorvelctl icon`.
struct IconOptions {
    std::string source{};
    bool list = false; ///< print what the source contains; the rest is then ignored
    std::string label{};
    std::string color = "#FFFFFF";
    IconLabel::Position position = IconLabel::Position::bottom;
    std::string output{};
};

/// Prints the entries of the container `source`, or draws the label onto it and prints the path of
/// the written file. Throws `UsageError` (no label or output file), `CommandError` (not
/// an icon container) or `IconComposer::ComposeError`.
void iconCommand(const CommandContext& context, const IconOptions& options, bool json);

/// Returns one line per entry: type, encoding and size in pixels.
[[nodiscard]] std::string listing(const std::vector<IcnsEntry>& entries);

} // namespace quorvel
