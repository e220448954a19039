#pragma once

#include "tests/support/BusProgram.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel::testing {

/// Tests that need a session bus, and are skipped without its daemon.
class BusTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!SessionBus::isAvailable()) {
            GTEST_SKIP() << "dbus-daemon is not installed";
        }
        (void)SessionBus::shared();
    }

    TemporaryFolder folder_;
};

} // namespace quorvel::testing
