#pragma once

#include "WebHost/Pages/PageState_macos.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quorvel {

/// A dialog that a page's script opens.
struct PageDialog {
    std::string text{};
    bool canBeRefused = false;
    std::optional<std::string> entry{}; ///< what is there at first, if a text is asked for
    /// Called once with whether the user agreed, and with the text.
    std::function<void(bool isAgreed, NSString* _Nullable entered)> answered{};
};

/// Shows the dialog on the page's window: as plain text, with the page's host, and only so often.
void showPageDialog(const std::shared_ptr<PageState>& state, const PageDialog& dialog);

} // namespace quorvel
