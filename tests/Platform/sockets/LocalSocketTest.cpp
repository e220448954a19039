#include "Platform/sockets/LocalSocket.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

TEST(LocalSocketTest, HasItsNameInAFolderWhosePathNoAddressHolds) {
    const TemporaryFolder folder;
    const fs::path deep = folder / std::string(200, 'x');
    fs::create_directory(deep);
    const FileHandle socket = LocalSocket::listenIn(deep, "name");
    EXPECT_GE(socket.descriptor(), 0);
    EXPECT_TRUE(fs::is_socket(deep / "name"));
}

TEST(LocalSocketTest, ANameThatNoAddressHoldsIsNotCutOff) {
    const TemporaryFolder folder;
    const std::string name(120, 'x');
    EXPECT_LT(LocalSocket::listenIn(folder.path(), name).descriptor(), 0);
    EXPECT_TRUE(fs::is_empty(folder.path()));
    EXPECT_EQ(LocalSocket::ask(folder.path(), name, "text", std::chrono::seconds(1)), "");
}

} // namespace
} // namespace quorvel
