#include "WebHost/Certificates/CertificateGuard_macos.h"

#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Pages/StatusPages.h"

#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t mostHosts = 64;

} // namespace

CertificateGuard::CertificateGuard(PageState& page)
    : page_(page), exceptions_(*page.services().certificates), offer_(exceptions_, actions()) {}

CertificateGuard::~CertificateGuard() { closeQuestion(); }

CertificateOffer::Actions CertificateGuard::actions() {
    return {
        .showPage = [this](const std::string& html,
                           const std::string& address) { page_.showStatus(html, address); },
        .showBar =
            [this](const std::string& text, const std::string& button,
                   std::function<void()> chosen) {
                [page_.window() showOffer:text button:button chosen:std::move(chosen)];
            },
        .hideBar = [this] { [page_.window() hideOffer]; },
        .ask = [this](const std::string& heading, const std::string& text) { ask(heading, text); },
        .closeQuestion = [this] { closeQuestion(); },
        .showMessage = [this](const std::string& text) { [page_.window() showMessage:text]; },
        .open = [this](const CertificateOffer::Refused& opened) { page_.load(opened.address); }};
}

bool CertificateGuard::isAbout(NSURLProtectionSpace* space) {
    return [space.authenticationMethod isEqualToString:NSURLAuthenticationMethodServerTrust] == YES;
}

void CertificateGuard::judge(NSURLProtectionSpace* space, const PasswordAnswer& answer) {
    const std::string host = hostOf(space);
    const bool isProxy = space.isProxy == YES;
    if (!isProxy && asked_.size() < mostHosts) { // the page's own comes first
        asked_.insert_or_assign(host, space);
    }
    if (isProxy || !exceptions_.hasException(host)) {
        answer(NSURLSessionAuthChallengePerformDefaultHandling, nil);
        return;
    }
    const std::weak_ptr<CertificateGuard> self = weak_from_this();
    judgeServer(space, [self, space, host, answer](const ServerJudgement& judgement) {
        const auto guard = self.lock();
        if (guard == nullptr || judgement.isTrusted || !canBeExcepted(judgement.faults) ||
            !guard->exceptions_.accepts(host, judgement.details.fingerprint)) {
            answer(NSURLSessionAuthChallengePerformDefaultHandling, nil);
            return;
        }
        guard->exceptions_.engineAccepts(host);
        answer(NSURLSessionAuthChallengeUseCredential,
               [NSURLCredential credentialForTrust:space.serverTrust]);
    });
}

void CertificateGuard::failed(const std::string& address, const std::string& reason) {
    const auto found = asked_.find(hostOf(address));
    if (found == asked_.end()) {
        page_.showStatus(certificatePage(address, reason, {}), address);
        return;
    }
    const std::weak_ptr<CertificateGuard> self = weak_from_this();
    judgeServer(found->second,
                [self, address, reason, load = loads_](const ServerJudgement& judgement) {
                    const auto guard = self.lock();
                    if (guard != nullptr && guard->loads_ == load) {
                        guard->refuse(address, reason, judgement);
                    }
                });
}

void CertificateGuard::refuse(const std::string& address, const std::string& reason,
                              const ServerJudgement& judgement) {
    const bool isKnown = judgement.faults != CertificateFaults();
    std::string reasons = isKnown ? certificateReasons(judgement.faults) : reason;
    // Without encryption that is good enough for it, the system refuses whatever the user accepts.
    if (exceptions_.accepts(hostOf(address), judgement.details.fingerprint)) {
        page_.showStatus(
            certificatePage(address, reasons + " You have accepted it, but the system refuses it.",
                            certificateText(judgement.details)),
            address);
        return;
    }
    offer_.refuse({address, std::move(reasons), judgement.faults, judgement.details});
}

void CertificateGuard::loadStarted() {
    ++loads_;
    asked_.clear();
    offer_.withdraw();
}

void CertificateGuard::ask(const std::string& heading, const std::string& text) {
    QuorvelWindow* const window = page_.window();
    if (window == nil) {
        return;
    }
    NSAlert* const alert = [[NSAlert alloc] init];
    alert.alertStyle = NSAlertStyleCritical;
    alert.messageText = nsText(heading);
    alert.informativeText = nsText(text);
    [alert addButtonWithTitle:@"Don’t Open"];
    [alert addButtonWithTitle:@"Open Anyway"];
    question_ = alert;
    const std::weak_ptr<CertificateGuard> self = weak_from_this();
    __weak NSAlert* const shown = alert;
    [alert beginSheetModalForWindow:window.window
                  completionHandler:^(NSModalResponse response) {
                    const auto guard = self.lock();
                    if (guard != nullptr && guard->question_ == shown) {
                        guard->question_ = nil;
                        guard->offer_.answered(response == NSAlertSecondButtonReturn);
                    }
                  }];
}

void CertificateGuard::closeQuestion() {
    NSAlert* const closed = question_;
    question_ = nil;
    if (closed != nil) {
        [closed.window.sheetParent endSheet:closed.window returnCode:NSModalResponseAbort];
    }
}

} // namespace quorvel
