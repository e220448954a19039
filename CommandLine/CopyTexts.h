#pragma once

#include "CommandLine/ProgressBar.h"
#include "LaunchKit/Copying/CopyFindings.h"
#include "Platform/copying/FolderCopy.h"
#include "Platform/processes/InterruptFlag.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

/// How commands show the copying of data.
namespace quorvel {

/// Shows a `ProgressBar` while data is copied, and lets an interrupt cancel the copy.
class CopyBar {
public:
    explicit CopyBar(const CommandContext& context) : bar_(context) {}

    /// Returns the options for the copy; valid as long as this is.
    [[nodiscard]] FolderCopyOptions options();

    /// Removes the bar from the terminal, if it is shown.
    void erase() { bar_.erase(); }

    /// Ends this program as the interrupt would have, if there was one.
    void deliverInterrupt() { interrupt_.deliver(); }

private:
    ProgressBar bar_;
    InterruptFlag interrupt_{};
};

/// Returns how the data was copied and how many bytes that took, as a line.
[[nodiscard]] std::string copyLine(const FolderCopyReport& report);

/// Returns the `keyringSentence` as a line; empty if there is nothing to warn of.
[[nodiscard]] std::string keyringLine(const CopyFindings& findings);

/// Returns which copied files name the original's data folder, as lines; empty if none does.
[[nodiscard]] std::string findingLines(const CopyFindings& findings);

/// Returns the report and the findings for scripts.
[[nodiscard]] nlohmann::json jsonForm(const FolderCopyReport& report, const CopyFindings& findings);

} // namespace quorvel
