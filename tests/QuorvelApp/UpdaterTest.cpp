#include "tests/QuorvelApp/StubServices.h"

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

TEST(UpdaterTest, WithoutAServiceCanNeverCheck) {
    UpdaterController updater;
    EXPECT_FALSE(updater.isConfigured());
    EXPECT_FALSE(updater.canCheckForUpdates());
    updater.checkForUpdates();
}

TEST(UpdaterTest, MirrorsTheServicesFlagAndStartsChecks) {
    auto service = std::make_unique<StubUpdates>();
    StubUpdates& updates = *service;
    UpdaterController updater(std::move(service));
    EXPECT_TRUE(updater.isConfigured());
    EXPECT_TRUE(updater.canCheckForUpdates());
    updates.canCheckChanged(false);
    EXPECT_FALSE(updater.canCheckForUpdates());
    updater.checkForUpdates();
    EXPECT_EQ(updates.checks, 1);
}

} // namespace
} // namespace quorvel::testing
