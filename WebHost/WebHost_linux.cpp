#include "WebHost/WebHost_linux.h"

#include "Base/StableHash.h"
#include "Base/TerminalText.h"
#include "WebHost/HandoverService_linux.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/Notifications/BadgeScript.h"
#include "WebHost/Pages/PageTitle.h"
#include "WebHost/Pages/SandboxCheck_linux.h"

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

// Uses the network library's list of public suffixes.
std::string siteOfHost(const std::string& host) {
    return textOf(soup_tld_get_base_domain(host.c_str(), nullptr));
}

} // namespace

WebHost::WebHost(WebHostOptions options)
    : options_(std::move(options)),
      permissions_(options_.home.home, options_.home.permissions),
      siteSettings_(options_.home.home, options_.home.settings),
      certificates_(options_.home.home, options_.home.certificates),
      colors_(options_.bus),
      badge_(options_.bus, options_.desktopId),
      notices_(options_.bus, {options_.name, options_.desktopId, options_.icon},
               [this](const std::string& token) { main_->window().present(token); }),
      gate_(!siteSettings_.problem().empty(),
            {[this](const std::string& address) { main_->load(address); },
             [this](HostQuestion question) { (void)main_->window().ask(std::move(question)); },
             [this] { showSettings(); }}) {
    reportProblems();
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
    panel_.reset();
    siteData_.reset();
    downloads_.reset();
    popups_.clear();
    main_.reset();
    g_main_loop_unref(loop_);
}

void WebHost::reportProblems() const {
    if (!options_.againstOpenGL.empty()) {
        log("draws without OpenGL: " + options_.againstOpenGL);
    }
    for (const auto& [file, problem] :
         {std::pair(options_.home.permissions, permissions_.problem()),
          std::pair(options_.home.settings, siteSettings_.problem()),
          std::pair(options_.home.certificates, certificates_.problem())}) {
        if (!problem.empty()) {
            log(file + ": " + problem);
        }
    }
}

void WebHost::applySettings() {
    colors_.setColors(siteSettings_.settings().colors);
    applySiteSettings({context_.get(), session_.get(), settings_.get()}, siteSettings_.settings());
}

void WebHost::settingsChanged() {
    applySettings();
    if (siteSettings_.problem().empty()) {
        gate_.open();
    }
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
    setPageLanguages(context_.get());
    onSignal(
        context_.get(), "initialize-notification-permissions",
        [](WebKitWebContext* context, gpointer self) {
            PagePermissions::initialize(context, of(self).permissions_);
        },
        this);
    settings_.reset(webkit_settings_new());
    restrictPages(settings_.get());
    if (!options_.againstOpenGL.empty()) {
        webkit_settings_set_hardware_acceleration_policy(settings_.get(),
                                                         WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    }
    content_.reset(webkit_user_content_manager_new());
    applySettings();
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
    services_.certificates = &certificates_;
    services_.settings = &siteSettings_;
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
        return main_->window().ask(
            {"This page wants to download another file, “" + name + "”.", "Download",
             "Don’t Download",
             [answered](std::optional<bool> isWanted) { answered(isWanted.value_or(false)); }});
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
    callbacks.home = [this] { gate_.load(options_.homeAddress); };
    callbacks.settings = [this] { showSettings(); };
    callbacks.titleChanged = [this] { titleChanged(); };
    callbacks.closed = [this] { quit(); };
    main_ = std::make_unique<HostPage>(view, services_, std::move(callbacks),
                                       readWindowState(options_.home.windowState));
    showTitle();
    gate_.load(firstAddress());
}

void WebHost::permissionsTaken(const std::vector<PermissionStore::Answer>& taken) {
    main_->permissionsTaken(taken);
    for (const auto& popup : popups_) {
        popup->permissionsTaken(taken);
    }
}

void WebHost::showSettings() {
    if (!panel_) {
        siteData_ = std::make_unique<SiteDataList>(
            session_.get(), options_.name, [this] { webkit_web_view_reload(main_->view()); });
        panel_ = std::make_unique<SettingsPanel>(
            main_->window().widget(),
            SettingsPanel::Services{
                .name = options_.name,
                .settings = &siteSettings_,
                .permissions = &permissions_,
                .certificates = &certificates_,
                .settingsChanged = [this] { settingsChanged(); },
                .permissionsTaken = [this](const auto& taken) { permissionsTaken(taken); },
                .zoom = [this] { return main_->window().state().zoom; },
                .zoomTo = [this](int zoom) { main_->window().zoomTo(zoom); }},
            siteData_->widget());
    }
    siteData_->refresh();
    panel_->show();
}

WebKitWebView* WebHost::openPopup(HostPage& opener) {
    if (!popupCap_.admits(gestures(), popups_.size())) {
        return nullptr;
    }
    // A related view does not inherit the settings.
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

// Not deleted at once, since one of its own signals is being handled.
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
        gate_.load(handover.address);
    }
    main_->window().present(handover.token);
}

void WebHost::saveState() const {
    // While nothing is loaded, the last page is still the one before.
    if (!gate_.isClosed() &&
        !writeWindowState(options_.home.home, options_.home.windowState, main_->window().state())) {
        log("the state of the window can’t be written");
    }
}

void WebHost::leave() {
    if (!downloads_->isRunning()) {
        main_->close();
        return;
    }
    main_->window().present("");
    if (!std::exchange(isLeavingAsked_, true)) {
        (void)main_->window().ask({.text = "Files are being downloaded.",
                                   .yes = "Cancel Them and Quit",
                                   .no = "Keep Downloading",
                                   .answered =
                                       [this](std::optional<bool> isMeant) {
                                           isLeavingAsked_ = false;
                                           if (isMeant == true) {
                                               downloads_->cancelAll();
                                               main_->close();
                                           }
                                       },
                                   .isUrgent = true});
    }
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
    main_->window().show();
    options_.started();
    g_main_loop_run(loop_);
}

} // namespace quorvel
