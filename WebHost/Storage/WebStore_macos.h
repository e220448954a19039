#pragma once

#import <WebKit/WebKit.h>

#include <string>

namespace quorvel {

/// Where the system keeps a clone's cookies and other web data.
struct WebStore {
    WKWebsiteDataStore* _Nullable store;
    std::string problem{}; ///< if there is no store: why, as a sentence
};

/// Opens the store of the clone with that data folder. Before macOS 14 there is one for each bundle
/// identifier, and a second clone with the same identifier is refused. To be called once. Throws
/// `PlatformError`.
[[nodiscard]] WebStore openWebStore(const std::string& home, const std::string& name);

/// Has the stores of deleted clones removed, as far as these had this bundle identifier.
void removeAbandonedStores();

/// Removes everything that pages have stored, and then calls `done`.
void clearWebStore(WKWebsiteDataStore* _Nonnull store, void (^_Nonnull done)(void));

} // namespace quorvel
