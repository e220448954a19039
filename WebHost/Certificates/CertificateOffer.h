#pragma once

#include "WebHost/Certificates/CertificateExceptions.h"

#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Handles a page whose server can't prove who it is: the user sees why, and may open it
/// nevertheless, after having agreed to exactly this certificate for the host.
class CertificateOffer {
public:
    /// The page that was not opened.
    struct Refused {
        std::string address{};
        std::string reasons{}; ///< sentences
        CertificateFaults faults{};
        CertificateDetails details{};

        /// Returns the host and the certificate.
        [[nodiscard]] std::string key() const;
    };
    /// What the window does for it.
    struct Actions {
        /// Shows a page of the host's own in place of the one at the address.
        std::function<void(const std::string& html, const std::string& address)> showPage{};
        /// Offers something until `hideBar`.
        std::function<void(const std::string& text, const std::string& button,
                           std::function<void()> chosen)>
            showBar{};
        std::function<void()> hideBar{};
        /// Asks a question until `closeQuestion`; `answered` is to be called with the answer.
        std::function<void(const std::string& heading, const std::string& text)> ask{};
        std::function<void()> closeQuestion{};
        std::function<void(const std::string& text)> showMessage{};
        std::function<void(const Refused& opened)> open{};
    };

    CertificateOffer(CertificateExceptions& exceptions, Actions actions)
        : exceptions_(exceptions),
          actions_(std::move(actions)) {}

    /// Shows why the page is not opened, and offers to open it if the user may do that.
    void refuse(Refused refused);
    /// Takes back the offer and the question, if there are any.
    void withdraw();
    /// The user has answered the question.
    void answered(bool isMeant);

private:
    void confirm();

    CertificateExceptions& exceptions_;
    Actions actions_;
    std::optional<Refused> refused_{};
    std::string asked_{}; ///< the host and the certificate that the question names; empty for none
};

} // namespace quorvel
