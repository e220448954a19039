#pragma once

#include "CommandLine/CommandContext.h"

namespace quorvel {

/// A bar on the error stream, if the output is a terminal. The destructor erases it.
class ProgressBar {
public:
    /// `context` must outlive the bar.
    explicit ProgressBar(const CommandContext& context) : context_(context) {}
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar() { erase(); }

    /// Draws the bar, filled to `fraction` (0 to 1), over the current line.
    void show(double fraction);

    /// Removes the bar from the terminal, if it is shown.
    void erase();

private:
    const CommandContext& context_;
    bool isShown_ = false;
};

} // namespace quorvel
