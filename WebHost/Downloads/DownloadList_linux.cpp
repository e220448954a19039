#include "WebHost/Downloads/DownloadList_linux.h"

#include "Platform/files/PlatformError.h"
#include "WebHost/Downloads/DownloadName.h"
#include "WebHost/Downloads/DownloadTexts.h"

#include <algorithm>
#include <vector>

namespace quorvel {
namespace {

DownloadList& of(gpointer self) {
    return *static_cast<DownloadList*>(self);
}

} // namespace

DownloadList::DownloadList(WebKitNetworkSession* session, std::filesystem::path folder,
                           std::string mark, Callbacks callbacks)
    : session_(session),
      folder_(std::move(folder)),
      mark_(std::move(mark)),
      callbacks_(std::move(callbacks)) {
    StagedDownload::removeLeftovers(folder_, mark_);
    onSignal(session, "download-started", started, this);
}

DownloadList::~DownloadList() {
    g_signal_handlers_disconnect_by_data(session_, this);
    callbacks_ = {};
    cancelAll();
}

void DownloadList::cancelAll() {
    std::vector<WebKitDownload*> all;
    for (const auto& [download, item] : items_) {
        all.push_back(download);
    }
    for (WebKitDownload* download : all) {
        g_signal_handlers_disconnect_by_data(download, this);
        webkit_download_cancel(download);
        items_.erase(download);
    }
    lost_.reset();
    report();
}

void DownloadList::started(WebKitNetworkSession* /*session*/, WebKitDownload* download,
                           gpointer self) {
    of(self).items_.emplace(download, Item{keep(download)});
    onSignal(download, "decide-destination", nameWanted, self);
    onSignal(download, "received-data", received, self);
    onSignal(download, "failed", failed, self);
    onSignal(download, "finished", finished, self);
}

gboolean DownloadList::nameWanted(WebKitDownload* download, char* suggested, gpointer self) {
    DownloadList& list = of(self);
    const auto found = list.items_.find(download);
    if (found == list.items_.end()) {
        return FALSE;
    }
    found->second.suggested = textOf(suggested);
    if (list.running() >= mostDownloadsAtOnce) {
        list.refuse(download);
    } else if (list.cap_.admits(FloodClock::now())) {
        list.begin(download);
    } else {
        list.ask(download);
    }
    return TRUE;
}

void DownloadList::ask(WebKitDownload* download) {
    const auto answered = [this, download](bool isWanted) {
        // It may be gone by the time that the user answers.
        if (!items_.contains(download)) {
            return;
        }
        if (!isWanted) {
            webkit_download_cancel(download);
        } else if (running() < mostDownloadsAtOnce) {
            begin(download);
        } else {
            refuse(download);
        }
    };
    if (!callbacks_.ask(safeDownloadName(items_.at(download).suggested), answered)) {
        refuse(download);
    }
}

void DownloadList::refuse(WebKitDownload* download) {
    lost_.refuse(safeDownloadName(items_.at(download).suggested));
    g_signal_handlers_disconnect_by_data(download, this);
    webkit_download_cancel(download);
    items_.erase(download);
    report();
}

void DownloadList::begin(WebKitDownload* download) {
    if (!isRunning()) {
        lost_.reset();
    }
    Item& item = items_.at(download);
    try {
        item.stage.emplace(folder_, mark_, item.suggested);
        webkit_download_set_destination(download, item.stage->file().c_str());
        report();
    } catch (const PlatformError& error) {
        const std::string reason = error.description();
        g_signal_handlers_disconnect_by_data(download, this);
        webkit_download_cancel(download);
        fail(download, reason);
    }
}

void DownloadList::received(WebKitDownload* /*download*/, guint64 /*length*/, gpointer self) {
    of(self).report();
}

// "finished" follows, but this is the end.
void DownloadList::failed(WebKitDownload* download, GError* error, gpointer self) {
    DownloadList& list = of(self);
    const auto found = list.items_.find(download);
    if (found == list.items_.end()) {
        return;
    }
    const bool isCancelled = g_error_matches(error, WEBKIT_DOWNLOAD_ERROR,
                                             WEBKIT_DOWNLOAD_ERROR_CANCELLED_BY_USER) == TRUE;
    const std::string name = safeDownloadName(found->second.suggested);
    g_signal_handlers_disconnect_by_data(download, self);
    if (isCancelled) {
        list.end(download, "“" + name + "” was not downloaded");
    } else {
        list.fail(download, failedText(name, error->message));
    }
}

void DownloadList::finished(WebKitDownload* download, gpointer self) {
    DownloadList& list = of(self);
    const auto found = list.items_.find(download);
    if (found == list.items_.end() || !found->second.stage) {
        return;
    }
    try {
        list.end(download, savedText(found->second.stage->publish()));
    } catch (const PlatformError& error) {
        list.fail(download, error.description());
    }
}

void DownloadList::fail(WebKitDownload* download, const std::string& text) {
    lost_.fail(text);
    end(download, "");
}

void DownloadList::end(WebKitDownload* download, const std::string& text) {
    items_.erase(download);
    report();
    if (callbacks_.changed && running() == 0) {
        callbacks_.changed(lost_.appendedTo(text), std::nullopt);
    }
}

std::size_t DownloadList::running() const {
    return static_cast<std::size_t>(
        std::count_if(items_.begin(), items_.end(),
                      [](const auto& one) { return one.second.stage.has_value(); }));
}

void DownloadList::report() const {
    if (!callbacks_.changed) {
        return;
    }
    DownloadProgress progress;
    for (const auto& [download, item] : items_) {
        if (item.stage) {
            ++progress.count;
            progress.sum += webkit_download_get_estimated_progress(download);
            progress.name = item.stage->name();
        }
    }
    if (progress.count == 0) {
        callbacks_.changed(lost_.appendedTo(""), std::nullopt);
        return;
    }
    constexpr double whole = 100;
    callbacks_.changed(lost_.appendedTo(progress.text()), progress.percent() / whole);
}

} // namespace quorvel
