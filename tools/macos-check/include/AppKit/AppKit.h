#pragma once

#include <Foundation/Foundation.h>

#include <AppKit/NSApplications.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSRunningApplication : NSObject
@property(readonly, getter=isTerminated) BOOL terminated;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
@property(nullable, readonly, copy) NSURL* bundleURL;
@property(readonly) int processIdentifier;
@property(class, readonly, strong) NSRunningApplication* currentApplication;
@property(readonly) NSApplicationActivationPolicy activationPolicy;
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(int)process SINCE_MACOS(10.6);
- (BOOL)unhide;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
- (BOOL)activateFromApplication:(NSRunningApplication*)application
                        options:(NSApplicationActivationOptions)options SINCE_MACOS(14.0);
@end

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration SINCE_MACOS(10.15);
@property BOOL activates;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, copy) NSArray<NSRunningApplication*>* runningApplications SINCE_MACOS(10.6);
// The handler is called on a system queue.
- (void)openApplicationAtURL:(NSURL*)url
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(void (^_Nullable)(NSRunningApplication* _Nullable application,
                                                NSError* _Nullable error))handler
    SINCE_MACOS(10.15);
- (BOOL)openURL:(NSURL*)url;
- (NSImage*)iconForFile:(NSString*)path;
- (void)openURLs:(NSArray<NSURL*>*)urls
    withApplicationAtURL:(NSURL*)application
           configuration:(NSWorkspaceOpenConfiguration*)configuration
       completionHandler:(void (^_Nullable)(NSRunningApplication* _Nullable application,
                                            NSError* _Nullable error))handler SINCE_MACOS(10.15);
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)urls SINCE_MACOS(10.6);
@end

// To be used on the main thread.
@interface NSOpenPanel : NSObject
+ (instancetype)openPanel;
@property BOOL canChooseFiles;
@property BOOL canChooseDirectories;
@property BOOL allowsMultipleSelection;
@property(null_resettable, copy) NSString* prompt;
@property(null_resettable, copy) NSString* message;
@property(nullable, readonly, copy) NSURL* URL;
@property(readonly, copy) NSArray<NSURL*>* URLs;
- (NSModalResponse)runModal;
- (void)beginSheetModalForWindow:(NSWindow*)window
               completionHandler:(void (^)(NSModalResponse result))handler SINCE_MACOS(10.6);
@end

NS_ASSUME_NONNULL_END
