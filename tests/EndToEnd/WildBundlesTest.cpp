#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

std::string xmlList(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + body +
           "</dict></plist>\n";
}

TEST(WildBundlesTest, APropertyListInBinaryFormIsReadLikeAnyOther) {
    if (!fs::exists("/usr/bin/plistutil")) {
        GTEST_SKIP() << "the package libplist-utils is not installed";
    }
    QuorvelctlInAHome quorvelctl;
    const fs::path app = makeScriptedAppBundle(quorvelctl.home / "Chat.app", "echo \"I am $0\"");
    const fs::path xml = quorvelctl.home / "xml";
    fs::rename(app / "Contents/Info.plist", xml);
    Process::Options convert;
    convert.executable = "/usr/bin/plistutil";
    convert.arguments = {"-i",  xml.string(), "-f",
                         "bin", "-o",         (app / "Contents/Info.plist").string()};
    ASSERT_EQ(Process::run(convert).waitUntilExit(), 0);
    ASSERT_TRUE(read(app / "Contents/Info.plist").starts_with("bplist00"));

    EXPECT_EQ(quorvelctl.json({"inspect", app.string()})["bundleId"], "com.example.Chat");
    quorvelctl.run({"create", "--target", app.string(), "--name", "Work", "--launch"});
    EXPECT_TRUE(waitUntil([&] {
        return quorvelctl.log("Work") == "I am " + (app / "Contents/MacOS/Chat").string() + "\n";
    })) << quorvelctl.log("Work");
}

TEST(WildBundlesTest, WithoutIdentifierAndExecutableTheFolderNameIsUsed) {
    QuorvelctlInAHome quorvelctl;
    const fs::path app = quorvelctl.home / "Old Tool.app";
    write(app / "Contents/Info.plist", xmlList(""));
    write(app / "Contents/MacOS/Old Tool", "#!/bin/sh\necho it runs\n");
    makeExecutable(app / "Contents/MacOS/Old Tool");
    const auto facts = quorvelctl.json({"inspect", app.string()});
    EXPECT_EQ(facts["bundleId"], "Old Tool");
    EXPECT_EQ(facts["executableName"], "Old Tool");
    quorvelctl.run({"create", "--target", app.string(), "--name", "Work", "--launch"});
    EXPECT_TRUE(waitUntil([&] { return quorvelctl.log("Work") == "it runs\n"; }));
}

TEST(WildBundlesTest, ADanglingExecutableIsReportedAndLogged) {
    QuorvelctlInAHome quorvelctl;
    const fs::path app = makeScriptedAppBundle(quorvelctl.home / "Gone.app", "true");
    fs::remove(app / "Contents/MacOS/Gone");
    fs::create_symlink("/no/such/program", app / "Contents/MacOS/Gone");
    const std::string fault = "couldn’t be started: no such file or directory\n";
    const std::string outcome =
        quorvelctl.outcomeOf({"create", "--target", app.string(), "--name", "Work", "--launch"});
    EXPECT_NE(outcome.find(fault + "FAILED 1"), std::string::npos) << outcome;
    EXPECT_NE(quorvelctl.log("Work").find(fault), std::string::npos) << quorvelctl.log("Work");
}

TEST(WildBundlesTest, AnEmptyPropertyListIsNotAReadableApplication) {
    QuorvelctlInAHome quorvelctl;
    const fs::path app = quorvelctl.home / "Empty.app";
    write(app / "Contents/Info.plist", "");
    EXPECT_THROW(quorvelctl.run({"inspect", app.string()}), std::runtime_error);
    EXPECT_THROW(quorvelctl.run({"create", "--target", app.string(), "--name", "Work"}),
                 std::runtime_error);
    EXPECT_FALSE(fs::exists(quorvelctl.home / "Applications"));
}

TEST(WildBundlesTest, Latin1BytesAreReadAsLatin1) {
    QuorvelctlInAHome quorvelctl;
    const fs::path app = quorvelctl.home / "Cafe.app";
    write(app / "Contents/Info.plist",
          xmlList("<key>NSHumanReadableCopyright</key><string>\xa9 1999</string>"
                  "<key>CFBundleIdentifier</key><string>com.example.caf\xe9</string>"));
    EXPECT_EQ(quorvelctl.json({"inspect", app.string()})["bundleId"], "com.example.café");
}

} // namespace
} // namespace quorvel
