#pragma once

#include "WebHost/Links/OutsideOpener_macos.h"
#include "WebHost/Storage/WebHome.h"

#import <WebKit/WebKit.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace quorvel {

/// Everything about a clone that its host needs.
struct WebHostOptions {
    std::string name{};
    std::string homeAddress{}; ///< empty if the clone has none
    std::string address{};     ///< to open instead; empty for none
    WebHome home;
    std::filesystem::path downloads{};
    bool keepsLinks = false; ///< links to other sites open in the clone
    bool hasStatusItem = false;
    bool isStatusItemTemplate = false;
    int listener = -1; ///< the socket for handovers; -1 for none
    WKWebsiteDataStore* store = nil;
    std::shared_ptr<OutsideOpener> links{};
    std::function<void()> started{};
};

/// Shows a web clone: its window, its pop-ups, and what they do in the Dock and the menu bar. Quits
/// the process when its window is closed, or on SIGTERM, SIGINT or SIGHUP. To be called once, on
/// the main thread; returns only if the system does.
void runWebHost(WebHostOptions options);

} // namespace quorvel
