#include "WebHost/Links/OutsideOpener_macos.h"

#include "Base/BundleLayout.h"
#include "LaunchKit/Launching/LinkOpener.h"
#include "LinkDoor/LinkAddress.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"

#import <AppKit/AppKit.h>

namespace quorvel {

OutsideOpener::OutsideOpener(const std::optional<std::string>& links)
    : wrapper_(bundleOfExecutable(linkOpenerProgram(links))) {}

bool OutsideOpener::open(const std::string& address) const {
    @autoreleasepool {
        NSURL* const opened = [NSURL URLWithString:nsText(address)];
        if (opened == nil || schemeOf(address).empty() || address.size() > longestLinkAddress) {
            return false;
        }
        NSWorkspace* const workspace = NSWorkspace.sharedWorkspace;
        if (wrapper_.empty() || !hasLinkScheme(address)) {
            return [workspace openURL:opened] == YES;
        }
        NSURL* const clone = [NSURL fileURLWithFileSystemRepresentation:wrapper_.c_str()
                                                            isDirectory:YES
                                                          relativeToURL:nil];
        [workspace openURLs:@[ opened ]
            withApplicationAtURL:clone
                   configuration:[NSWorkspaceOpenConfiguration configuration]
               completionHandler:nil];
        return true;
    }
}

} // namespace quorvel
