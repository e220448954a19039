#include "Platform/desktop/UpdateService.h"

#import <Foundation/Foundation.h>

// The part of Sparkle 2 that is used. The framework is loaded at run time: it is not needed to
// build, and an application without it still runs.
@protocol QuorvelSparkleUpdater <NSObject>
@property(nonatomic, readonly) BOOL canCheckForUpdates;
@end

@protocol QuorvelSparkleController <NSObject>
- (nullable instancetype)initWithStartingUpdater:(BOOL)starting
                                 updaterDelegate:(nullable id)updaterDelegate
                              userDriverDelegate:(nullable id)userDriverDelegate;
@property(nonatomic, readonly, nonnull) NSObject<QuorvelSparkleUpdater>* updater;
- (void)checkForUpdates:(nullable id)sender;
@end

static NSString* const observedKey = @"canCheckForUpdates";
static void* const observationContext = (void*)&observationContext;

@interface QuorvelUpdateObserver : NSObject
- (nonnull instancetype)initWithUpdater:(nonnull NSObject<QuorvelSparkleUpdater>*)updater
                                changed:(std::function<void(bool)>)changed;
@end

@implementation QuorvelUpdateObserver {
    NSObject<QuorvelSparkleUpdater>* _updater;
    std::function<void(bool)> _changed;
}

- (instancetype)initWithUpdater:(NSObject<QuorvelSparkleUpdater>*)updater
                        changed:(std::function<void(bool)>)changed {
    self = [super init];
    if (self != nil) {
        _updater = updater;
        _changed = std::move(changed);
        [updater addObserver:self
                  forKeyPath:observedKey
                     options:NSKeyValueObservingOptionInitial | NSKeyValueObservingOptionNew
                     context:observationContext];
    }
    return self;
}

- (void)dealloc {
    [_updater removeObserver:self forKeyPath:observedKey context:observationContext];
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
    if (context == observationContext) {
        _changed(_updater.canCheckForUpdates);
    } else {
        [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
    }
}

@end

namespace quorvel {
namespace {

class SparkleService final : public UpdateService {
  public:
    explicit SparkleService(id<QuorvelSparkleController> controller) : controller_(controller) {}

    void observe(std::function<void(bool)> changed) override {
        observer_ = [[QuorvelUpdateObserver alloc] initWithUpdater:controller_.updater
                                                           changed:std::move(changed)];
    }

    void checkForUpdates() override { [controller_ checkForUpdates:nil]; }

  private:
    id<QuorvelSparkleController> controller_;
    QuorvelUpdateObserver* observer_ = nil;
};

// Returns the controller's class from the application's own Frameworks folder.
Class controllerClass() {
    NSString* folder = NSBundle.mainBundle.privateFrameworksPath;
    if (folder == nil) {
        return nil;
    }
    NSBundle* framework =
        [NSBundle bundleWithPath:[folder stringByAppendingPathComponent:@"Sparkle.framework"]];
    NSError* error = nil;
    if (framework == nil || ![framework loadAndReturnError:&error]) {
        return nil;
    }
    Class found = [framework classNamed:@"SPUStandardUpdaterController"];
    const BOOL fits = [found instancesRespondToSelector:@selector
                             (initWithStartingUpdater:updaterDelegate:userDriverDelegate:)] &&
                      [found instancesRespondToSelector:@selector(updater)] &&
                      [found instancesRespondToSelector:@selector(checkForUpdates:)];
    return fits ? found : nil;
}

} // namespace

std::unique_ptr<UpdateService> makeSystemUpdateService() {
    @autoreleasepool {
        if ([NSBundle.mainBundle objectForInfoDictionaryKey:@"SUFeedURL"] == nil) {
            return nullptr;
        }
        Class found = controllerClass();
        if (found == nil) {
            return nullptr;
        }
        id<QuorvelSparkleController> controller =
            [(id<QuorvelSparkleController>)[found alloc] initWithStartingUpdater:YES
                                                                 updaterDelegate:nil
                                                              userDriverDelegate:nil];
        return controller == nil ? nullptr : std::make_unique<SparkleService>(controller);
    }
}

} // namespace quorvel
