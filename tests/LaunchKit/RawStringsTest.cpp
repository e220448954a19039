#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/WrapperFactory.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(RawStringsTest, KindsGoByTheirNames) {
    EXPECT_EQ(rawString(ShortcutKind::app), "app");
    EXPECT_EQ(rawString(ShortcutKind::web), "web");
    EXPECT_EQ(rawString(ShortcutKind::file), "file");
    EXPECT_EQ(rawString(ShortcutKind::command), "command");
    EXPECT_EQ(shortcutKindFromRawString("command"), ShortcutKind::command);
    EXPECT_EQ(shortcutKindFromRawString("Command"), std::nullopt);
    EXPECT_EQ(shortcutKindFromRawString(""), std::nullopt);
}

TEST(RawStringsTest, StrategiesAreHyphenated) {
    EXPECT_EQ(rawString(Strategy::homeOverride), "home-override");
    EXPECT_EQ(rawString(Strategy::containerRedirect), "container-redirect");
    EXPECT_EQ(rawString(Strategy::wrapperIdentity), "wrapper-identity");
    EXPECT_EQ(rawString(Strategy::unsupported), "unsupported");
    EXPECT_EQ(strategyFromRawString("wrapper-identity"), Strategy::wrapperIdentity);
    EXPECT_EQ(strategyFromRawString("wrapper_identity"), std::nullopt);
}

TEST(RawStringsTest, LabelPositionsGoByTheirNames) {
    EXPECT_EQ(rawString(IconLabel::Position::bottom), "bottom");
    EXPECT_EQ(rawString(IconLabel::Position::center), "center");
    EXPECT_EQ(rawString(IconLabel::Position::top), "top");
    EXPECT_EQ(iconLabelPositionFromRawString("top"), IconLabel::Position::top);
    EXPECT_EQ(iconLabelPositionFromRawString("left"), std::nullopt);
}

TEST(RawStringsTest, EnginesGoByTheirNames) {
    using Engine = WrapperFactory::AppEngine;
    for (const Engine engine :
         {Engine::electron, Engine::chromium, Engine::firefox, Engine::eclipse, Engine::other}) {
        EXPECT_EQ(appEngineFromRawString(rawString(engine)), engine);
    }
    EXPECT_EQ(rawString(Engine::electron), "electron");
    EXPECT_EQ(rawString(Engine::chromium), "chromium");
    EXPECT_EQ(rawString(Engine::firefox), "firefox");
    EXPECT_EQ(rawString(Engine::eclipse), "eclipse");
    EXPECT_EQ(rawString(Engine::other), "other");
    EXPECT_EQ(appEngineFromRawString("Electron"), std::nullopt);
}

} // namespace
} // namespace quorvel
