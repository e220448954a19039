#pragma once

#include <AppKit/AppKit.h>

// What WebKit.h includes about frames, scripts and their messages.

NS_ASSUME_NONNULL_BEGIN

@class WKWebView;

@interface WKSecurityOrigin : NSObject
@property(nonatomic, readonly, copy) NSString* protocol;
@property(nonatomic, readonly, copy) NSString* host;
@property(nonatomic, readonly) NSInteger port; // 0 for the protocol's own
@end

@interface WKFrameInfo : NSObject
@property(nonatomic, readonly, getter=isMainFrame) BOOL mainFrame;
@property(nonatomic, readonly) WKSecurityOrigin* securityOrigin SINCE_MACOS(10.11);
@end

SINCE_MACOS(11.0)
@interface WKContentWorld : NSObject
@property(class, nonatomic, readonly) WKContentWorld* pageWorld;
+ (WKContentWorld*)worldWithName:(NSString*)name;
@end

@interface WKScriptMessage : NSObject
@property(nonatomic, readonly, copy) id body;
@property(nullable, nonatomic, readonly, weak) WKWebView* webView;
@property(nonatomic, readonly, copy) WKFrameInfo* frameInfo;
@end

typedef enum WKUserScriptInjectionTime : NSInteger {
    WKUserScriptInjectionTimeAtDocumentStart
} WKUserScriptInjectionTime;

@interface WKUserScript : NSObject
- (instancetype)initWithSource:(NSString*)source
                 injectionTime:(WKUserScriptInjectionTime)time
              forMainFrameOnly:(BOOL)isForMainFrameOnly
                inContentWorld:(WKContentWorld*)world SINCE_MACOS(11.0);
@end

@class WKUserContentController;
@protocol WKScriptMessageHandler <NSObject>
- (void)userContentController:(WKUserContentController*)controller
      didReceiveScriptMessage:(WKScriptMessage*)message;
@end

// Its handlers are retained.
@interface WKUserContentController : NSObject
- (void)addUserScript:(WKUserScript*)script;
- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)handler
                   contentWorld:(WKContentWorld*)world
                           name:(NSString*)name SINCE_MACOS(11.0);
@end

NS_ASSUME_NONNULL_END
