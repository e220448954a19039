#pragma once

#import <WebKit/WebKit.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel {

struct DownloadCallbacks {
    /// Asks whether a download that soon follows another may start. Returns false if it can't ask.
    std::function<bool(const std::string& name, std::function<void(bool)> answered)> ask{};
    /// Reports the progress of all running downloads together, from 0 to 1, or std::nullopt if
    /// none runs. The text is for the user.
    std::function<void(const std::string& text, std::optional<double> progress)> changed{};
};

} // namespace quorvel

/// The downloads of all pages of a clone, whose files go to a folder. `mark` names this clone.
@interface QuorvelDownloadList : NSObject <WKDownloadDelegate>
- (nonnull instancetype)initWithFolder:(std::filesystem::path)folder
                                  mark:(std::string)mark
                             callbacks:(quorvel::DownloadCallbacks)callbacks;
@property(nonatomic, readonly) BOOL isRunning;
/// Cancels the running downloads and removes their files.
- (void)cancelAll;
@end
