#pragma once

#include "WebHost/Certificates/CertificateExceptions.h"

#import <Foundation/Foundation.h>

#include <functional>
#include <string>

namespace quorvel {

/// What the system thinks of a server's certificate.
struct ServerJudgement {
    bool isTrusted = false;
    CertificateFaults faults{}; ///< none if it is not trusted for another reason
    CertificateDetails details{};
};

/// Has `done` called on the main thread, later, with what the system thinks of the server that has
/// to prove who it is. Calls it at once if the system gives no certificate.
void judgeServer(NSURLProtectionSpace* _Nonnull space,
                 std::function<void(const ServerJudgement&)> done);

/// Returns the server's host, as `hostOf` does.
[[nodiscard]] std::string hostOf(NSURLProtectionSpace* _Nonnull space);

} // namespace quorvel
