#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

// Judging the certificates of servers.

#ifdef __cplusplus
extern "C" {
#endif

typedef SInt32 OSStatus;
enum : OSStatus {
    errSecSuccess = 0,
    errSecCreateChainFailed = -25318,
    errSecHostNameMismatch = -67602,
    errSecCertificateExpired = -67818,
    errSecCertificateNotValidYet = -67819,
    errSecCertificateRevoked = -67820,
    errSecNotTrusted = -67843
};

typedef struct BRIDGED_TO(id) __SecTrust* SecTrustRef;
typedef struct BRIDGED_TO(id) __SecCertificate* SecCertificateRef;

typedef void (^SecTrustWithErrorCallback)(SecTrustRef _Nonnull trust, bool isTrusted,
                                          CFErrorRef _Nullable error);
// To be called on that queue, on which the result arrives.
OSStatus SecTrustEvaluateAsyncWithError(SecTrustRef _Nonnull trust, dispatch_queue_t _Nonnull queue,
                                        SecTrustWithErrorCallback _Nonnull result)
    SINCE_MACOS(10.15);
// The server's own certificate comes first.
CFArrayRef _Nullable SecTrustCopyCertificateChain(SecTrustRef _Nonnull trust) CF_RETURNS_RETAINED
    SINCE_MACOS(12.0);

CFDataRef _Nonnull SecCertificateCopyData(SecCertificateRef _Nonnull certificate)
    CF_RETURNS_RETAINED SINCE_MACOS(10.3);
CFStringRef _Nullable SecCertificateCopySubjectSummary(SecCertificateRef _Nonnull certificate)
    CF_RETURNS_RETAINED SINCE_MACOS(10.6);
CFDictionaryRef _Nullable SecCertificateCopyValues(
    SecCertificateRef _Nonnull certificate, CFArrayRef _Nullable keys,
    CFErrorRef _Nullable* _Nullable error) CF_RETURNS_RETAINED SINCE_MACOS(10.7);
extern const CFStringRef _Nonnull kSecOIDX509V1IssuerName SINCE_MACOS(10.7);
extern const CFStringRef _Nonnull kSecOIDX509V1ValidityNotAfter SINCE_MACOS(10.7);
extern const CFStringRef _Nonnull kSecOIDX509V1ValidityNotBefore SINCE_MACOS(10.7);
extern const CFStringRef _Nonnull kSecPropertyKeyValue SINCE_MACOS(10.7);

#ifdef __cplusplus
}
#endif
