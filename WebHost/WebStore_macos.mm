#include "WebHost/WebStore_macos.h"

#include "Platform/files/FileSystem.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/StoreIdentifier.h"

namespace quorvel {
namespace {

// The preferences belong to the bundle identifier, as the store does.
NSString* const ownerKey = @"QuorvelDataFolder";

WebStore openStoreOfBundle(const std::string& home, const std::string& name) {
    NSUserDefaults* const preferences = NSUserDefaults.standardUserDefaults;
    const std::string owner = textOf([preferences stringForKey:ownerKey]);
    if (!owner.empty() && owner != home && itemExists(owner)) {
        return {nil, "“" + name +
                         "” has the same bundle identifier as another web clone, with which it "
                         "would share its cookies; create it again with another identifier"};
    }
    [preferences setObject:nsText(home) forKey:ownerKey];
    return {[WKWebsiteDataStore defaultDataStore]};
}

} // namespace

WebStore openWebStore(const std::string& home, const std::string& name) {
    if (@available(macOS 14.0, *)) {
        const auto bytes = storeIdentifier(home);
        NSUUID* const identifier = [[NSUUID alloc] initWithUUIDBytes:bytes.data()];
        return {[WKWebsiteDataStore dataStoreForIdentifier:identifier]};
    }
    return openStoreOfBundle(home, name);
}

void clearWebStore(WKWebsiteDataStore* store, void (^done)(void)) {
    [store removeDataOfTypes:[WKWebsiteDataStore allWebsiteDataTypes]
               modifiedSince:[NSDate distantPast]
           completionHandler:done];
}

} // namespace quorvel
