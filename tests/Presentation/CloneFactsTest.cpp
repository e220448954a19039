#include "Presentation/CloneFacts.h"

#include "Presentation/AppTexts.h"

#include "LaunchKit/InstanceRecord.h"
#include "tests/support/AppBundles.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using ::testing::ElementsAre;

InstanceRecord cloneOf(ShortcutKind kind) {
    InstanceConfig config = minimalConfig();
    config.kind = kind;
    return {.bundleURL = "/x/Work.app", .config = std::move(config)};
}

std::vector<std::string> labelsOf(const std::vector<Fact>& facts) {
    std::vector<std::string> labels;
    labels.reserve(facts.size());
    for (const Fact& fact : facts) {
        labels.push_back(fact.label);
    }
    return labels;
}

std::string valueOf(const std::vector<Fact>& facts, const std::string& label) {
    for (const Fact& fact : facts) {
        if (fact.label == label) {
            return fact.value();
        }
    }
    return "no such row";
}

TEST(CloneFactsTest, TheSourceOfAnAppIsItsNameOrItsWholePath) {
    InstanceConfig config = minimalConfig();
    config.targetAppPath = "/Applications/Notes.app";
    EXPECT_EQ(sourceSummary(config), "Notes");
    EXPECT_EQ(fullSource(config), "/Applications/Notes.app");
    config.targetAppPath = "/Applications/Notes.app/";
    EXPECT_EQ(sourceSummary(config), "Notes");
    config.targetAppPath = "";
    EXPECT_EQ(sourceSummary(config), "");
}

TEST(CloneFactsTest, WhatOpensLinksIsShownIfItIsNotTheDefaultBrowser) {
    InstanceRecord clone = cloneOf(ShortcutKind::app);
    const std::string label = "Links open in";
    const auto detail = [&] { return valueOf(cloneDetails(clone, inEnglish), label); };
    const auto report = [&] { return valueOf(cloneReport(clone, {}, inEnglish), label); };
    EXPECT_EQ(detail(), "no such row");
    clone.config.links = "default";
    EXPECT_EQ(report(), "no such row");
    clone.config.links = "inside";
    EXPECT_EQ(detail(), "this clone");
    EXPECT_EQ(report(), "this clone");
    clone.config.links = "/Apps/Browser (2).app";
    EXPECT_EQ(detail(), "Browser (2)");
    EXPECT_EQ(report(), "/Apps/Browser (2).app");
    clone.config.links = "app.quorvel.instance.browser";
    EXPECT_EQ(detail(), "app.quorvel.instance.browser");
    clone.config.kind = ShortcutKind::command;
    EXPECT_EQ(report(), "no such row") << "nothing is done about the links of commands";
}

TEST(CloneFactsTest, TheSourceOfAWebOrFileCloneIsWhatItOpens) {
    InstanceConfig web = cloneOf(ShortcutKind::web).config;
    EXPECT_EQ(sourceSummary(web), "");
    web.url = "https://a.test";
    EXPECT_EQ(sourceSummary(web), "https://a.test");
    EXPECT_EQ(fullSource(web), "https://a.test");
    InstanceConfig file = cloneOf(ShortcutKind::file).config;
    EXPECT_EQ(sourceSummary(file), "");
    file.openPath = "/a b";
    EXPECT_EQ(sourceSummary(file), "/a b");
}

TEST(CloneFactsTest, TheSourceOfACommandIsItsLine) {
    InstanceConfig config = cloneOf(ShortcutKind::command).config;
    EXPECT_EQ(sourceSummary(config), "");
    config.commandArgs = {"-l", "x"};
    EXPECT_EQ(sourceSummary(config), "-l x");
    config.commandPath = "/bin/ls";
    EXPECT_EQ(sourceSummary(config), "/bin/ls -l x");
}

TEST(CloneFactsTest, APlainAppCloneHasSixDetails) {
    EXPECT_THAT(
        labelsOf(cloneDetails(cloneOf(ShortcutKind::app), inEnglish)),
        ElementsAre("Kind", "Source app", "Strategy", "Data home", "Bundle id", "Location"));
}

TEST(CloneFactsTest, ArgumentsAndEnvironmentAreDetailsWhereThereAreSome) {
    InstanceRecord clone = cloneOf(ShortcutKind::app);
    clone.config.targetAppPath = "/Applications/Chat.app";
    clone.config.extraArgs = {"--a", "b c"};
    clone.config.environment = {{"B", "2"}, {"A", "1"}, {"a", "3"}};
    EXPECT_THAT(cloneDetails(clone, inEnglish),
                ElementsAre(Fact{"Kind", {"App"}}, Fact{"Source app", {"Chat"}},
                            Fact{"Strategy", {"Home override (A)"}},
                            Fact{"Arguments", {"--a b c"}, true},
                            Fact{"Environment", {"A=1", "B=2", "a=3"}, true},
                            Fact{"Data home", {"~/QuorvelInstances/Work"}, true},
                            Fact{"Bundle id", {"app.quorvel.instance.test"}, true},
                            Fact{"Location", {"/x/Work.app"}, true}));
    EXPECT_EQ(valueOf(cloneDetails(clone, inEnglish), "Environment"), "A=1\nB=2\na=3");
}

TEST(CloneFactsTest, DetailsSayWhatTheDockCantTellApart) {
    const InstanceRecord clone = cloneOf(ShortcutKind::app);
    EXPECT_EQ(valueOf(cloneDetails(clone, inEnglish, WindowGrouping::ownOnX11), "Windows"),
              "On Wayland, the dock may show the clone’s windows together with those of the "
              "original.");
    EXPECT_THAT(labelsOf(cloneDetails(clone, inEnglish, WindowGrouping::own)),
                ::testing::Not(::testing::Contains("Windows")));
}

TEST(CloneFactsTest, TheOtherKindsHaveNoStrategy) {
    EXPECT_THAT(labelsOf(cloneDetails(cloneOf(ShortcutKind::web), inEnglish)),
                ElementsAre("Kind", "URL", "Data home", "Bundle id", "Location"));
    EXPECT_THAT(labelsOf(cloneDetails(cloneOf(ShortcutKind::file), inEnglish)),
                ElementsAre("Kind", "Opens", "Data home", "Bundle id", "Location"));
    EXPECT_THAT(labelsOf(cloneDetails(cloneOf(ShortcutKind::command), inEnglish)),
                ElementsAre("Kind", "Command", "Data home", "Bundle id", "Location"));
    EXPECT_EQ(valueOf(cloneDetails(cloneOf(ShortcutKind::web), inEnglish), "Kind"), "Web App");
    EXPECT_EQ(valueOf(cloneDetails(cloneOf(ShortcutKind::file), inEnglish), "Kind"), "File");
    EXPECT_EQ(cloneDetails(cloneOf(ShortcutKind::command), inEnglish).front().value(), "Command");
}

TEST(CloneFactsTest, TheReportHasEveryDetailAndMore) {
    InstanceRecord clone = cloneOf(ShortcutKind::app);
    clone.config.displayName = "Work";
    clone.config.targetAppPath = "/Applications/Chat.app";
    clone.config.instanceHome = "/data/Work";
    clone.config.shareUserFolders = false;
    clone.config.iconLabel = IconLabel{.text = "W", .colorHex = "#FFFFFF"};
    EXPECT_THAT(cloneReport(clone, {.running = true, .logSize = 1534}, inEnglish),
                ElementsAre(Fact{"Name", {"Work"}}, Fact{"Running", {"yes"}}, Fact{"Kind", {"App"}},
                            Fact{"Source app", {"/Applications/Chat.app"}},
                            Fact{"Strategy", {"Home override (A)"}}, Fact{"Shares folders", {"no"}},
                            Fact{"Icon label", {"W"}}, Fact{"Data home", {"/data/Work"}, true},
                            Fact{"Log", {"1.5 kB"}},
                            Fact{"Bundle id", {"app.quorvel.instance.test"}, true},
                            Fact{"Location", {"/x/Work.app"}, true}));
    const auto details = labelsOf(cloneDetails(clone, inEnglish));
    EXPECT_THAT(labelsOf(cloneReport(clone, {}, inEnglish)), ::testing::IsSupersetOf(details));
}

TEST(CloneFactsTest, TheReportOfACommandNamesItsWorkingDirectory) {
    InstanceRecord clone = cloneOf(ShortcutKind::command);
    EXPECT_EQ(valueOf(cloneReport(clone, {}, inEnglish), "Windows"), "no such row");
    EXPECT_EQ(
        valueOf(cloneReport(clone, {.grouping = WindowGrouping::shared}, inEnglish), "Windows"),
        groupingNote(WindowGrouping::shared, inEnglish));
    EXPECT_EQ(valueOf(cloneReport(clone, {}, inEnglish), "Working directory"), "no such row");
    clone.config.workingDirectory = "/tmp";
    EXPECT_EQ(valueOf(cloneReport(clone, {}, inEnglish), "Working directory"), "/tmp");
    EXPECT_EQ(valueOf(cloneReport(clone, {}, inEnglish), "Shares folders"), "no such row");
    EXPECT_EQ(valueOf(cloneReport(clone, {}, inEnglish), "Running"), "no");
}

TEST(CloneFactsTest, LabelsAndWordsAreTranslatedAndDataIsNot) {
    const Translate shouting = [](const char*, const char* text) {
        return "!" + std::string(text);
    };
    InstanceRecord clone = cloneOf(ShortcutKind::app);
    clone.config.extraArgs = {"yes"};
    const std::vector<Fact> facts = cloneReport(clone, {.running = true, .logSize = 1}, shouting);
    EXPECT_THAT(labelsOf(facts), ::testing::Each(::testing::StartsWith("!")));
    EXPECT_EQ(valueOf(facts, "!Running"), "!yes");
    EXPECT_EQ(valueOf(facts, "!Strategy"), "!Home override (A)");
    EXPECT_EQ(valueOf(facts, "!Arguments"), "yes");
    EXPECT_EQ(valueOf(facts, "!Location"), "/x/Work.app");
}

} // namespace
} // namespace quorvel::testing
