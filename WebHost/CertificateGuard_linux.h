#pragma once

#include "WebHost/CertificateExceptions.h"
#include "WebHost/GtkTypes_linux.h"
#include "WebHost/HostWindow_linux.h"

#include <webkit/webkit.h>

#include <functional>
#include <optional>
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

    /// A page is on its way; what was offered for the last one is so no more.
    void loadStarted();

private:
    struct Refused {
        std::string address{};
        ObjectRef<GTlsCertificate> certificate{};
        std::string text{}; ///< the reasons, and what the certificate says
        std::string fingerprint{};

        /// Returns the host and the certificate.
        [[nodiscard]] std::string key() const;
    };

    static gboolean failed(WebKitWebView* view, char* address, GTlsCertificate* found,
                           GTlsCertificateFlags flags, gpointer self);

    void refuse(Refused refused, const CertificateFaults& faults,
                const CertificateDetails& details);
    /// What was offered holds no more.
    void withdraw();
    void confirm();
    void answered(int response);
    void closeDialog();
    void open();

    WebKitWebView* view_;
    HostWindow& window_;
    CertificateExceptions& exceptions_;
    ShowPage showPage_;
    std::optional<Refused> refused_{};
    GtkWidget* dialog_ = nullptr; ///< asks about `asked_`
    std::string asked_{};         ///< the host and the certificate
    bool isPageComing_ = false;
    std::set<std::string> used_{}; ///< exceptions that the engine knows
};

} // namespace quorvel
