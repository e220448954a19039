#include "WebHost/Certificates/ServerTrust_macos.h"

#include "Base/AsciiCase.h"
#include "WebHost/NSText_macos.h"

#include <CommonCrypto/CommonDigest.h>
#include <Security/Security.h>
#include <dispatch/dispatch.h>

#include <array>
#include <ctime>
#include <optional>
#include <utility>

namespace quorvel {
namespace {

std::string fingerprintOf(NSData* certificate) {
    constexpr std::string_view digits = "0123456789abcdef";
    constexpr unsigned halfByte = 4;
    std::array<unsigned char, CC_SHA256_DIGEST_LENGTH> digest{};
    CC_SHA256(certificate.bytes, static_cast<CC_LONG>(certificate.length), digest.data());
    std::string text;
    for (const unsigned byte : digest) {
        text += digits[byte >> halfByte];
        text += digits[byte & 0xFU];
    }
    return text;
}

// Returns what a certificate says under that name.
id valueIn(NSDictionary<NSString*, id>* values, CFStringRef name) {
    const id entry = values[(__bridge NSString*)name];
    return [entry isKindOfClass:[NSDictionary class]]
               ? ((NSDictionary<NSString*, id>*)entry)[(__bridge NSString*)kSecPropertyKeyValue]
               : nil;
}

std::string issuerIn(NSDictionary<NSString*, id>* values) {
    const id parts = valueIn(values, kSecOIDX509V1IssuerName);
    std::string text;
    if ([parts isKindOfClass:[NSArray class]]) {
        for (id part in (NSArray<id>*)parts) {
            if ([part isKindOfClass:[NSDictionary class]]) {
                const std::string value = textIn(
                    ((NSDictionary<NSString*, id>*)part)[(__bridge NSString*)kSecPropertyKeyValue]);
                text += text.empty() || value.empty() ? value : ", " + value;
            }
        }
    }
    return text;
}

// Certificates count from the system's own beginning of time.
std::optional<std::time_t> timeIn(NSDictionary<NSString*, id>* values, CFStringRef name) {
    constexpr std::time_t beginning = 978'307'200; // 2001-01-01
    const id value = valueIn(values, name);
    if (![value isKindOfClass:[NSNumber class]]) {
        return std::nullopt;
    }
    return beginning + static_cast<std::time_t>(((NSNumber*)value).doubleValue);
}

std::string dateOf(const std::optional<std::time_t>& time) {
    std::tm parts{};
    std::array<char, 16> text{};
    if (!time || ::gmtime_r(&*time, &parts) == nullptr ||
        std::strftime(text.data(), text.size(), "%Y-%m-%d", &parts) == 0) {
        return {};
    }
    return text.data();
}

// The system names one fault only.
CertificateFaults faultsFor(OSStatus code) {
    return {.isUntrusted = code == errSecNotTrusted || code == errSecCreateChainFailed,
            .isOfOtherHost = code == errSecHostNameMismatch,
            .isNotYetValid = code == errSecCertificateNotValidYet,
            .isExpired = code == errSecCertificateExpired,
            .isRevoked = code == errSecCertificateRevoked};
}

void addTimes(ServerJudgement& judgement, NSDictionary<NSString*, id>* values) {
    const auto from = timeIn(values, kSecOIDX509V1ValidityNotBefore);
    const auto until = timeIn(values, kSecOIDX509V1ValidityNotAfter);
    judgement.details.validFrom = dateOf(from);
    judgement.details.validUntil = dateOf(until);
    const std::time_t now = std::time(nullptr);
    // An unknown fault stays one: it might be anything.
    if (judgement.faults != CertificateFaults()) {
        judgement.faults.isNotYetValid = judgement.faults.isNotYetValid || (from && now < *from);
        judgement.faults.isExpired = judgement.faults.isExpired || (until && now > *until);
    }
}

ServerJudgement judgementOf(SecTrustRef trust, bool isTrusted, CFErrorRef error) {
    ServerJudgement judgement{.isTrusted = isTrusted};
    NSArray<id>* const chain = (__bridge_transfer NSArray*)SecTrustCopyCertificateChain(trust);
    if (chain.count == 0) {
        return judgement;
    }
    const SecCertificateRef own = (__bridge SecCertificateRef)chain[0];
    judgement.details.fingerprint =
        fingerprintOf((__bridge_transfer NSData*)SecCertificateCopyData(own));
    judgement.details.subject =
        textOf((__bridge_transfer NSString*)SecCertificateCopySubjectSummary(own));
    NSDictionary<NSString*, id>* const values =
        (__bridge_transfer NSDictionary*)SecCertificateCopyValues(own, nullptr, nullptr);
    judgement.details.issuer = issuerIn(values);
    if (!isTrusted && error != nullptr) {
        judgement.faults = faultsFor(static_cast<OSStatus>(((__bridge NSError*)error).code));
    }
    addTimes(judgement, values);
    return judgement;
}

} // namespace

void judgeServer(NSURLProtectionSpace* space, std::function<void(const ServerJudgement&)> done) {
    const SecTrustRef trust = space.serverTrust;
    if (trust == nullptr) {
        done({});
        return;
    }
    // On the main queue, where the result is to arrive: the system insists on that.
    dispatch_async(dispatch_get_main_queue(), ^{
      const OSStatus status =
          SecTrustEvaluateAsyncWithError(space.serverTrust, dispatch_get_main_queue(),
                                         ^(SecTrustRef judged, bool isTrusted, CFErrorRef error) {
                                           done(judgementOf(judged, isTrusted, error));
                                         });
      if (status != errSecSuccess) {
          done({});
      }
    });
}

std::string hostOf(NSURLProtectionSpace* space) {
    std::string host = asciiLower(textOf(space.host));
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    return host;
}

} // namespace quorvel
