// quorvel-status-item CLONE PID full|symbolic: shows the clone at that path, whose runner is PID,
// its parent, in the menu bar. Ends with its parent.
#include "Platform/processes/ProcessFamily.h"
#include "Platform/statusitem/StatusItem_macos.h"

#include <dispatch/dispatch.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

NSString* textOf(const fs::path& text) {
    NSString* const made = [NSString stringWithUTF8String:text.c_str()];
    return made == nil ? @"" : made;
}

// The first application among what the runner started; its windows are the clone's.
NSRunningApplication* applicationOf(pid_t runner) {
    for (const quorvel::ProcessIdentity& process : quorvel::cloneProcesses(runner)) {
        NSRunningApplication* const found =
            [NSRunningApplication runningApplicationWithProcessIdentifier:process.pid];
        // This program is another kind.
        if (found != nil && found.activationPolicy == NSApplicationActivationPolicyRegular) {
            return found;
        }
    }
    return nil;
}

// The user has clicked on this program, which passes that on.
void activate(NSRunningApplication* application) {
    [application unhide];
    if (@available(macOS 14.0, *)) {
        [NSApp yieldActivationToApplication:application];
        [application activateFromApplication:NSRunningApplication.currentApplication
                                     options:NSApplicationActivateAllWindows];
    } else {
        [application activateWithOptions:NSApplicationActivateAllWindows |
                                         NSApplicationActivateIgnoringOtherApps];
    }
}

void showClone(NSURL* clone, pid_t runner) {
    NSRunningApplication* const application = applicationOf(runner);
    if (application != nil) {
        activate(application);
    } else {
        [NSWorkspace.sharedWorkspace
            openApplicationAtURL:clone
                   configuration:[NSWorkspaceOpenConfiguration configuration]
               completionHandler:nil];
    }
}

// The source must be kept.
dispatch_source_t newEndOf(pid_t process) {
    dispatch_source_t source =
        dispatch_source_create(DISPATCH_SOURCE_TYPE_PROC, static_cast<std::uintptr_t>(process),
                               DISPATCH_PROC_EXIT, dispatch_get_main_queue());
    dispatch_source_set_event_handler(source, ^{
      std::_Exit(0);
    });
    dispatch_resume(source);
    return source;
}

void run(const fs::path& clone, pid_t runner, bool isTemplate) {
    NSApplication* const application = [NSApplication sharedApplication];
    [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
    NSURL* const wrapper = [NSURL fileURLWithFileSystemRepresentation:clone.c_str()
                                                          isDirectory:YES
                                                        relativeToURL:nil];
    NS_VALID_UNTIL_END_OF_SCOPE dispatch_source_t const end = newEndOf(runner);
    NS_VALID_UNTIL_END_OF_SCOPE QuorvelStatusItem* const item =
        [[QuorvelStatusItem alloc] initWithName:textOf(clone.stem())
            icon:[NSWorkspace.sharedWorkspace iconForFile:textOf(clone)]
            template:isTemplate ? YES : NO
            show:[wrapper, runner] { showClone(wrapper, runner); }
            quit:[runner] { (void)::kill(runner, SIGTERM); }];
    if (::getppid() == runner) { // it may have ended before the request above
        [application run];
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        return 2;
    }
    @autoreleasepool {
        run(argv[1], static_cast<pid_t>(std::strtol(argv[2], nullptr, 10)),
            std::string_view(argv[3]) == "symbolic");
    }
    return 0;
}
