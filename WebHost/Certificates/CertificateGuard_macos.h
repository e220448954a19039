#pragma once

#include "WebHost/Certificates/CertificateOffer.h"
#include "WebHost/Certificates/ServerTrust_macos.h"
#include "WebHost/Pages/PageState_macos.h"
#include "WebHost/Questions/PasswordQuestion_macos.h"

#include <map>
#include <memory>
#include <string>

namespace quorvel {

/// Keeps a page from servers that can't prove who they are, unless the user accepted exactly this
/// certificate for the host.
class CertificateGuard : public std::enable_shared_from_this<CertificateGuard> {
public:
    /// The page's state must outlive this.
    explicit CertificateGuard(PageState& page);
    CertificateGuard(const CertificateGuard&) = delete;
    CertificateGuard& operator=(const CertificateGuard&) = delete;
    ~CertificateGuard();

    /// Returns whether a server has to prove who it is; then `judge` answers.
    [[nodiscard]] static bool isAbout(NSURLProtectionSpace* _Nonnull space);
    /// Judges the server's certificate off the main thread, and answers exactly once.
    void judge(NSURLProtectionSpace* _Nonnull space, const PasswordAnswer& answer);

    /// The page at that address was not opened because of its server's certificate, for this
    /// reason (a sentence).
    void failed(const std::string& address, const std::string& reason);
    /// A page is on its way; withdraws what was offered for the last one.
    void loadStarted();

private:
    [[nodiscard]] CertificateOffer::Actions actions();
    void refuse(const std::string& address, const std::string& reason,
                const ServerJudgement& judgement);
    void ask(const std::string& heading, const std::string& text);
    void closeQuestion();

    PageState& page_;
    CertificateExceptions& exceptions_;
    CertificateOffer offer_;
    NSAlert* _Nullable question_ = nil;
    std::map<std::string, NSURLProtectionSpace*> asked_{}; ///< of this load, by their hosts
    std::size_t loads_ = 0;
};

} // namespace quorvel
