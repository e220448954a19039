#include "WebHost/Downloads/DownloadList_linux.h"

#include "Platform/files/PlatformError.h"
#include "WebHost/Downloads/DownloadName.h"

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
    refused_.reset();
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
    refused_.add(safeDownloadName(items_.at(download).suggested));
    g_signal_handlers_disconnect_by_data(download, this);
    webkit_download_cancel(download);
    items_.erase(download);
    report();
}

void DownloadList::begin(WebKitDownload* download) {
    if (!isRunning()) {
        refused_.reset();
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
        end(download, reason);
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
    list.end(download, isCancelled ? "“" + name + "” was not downloaded"
                                   : "“" + name + "” can’t be downloaded: " + error->message);
}

void DownloadList::finished(WebKitDownload* download, gpointer self) {
    DownloadList& list = of(self);
    const auto found = list.items_.find(download);
    if (found == list.items_.end() || !found->second.stage) {
        return;
    }
    std::string text;
    try {
        const std::filesystem::path file = found->second.stage->publish();
        text = "Saved “" + file.filename().string() + "” in “" +
               file.parent_path().filename().string() + "”";
    } catch (const PlatformError& error) {
        text = error.description();
    }
    list.end(download, text);
}

void DownloadList::end(WebKitDownload* download, const std::string& text) {
    items_.erase(download);
    report();
    if (callbacks_.changed && running() == 0) {
        callbacks_.changed(refused_.appendedTo(text), std::nullopt);
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
    double progress = 0;
    std::string name;
    for (const auto& [download, item] : items_) {
        if (item.stage) {
            progress += webkit_download_get_estimated_progress(download);
            name = "“" + item.stage->name() + "”";
        }
    }
    const std::size_t count = running();
    if (count == 0) {
        callbacks_.changed(refused_.appendedTo(""), std::nullopt);
        return;
    }
    constexpr int whole = 100;
    progress /= static_cast<double>(count);
    const std::string what = count == 1 ? name : std::to_string(count) + " files";
    const std::string text =
        "Downloading " + what + ": " + std::to_string(static_cast<int>(progress * whole)) + " %";
    callbacks_.changed(refused_.appendedTo(text),
                       static_cast<int>(progress * whole) / static_cast<double>(whole));
}

} // namespace quorvel
