#pragma once

// What WebKit.h includes about its delegates. Each handler has to be called exactly once.

NS_ASSUME_NONNULL_BEGIN

typedef enum WKNavigationActionPolicy : NSInteger {
    WKNavigationActionPolicyCancel,
    WKNavigationActionPolicyAllow,
    WKNavigationActionPolicyDownload SINCE_MACOS(11.3)
} WKNavigationActionPolicy;

typedef enum WKNavigationResponsePolicy : NSInteger {
    WKNavigationResponsePolicyCancel,
    WKNavigationResponsePolicyAllow,
    WKNavigationResponsePolicyDownload SINCE_MACOS(11.3)
} WKNavigationResponsePolicy;

@protocol WKDownloadDelegate;
SINCE_MACOS(11.3)
@interface WKDownload : NSObject
@property(nullable, nonatomic, readonly) NSURLRequest* originalRequest;
@property(nullable, nonatomic, weak) id<WKDownloadDelegate> delegate;
@property(readonly) NSProgress* progress;
- (void)cancel:(void (^_Nullable)(NSData* _Nullable resumeData))handler;
@end

SINCE_MACOS(11.3)
@protocol WKDownloadDelegate <NSObject>
- (void)download:(WKDownload*)download
    decideDestinationUsingResponse:(NSURLResponse*)response
                 suggestedFilename:(NSString*)name
                 completionHandler:(void (^)(NSURL* _Nullable destination))completionHandler;
@optional
- (void)downloadDidFinish:(WKDownload*)download;
- (void)download:(WKDownload*)download
    didFailWithError:(NSError*)error
          resumeData:(nullable NSData*)resumeData;
@end

@protocol WKNavigationDelegate <NSObject>
@optional
- (void)webView:(WKWebView*)view
    decidePolicyForNavigationAction:(WKNavigationAction*)action
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler;
- (void)webView:(WKWebView*)view
    decidePolicyForNavigationResponse:(WKNavigationResponse*)response
                      decisionHandler:(void (^)(WKNavigationResponsePolicy))decisionHandler;
- (void)webView:(WKWebView*)view
     navigationAction:(WKNavigationAction*)action
    didBecomeDownload:(WKDownload*)download SINCE_MACOS(11.3);
- (void)webView:(WKWebView*)view
    navigationResponse:(WKNavigationResponse*)response
     didBecomeDownload:(WKDownload*)download SINCE_MACOS(11.3);
- (void)webView:(WKWebView*)view
    didStartProvisionalNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)view
    didReceiveServerRedirectForProvisionalNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)view
    didFailProvisionalNavigation:(null_unspecified WKNavigation*)navigation
                       withError:(NSError*)error;
- (void)webView:(WKWebView*)view didCommitNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)view didFinishNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)view
    didFailNavigation:(null_unspecified WKNavigation*)navigation
            withError:(NSError*)error;
- (void)webView:(WKWebView*)view
    didReceiveAuthenticationChallenge:(NSURLAuthenticationChallenge*)challenge
                    completionHandler:
                        (void (^)(NSURLSessionAuthChallengeDisposition disposition,
                                  NSURLCredential* _Nullable credential))completionHandler;
- (void)webViewWebContentProcessDidTerminate:(WKWebView*)view SINCE_MACOS(10.11);
@end

@interface WKWindowFeatures : NSObject
@end

@interface WKOpenPanelParameters : NSObject
@property(nonatomic, readonly) BOOL allowsMultipleSelection;
@property(nonatomic, readonly) BOOL allowsDirectories SINCE_MACOS(10.13.4);
@end

typedef enum WKMediaCaptureType : NSInteger {
    WKMediaCaptureTypeCamera,
    WKMediaCaptureTypeMicrophone,
    WKMediaCaptureTypeCameraAndMicrophone
} WKMediaCaptureType SINCE_MACOS(12.0);

typedef enum WKPermissionDecision : NSInteger {
    WKPermissionDecisionPrompt,
    WKPermissionDecisionGrant,
    WKPermissionDecisionDeny
} WKPermissionDecision SINCE_MACOS(12.0);

@protocol WKUIDelegate <NSObject>
@optional
- (nullable WKWebView*)webView:(WKWebView*)view
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)action
                    windowFeatures:(WKWindowFeatures*)features;
- (void)webViewDidClose:(WKWebView*)view SINCE_MACOS(10.11);
- (void)webView:(WKWebView*)view
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler;
- (void)webView:(WKWebView*)view
    runJavaScriptConfirmPanelWithMessage:(NSString*)message
                        initiatedByFrame:(WKFrameInfo*)frame
                       completionHandler:(void (^)(BOOL result))completionHandler;
- (void)webView:(WKWebView*)view
    runJavaScriptTextInputPanelWithPrompt:(NSString*)prompt
                              defaultText:(nullable NSString*)text
                         initiatedByFrame:(WKFrameInfo*)frame
                        completionHandler:(void (^)(NSString* _Nullable result))completionHandler;
- (void)webView:(WKWebView*)view
    runOpenPanelWithParameters:(WKOpenPanelParameters*)parameters
              initiatedByFrame:(WKFrameInfo*)frame
             completionHandler:(void (^)(NSArray<NSURL*>* _Nullable urls))completionHandler
    SINCE_MACOS(10.12);
- (void)webView:(WKWebView*)view
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origin
                          initiatedByFrame:(WKFrameInfo*)frame
                                      type:(WKMediaCaptureType)type
                           decisionHandler:(void (^)(WKPermissionDecision decision))decisionHandler
    SINCE_MACOS(12.0);
@end

NS_ASSUME_NONNULL_END
