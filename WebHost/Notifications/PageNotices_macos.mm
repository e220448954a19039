#include "WebHost/Notifications/PageNotices_macos.h"

#include "Base/TerminalText.h"
#include "WebHost/AnswerOnce_macos.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Notifications/BadgeScript.h"
#include "WebHost/Notifications/NoticeScript_macos.h"
#include "WebHost/Pages/PageText.h"
#include "WebHost/Pages/ScriptForwarder_macos.h"

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

bool isName(const std::string& text) {
    constexpr std::size_t longest = 64;
    return !text.empty() && text.size() <= longest &&
           text.find_first_not_of("0123456789.") == std::string::npos;
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
    const std::string name = quorvel::textIn(notice[@"name"]);
    if (kind == "state") {
        [self tellPermission];
    } else if (kind == "ask") {
        [self askOn:page];
    } else if (kind == "show" && isName(name)) {
        [self show:notice name:name];
    } else if (kind == "close" && isName(name)) {
        [_center removeDeliveredNotificationsWithIdentifiers:@[ quorvel::nsText(name) ]];
    }
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

- (void)tellEvent:(const char*)event name:(const std::string&)name {
    [self tell:jsonOf("event", event) + "," + jsonOf("name", name)];
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

// The system asks the user once for the clone; each site has its own answer besides.
- (void)askSystem {
    [_center requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                           completionHandler:^(BOOL isGranted, NSError* error) {
                             (void)isGranted;
                             (void)error;
                           }];
}

- (void)show:(NSDictionary*)notice name:(const std::string&)name {
    if (_center == nil || [self answer] != true || !_cap->admits(quorvel::FloodClock::now())) {
        [self tellEvent:"error" name:name];
        return;
    }
    UNNotificationRequest* const request =
        [UNNotificationRequest requestWithIdentifier:quorvel::nsText(name)
                                             content:contentOf(notice)
                                             trigger:nil];
    __weak QuorvelPageNotices* const weakSelf = self;
    const std::string asked = name;
    [_center addNotificationRequest:request
              withCompletionHandler:^(NSError* error) {
                // On a queue of the system's.
                dispatch_async(dispatch_get_main_queue(), ^{
                  [weakSelf tellEvent:error == nil ? "show" : "error" name:asked];
                });
              }];
}

- (void)clicked:(const std::string&)name {
    _callbacks.clicked();
    if (isName(name)) {
        [self tellEvent:"click" name:name];
    }
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
    const std::string name = quorvel::textOf(response.notification.request.identifier);
    __weak QuorvelPageNotices* const weakSelf = self;
    dispatch_async(dispatch_get_main_queue(), ^{
      [weakSelf clicked:name];
      answer();
    });
}

@end
