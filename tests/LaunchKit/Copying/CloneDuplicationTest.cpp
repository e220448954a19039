#include "LaunchKit/Copying/CloneDuplication.h"

#include "LaunchKit/Changes/ChangeRecovery.h"
#include "LaunchKit/Changes/CloneChange.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/PropertyListFile.h"
#include "tests/support/AppBundles.h"
#include "tests/support/EveryStep.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class CloneDuplicationTest : public ::testing::Test {
protected:
    [[nodiscard]] InstanceRecord make(WrapperFactory::Request request) const {
        request.kind = ShortcutKind::command;
        request.commandPath = "/bin/true";
        if (request.displayName.empty()) {
            request.displayName = "Work";
        }
        return createClone(factory_, request, {}).record.value();
    }

    // Makes a clone with data.
    [[nodiscard]] InstanceRecord makeWithData() const {
        write(data("Work") / "deep/file", "data");
        write(data("Work") / ".quorvel-lock", "");
        return make({});
    }

    DuplicatedClone duplicate(const InstanceRecord& original, const std::string& name,
                              bool withData = true) const {
        return duplicateClone(factory_, registry_, original, {.name = name, .withData = withData});
    }

    [[nodiscard]] fs::path data(const std::string& name) const {
        return home_ / "QuorvelInstances" / name;
    }

    [[nodiscard]] std::set<std::string> dataFolders() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(home_ / "QuorvelInstances")) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    TemporaryHome home_{};
    WrapperFactory factory_{runnerProgram()};
    InstanceRegistry registry_{};
};

TEST_F(CloneDuplicationTest, KeepsEveryOptionButTheNameTheIdentifierAndTheHome) {
    WrapperFactory::Request request;
    request.commandArgs = {"a", "{{instanceHome}}/b"};
    request.workingDirectory = "/tmp";
    request.environment = {{"KEY", "value"}};
    request.infoPlistOverrides = {{"LSCategory", "x"}, {"CFBundleIdentifier", "mine"}};
    request.extraArgs = {"--flag"};
    request.links = "inside";
    request.openWithPassthrough = true;
    request.shareUserFolders = false;
    request.hideWrapperIcon = true;
    request.outputDir = home_ / "Elsewhere";
    const InstanceRecord original = make(request);
    const InstanceRecord copy = duplicate(original, " Second ", false).clone.record.value();
    EXPECT_EQ(copy.bundleURL, home_ / "Elsewhere/Second.app");
    InstanceConfig expected = original.config;
    expected.displayName = "Second";
    expected.bundleId = "app.quorvel.instance.second";
    expected.instanceHome = "~/QuorvelInstances/Second";
    expected.infoPlistOverrides.erase("CFBundleIdentifier");
    EXPECT_EQ(copy.config.json(), expected.json());
    const auto list = readPropertyList(copy.bundleURL / "Contents/Info.plist").value();
    EXPECT_EQ(list.at("LSUIElement").boolean(), true);
    EXPECT_EQ(*list.at("CFBundleIdentifier").string(), "app.quorvel.instance.second");
}

TEST_F(CloneDuplicationTest, ThePictureIsTheSameAndItsLabelIsNotDrawnTwice) {
    QImage picture(128, 128, QImage::Format_ARGB32);
    picture.fill(Qt::blue);
    WrapperFactory::Request request;
    write(home_ / "icon.icns", icnsOf({icnsEntry("ic07", pngOf(picture))}));
    request.customIcon = home_ / "icon.icns";
    request.iconLabel = IconLabel{.text = "W", .colorHex = "#FFFFFF"};
    const InstanceRecord original = make(request);
    const InstanceRecord copy = duplicate(original, "Second", false).clone.record.value();
    ASSERT_TRUE(original.iconURL());
    ASSERT_TRUE(copy.iconURL());
    EXPECT_NE(read(*original.iconURL()), read(home_ / "icon.icns")) << "it has a label";
    EXPECT_EQ(read(*copy.iconURL()), read(*original.iconURL()));
    EXPECT_EQ(copy.config.iconLabel, request.iconLabel);
}

TEST_F(CloneDuplicationTest, WhatIsKnownAboutTheWrapperIsKnownAboutTheCopy) {
    QImage picture(128, 128, QImage::Format_ARGB32);
    picture.fill(Qt::blue);
    WrapperFactory::Request request;
    write(home_ / "icon.icns", icnsOf({icnsEntry("ic07", pngOf(picture))}));
    request.customIcon = home_ / "icon.icns";
    request.iconLabel = IconLabel{.text = "W", .colorHex = "#FFFFFF"};
    request.hideWrapperIcon = true;
    const InstanceRecord original = make(request);
    const auto copy = duplicate(original, "Second", false).clone.record.value();
    const auto notes = WrapperNotes::read(copy.bundleURL);
    ASSERT_TRUE(notes);
    EXPECT_EQ(notes->icon, IconSource::chosen);
    EXPECT_TRUE(notes->hidesIcon);
    // Without its label, the icon is the chosen one again.
    const ChangedClone changed = editClone(
        copy.bundleURL, [](CloneSettings& settings) { settings.config.iconLabel.reset(); });
    EXPECT_TRUE(changed.kept.empty());
    EXPECT_EQ(read(copy.iconURL().value()), read(home_ / "icon.icns"));
}

TEST_F(CloneDuplicationTest, ArgumentsOfTheEngineAreKnownAsSuch) {
    WrapperFactory::Request request;
    request.displayName = "Work";
    request.targetApp = makeAppBundle(home_ / "Chat.app");
    const InstanceRecord original = createClone(factory_, request, {}).record.value();
    const auto copy = duplicate(original, "Second", false).clone.record.value();
    EXPECT_EQ(WrapperNotes::read(copy.bundleURL).value().arguments, ArgumentSource::engine);
}

TEST_F(CloneDuplicationTest, WhatTheUserPutIntoTheWrapperIsInTheCopy) {
    const InstanceRecord original = make({});
    const fs::path list = original.bundleURL / "Contents/Info.plist";
    std::string text = read(list);
    const std::string end = "</dict>";
    text.insert(text.rfind(end), "<key>Mine</key><string>kept</string>");
    write(list, text);
    write(original.bundleURL / "Contents/Resources/mine.txt", "kept");
    const auto copy = duplicate(original, "Second", false).clone.record.value();
    const auto entries = readPropertyList(copy.bundleURL / "Contents/Info.plist").value();
    EXPECT_EQ(entries.at("Mine"), PropertyListValue("kept"));
    EXPECT_EQ(entries.at("CFBundleName"), PropertyListValue("Second"));
    EXPECT_EQ(read(copy.bundleURL / "Contents/Resources/mine.txt"), "kept");
}

TEST_F(CloneDuplicationTest, IdentifiersAreNeverSharedWithAnotherClone) {
    const InstanceRecord original = make({});
    EXPECT_EQ(duplicate(original, "Tool A", false).clone.record->config.bundleId,
              "app.quorvel.instance.tool-a");
    EXPECT_EQ(duplicate(original, "tool-a", false).clone.record->config.bundleId,
              "app.quorvel.instance.tool-a-2");
    EXPECT_EQ(duplicate(original, "tool.a", false).clone.record->config.bundleId,
              "app.quorvel.instance.tool-a-3");
}

TEST_F(CloneDuplicationTest, DataIsCopiedOnlyOnRequest) {
    const InstanceRecord original = makeWithData();
    const DuplicatedClone empty = duplicate(original, "Empty", false);
    EXPECT_FALSE(empty.data);
    EXPECT_FALSE(fs::exists(data("Empty")));
    const DuplicatedClone copy = duplicate(original, "Full");
    ASSERT_TRUE(copy.data);
    EXPECT_EQ(copy.data->items, 2U);
    EXPECT_EQ(treeOf(data("Full")),
              (std::map<std::string, std::string>{{"deep", "<folder>"}, {"deep/file", "data"}}));
    EXPECT_EQ(read(data("Work") / "deep/file"), "data");
}

TEST_F(CloneDuplicationTest, ACloneWithoutDataGetsAnEmptyFolder) {
    const DuplicatedClone copy = duplicate(make({}), "Second");
    EXPECT_TRUE(fs::is_empty(data("Second")));
    EXPECT_EQ(copy.data->items, 0U);
}

TEST_F(CloneDuplicationTest, WhatIsThereIsNeverReplaced) {
    const InstanceRecord original = makeWithData();
    EXPECT_THROW(duplicate(original, "Work"), CloneExists);
    EXPECT_THROW(duplicate(original, "Work", false), CloneExists);
    write(data("Left") / "file", "of another clone that was deleted");
    EXPECT_THROW(duplicate(original, "Left"), DataCopyError);
    EXPECT_THROW(duplicate(original, "Left", false), DataCopyError);
    EXPECT_EQ(registry_.list().size(), 1U);
    EXPECT_EQ(treeOf(data("Left")).size(), 1U);
    EXPECT_THROW(duplicate(original, "a/b"), InvalidRequest);
}

TEST_F(CloneDuplicationTest, NothingIsCopiedWhileAnythingOfItRuns) {
    const InstanceRecord original = makeWithData();
    {
        const auto lock = lockHome(original.config);
        EXPECT_THROW(duplicate(original, "Second"), HomeInUse);
        EXPECT_NO_THROW(duplicate(original, "Third", false)) << "no data, no obstacle";
    }
    fs::create_symlink("127.0.0.1:+" + std::to_string(::getpid()), data("Work") / "lock");
    EXPECT_THROW(duplicate(original, "Second"), DataCopyError);
    EXPECT_EQ(dataFolders(), std::set<std::string>{"Work"});
    EXPECT_FALSE(fs::exists(home_ / "Applications/Second.app"));
}

TEST_F(CloneDuplicationTest, TheCloneCantBeStartedMeanwhile) {
    const InstanceRecord original = makeWithData();
    bool wasFree = true;
    const FolderCopyOptions options{.progress = [&](const CopyProgress& /*progress*/) {
        wasFree = !isHomeInUse(original.config);
    }};
    (void)duplicateClone(factory_, registry_, original,
                         {.name = "Second", .withData = true, .copy = options});
    EXPECT_FALSE(wasFree);
    EXPECT_FALSE(isHomeInUse(original.config));
}

TEST_F(CloneDuplicationTest, TheUsersHomeIsNotCopied) {
    WrapperFactory::Request request;
    request.instanceHome = "~";
    InstanceRecord original = make({});
    original.config.instanceHome = "~";
    EXPECT_THROW(duplicate(original, "Second"), DataCopyError);
    original.config.instanceHome = "relative";
    EXPECT_THROW(duplicate(original, "Second"), DataCopyError);
}

TEST_F(CloneDuplicationTest, TheFolderOfAllDataIsNotCopiedIntoItself) {
    InstanceRecord original = makeWithData();
    original.config.instanceHome = "~/QuorvelInstances";
    EXPECT_THROW(duplicate(original, "Second"), DataCopyError);
    EXPECT_FALSE(fs::exists(data("Second")));
    EXPECT_FALSE(fs::exists(home_ / "Applications/Second.app"));
}

TEST_F(CloneDuplicationTest, ACancelledCopyLeavesNothing) {
    const InstanceRecord original = makeWithData();
    const std::atomic<bool> cancelled{true};
    EXPECT_THROW((void)duplicateClone(
                     factory_, registry_, original,
                     {.name = "Second", .withData = true, .copy = {.cancelled = &cancelled}}),
                 CopyCancelled);
    EXPECT_EQ(dataFolders(), std::set<std::string>{"Work"});
    EXPECT_EQ(registry_.list().size(), 1U);
}

// Flushing takes its time, too.
TEST_F(CloneDuplicationTest, ItCanBeCancelledAfterTheLastFile) {
    const InstanceRecord original = makeWithData();
    std::atomic<bool> cancelled{false};
    const FolderCopyOptions options{
        .progress = [&](const CopyProgress& at) { cancelled = at.items == at.allItems; },
        .cancelled = &cancelled};
    EXPECT_THROW((void)duplicateClone(factory_, registry_, original,
                                      {.name = "Second", .withData = true, .copy = options}),
                 CopyCancelled);
    EXPECT_EQ(dataFolders(), std::set<std::string>{"Work"});
    EXPECT_EQ(registry_.list().size(), 1U);
}

TEST_F(CloneDuplicationTest, WhatShouldBeKnownIsSaidBeforeTheCloneIsThere) {
    const InstanceRecord original = makeWithData();
    write(data("Work") / "names", data("Work").string());
    std::vector<std::string> said;
    const auto found = [&](const CopyFindings& findings) {
        said = findings.namingOriginal;
        EXPECT_FALSE(fs::exists(data("Second")));
        EXPECT_FALSE(fs::exists(home_ / "Applications/Second.app"));
    };
    const DuplicatedClone copy = duplicateClone(
        factory_, registry_, original, {.name = "Second", .withData = true, .found = found});
    EXPECT_EQ(said, std::vector<std::string>{"names"});
    EXPECT_EQ(copy.findings.namingOriginal, said);
}

TEST_F(CloneDuplicationTest, ATargetThatCantBeClonedIsFoundBeforeAnythingIsCopied) {
    write(home_ / "top.desktop",
          "[Desktop Entry]\nType=Application\nName=Top\nExec=/bin/true\nTerminal=true\n");
    InstanceRecord original = makeWithData();
    original.config.kind = ShortcutKind::app;
    for (const char* target : {"Gone.app", "top.desktop"}) {
        original.config.targetAppPath = home_ / target;
        bool isCopying = false;
        const DuplicationOptions options{
            .name = "Second",
            .withData = true,
            .copy = {.progress = [&](const CopyProgress& /*progress*/) { isCopying = true; }}};
        EXPECT_THROW((void)duplicateClone(factory_, registry_, original, options), Error) << target;
        EXPECT_FALSE(isCopying) << target;
    }
}

TEST_F(CloneDuplicationTest, IfTheWrapperCantBeWrittenTheDataGoesToo) {
    const InstanceRecord original = makeWithData();
    const WrapperFactory broken(home_ / "Applications"); // a folder can't be copied as the runner
    EXPECT_THROW(
        (void)duplicateClone(broken, registry_, original, {.name = "Second", .withData = true}),
        PlatformError);
    EXPECT_EQ(dataFolders(), std::set<std::string>{"Work"});
    EXPECT_EQ(registry_.list().size(), 1U);
}

TEST_F(CloneDuplicationTest, DataOfAnInterruptedOneIsNotAdopted) {
    const InstanceRecord original = makeWithData();
    const auto leaveUnfinished = [&](const fs::path& home) {
        CopiedData copied(home, {{.from = data("Work")}}, {});
        copied.complete(home_ / "Applications" / home.filename().replace_extension(".app"));
        copied.publish();
    };
    leaveUnfinished(data("Second"));
    WrapperFactory::Request request;
    request.displayName = "Second";
    (void)make(request);
    EXPECT_FALSE(fs::exists(data("Second") / "deep/file"));
    leaveUnfinished(data("Third"));
    (void)duplicate(original, "Third", false);
    EXPECT_FALSE(fs::exists(data("Third") / "deep/file"));
    leaveUnfinished(home_ / "Elsewhere/Fourth");
    request.displayName = "Fourth";
    request.instanceHome = home_ / "Elsewhere/Fourth";
    (void)make(request);
    EXPECT_FALSE(fs::exists(home_ / "Elsewhere/Fourth/deep/file"));
}

// Only some of the system calls; all of them take too long.
TEST_F(CloneDuplicationTest, KilledAnywhereItLeavesNothingOrAClone) {
    const InstanceRecord original = makeWithData();
    const auto before = treeOf(data("Work"));
    constexpr int stride = 41;
    bool wasMade = false;
    bool wasNot = false;
    for (int step = 0;; step += stride) {
        const Kill kill = killedBefore(step, [&] { (void)duplicate(original, "Second"); });
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "this system does not permit tracing";
        }
        finishInterruptedChanges(registry_.searchDirs());
        const auto record = registry_.record(home_ / "Applications/Second.app");
        if (record) {
            EXPECT_EQ(read(data("Second") / "deep/file"), "data") << step;
        } else {
            EXPECT_EQ(dataFolders(), std::set<std::string>{"Work"}) << step;
        }
        EXPECT_EQ(treeOf(data("Work")), before) << step;
        (record ? wasMade : wasNot) = true;
        fs::remove_all(home_ / "Applications/Second.app");
        fs::remove_all(data("Second"));
        if (kill == Kill::ended) {
            break;
        }
    }
    EXPECT_TRUE(wasMade);
    EXPECT_TRUE(wasNot);
}

} // namespace
} // namespace quorvel
