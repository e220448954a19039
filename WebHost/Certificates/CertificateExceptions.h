#pragma once

#include "WebHost/Storage/WebRecords.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// What is wrong with a server's certificate.
struct CertificateFaults {
    bool isUntrusted = false; ///< no trusted authority has signed it
    bool isOfOtherHost = false;
    bool isNotYetValid = false;
    bool isExpired = false;
    bool isRevoked = false;
    bool isInsecure = false; ///< its algorithms are broken

    bool operator==(const CertificateFaults&) const = default;
};

/// Returns what is wrong, a sentence for each fault.
[[nodiscard]] std::string certificateReasons(const CertificateFaults& faults);

/// Returns whether the user may open the page nevertheless.
[[nodiscard]] bool canBeExcepted(const CertificateFaults& faults);

/// Whom a certificate claims to belong to. Anybody can write anything there.
struct CertificateDetails {
    std::string subject{};
    std::string issuer{};
    std::string validFrom{};
    std::string validUntil{};
    std::string fingerprint{}; ///< SHA-256 of the certificate, 64 hexadecimal digits
};

/// Returns the details as lines of text, for a place that shows plain text.
[[nodiscard]] std::string certificateText(const CertificateDetails& details);

/// The certificates that the user accepted for a web clone: one per host, for this host alone. Kept
/// in a file below the clone's home.
class CertificateExceptions {
public:
    struct Exception {
        std::string host{};
        std::string fingerprint{};

        bool operator==(const Exception&) const = default;
    };

    /// Reads the file `path` below `home`. One that can't be read has no exceptions: see `problem`.
    CertificateExceptions(std::filesystem::path home, std::string path);

    [[nodiscard]] const std::string& problem() const { return file_.problem(); }

    /// Returns whether a certificate was accepted for that host.
    [[nodiscard]] bool hasException(const std::string& host) const {
        return exceptions_.contains(host);
    }
    /// Returns whether exactly this certificate was accepted for that host.
    [[nodiscard]] bool accepts(const std::string& host, std::string_view fingerprint) const;

    /// Keeps an exception, in place of another one for the host. Returns false if the file can't be
    /// written; it then holds for this process only.
    bool add(const std::string& host, const std::string& fingerprint);
    /// Removes the exception for the host. Returns false if the file can't be written.
    bool remove(const std::string& host);

    /// Notes that the engine was told to accept a certificate of the host, which it can't be made
    /// to forget.
    void engineAccepts(const std::string& host) { acceptedByEngine_.insert(host); }
    /// Returns whether the engine was told so since this process started: then the host need not
    /// prove who it is.
    [[nodiscard]] bool isAcceptedByEngine(const std::string& host) const {
        return acceptedByEngine_.contains(host);
    }

    /// Returns all exceptions, sorted by host.
    [[nodiscard]] std::vector<Exception> list() const;

private:
    [[nodiscard]] bool save();

    KeptWebFile file_;
    std::map<std::string, std::string> exceptions_{}; ///< host: fingerprint
    std::set<std::string> acceptedByEngine_{};        ///< hosts
};

} // namespace quorvel
