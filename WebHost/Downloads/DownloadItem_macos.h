#pragma once

#include "WebHost/Downloads/StagedDownload.h"

#import <WebKit/WebKit.h>

#include <filesystem>

namespace quorvel {

/// A running download.
struct DownloadItem {
    DownloadItem(WKDownload* running, StagedDownload stage)
        : download(running), staged(std::move(stage)) {}

    /// Returns where the engine is to write the file.
    [[nodiscard]] NSURL* file() const;
    /// Gives the complete file its name, marked as one from the web. Returns its path. Throws
    /// `Error` if it can't be marked, and `PlatformError` if it can't be renamed.
    [[nodiscard]] std::filesystem::path publish();

    WKDownload* download;
    StagedDownload staged;
};

} // namespace quorvel
