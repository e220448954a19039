#include "Platform/windows/PlasmaWindows_linux.h"

#include "tests/support/BusTest.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;

class PlasmaWindowsTest : public BusTest {};

TEST_F(PlasmaWindowsTest, FindsAWindowByItsClassAndShowsIt) {
    const BusProgram desktop(QUORVEL_WINDOW_SEARCH, folder_ / "log");
    EXPECT_TRUE(activateInPlasma({.processes = {1}, .windowClass = "Two"}));
    EXPECT_EQ(desktop.asked(), "Run 0_{two}\n");
    EXPECT_TRUE(activateInPlasma({.processes = {1}, .windowClass = "One"}));
    EXPECT_EQ(desktop.asked(), "Run 0_{two}\nRun 0_{one}\n");
}

TEST_F(PlasmaWindowsTest, FindsAWindowByItsProcessWhereTheDesktopNamesIt) {
    const BusProgram desktop(QUORVEL_WINDOW_SEARCH, folder_ / "log");
    EXPECT_TRUE(activateInPlasma({.processes = {12, 4711}}));
    EXPECT_EQ(desktop.asked(), "Run 0_{two}\n");
}

TEST_F(PlasmaWindowsTest, ShowsNoWindowOfAnother) {
    const BusProgram desktop(QUORVEL_WINDOW_SEARCH, folder_ / "log");
    EXPECT_FALSE(activateInPlasma({.processes = {12}}));
    EXPECT_FALSE(activateInPlasma({.processes = {12}, .windowClass = "Three"}));
    EXPECT_EQ(desktop.asked(), "run failed\nunloaded\nrun failed\nunloaded\n");
}

TEST_F(PlasmaWindowsTest, FindsAWindowThatLooksLikeTheOriginalsByItsProcess) {
    const BusProgram desktop(QUORVEL_WINDOW_SEARCH, folder_ / "log");
    EXPECT_TRUE(activateInPlasma({.processes = {12, 815}, .windowClass = "Three"}));
    EXPECT_EQ(desktop.asked(), "run found\nunloaded\n");
}

TEST_F(PlasmaWindowsTest, FindsNothingOnAnotherDesktop) {
    EXPECT_FALSE(activateInPlasma({.processes = {4711}, .windowClass = "One"}));
}

} // namespace
} // namespace quorvel
