#include "WebHost/Window/WindowState.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;

TEST(WindowStateTest, IsReadAsItWasWritten) {
    const TemporaryFolder home;
    const std::string file = (home / "web/window.json").string();
    const WindowState usual;
    EXPECT_EQ(readWindowState(file), usual) << "no file";
    const WindowState state{801, 602, 133, true, true, true, "https://example.com/ä?b"};
    EXPECT_TRUE(writeWindowState(home.path(), file, state));
    EXPECT_EQ(readWindowState(file), state);
    struct stat facts {};
    ASSERT_EQ(::stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    EXPECT_TRUE(writeWindowState(home.path(), file, usual));
    EXPECT_EQ(readWindowState(file), usual);
}

TEST(WindowStateTest, InvalidValuesBecomeTheDefaults) {
    const TemporaryFolder home;
    const std::string file = (home / "window.json").string();
    const WindowState usual;
    for (const char* text :
         {"", "{", "[]", R"({"numbers":{"width":"0","height":"-5","zoom":"29"}})",
          R"({"numbers":{"width":"99999","height":"1e9","zoom":"501"}})",
          R"({"numbers":{"width":"","height":"x","zoom":"100 "}})",
          R"({"page":"file:///etc/passwd"})", R"({"page":"example.com"})",
          R"({"page":"javascript:1"})"}) {
        write(file, text);
        EXPECT_EQ(readWindowState(file), usual) << text;
    }
    write(file, R"({"numbers":{"width":"500"},"isMuted":true,"other":1})");
    WindowState some;
    some.width = 500;
    some.isMuted = true;
    EXPECT_EQ(readWindowState(file), some);
}

} // namespace
} // namespace quorvel
