#include "Platform/processes/InterruptFlag.h"

#include <csignal>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(InterruptFlagTest, ASignalOnlySetsTheFlag) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const InterruptFlag interrupt;
        EXPECT_FALSE(interrupt.flag());
        std::raise(signal);
        EXPECT_TRUE(interrupt.flag());
    }
}

TEST(InterruptFlagTest, AnIgnoredSignalStaysIgnored) {
    std::signal(SIGHUP, SIG_IGN);
    {
        const InterruptFlag interrupt;
        std::raise(SIGHUP);
        EXPECT_FALSE(interrupt.flag());
    }
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

TEST(InterruptFlagTest, DeliveringRaisesTheSignalWithItsPreviousHandler) {
    static int delivered = 0;
    delivered = 0;
    std::signal(SIGINT, [](int signal) { delivered = signal; });
    {
        InterruptFlag interrupt;
        interrupt.deliver();
        EXPECT_EQ(delivered, 0) << "no signal has arrived";
    }
    {
        InterruptFlag interrupt;
        std::raise(SIGINT);
        EXPECT_EQ(delivered, 0);
        interrupt.deliver();
        EXPECT_EQ(delivered, SIGINT);
    }
    std::signal(SIGINT, SIG_DFL);
}

} // namespace
} // namespace quorvel
