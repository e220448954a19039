#include "WebHost/Certificates/CertificateExceptions.h"

#include "Base/TerminalText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quorvel {
namespace {

struct Accepted {
    std::map<std::string, std::string> certificates{};
};

bool isFingerprint(std::string_view text) {
    constexpr std::size_t digits = 64;
    return text.size() == digits && std::all_of(text.begin(), text.end(), [](char byte) {
               return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f');
           });
}

} // namespace

template<>
struct RecordTable<Accepted> {
    static constexpr std::string_view name = "list of certificates";
    static constexpr auto fields =
        sortedByKey(std::array{Row<Accepted>::of<&Accepted::certificates>("certificates")});
};

std::string certificateReasons(const CertificateFaults& faults) {
    const std::array<std::pair<bool, std::string_view>, 6> sentences{{
        {faults.isRevoked, "Its certificate was revoked."},
        {faults.isExpired, "Its certificate has expired."},
        {faults.isNotYetValid, "Its certificate is not valid yet. Is this computer’s clock right?"},
        {faults.isOfOtherHost, "Its certificate belongs to another site."},
        {faults.isUntrusted, "Its certificate was not issued by a trusted authority."},
        {faults.isInsecure, "Its certificate uses methods that are not secure."},
    }};
    std::string text;
    for (const auto& [is, sentence] : sentences) {
        if (is) {
            text += text.empty() ? "" : " ";
            text += sentence;
        }
    }
    return text.empty() ? "Its certificate is not valid." : text;
}

bool canBeExcepted(const CertificateFaults& faults) {
    // What is unknown might be anything.
    return faults != CertificateFaults() && !faults.isRevoked && !faults.isInsecure;
}

std::string certificateText(const CertificateDetails& details) {
    constexpr std::size_t longest = 200;
    constexpr std::size_t half = 32;
    std::string text;
    const auto add = [&](std::string_view name, const std::string& value) {
        if (!value.empty()) {
            text += std::string(name) + ": " + withoutUnsafe(value, longest) + "\n";
        }
    };
    add("Claims to be", details.subject);
    add("Signed by", details.issuer);
    add("Valid from", details.validFrom);
    add("Valid until", details.validUntil);
    return text + "SHA-256: " + details.fingerprint.substr(0, half) + "\n" +
           details.fingerprint.substr(std::min(half, details.fingerprint.size()));
}

CertificateExceptions::CertificateExceptions(std::filesystem::path home, std::string path)
    : file_(std::move(home), std::move(path)) {
    Accepted kept;
    file_.read(kept);
    exceptions_ = std::move(kept.certificates);
    std::erase_if(exceptions_, [](const auto& one) { return !isFingerprint(one.second); });
}

bool CertificateExceptions::accepts(const std::string& host, std::string_view fingerprint) const {
    const auto found = exceptions_.find(host);
    return found != exceptions_.end() && found->second == fingerprint;
}

bool CertificateExceptions::add(const std::string& host, const std::string& fingerprint) {
    exceptions_[host] = fingerprint;
    return save();
}

bool CertificateExceptions::remove(const std::string& host) {
    exceptions_.erase(host);
    return save();
}

std::vector<CertificateExceptions::Exception> CertificateExceptions::list() const {
    std::vector<Exception> all;
    for (const auto& [host, fingerprint] : exceptions_) {
        all.push_back({host, fingerprint});
    }
    return all;
}

bool CertificateExceptions::save() {
    return file_.write(Accepted{exceptions_});
}

} // namespace quorvel
