#pragma once

#include "WebHost/Downloads/StagedDownload.h"

#import <WebKit/WebKit.h>

#include <string>

namespace quorvel {

/// A running download.
struct DownloadItem {
    DownloadItem(WKDownload* running, StagedDownload stage)
        : download(running), staged(std::move(stage)) {}

    /// Returns where the engine is to write the file.
    [[nodiscard]] NSURL* file() const;
    /// Gives the complete file its name, marked as one from the web. Returns what to tell the user.
    [[nodiscard]] std::string publish();

    WKDownload* download;
    StagedDownload staged;
};

} // namespace quorvel
