#include "WebHost/StoreIdentifier.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace quorvel {
namespace {

TEST(StoreIdentifierTest, IsAUUIDThatStaysTheSame) {
    const auto bytes = storeIdentifier("/Users/me/QuorvelInstances/Work");
    EXPECT_EQ(bytes[6] >> 4U, 8);
    EXPECT_EQ(bytes[8] >> 6U, 2);
    EXPECT_EQ(bytes, storeIdentifier("/Users/me/QuorvelInstances/Work/"));
    // Another value would leave the data of existing clones behind.
    const std::array<std::uint8_t, 16> known{0x57, 0xf6, 0x11, 0xdf, 0xdb, 0x13, 0x8b, 0x38,
                                             0xb9, 0xe6, 0x5c, 0x36, 0xd3, 0xa3, 0xd0, 0x07};
    EXPECT_EQ(bytes, known);
}

TEST(StoreIdentifierTest, EachFolderHasItsOwn) {
    std::set<std::array<std::uint8_t, 16>> all;
    constexpr int folders = 1000;
    for (int number = 0; number < folders; ++number) {
        all.insert(storeIdentifier("/Users/me/QuorvelInstances/" + std::to_string(number)));
    }
    EXPECT_EQ(all.size(), folders);
}

} // namespace
} // namespace quorvel
