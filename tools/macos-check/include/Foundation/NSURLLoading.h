#pragma once

#include <Security/Security.h>

// What Foundation.h includes about requests, their answers and their failures.

NS_ASSUME_NONNULL_BEGIN

@interface NSURLRequest : NSObject
+ (instancetype)requestWithURL:(NSURL*)url;
@property(nullable, readonly, copy) NSURL* URL;
@end

@interface NSURLResponse : NSObject
@end

@interface NSHTTPURLResponse : NSURLResponse
- (nullable NSString*)valueForHTTPHeaderField:(NSString*)field SINCE_MACOS(10.15);
@end

extern NSErrorDomain const NSURLErrorDomain;
extern NSErrorUserInfoKey const NSURLErrorFailingURLErrorKey SINCE_MACOS(10.6);
enum : NSInteger {
    NSURLErrorCancelled = -999,
    NSURLErrorSecureConnectionFailed = -1200,
    NSURLErrorServerCertificateHasBadDate = -1201,
    NSURLErrorServerCertificateUntrusted = -1202,
    NSURLErrorServerCertificateHasUnknownRoot = -1203,
    NSURLErrorServerCertificateNotYetValid = -1204,
    NSURLErrorClientCertificateRejected = -1205,
    NSURLErrorClientCertificateRequired = -1206
};

extern NSString* const NSURLAuthenticationMethodDefault;
extern NSString* const NSURLAuthenticationMethodHTTPBasic;
extern NSString* const NSURLAuthenticationMethodHTTPDigest;
extern NSString* const NSURLAuthenticationMethodNTLM SINCE_MACOS(10.5);
extern NSString* const NSURLAuthenticationMethodServerTrust SINCE_MACOS(10.6);
extern NSString* const NSURLProtectionSpaceHTTPS;

@interface NSURLProtectionSpace : NSObject
@property(readonly, copy) NSString* authenticationMethod;
@property(readonly, copy) NSString* host;
@property(readonly) NSInteger port;
@property(nullable, readonly, copy) NSString* realm;
@property(nullable, readonly, copy) NSString* protocol;
@property(nullable, readonly) SecTrustRef serverTrust SINCE_MACOS(10.6);
- (BOOL)isProxy;
@end

typedef enum NSURLCredentialPersistence : NSUInteger {
    NSURLCredentialPersistenceNone,
    NSURLCredentialPersistenceForSession
} NSURLCredentialPersistence;
@interface NSURLCredential : NSObject
+ (NSURLCredential*)credentialWithUser:(NSString*)user
                              password:(NSString*)password
                           persistence:(NSURLCredentialPersistence)persistence;
+ (NSURLCredential*)credentialForTrust:(SecTrustRef)trust SINCE_MACOS(10.6);
@end

@interface NSURLAuthenticationChallenge : NSObject
@property(readonly, copy) NSURLProtectionSpace* protectionSpace;
@property(readonly) NSInteger previousFailureCount;
@end

typedef enum NSURLSessionAuthChallengeDisposition : NSInteger {
    NSURLSessionAuthChallengeUseCredential = 0,
    NSURLSessionAuthChallengePerformDefaultHandling = 1,
    NSURLSessionAuthChallengeCancelAuthenticationChallenge = 2,
    NSURLSessionAuthChallengeRejectProtectionSpace = 3
} NSURLSessionAuthChallengeDisposition;

NS_ASSUME_NONNULL_END
