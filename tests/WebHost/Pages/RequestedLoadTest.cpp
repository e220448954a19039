#include "WebHost/Pages/RequestedLoad.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(RequestedLoadTest, ItWaitsUntilTheEngineBegins) {
    RequestedLoad load;
    EXPECT_FALSE(load.isWaiting());
    EXPECT_FALSE(load.isToBeRepeated()) << "nothing was asked for";
    load.requested("http://a/");
    EXPECT_TRUE(load.isWaiting());
    EXPECT_EQ(load.address(), "http://a/");
    load.decided("http://a/", false);
    EXPECT_TRUE(load.isWaiting()) << "another page may still arrive first";
    load.started();
    EXPECT_FALSE(load.isWaiting());
    EXPECT_FALSE(load.isToBeRepeated());
}

TEST(RequestedLoadTest, TheBeginningOfAnotherPageDoesNotCount) {
    RequestedLoad load;
    load.requested("http://a/");
    load.started();
    EXPECT_TRUE(load.isWaiting());
    load.decided("http://b/", false);
    load.started();
    EXPECT_TRUE(load.isWaiting());
    load.failed("http://b/");
    EXPECT_TRUE(load.isWaiting());
    load.decided("http://a/", false);
    load.started();
    EXPECT_FALSE(load.isWaiting());
}

TEST(RequestedLoadTest, WhatTheUserDoesSinceCounts) {
    RequestedLoad load;
    load.requested("http://a/");
    load.decided("http://b/", true);
    EXPECT_FALSE(load.isWaiting());
    load.requested("http://a/");
    load.decided("http://a/", false);
    load.decided("http://b/", true);
    EXPECT_FALSE(load.isWaiting());
}

TEST(RequestedLoadTest, AFailedLoadIsOver) {
    RequestedLoad load;
    load.requested("http://a/");
    load.failed("http://a/");
    EXPECT_FALSE(load.isWaiting());
    load.requested("http://a/");
    load.withdraw();
    EXPECT_FALSE(load.isWaiting());
}

TEST(RequestedLoadTest, ItIsRepeatedThreeTimesAtMost) {
    RequestedLoad load;
    for (const char* address : {"http://a/", "http://b/"}) {
        load.requested(address);
        for (int time = 0; time < 3; ++time) {
            EXPECT_TRUE(load.isToBeRepeated()) << address << time;
            load.requested(address);
        }
        EXPECT_FALSE(load.isToBeRepeated()) << address;
    }
    load.decided("http://b/", false);
    load.started();
    load.requested("http://b/");
    EXPECT_TRUE(load.isToBeRepeated()) << "the user wants it a second time";
}

} // namespace
} // namespace quorvel
