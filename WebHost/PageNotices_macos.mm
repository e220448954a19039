#include "WebHost/PageNotices_macos.h"

#include "Base/TerminalText.h"
#include "WebHost/AnswerOnce_macos.h"
#include "WebHost/BadgeScript.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/NoticeScript_macos.h"
#include "WebHost/PageText.h"
#include "WebHost/ScriptForwarder_macos.h"
#include "WebHost/WebAddress.h"

#include <dispatch/dispatch.h>

#import <UserNotifications/UserNotifications.h>

#include <utility>

namespace {

constexpr std::size_t longestTitle = 120;
constexpr std::size_t longestBody = 500;
constexpr const char* noticeKind = "notifications"; // as on other systems

std::string jsonOf(const std::string& key, const std::string& value) {
    return "\"" + key + "\":\"" + value + "\"";
}

UNMutableNotificationContent* contentOf(NSDictionary* notice) {
    UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
    content.title =
        quorvel::nsText(quorvel::withoutUnsafe(quorvel::textIn(notice[@"title"]), longestTitle));
    content.body =
        quorvel::nsText(quorvel::pageText(quorvel::textIn(notice[@"body"]), longestBody));
    return content;
}

} // namespace

@interface QuorvelPageNotices () <WKScriptMessageHandler, UNUserNotificationCenterDelegate>
@end

@implementation QuorvelPageNotices {
    quorvel::NoticeCallbacks _callbacks;
    quorvel::PermissionStore* _permissions;
    std::optional<quorvel::RateCap> _cap;
    UNUserNotificationCenter* _center;
}

- (instancetype)initWithCallbacks:(quorvel::NoticeCallbacks)callbacks
                      permissions:(quorvel::PermissionStore&)permissions {
    self = [super init];
    if (self != nil) {
        _callbacks = std::move(callbacks);
        _permissions = &permissions;
        _cap = quorvel::notificationCap();
        // Without an identifier, the system raises an exception.
        if (NSBundle.mainBundle.bundleIdentifier != nil) {
            _center = [UNUserNotificationCenter currentNotificationCenter];
            _center.delegate = self;
        }
    }
    return self;
}

- (void)addToController:(WKUserContentController*)controller {
    WKContentWorld* const world = [WKContentWorld worldWithName:@(quorvel::badgeWorld)];
    quorvel::addScript(controller, quorvel::noticeListenerScript, world);
    quorvel::addScript(controller, quorvel::noticePageScript, [WKContentWorld pageWorld]);
    [controller addScriptMessageHandler:[[QuorvelScriptForwarder alloc] initWithHandler:self]
                           contentWorld:world
                                   name:@(quorvel::noticeHandler)];
}

- (void)userContentController:(WKUserContentController*)controller
      didReceiveScriptMessage:(WKScriptMessage*)message {
    (void)controller;
    QuorvelPage* const page = _callbacks.page();
    if (page == nil || message.webView != page.view || !message.frameInfo.mainFrame ||
        ![message.body isKindOfClass:[NSDictionary class]]) {
        return;
    }
    NSDictionary* const notice = (NSDictionary*)message.body;
    const std::string kind = quorvel::textIn(notice[@"kind"]);
    const id number = notice[@"id"];
    const long long identifier =
        [number isKindOfClass:[NSNumber class]] ? ((NSNumber*)number).longLongValue : 0;
    if (kind == "state") {
        [self tellPermission];
    } else if (kind == "ask") {
        [self askOn:page];
    } else if (kind == "show") {
        [self show:notice identifier:identifier];
    } else if (kind == "close") {
        [_center removeDeliveredNotificationsWithIdentifiers:@[ [self nameOf:identifier] ]];
    }
}

- (NSString*)nameOf:(long long)identifier {
    return quorvel::nsText(std::to_string(identifier));
}

// The text consists of our own words and numbers only.
- (void)tell:(const std::string&)members {
    [_callbacks.page().view
        callAsyncJavaScript:quorvel::nsText(quorvel::noticeAnswerScript)
                  arguments:@{@"answer" : quorvel::nsText("{" + members + "}")}
                    inFrame:nil
             inContentWorld:[WKContentWorld worldWithName:@(quorvel::badgeWorld)]
          completionHandler:nil];
}

- (void)tellEvent:(const char*)event identifier:(long long)identifier {
    [self tell:jsonOf("event", event) + ",\"id\":" + std::to_string(identifier)];
}

- (std::optional<bool>)answer {
    QuorvelPage* const page = _callbacks.page();
    return page == nil ? std::nullopt
                       : _permissions->answer(quorvel::originOf([page address]), noticeKind);
}

- (void)tellPermission {
    const std::optional<bool> answer = [self answer];
    [self tell:jsonOf("permission", !answer ? "default" : *answer ? "granted" : "denied")];
}

- (void)askOn:(QuorvelPage*)page {
    if (_center == nil || !page.window.hasRecentGesture) {
        [self tellPermission];
        return;
    }
    __weak QuorvelPageNotices* const weakSelf = self;
    [page decide:noticeKind
            text:quorvel::hostOf([page address]) + " wants to " +
                 quorvel::permissionWords(noticeKind) + "."
            done:[weakSelf](bool isAllowed) {
                [weakSelf tellPermission];
                if (isAllowed) {
                    [weakSelf askSystem];
                }
            }];
}

// The user allows the clone once, and each site besides.
- (void)askSystem {
    [_center requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                           completionHandler:^(BOOL isGranted, NSError* error) {
                             (void)isGranted;
                             (void)error;
                           }];
}

- (void)show:(NSDictionary*)notice identifier:(long long)identifier {
    if (_center == nil || [self answer] != true || !_cap->admits(quorvel::FloodClock::now())) {
        [self tellEvent:"error" identifier:identifier];
        return;
    }
    UNNotificationRequest* const request =
        [UNNotificationRequest requestWithIdentifier:[self nameOf:identifier]
                                             content:contentOf(notice)
                                             trigger:nil];
    __weak QuorvelPageNotices* const weakSelf = self;
    [_center addNotificationRequest:request
              withCompletionHandler:^(NSError* error) {
                // On a queue of the system's.
                dispatch_async(dispatch_get_main_queue(), ^{
                  [weakSelf tellEvent:error == nil ? "show" : "error" identifier:identifier];
                });
              }];
}

- (void)clicked:(long long)identifier {
    _callbacks.clicked();
    [self tellEvent:"click" identifier:identifier];
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))completionHandler {
    const auto answer =
        quorvel::answerOnce(completionHandler, UNNotificationPresentationOptionNone);
    (void)center;
    (void)notification;
    answer(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionList);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler {
    const auto answer = quorvel::answerOnce(completionHandler);
    (void)center;
    const long long identifier = response.notification.request.identifier.longLongValue;
    __weak QuorvelPageNotices* const weakSelf = self;
    dispatch_async(dispatch_get_main_queue(), ^{
      [weakSelf clicked:identifier];
      answer();
    });
}

@end
