#pragma once

#include "WebHost/Downloads/LostDownloads.h"
#include "WebHost/Downloads/StagedDownload.h"
#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Pages/FloodCaps.h"

#include <webkit/webkit.h>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace quorvel {

/// The downloads of all pages of a clone.
class DownloadList {
public:
    struct Callbacks {
        /// Asks whether a download that soon follows another may start. Returns false if it can't
        /// ask.
        std::function<bool(const std::string& name, std::function<void(bool)> answered)> ask{};
        /// Reports the progress of all running downloads together, from 0 to 1, or std::nullopt if
        /// none runs. The text is for the user.
        std::function<void(const std::string& text, std::optional<double> progress)> changed{};
    };

    /// Takes over the session's downloads, whose files go to `folder`. `mark` names this clone.
    DownloadList(WebKitNetworkSession* session, std::filesystem::path folder, std::string mark,
                 Callbacks callbacks);
    DownloadList(const DownloadList&) = delete;
    DownloadList& operator=(const DownloadList&) = delete;
    /// Does as `cancelAll`.
    ~DownloadList();

    /// Cancels the running downloads and removes their files.
    void cancelAll();
    [[nodiscard]] bool isRunning() const { return running() > 0; }

private:
    struct Item {
        ObjectRef<WebKitDownload> download;
        std::string suggested{};
        std::optional<StagedDownload> stage{};
    };

    static void started(WebKitNetworkSession* session, WebKitDownload* download, gpointer self);
    static gboolean nameWanted(WebKitDownload* download, char* suggested, gpointer self);
    static void received(WebKitDownload* download, guint64 length, gpointer self);
    static void failed(WebKitDownload* download, GError* error, gpointer self);
    static void finished(WebKitDownload* download, gpointer self);

    void begin(WebKitDownload* download);
    void ask(WebKitDownload* download);
    /// Cancels a download that is one too many.
    void refuse(WebKitDownload* download);
    /// Takes the download off the list and reports this text about it.
    void end(WebKitDownload* download, const std::string& text);
    /// Forgets a download that failed; others that run don't replace what is said of it.
    void fail(WebKitDownload* download, const std::string& text);
    void report() const;
    [[nodiscard]] std::size_t running() const;

    WebKitNetworkSession* session_;
    std::filesystem::path folder_;
    std::string mark_;
    Callbacks callbacks_;
    RateCap cap_ = unaskedDownloadCap();
    std::map<WebKitDownload*, Item> items_{};
    LostDownloads lost_{};
};

} // namespace quorvel
