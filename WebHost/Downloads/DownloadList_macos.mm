#include "WebHost/Downloads/DownloadList_macos.h"

#include "Platform/files/PlatformError.h"
#include "WebHost/AnswerOnce_macos.h"
#include "WebHost/Downloads/DownloadItem_macos.h"
#include "WebHost/Downloads/DownloadName.h"
#include "WebHost/Downloads/DownloadTexts.h"
#include "WebHost/Downloads/LostDownloads.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Pages/FloodCaps.h"

#include <memory>
#include <utility>
#include <vector>

@implementation QuorvelDownloadList {
    std::filesystem::path _folder;
    std::string _mark;
    quorvel::DownloadCallbacks _callbacks;
    std::optional<quorvel::RateCap> _cap;
    std::vector<std::shared_ptr<quorvel::DownloadItem>> _items;
    quorvel::LostDownloads _lost;
    NSTimer* _reports;
}

- (instancetype)initWithFolder:(std::filesystem::path)folder
                          mark:(std::string)mark
                     callbacks:(quorvel::DownloadCallbacks)callbacks {
    self = [super init];
    if (self != nil) {
        _folder = std::move(folder);
        _mark = std::move(mark);
        _callbacks = std::move(callbacks);
        _cap = quorvel::unaskedDownloadCap();
        quorvel::StagedDownload::removeLeftovers(_folder, _mark);
    }
    return self;
}

- (BOOL)isRunning {
    return !_items.empty();
}

- (void)cancelAll {
    for (const auto& item : std::exchange(_items, {})) {
        [item->download cancel:nil];
    }
    _lost.reset();
    [self report];
}

- (void)download:(WKDownload*)download
    decideDestinationUsingResponse:(NSURLResponse*)response
                 suggestedFilename:(NSString*)suggested
                 completionHandler:(void (^)(NSURL* _Nullable))completionHandler {
    const auto answer = quorvel::answerOnce(completionHandler, nil);
    (void)response;
    const std::string name = quorvel::textOf(suggested);
    if (_items.size() >= quorvel::mostDownloadsAtOnce) {
        [self refuse:name];
        return;
    }
    if (_cap->admits(quorvel::FloodClock::now())) {
        answer([self begin:download name:name]);
        return;
    }
    __weak QuorvelDownloadList* const weakSelf = self;
    const bool isAsked = _callbacks.ask(quorvel::safeDownloadName(name), [=](bool isWanted) {
        answer(isWanted ? [weakSelf begin:download name:name] : nil);
    });
    if (!isAsked) {
        [self refuse:name];
    }
}

// Tells the user that a download is one too many.
- (void)refuse:(const std::string&)name {
    _lost.refuse(quorvel::safeDownloadName(name));
    [self report];
}

// Returns where to write the file, or nil if that can't be done.
- (NSURL*)begin:(WKDownload*)download name:(const std::string&)name {
    if (_items.size() >= quorvel::mostDownloadsAtOnce) {
        [self refuse:name];
        return nil;
    }
    if (_items.empty()) {
        _lost.reset();
    }
    try {
        auto item = std::make_shared<quorvel::DownloadItem>(
            download, quorvel::StagedDownload(_folder, _mark, name));
        NSURL* const file = item->file();
        _items.push_back(std::move(item));
        [self startReports];
        return file;
    } catch (const quorvel::PlatformError& error) {
        [self failed:error.description()];
        return nil;
    }
}

// Takes the download off the list; null if it is not on it any more.
- (std::shared_ptr<quorvel::DownloadItem>)take:(WKDownload*)download {
    for (auto each = _items.begin(); each != _items.end(); ++each) {
        if ((*each)->download == download) {
            auto item = *each;
            _items.erase(each);
            return item;
        }
    }
    return nullptr;
}

- (void)downloadDidFinish:(WKDownload*)download {
    if (const auto item = [self take:download]) {
        try {
            [self ended:quorvel::savedText(item->publish())];
        } catch (const quorvel::Error& error) {
            [self failed:error.description()];
        }
    }
}

- (void)download:(WKDownload*)download
    didFailWithError:(NSError*)error
          resumeData:(NSData*)resumeData {
    (void)resumeData;
    if (const auto item = [self take:download]) {
        [self failed:quorvel::failedText(item->staged.name(),
                                         quorvel::textOf(error.localizedDescription))];
    }
}

// Others that run don't replace what is said of it.
- (void)failed:(const std::string&)text {
    _lost.fail(text);
    [self ended:""];
}

- (void)ended:(const std::string&)text {
    [self report];
    if (_items.empty()) {
        _callbacks.changed(_lost.appendedTo(text), std::nullopt);
    }
}

- (void)startReports {
    constexpr NSTimeInterval seconds = 0.25;
    [self report];
    if (_reports != nil) {
        return;
    }
    __weak QuorvelDownloadList* const weakSelf = self;
    _reports = [NSTimer scheduledTimerWithTimeInterval:seconds
                                               repeats:YES
                                                 block:^(NSTimer* timer) {
                                                   (void)timer;
                                                   [weakSelf report];
                                                 }];
}

- (void)report {
    if (_items.empty()) {
        [_reports invalidate];
        _reports = nil;
        _callbacks.changed(_lost.appendedTo(""), std::nullopt);
        return;
    }
    quorvel::DownloadProgress progress;
    for (const auto& item : _items) {
        ++progress.count;
        progress.sum += item->download.progress.fractionCompleted;
        progress.name = item->staged.name();
    }
    constexpr double whole = 100;
    _callbacks.changed(_lost.appendedTo(progress.text()), progress.percent() / whole);
}

@end
