#include "WebHost/Pages/LoadFailure_macos.h"

#include "WebHost/NSText_macos.h"

namespace quorvel {
namespace {

// The engine's own, for a load that a download or another decision interrupted.
constexpr NSInteger interrupted = 102;

bool isHarmless(NSError* error) {
    return ([error.domain isEqualToString:NSURLErrorDomain] && error.code == NSURLErrorCancelled) ||
           ([error.domain isEqualToString:@"WebKitErrorDomain"] && error.code == interrupted);
}

// Returns an empty text for what is not about a certificate.
std::string certificateReason(NSInteger code) {
    switch (code) {
    case NSURLErrorServerCertificateHasBadDate:
        return "Its certificate has expired.";
    case NSURLErrorServerCertificateNotYetValid:
        return "Its certificate is not valid yet. Is this computer’s clock right?";
    case NSURLErrorServerCertificateUntrusted:
        return "Its certificate is not valid for this site.";
    case NSURLErrorServerCertificateHasUnknownRoot:
        return "Its certificate was not issued by a trusted authority.";
    case NSURLErrorClientCertificateRejected:
    case NSURLErrorClientCertificateRequired:
        return "It asks for a client certificate, which web clones can’t provide.";
    case NSURLErrorSecureConnectionFailed:
        return "No secure connection can be made to it.";
    default:
        return {};
    }
}

} // namespace

LoadFailure loadFailureOf(NSError* error) {
    if (isHarmless(error)) {
        return {};
    }
    LoadFailure failure{LoadFailure::Case::offline};
    const id address = error.userInfo[NSURLErrorFailingURLErrorKey];
    if ([address isKindOfClass:[NSURL class]]) {
        failure.address = textOfURL((NSURL*)address);
    }
    if ([error.domain isEqualToString:NSURLErrorDomain]) {
        failure.reason = certificateReason(error.code);
    }
    if (failure.reason.empty()) {
        failure.reason = textOf(error.localizedDescription);
    } else {
        failure.kind = LoadFailure::Case::certificate;
    }
    return failure;
}

} // namespace quorvel
