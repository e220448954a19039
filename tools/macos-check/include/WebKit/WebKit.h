#pragma once

#include <AppKit/AppKit.h>

#include <Network/Network.h>
#include <WebKit/WebKitScripts.h>

NS_ASSUME_NONNULL_BEGIN

@class WKWebView;

SINCE_MACOS(10.11)
@interface WKWebsiteDataRecord : NSObject
@property(nonatomic, readonly, copy) NSString* displayName;
@property(nonatomic, readonly, copy) NSSet<NSString*>* dataTypes;
@end

SINCE_MACOS(10.11)
@interface WKWebsiteDataStore : NSObject
+ (WKWebsiteDataStore*)defaultDataStore;
+ (WKWebsiteDataStore*)dataStoreForIdentifier:(NSUUID*)identifier SINCE_MACOS(14.0);
+ (void)fetchAllDataStoreIdentifiers:(void (^)(NSArray<NSUUID*>* identifiers))completionHandler
    SINCE_MACOS(14.0);
+ (void)removeDataStoreForIdentifier:(NSUUID*)identifier
                   completionHandler:(void (^)(NSError* _Nullable error))completionHandler
    SINCE_MACOS(14.0);
+ (NSSet<NSString*>*)allWebsiteDataTypes;
@property(nullable, nonatomic, copy)
    NSArray<nw_proxy_config_t>* proxyConfigurations SINCE_MACOS(14.0);
- (void)fetchDataRecordsOfTypes:(NSSet<NSString*>*)types
              completionHandler:(void (^)(NSArray<WKWebsiteDataRecord*>* records))handler;
- (void)removeDataOfTypes:(NSSet<NSString*>*)types
           forDataRecords:(NSArray<WKWebsiteDataRecord*>*)records
        completionHandler:(void (^)(void))handler;
- (void)removeDataOfTypes:(NSSet<NSString*>*)types
            modifiedSince:(NSDate*)date
        completionHandler:(void (^)(void))handler;
@end

@interface WKPreferences : NSObject
@property(nonatomic) BOOL javaScriptCanOpenWindowsAutomatically;
@property(nonatomic, getter=isElementFullscreenEnabled)
    BOOL elementFullscreenEnabled SINCE_MACOS(12.3);
@end

typedef NSUInteger WKAudiovisualMediaTypes;
enum : NSUInteger { WKAudiovisualMediaTypeAudio SINCE_MACOS(10.12) = 1 << 0 };

@interface WKWebViewConfiguration : NSObject
@property(nonatomic, strong) WKPreferences* preferences;
@property(nonatomic, strong) WKUserContentController* userContentController;
@property(nonatomic, strong) WKWebsiteDataStore* websiteDataStore SINCE_MACOS(10.11);
@property(nullable, nonatomic, copy) NSString* applicationNameForUserAgent SINCE_MACOS(10.11);
@property(nonatomic)
    WKAudiovisualMediaTypes mediaTypesRequiringUserActionForPlayback SINCE_MACOS(10.12);
@end

@interface WKNavigation : NSObject
@end

typedef enum WKNavigationType : NSInteger {
    WKNavigationTypeLinkActivated,
    WKNavigationTypeFormSubmitted
} WKNavigationType;

@interface WKNavigationAction : NSObject
@property(nonatomic, readonly, copy) WKFrameInfo* sourceFrame;
@property(nullable, nonatomic, readonly, copy) WKFrameInfo* targetFrame;
@property(nonatomic, readonly) WKNavigationType navigationType;
@property(nonatomic, readonly, copy) NSURLRequest* request;
@property(nonatomic, readonly) BOOL shouldPerformDownload SINCE_MACOS(11.3);
@end

@interface WKNavigationResponse : NSObject
@property(nonatomic, readonly, getter=isForMainFrame) BOOL forMainFrame;
@property(nonatomic, readonly, copy) NSURLResponse* response;
@property(nonatomic, readonly) BOOL canShowMIMEType;
@end

@interface WKFindConfiguration : NSObject
@property(nonatomic) BOOL backwards;
@property(nonatomic) BOOL caseSensitive;
@property(nonatomic) BOOL wraps;
@end

@interface WKFindResult : NSObject
@property(nonatomic, readonly) BOOL matchFound;
@end

typedef enum WKFullscreenState : NSInteger {
    WKFullscreenStateNotInFullscreen,
    WKFullscreenStateEnteringFullscreen,
    WKFullscreenStateInFullscreen,
    WKFullscreenStateExitingFullscreen
} WKFullscreenState SINCE_MACOS(13.0);

typedef enum WKMediaCaptureState : NSInteger {
    WKMediaCaptureStateNone,
    WKMediaCaptureStateActive,
    WKMediaCaptureStateMuted
} WKMediaCaptureState SINCE_MACOS(12.0);

@protocol WKNavigationDelegate;
@protocol WKUIDelegate;

// To be used on the main thread. Its delegates are not retained.
@interface WKWebView : NSView
- (instancetype)initWithFrame:(CGRect)frame configuration:(WKWebViewConfiguration*)configuration;
@property(nullable, nonatomic, weak) id<WKNavigationDelegate> navigationDelegate;
@property(nullable, nonatomic, weak) id<WKUIDelegate> UIDelegate;
@property(nullable, nonatomic, readonly, copy) NSString* title;
@property(nullable, nonatomic, readonly, copy) NSURL* URL;
@property(nonatomic, readonly, getter=isLoading) BOOL loading;
@property(nonatomic, readonly) BOOL canGoBack;
@property(nonatomic, readonly) BOOL canGoForward;
@property(nonatomic) BOOL allowsBackForwardNavigationGestures;
@property(nonatomic) BOOL allowsMagnification;
@property(nonatomic) CGFloat pageZoom SINCE_MACOS(11.0);
@property(nullable, nonatomic, copy) NSString* customUserAgent SINCE_MACOS(10.11);
- (void)setCameraCaptureState:(WKMediaCaptureState)state
            completionHandler:(void (^_Nullable)(void))handler SINCE_MACOS(12.0);
- (void)setMicrophoneCaptureState:(WKMediaCaptureState)state
                completionHandler:(void (^_Nullable)(void))handler SINCE_MACOS(12.0);
@property(nonatomic, readonly) WKFullscreenState fullscreenState SINCE_MACOS(13.0);
- (nullable WKNavigation*)loadRequest:(NSURLRequest*)request;
- (nullable WKNavigation*)loadHTMLString:(NSString*)html baseURL:(nullable NSURL*)base;
- (WKNavigation*)loadSimulatedRequest:(NSURLRequest*)request
                   responseHTMLString:(NSString*)html SINCE_MACOS(12.0);
- (nullable WKNavigation*)reload;
- (void)stopLoading;
- (void)goBack:(nullable id)sender;
- (void)goForward:(nullable id)sender;
- (void)reload:(nullable id)sender;
- (void)reloadFromOrigin:(nullable id)sender;
- (void)stopLoading:(nullable id)sender;
- (void)evaluateJavaScript:(NSString*)script
                   inFrame:(nullable WKFrameInfo*)frame
            inContentWorld:(WKContentWorld*)world
         completionHandler:(void (^_Nullable)(id _Nullable result, NSError* _Nullable error))handler
    SINCE_MACOS(11.0);
- (void)callAsyncJavaScript:(NSString*)body
                  arguments:(nullable NSDictionary<NSString*, id>*)arguments
                    inFrame:(nullable WKFrameInfo*)frame
             inContentWorld:(WKContentWorld*)world
          completionHandler:(void (^_Nullable)(id _Nullable result,
                                               NSError* _Nullable error))handler SINCE_MACOS(11.0);
- (void)findString:(NSString*)text
    withConfiguration:(nullable WKFindConfiguration*)configuration
    completionHandler:(void (^)(WKFindResult* result))handler SINCE_MACOS(11.0);
- (NSPrintOperation*)printOperationWithPrintInfo:(NSPrintInfo*)info SINCE_MACOS(11.0);
@end

NS_ASSUME_NONNULL_END

#include <WebKit/WebKitDelegates.h>
