#include "WebHost/Certificates/CertificateOffer.h"

#include "WebHost/Links/WebAddress.h"
#include "WebHost/Pages/StatusPages.h"

#include <utility>

namespace quorvel {

std::string CertificateOffer::Refused::key() const {
    return hostOf(address) + " " + details.fingerprint;
}

void CertificateOffer::refuse(Refused refused) {
    withdraw();
    actions_.showPage(
        certificatePage(refused.address, refused.reasons, certificateText(refused.details)),
        refused.address);
    if (canBeExcepted(refused.faults)) {
        const std::string host = hostOf(refused.address);
        refused_ = std::move(refused);
        actions_.showBar("The connection to " + host + " is not secure.", "Open Anyway…",
                         [this] { confirm(); });
    }
}

void CertificateOffer::withdraw() {
    refused_.reset();
    actions_.hideBar();
    if (!std::exchange(asked_, {}).empty()) {
        actions_.closeQuestion();
    }
}

void CertificateOffer::confirm() {
    if (!refused_ || !asked_.empty()) {
        return;
    }
    const std::string host = hostOf(refused_->address);
    asked_ = refused_->key();
    actions_.ask("Open " + host + " although it is not secure?",
                 refused_->reasons + "\n\n" + certificateText(refused_->details) +
                     "\n\nPasswords may reach someone else. This certificate is remembered for " +
                     host + "; Site Settings can remove it.");
}

void CertificateOffer::answered(bool isMeant) {
    // The user has agreed to what the question said, and to nothing that came after it.
    const std::string asked = std::exchange(asked_, {});
    if (!isMeant || !refused_ || refused_->key() != asked) {
        return;
    }
    const Refused opened = std::move(*std::exchange(refused_, std::nullopt));
    if (!exceptions_.add(hostOf(opened.address), opened.details.fingerprint)) {
        actions_.showMessage("The certificate can’t be remembered");
    }
    actions_.open(opened);
}

} // namespace quorvel
