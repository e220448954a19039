#include "WebHost/Storage/WebStore_macos.h"

#include "Platform/files/FileSystem.h"
#include "WebHost/NSText_macos.h"
#include "WebHost/Storage/StoreIdentifier.h"

namespace quorvel {
namespace {

// The preferences belong to the bundle identifier, as the store does.
NSString* const ownerKey = @"QuorvelDataFolder";

NSString* ownerKeyOf(const std::string& store) { return nsText("QuorvelDataFolderOf" + store); }

std::string ownerOf(const std::string& store) {
    return textOf([NSUserDefaults.standardUserDefaults stringForKey:ownerKeyOf(store)]);
}

NSUUID* uuidOf(const std::string& store) {
    return [[NSUUID alloc] initWithUUIDString:nsText(store)];
}

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
        const std::string store = storeIdentifier(home, ownerOf);
        [NSUserDefaults.standardUserDefaults setObject:nsText(home) forKey:ownerKeyOf(store)];
        return {[WKWebsiteDataStore dataStoreForIdentifier:uuidOf(store)]};
    }
    return openStoreOfBundle(home, name);
}

void removeAbandonedStores() {
    if (@available(macOS 14.0, *)) {
        [WKWebsiteDataStore fetchAllDataStoreIdentifiers:^(NSArray<NSUUID*>* found) {
          std::vector<std::string> stores;
          for (NSUUID* store in found) {
              stores.push_back(textOf(store.UUIDString));
          }
          for (const std::string& store : abandonedStores(stores, ownerOf)) {
              [WKWebsiteDataStore removeDataStoreForIdentifier:uuidOf(store)
                                             completionHandler:^(NSError* error) {
                                               if (error == nil) {
                                                   [NSUserDefaults.standardUserDefaults
                                                       setObject:nil
                                                          forKey:ownerKeyOf(store)];
                                               }
                                             }];
          }
        }];
    }
}

void clearWebStore(WKWebsiteDataStore* store, void (^done)(void)) {
    [store removeDataOfTypes:[WKWebsiteDataStore allWebsiteDataTypes]
               modifiedSince:[NSDate distantPast]
           completionHandler:done];
}

} // namespace quorvel
