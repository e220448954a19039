#include "Platform/desktop/FileOrFolderPanel.h"

#import <AppKit/AppKit.h>

namespace quorvel {
namespace {

std::optional<std::filesystem::path> choose(const std::string& prompt) {
    @autoreleasepool {
        NSOpenPanel* panel = [NSOpenPanel openPanel];
        panel.canChooseFiles = YES;
        panel.canChooseDirectories = YES;
        panel.allowsMultipleSelection = NO;
        NSString* text = [NSString stringWithUTF8String:prompt.c_str()];
        if (text != nil) {
            panel.prompt = text;
        }
        if ([panel runModal] != NSModalResponseOK || panel.URL == nil) {
            return std::nullopt;
        }
        return panel.URL.fileSystemRepresentation;
    }
}

} // namespace

FileOrFolderPanel systemFileOrFolderPanel() { return choose; }

} // namespace quorvel
