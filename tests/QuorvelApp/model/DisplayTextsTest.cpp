#include "QuorvelApp/model/DisplayTexts.h"
#include "LaunchKit/InstanceConfig.h"
#include "tests/support/AppBundles.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> labelsOf(const std::vector<DetailRow>& rows) {
    std::vector<std::string> labels;
    for (const DetailRow& row : rows) {
        labels.push_back(row.label);
    }
    return labels;
}

InstanceConfig configOf(ShortcutKind kind) {
    InstanceConfig config = minimalConfig();
    config.kind = kind;
    return config;
}

TEST(SourceSummary, OfAnAppIsItsNameWithoutExtension) {
    InstanceConfig config = minimalConfig();
    config.targetAppPath = "/Applications/Notes.app";
    EXPECT_EQ(sourceSummary(config), "Notes");
    config.targetAppPath = "/Applications/Notes.app/";
    EXPECT_EQ(sourceSummary(config), "Notes");
    config.targetAppPath = "";
    EXPECT_EQ(sourceSummary(config), "");
}

TEST(SourceSummary, OfAWebOrFileCloneIsWhatItOpens) {
    InstanceConfig web = configOf(ShortcutKind::web);
    EXPECT_EQ(sourceSummary(web), "");
    web.url = "https://a.test";
    EXPECT_EQ(sourceSummary(web), "https://a.test");
    InstanceConfig file = configOf(ShortcutKind::file);
    EXPECT_EQ(sourceSummary(file), "");
    file.openPath = "/a b";
    EXPECT_EQ(sourceSummary(file), "/a b");
}

TEST(SourceSummary, OfACommandIsItsLine) {
    InstanceConfig config = configOf(ShortcutKind::command);
    EXPECT_EQ(sourceSummary(config), "");
    config.commandArgs = {"-l", "x"};
    EXPECT_EQ(sourceSummary(config), "-l x");
    config.commandPath = "/bin/ls";
    EXPECT_EQ(sourceSummary(config), "/bin/ls -l x");
}

TEST(StrategyLabel, NamesTheFourAndLeavesOthersAlone) {
    EXPECT_EQ(strategyLabel("home-override"), "Home override (A)");
    EXPECT_EQ(strategyLabel("container-redirect"), "Container redirect (B)");
    EXPECT_EQ(strategyLabel("wrapper-identity"), "Wrapper identity (C)");
    EXPECT_EQ(strategyLabel("unsupported"), "Unsupported");
    EXPECT_EQ(strategyLabel("Home-Override"), "Home-Override");
    EXPECT_EQ(strategyLabel(""), "");
}

TEST(HexRGB, IsUpperCaseWithoutOpacity) {
    EXPECT_EQ(hexRGB(Qt::white), "#FFFFFF");
    EXPECT_EQ(hexRGB(QColor(10, 171, 205, 3)), "#0AABCD");
    EXPECT_EQ(hexRGB(QColor::fromHslF(0.0F, 1.0F, 0.5F)), "#FF0000");
    EXPECT_EQ(hexRGB(QColor()), "#FFFFFF") << "no colour at all";
}

TEST(HexRGB, RoundsToTheNearestStep) {
    EXPECT_EQ(hexRGB(QColor::fromRgbF(0.5F, 0.0019F, 0.0021F)), "#800001");
}

TEST(HexRGB, StaysInRangeForColoursBeyondSRGB) {
    EXPECT_EQ(hexRGB(QColor::fromRgbF(1.7F, -0.4F, 0.0F)), "#FF0000");
}

TEST(DetailRows, OfAPlainAppCloneAreSix) {
    EXPECT_THAT(
        labelsOf(detailRows(minimalConfig(), "/x/Work.app")),
        ElementsAre("Kind", "Source app", "Strategy", "Data home", "Bundle id", "Location"));
}

TEST(DetailRows, ShowArgumentsAndEnvironmentWhereThereAreSome) {
    InstanceConfig config = minimalConfig();
    config.targetAppPath = "/Applications/Chat.app";
    config.extraArgs = {"--a", "b c"};
    config.environment = {{"B", "2"}, {"A", "1"}, {"a", "3"}};
    EXPECT_THAT(detailRows(config, "/x/Work.app"),
                ElementsAre(DetailRow{"Kind", "App"}, DetailRow{"Source app", "Chat"},
                            DetailRow{"Strategy", "Home override (A)"},
                            DetailRow{"Arguments", "--a b c", true},
                            DetailRow{"Environment", "A=1\nB=2\na=3", true},
                            DetailRow{"Data home", "~/QuorvelInstances/Work", true},
                            DetailRow{"Bundle id", "app.quorvel.instance.test", true},
                            DetailRow{"Location", "/x/Work.app", true}));
}

TEST(DetailRows, OfTheOtherKindsHaveNoStrategy) {
    EXPECT_THAT(labelsOf(detailRows(configOf(ShortcutKind::web), "/x")),
                ElementsAre("Kind", "URL", "Data home", "Bundle id", "Location"));
    EXPECT_THAT(labelsOf(detailRows(configOf(ShortcutKind::file), "/x")),
                ElementsAre("Kind", "Opens", "Data home", "Bundle id", "Location"));
    EXPECT_THAT(labelsOf(detailRows(configOf(ShortcutKind::command), "/x")),
                ElementsAre("Kind", "Command", "Data home", "Bundle id", "Location"));
    EXPECT_EQ(detailRows(configOf(ShortcutKind::web), "/x").front().value, "Web App");
    EXPECT_EQ(detailRows(configOf(ShortcutKind::file), "/x").front().value, "File");
    EXPECT_EQ(detailRows(configOf(ShortcutKind::command), "/x").front().value, "Command");
}

} // namespace
} // namespace quorvel::testing
