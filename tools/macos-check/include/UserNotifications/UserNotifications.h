#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@class UNUserNotificationCenter;

@interface UNNotificationContent : NSObject
@end

SINCE_MACOS(10.14)
@interface UNMutableNotificationContent : UNNotificationContent
@property(copy) NSString* title;
@property(copy) NSString* body;
@end

@class UNNotificationTrigger;
SINCE_MACOS(10.14)
@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNNotificationContent*)content
                              trigger:(nullable UNNotificationTrigger*)trigger;
@property(readonly, copy) NSString* identifier;
@end

@interface UNNotification : NSObject
@property(readonly, copy) UNNotificationRequest* request;
@end

@interface UNNotificationResponse : NSObject
@property(readonly, copy) UNNotification* notification;
@end

typedef NSUInteger UNAuthorizationOptions;
enum : NSUInteger { UNAuthorizationOptionSound = 1 << 1, UNAuthorizationOptionAlert = 1 << 2 };

typedef NSUInteger UNNotificationPresentationOptions;
static const UNNotificationPresentationOptions UNNotificationPresentationOptionNone = 0;
enum : NSUInteger {
    UNNotificationPresentationOptionList SINCE_MACOS(11.0) = 1 << 3,
    UNNotificationPresentationOptionBanner SINCE_MACOS(11.0) = 1 << 4
};

@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler
    SINCE_MACOS(10.14);
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler SINCE_MACOS(10.14);
@end

// The handlers are called on system queues.
SINCE_MACOS(10.14)
@interface UNUserNotificationCenter : NSObject
+ (UNUserNotificationCenter*)currentNotificationCenter;
@property(nullable, weak) id<UNUserNotificationCenterDelegate> delegate;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError* _Nullable error))handler;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(nullable void (^)(NSError* _Nullable error))handler;
- (void)removeDeliveredNotificationsWithIdentifiers:(NSArray<NSString*>*)identifiers;
@end

NS_ASSUME_NONNULL_END
