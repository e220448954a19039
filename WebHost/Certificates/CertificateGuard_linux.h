#pragma once

#include "WebHost/Certificates/CertificateOffer.h"
#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Window/HostWindow_linux.h"

#include <webkit/webkit.h>

#include <functional>
#include <set>
#include <string>

namespace quorvel {

/// Keeps a view from servers that can't prove who they are, unless the user accepted exactly this
/// certificate for the host.
class CertificateGuard {
public:
    using ShowPage = std::function<void(const std::string& html, const std::string& address)>;

    /// `showPage` shows a page of the host in place of the one at the address.
    CertificateGuard(WebKitWebView* view, HostWindow& window, CertificateExceptions& exceptions,
                     ShowPage showPage);
    CertificateGuard(const CertificateGuard&) = delete;
    CertificateGuard& operator=(const CertificateGuard&) = delete;
    ~CertificateGuard();

    /// A page is on its way; withdraws what was offered for the last one.
    void loadStarted();

private:
    static gboolean failed(WebKitWebView* view, char* address, GTlsCertificate* found,
                           GTlsCertificateFlags flags, gpointer self);

    [[nodiscard]] CertificateOffer::Actions actions(ShowPage showPage);
    void ask(const std::string& heading, const std::string& text);
    void closeDialog();
    void open(const CertificateOffer::Refused& opened);

    WebKitWebView* view_;
    HostWindow& window_;
    CertificateExceptions& exceptions_;
    CertificateOffer offer_;
    ObjectRef<GTlsCertificate> certificate_{}; ///< the last one that was refused
    GtkWidget* dialog_ = nullptr;
    bool isPageComing_ = false;
    std::set<std::string> used_{}; ///< exceptions that the engine knows
};

} // namespace quorvel
