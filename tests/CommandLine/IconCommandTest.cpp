#include "LaunchKit/Icons/IcnsFile.h"
#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"
#include "tests/support/IcnsBuilder.h"

#include <csignal>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class IconCommandTest : public ::testing::Test {
protected:
    IconCommandTest() { write(source, icnsOf({icnsEntry("ic07", pngOf(testPicture(128)))})); }

    CommandLineHarness harness;
    fs::path source = harness.home / "source.icns";
    fs::path output = harness.home / "badged.icns";
};

TEST_F(IconCommandTest, DrawsALabelInEverySizeAndPrintsThePath) {
    const CommandResult result =
        harness.run({"icon", source.string(), "--label", "work", "--color", "#ff8800", "--position",
                     "top", "--output", output.string()});
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, output.string() + "\n");
    const auto icon = IcnsFile::read(output);
    ASSERT_TRUE(icon.has_value());
    std::vector<int> sides;
    for (const IcnsEntry& entry : icon->entries()) {
        sides.push_back(static_cast<int>(entry.width));
    }
    EXPECT_EQ(sides, (std::vector{1024, 512, 256, 128, 64, 32, 16}));
}

TEST_F(IconCommandTest, AFullDiskLeavesTheOldFileWhole) {
    const std::string old(900, 'o');
    write(harness.home / "icons/badged.icns", old);
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{1024, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const CommandResult result =
        harness.run({"icon", source.string(), "--label", "work", "--output",
                     (harness.home / "icons/badged.icns").string()});
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "Could not write the composited .icns\n");
    EXPECT_EQ(treeOf(harness.home / "icons"),
              (std::map<std::string, std::string>{{"badged.icns", old}}));
}

TEST_F(IconCommandTest, ListsTheContentsOfAContainer) {
    const auto json = harness.run({"icon", source.string(), "--list", "--json"}).json();
    ASSERT_EQ(json.size(), 1U);
    EXPECT_EQ(json[0], nlohmann::json({{"type", "ic07"},
                                       {"encoding", json[0]["encoding"]},
                                       {"width", 128},
                                       {"height", 128}}));
    EXPECT_THAT(harness.run({"icon", source.string(), "--list"}).output, HasSubstr("128 x 128"));
}

TEST_F(IconCommandTest, NeedsALabelAndAFileToWrite) {
    EXPECT_EQ(harness.run({"icon", source.string()}).status, 2);
    EXPECT_EQ(harness.run({"icon", source.string(), "--label", "X"}).status, 2);
    EXPECT_EQ(harness.run({"icon", source.string(), "--output", output.string()}).status, 2);
    EXPECT_EQ(harness
                  .run({"icon", source.string(), "--label", "X", "--output", output.string(),
                        "--position", "left"})
                  .status,
              2);
    EXPECT_FALSE(fs::exists(output));
}

TEST_F(IconCommandTest, SaysWhatCantBeReadOrWritten) {
    write(harness.home / "text.icns", "no icon");
    const std::string text = (harness.home / "text.icns").string();
    EXPECT_EQ(harness.run({"icon", text, "--label", "X", "--output", output.string()}).errors,
              "No readable image in " + text + "\n");
    EXPECT_EQ(harness.run({"icon", text, "--list"}).status, 1);
    const CommandResult result =
        harness.run({"icon", source.string(), "--label", "X", "--output", "/no/such/folder/x"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "Could not write the composited .icns\n");
}

TEST_F(IconCommandTest, CreateDrawsTheLabelOntoTheClonesIcon) {
    const auto app = makeAppBundle(harness.home / "Chat.app", {{"CFBundleIconFile", "Chat"}});
    write(app / "Contents/Resources/Chat.icns", read(source));
    const auto json = harness
                          .run({"create", "--json", "--runner", runnerProgram().string(),
                                "--target", app.string(), "--name", "Work", "--label", "WORK"})
                          .json();
    const auto icon = IcnsFile::read(json["iconURL"].get<std::string>());
    ASSERT_TRUE(icon.has_value());
    EXPECT_EQ(icon->entries().size(), 7U);
}

} // namespace
} // namespace quorvel
