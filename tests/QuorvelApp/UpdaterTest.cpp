#include "QuorvelApp/Updater.h"

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

TEST(Updater, WithoutAServiceCanNeverCheck) {
    UpdaterController updater;
    EXPECT_FALSE(updater.isConfigured());
    EXPECT_FALSE(updater.canCheckForUpdates());
    updater.checkForUpdates();
}

class StubUpdates final : public UpdateService {
public:
    explicit StubUpdates(int& checks, std::function<void(bool)>& tell)
        : checks_(checks),
          tell_(tell) {}
    void observe(std::function<void(bool)> changed) override {
        tell_ = changed;
        changed(true);
    }
    void checkForUpdates() override { ++checks_; }

private:
    int& checks_;
    std::function<void(bool)>& tell_;
};

TEST(Updater, MirrorsTheServicesFlagAndStartsChecks) {
    int checks = 0;
    std::function<void(bool)> tell;
    UpdaterController updater(std::make_unique<StubUpdates>(checks, tell));
    EXPECT_TRUE(updater.isConfigured());
    EXPECT_TRUE(updater.canCheckForUpdates());
    tell(false);
    EXPECT_FALSE(updater.canCheckForUpdates());
    updater.checkForUpdates();
    EXPECT_EQ(checks, 1);
}

} // namespace
} // namespace quorvel::testing
