#include "LaunchKit/Records/EnumNames.h"

#include "LaunchKit/WrapperFactory.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(EnumNamesTest, KindsGoByTheirNames) {
    EXPECT_EQ(rawString(ShortcutKind::app), "app");
    EXPECT_EQ(rawString(ShortcutKind::web), "web");
    EXPECT_EQ(rawString(ShortcutKind::file), "file");
    EXPECT_EQ(rawString(ShortcutKind::command), "command");
    EXPECT_EQ(caseNamed<ShortcutKind>("command"), ShortcutKind::command);
    EXPECT_EQ(caseNamed<ShortcutKind>("Command"), std::nullopt);
    EXPECT_EQ(caseNamed<ShortcutKind>(""), std::nullopt);
}

TEST(EnumNamesTest, StrategiesAreHyphenated) {
    EXPECT_EQ(rawString(Strategy::homeOverride), "home-override");
    EXPECT_EQ(rawString(Strategy::containerRedirect), "container-redirect");
    EXPECT_EQ(rawString(Strategy::wrapperIdentity), "wrapper-identity");
    EXPECT_EQ(rawString(Strategy::unsupported), "unsupported");
    EXPECT_EQ(caseNamed<Strategy>("wrapper-identity"), Strategy::wrapperIdentity);
    EXPECT_EQ(caseNamed<Strategy>("wrapper_identity"), std::nullopt);
}

TEST(EnumNamesTest, LabelPositionsGoByTheirNames) {
    EXPECT_EQ(rawString(IconLabel::Position::bottom), "bottom");
    EXPECT_EQ(rawString(IconLabel::Position::center), "center");
    EXPECT_EQ(rawString(IconLabel::Position::top), "top");
    EXPECT_EQ(caseNamed<IconLabel::Position>("top"), IconLabel::Position::top);
    EXPECT_EQ(caseNamed<IconLabel::Position>("left"), std::nullopt);
}

TEST(EnumNamesTest, EnginesGoByTheirNames) {
    using Engine = WrapperFactory::AppEngine;
    for (const Engine engine :
         {Engine::electron, Engine::chromium, Engine::firefox, Engine::eclipse, Engine::other}) {
        EXPECT_EQ(caseNamed<WrapperFactory::AppEngine>(rawString(engine)), engine);
    }
    EXPECT_EQ(rawString(Engine::electron), "electron");
    EXPECT_EQ(rawString(Engine::chromium), "chromium");
    EXPECT_EQ(rawString(Engine::firefox), "firefox");
    EXPECT_EQ(rawString(Engine::eclipse), "eclipse");
    EXPECT_EQ(rawString(Engine::other), "other");
    EXPECT_EQ(caseNamed<WrapperFactory::AppEngine>("Electron"), std::nullopt);
}

enum class Fruit { apple, pear2, plum };

TEST(EnumNamesTest, CountsTheCasesOfAnEnumeration) {
    EXPECT_EQ(caseCount<Fruit>, 3U);
    EXPECT_EQ(caseCount<Strategy>, 4U);
    EXPECT_EQ(caseCount<IconLabel::Position>, 3U);
}

} // namespace
} // namespace quorvel
