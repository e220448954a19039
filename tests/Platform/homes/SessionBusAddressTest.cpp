#include "Platform/homes/SessionBusAddress.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;

class SessionBusAddressTest : public ::testing::Test {
protected:
    TemporaryFolder folder_;
    std::string runtime_ = folder_.path().string();
};

TEST_F(SessionBusAddressTest, IsWhatTheVariableSays) {
    write(folder_ / "bus", "");
    EXPECT_EQ(sessionBusAddress(
                  {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/a"}, {"XDG_RUNTIME_DIR", runtime_}}),
              "unix:path=/a");
}

TEST_F(SessionBusAddressTest, IsOtherwiseInTheRuntimeFolder) {
    EXPECT_EQ(sessionBusAddress({{"XDG_RUNTIME_DIR", runtime_}}), std::nullopt);
    write(folder_ / "bus", "");
    EXPECT_EQ(sessionBusAddress({{"XDG_RUNTIME_DIR", runtime_}}), "unix:path=" + runtime_ + "/bus");
    EXPECT_EQ(
        sessionBusAddress({{"DBUS_SESSION_BUS_ADDRESS", ""}, {"XDG_RUNTIME_DIR", runtime_ + "/"}}),
        "unix:path=" + runtime_ + "/bus");
}

TEST_F(SessionBusAddressTest, ARelativeRuntimeFolderIsIgnored) {
    write(folder_ / "bus", "");
    const auto relative = std::filesystem::relative(folder_.path()).string();
    EXPECT_EQ(sessionBusAddress({{"XDG_RUNTIME_DIR", relative}}), std::nullopt);
    EXPECT_EQ(sessionBusAddress({}), std::nullopt);
}

} // namespace
} // namespace quorvel
