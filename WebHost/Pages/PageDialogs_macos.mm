#include "WebHost/Pages/PageDialogs_macos.h"

#include "Base/TerminalText.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Pages/PageText.h"

namespace quorvel {
namespace {

NSTextField* newEntry(const std::string& text) {
    constexpr CGFloat width = 300;
    constexpr CGFloat height = 24;
    NSTextField* const entry = [[NSTextField alloc] initWithFrame:{{0, 0}, {width, height}}];
    entry.stringValue = nsText(withoutUnsafe(text, longestDialogText));
    return entry;
}

NSAlert* newAlert(const std::string& host, const PageDialog& dialog, NSTextField* entry) {
    NSAlert* const alert = [[NSAlert alloc] init];
    alert.messageText = nsText(host.empty() ? "This page says" : withoutUnsafe(host) + " says");
    alert.informativeText = nsText(pageText(dialog.text, longestDialogText));
    [alert addButtonWithTitle:@"OK"];
    if (dialog.canBeRefused) {
        [alert addButtonWithTitle:@"Cancel"];
    }
    if (entry != nil) {
        alert.accessoryView = entry;
        alert.window.initialFirstResponder = entry;
    }
    return alert;
}

} // namespace

void showPageDialog(const std::shared_ptr<PageState>& state, const PageDialog& dialog) {
    QuorvelWindow* const window = state->window();
    if (window == nil || !state->dialogs().admits()) {
        dialog.answered(false, nil);
        return;
    }
    state->usedVisit();
    NSTextField* const entry = dialog.entry ? newEntry(*dialog.entry) : nil;
    NSAlert* const alert = newAlert(hostOf(state->address()), dialog, entry);
    alert.showsSuppressionButton = state->dialogs().offersToStop();
    alert.suppressionButton.title = @"Stop dialogs from this page";
    const auto answered = dialog.answered;
    const auto kept = state;
    [alert beginSheetModalForWindow:window.window
                  completionHandler:^(NSModalResponse response) {
                    if (alert.suppressionButton.state == NSControlStateValueOn) {
                        kept->dialogs().stop();
                    }
                    answered(response == NSAlertFirstButtonReturn, entry.stringValue);
                  }];
}

} // namespace quorvel
