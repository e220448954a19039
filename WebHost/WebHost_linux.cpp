#include "WebHost/WebHost_linux.h"

#include "Base/StableHash.h"
#include "Base/TerminalText.h"
#include "WebHost/BadgeScript.h"
#include "WebHost/ColorSchemeFollower_linux.h"
#include "WebHost/HandoverService_linux.h"
#include "WebHost/PageTitle.h"
#include "WebHost/SandboxCheck_linux.h"
#include "WebHost/WebAddress.h"

#include <glib-unix.h>
#include <libsoup/soup.h>

#include <algorithm>
#include <csignal>
#include <cstdio>

namespace quorvel {
namespace {

WebHost& of(gpointer self) {
    return *static_cast<WebHost*>(self);
}

void log(const std::string& message) {
    std::fprintf(stderr, "quorvel-web-host: %s\n", terminalText(message).c_str());
}

// By the list of public suffixes that the network library has.
std::string siteOfHost(const std::string& host) {
    return textOf(soup_tld_get_base_domain(host.c_str(), nullptr));
}

// The user's languages, as pages are told them.
void setLanguages(WebKitWebContext* context) {
    std::vector<std::string> languages;
    for (const char* const* name = g_get_language_names(); *name != nullptr; ++name) {
        std::string language = *name;
        std::replace(language.begin(), language.end(), '_', '-');
        if (language != "C" && language.find_first_of(".@") == std::string::npos) {
            languages.push_back(language);
        }
    }
    if (languages.empty()) {
        languages.emplace_back("en-US");
    }
    std::vector<const char*> list;
    for (const std::string& language : languages) {
        list.push_back(language.c_str());
    }
    list.push_back(nullptr);
    webkit_web_context_set_preferred_languages(context, list.data());
}

} // namespace

WebHost::WebHost(WebHostOptions options)
    : options_(std::move(options)),
      permissions_(options_.home.home, options_.home.permissions),
      badge_(options_.bus, options_.desktopId),
      notices_(options_.bus, {options_.name, options_.desktopId, options_.icon},
               [this](const std::string& token) { main_->window().present(token); }) {
    if (!permissions_.problem().empty()) {
        log(options_.home.permissions + ": " + permissions_.problem());
    }
    openSession();
    addBadgeScripts();
    addServices();
    addStatusItem();
    downloads_ = std::make_unique<DownloadList>(session_.get(), options_.downloads,
                                                stableHash(options_.home.home).substr(0, 8),
                                                downloadCallbacks());
    openMainWindow();
}

WebHost::~WebHost() {
    for (const guint source : sources_) {
        g_source_remove(source);
    }
    if (titleTimer_ != 0) {
        g_source_remove(titleTimer_);
    }
    downloads_.reset();
    popups_.clear();
    main_.reset();
    g_main_loop_unref(loop_);
}

void WebHost::openSession() {
    const WebHome& home = options_.home;
    session_.reset(webkit_network_session_new(home.data.c_str(), home.cache.c_str()));
    // Otherwise logins would go to the keyring, which all clones share.
    webkit_network_session_set_persistent_credential_storage_enabled(session_.get(), FALSE);
    webkit_cookie_manager_set_persistent_storage(
        webkit_network_session_get_cookie_manager(session_.get()),
        (home.data + "/cookies.sqlite").c_str(), WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    context_.reset(webkit_web_context_new());
    setLanguages(context_.get());
    onSignal(
        context_.get(), "initialize-notification-permissions",
        [](WebKitWebContext* context, gpointer self) {
            PagePermissions::initialize(context, of(self).permissions_);
        },
        this);
    settings_.reset(webkit_settings_new());
    content_.reset(webkit_user_content_manager_new());
}

void WebHost::addBadgeScripts() {
    WebKitUserContentManager* const content = content_.get();
    const auto add = [&](WebKitUserScript* script) {
        webkit_user_content_manager_add_script(content, script);
        webkit_user_script_unref(script);
    };
    add(webkit_user_script_new(badgePageScript, WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
                               WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr));
    add(webkit_user_script_new_for_world(badgeListenerScript, WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
                                         WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, badgeWorld,
                                         nullptr, nullptr));
    onSignal(
        content, "script-message-received::badge",
        [](WebKitUserContentManager*, JSCValue* value, gpointer self) {
            const auto count = jsc_value_is_number(value) == TRUE
                                   ? reportedBadge(jsc_value_to_double(value))
                                   : std::nullopt;
            if (count) {
                of(self).badgeState_.setAPIBadge(*count);
                of(self).titleChanged();
            }
        },
        this);
    webkit_user_content_manager_register_script_message_handler(content, badgeHandler, badgeWorld);
}

void WebHost::addServices() {
    services_.name = options_.name;
    services_.homeAddress = options_.homeAddress;
    services_.iconName = options_.icon;
    services_.siteOf = siteOfHost;
    services_.permissions = &permissions_;
    services_.links = options_.links;
    services_.openPopup = [this](HostPage& opener) { return openPopup(opener); };
    services_.notify = [this](WebKitNotification* shown) { notices_.show(shown); };
    services_.loaded = [this] {
        checkSandbox();
        saveState();
    };
    services_.keepsLinks = options_.keepsLinks;
    services_.quit = [this] { leave(); };
}

void WebHost::addStatusItem() {
    if (options_.statusIcon) {
        statusItem_ = std::make_unique<StatusItem>(
            options_.bus,
            StatusItemOptions{
                .id = options_.desktopId,
                .title = options_.name,
                .icon = *options_.statusIcon,
                .show = [this](const std::string& token) { main_->window().present(token); },
                .quit = [this] { leave(); }});
    }
}

DownloadList::Callbacks WebHost::downloadCallbacks() {
    DownloadList::Callbacks callbacks;
    callbacks.ask = [this](const std::string& name, const std::function<void(bool)>& answered) {
        const bool isAsked = main_->window().ask(
            {"This page wants to download another file, “" + name + "”.", "Download",
             "Don’t Download",
             [answered](std::optional<bool> isWanted) { answered(isWanted.value_or(false)); }});
        if (!isAsked) {
            answered(false);
        }
    };
    callbacks.changed = [this](const std::string& text, std::optional<double> progress) {
        main_->window().showDownloads(text, progress ? [this] { downloads_->cancelAll(); }
                                                     : std::function<void()>());
        badge_.setProgress(progress);
    };
    return callbacks;
}

std::string WebHost::firstAddress() const {
    if (!options_.address.empty()) {
        return options_.address;
    }
    // A page elsewhere was only on the way to sign in.
    const std::string last = readWindowState(options_.home.windowState).page;
    return isSameSite(last, options_.homeAddress, siteOfHost) ? last : options_.homeAddress;
}

void WebHost::openMainWindow() {
    auto* const view = WEBKIT_WEB_VIEW(g_object_new(
        WEBKIT_TYPE_WEB_VIEW, "web-context", context_.get(), "network-session", session_.get(),
        "user-content-manager", content_.get(), "settings", settings_.get(), nullptr));
    HostPage::Callbacks callbacks;
    callbacks.home = [this] { main_->load(options_.homeAddress); };
    callbacks.forgetPermissions = [this] {
        if (!permissions_.forgetAll()) {
            log("the permissions can’t be written");
        }
        main_->forgetQuestions();
        for (const auto& popup : popups_) {
            popup->forgetQuestions();
        }
    };
    callbacks.titleChanged = [this] { titleChanged(); };
    callbacks.closed = [this] { quit(); };
    main_ = std::make_unique<HostPage>(view, services_, std::move(callbacks),
                                       readWindowState(options_.home.windowState));
    showTitle();
    main_->load(firstAddress());
}

WebKitWebView* WebHost::openPopup(HostPage& opener) {
    if (!popupCap_.admits(gestures(), popups_.size())) {
        return nullptr;
    }
    // It would not inherit the settings.
    auto* const view = WEBKIT_WEB_VIEW(g_object_new(
        WEBKIT_TYPE_WEB_VIEW, "related-view", opener.view(), "settings", settings_.get(), nullptr));
    WindowState state;
    state.width = 640;
    state.height = 720;
    HostPage::Callbacks callbacks;
    callbacks.titleChanged = [this, view] { showPopupTitle(view); };
    callbacks.closed = [this, view] { closePopup(view); };
    popups_.push_back(std::make_unique<HostPage>(view, services_, std::move(callbacks), state));
    showPopupTitle(view);
    onSignal(
        view, "ready-to-show",
        [](WebKitWebView*, gpointer popup) { static_cast<HostPage*>(popup)->window().show(); },
        popups_.back().get());
    return view;
}

std::vector<std::unique_ptr<HostPage>>::iterator WebHost::popupWith(WebKitWebView* view) {
    return std::find_if(popups_.begin(), popups_.end(),
                        [&](const auto& one) { return one->view() == view; });
}

void WebHost::showPopupTitle(WebKitWebView* view) {
    if (const auto found = popupWith(view); found != popups_.end()) {
        HostPage& popup = **found;
        popup.window().setTitle(popupTitle(popup.address(), popup.title(), options_.name),
                                pageTitle(popup.title()));
    }
}

// Not at once: it is one of its own signals that says so.
void WebHost::closePopup(WebKitWebView* view) {
    if (const auto found = popupWith(view); found != popups_.end()) {
        closedGestures_ += (*found)->window().gestures();
        g_idle_add_once([](gpointer page) { delete static_cast<HostPage*>(page); },
                        found->release());
        popups_.erase(found);
    }
}

std::uint64_t WebHost::gestures() const {
    std::uint64_t all = closedGestures_ + main_->window().gestures();
    for (const auto& popup : popups_) {
        all += popup->window().gestures();
    }
    return all;
}

void WebHost::titleChanged() {
    constexpr guint shortestTime = 250; // four a second
    isTitleOld_ = true;
    if (titleTimer_ != 0) {
        return;
    }
    showTitle();
    titleTimer_ = g_timeout_add(
        shortestTime,
        [](gpointer self) -> gboolean {
            if (!of(self).isTitleOld_) {
                of(self).titleTimer_ = 0;
                return G_SOURCE_REMOVE;
            }
            of(self).showTitle();
            return G_SOURCE_CONTINUE;
        },
        this);
}

void WebHost::showTitle() {
    if (!main_) {
        return;
    }
    isTitleOld_ = false;
    const std::string title = main_->title();
    badgeState_.setTitle(title);
    const auto label = badgeState_.label();
    main_->window().setTitle(windowTitle(title, options_.name, label),
                             title.empty() ? options_.name : pageTitle(title));
    if (statusItem_) {
        statusItem_->setLabel(label.value_or(""));
    }
    badge_.setCount(label ? std::optional(badgeState_.apiBadge.value_or(badgeState_.titleBadge))
                          : std::nullopt);
}

void WebHost::checkSandbox() {
    if (isSandboxChecked_) {
        return;
    }
    isSandboxChecked_ = true;
    if (const std::string problem = sandboxProblem(); !problem.empty()) {
        log(problem);
    }
}

void WebHost::handedOver(const WebHandover& handover) {
    if (!handover.address.empty()) {
        main_->load(handover.address);
    }
    main_->window().present(handover.token);
}

void WebHost::saveState() const {
    if (!writeWindowState(options_.home.home, options_.home.windowState, main_->window().state())) {
        log("the state of the window can’t be written");
    }
}

void WebHost::leave() {
    if (!downloads_->isRunning()) {
        main_->close();
        return;
    }
    main_->window().present("");
    isLeavingAsked_ = isLeavingAsked_ ||
                      main_->window().ask({"Files are being downloaded.", "Cancel Them and Quit",
                                           "Keep Downloading", [this](std::optional<bool> isMeant) {
                                               isLeavingAsked_ = false;
                                               if (isMeant == true) {
                                                   downloads_->cancelAll();
                                                   main_->close();
                                               }
                                           }});
}

void WebHost::quit() {
    if (g_main_loop_is_running(loop_) == TRUE) {
        saveState();
        g_main_loop_quit(loop_);
    }
}

void WebHost::run() {
    const auto stop = [](gpointer self) -> gboolean {
        of(self).quit();
        return G_SOURCE_CONTINUE;
    };
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        sources_.push_back(g_unix_signal_add(signal, stop, this));
    }
    HandoverService handovers(options_.listener,
                              [this](const WebHandover& handover) { handedOver(handover); });
    const ColorSchemeFollower scheme(options_.bus);
    main_->window().show();
    options_.started();
    g_main_loop_run(loop_);
}

} // namespace quorvel
