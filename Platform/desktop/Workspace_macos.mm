#include "Platform/desktop/Workspace.h"

#import <AppKit/AppKit.h>
#include <dispatch/dispatch.h>

namespace quorvel {
namespace {

namespace fs = std::filesystem;

NSURL* fileURL(const fs::path& path, BOOL isFolder) {
    return [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                          isDirectory:isFolder
                                        relativeToURL:nil];
}

std::string textOf(NSString* text) {
    const char* bytes = text.UTF8String;
    return bytes == nullptr ? std::string() : std::string(bytes);
}

PlatformError openingFailure(NSError* error, const fs::path& bundle) {
    return PlatformError::withDescription(textOf(error.localizedDescription), bundle);
}

// The list of running applications is updated only by the main run loop. In a program that does not
// run one, it is run here.
void pumpMainRunLoop() {
    if (!NSThread.isMainThread) {
        return;
    }
    CFStringRef mode = CFRunLoopCopyCurrentMode(CFRunLoopGetMain());
    if (mode != nullptr) {
        CFRelease(mode);
        return;
    }
    while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
    }
}

fs::path resolved(NSURL* url) {
    if (url == nil) {
        return {};
    }
    const fs::path path = url.fileSystemRepresentation;
    std::error_code code;
    fs::path real = fs::canonical(path, code);
    return code ? path : real;
}

void selectInFinder(const fs::path& item) {
    @autoreleasepool {
        [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ fileURL(item, NO) ]];
    }
}

class MacWorkspace final : public Workspace {
  public:
    // The completion is called on one of the system's queues.
    void openApplication(const fs::path& bundle, bool activates, Completion completion) override {
        @autoreleasepool {
            NSWorkspaceOpenConfiguration* configuration =
                [NSWorkspaceOpenConfiguration configuration];
            configuration.activates = activates;
            const fs::path opened = bundle;
            [NSWorkspace.sharedWorkspace
                openApplicationAtURL:fileURL(bundle, YES)
                       configuration:configuration
                   completionHandler:^(NSRunningApplication* /*application*/, NSError* error) {
                     completion(error == nil ? std::nullopt
                                             : std::optional(openingFailure(error, opened)));
                   }];
        }
    }

    // Must be called on the main thread. Does nothing if the item does not exist.
    void reveal(const fs::path& item) override {
        if (NSThread.isMainThread) {
            selectInFinder(item);
            return;
        }
        const fs::path shown = item;
        dispatch_async(dispatch_get_main_queue(), ^{
          selectInFinder(shown);
        });
    }

    RunningApplications runningApplications() override {
        @autoreleasepool {
            pumpMainRunLoop();
            std::vector<RunningApplication> found;
            for (NSRunningApplication* application in NSWorkspace.sharedWorkspace
                     .runningApplications) {
                NSString* identifier = application.bundleIdentifier;
                if (identifier != nil && !application.terminated) {
                    found.push_back({textOf(identifier), resolved(application.bundleURL),
                                     application.processIdentifier});
                }
            }
            return RunningApplications(std::move(found));
        }
    }

    OperatingSystemVersion operatingSystemVersion() const override {
        const NSOperatingSystemVersion version = NSProcessInfo.processInfo.operatingSystemVersion;
        return {static_cast<int>(version.majorVersion), static_cast<int>(version.minorVersion), {}};
    }
};

} // namespace

std::unique_ptr<Workspace> makeSystemWorkspace(ActivationTokenSource /*tokens*/) {
    return std::make_unique<MacWorkspace>();
}

} // namespace quorvel
