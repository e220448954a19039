#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/InstanceConfig.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class RequestCheckTest : public ::testing::Test {
protected:
    static WrapperFactory::Request request(const std::string& name = "Work") {
        WrapperFactory::Request request;
        request.kind = ShortcutKind::web;
        request.displayName = name;
        return request;
    }
    // Returns why the request is refused; empty if it is not.
    static std::string refusal(const WrapperFactory::Request& request,
                               const std::optional<fs::path>& runner = std::nullopt,
                               const RequestPermissions& permissions = {.existingClone = true}) {
        try {
            validateRequest(request, runner, permissions);
            return {};
        } catch (const InvalidRequest& refused) {
            return refused.what();
        }
    }

    TemporaryHome home;
    fs::path place = home / "Applications/Work.app";
};

TEST_F(RequestCheckTest, PassesIfNothingExistsThere) {
    EXPECT_EQ(refusal(request()), "");
}

TEST_F(RequestCheckTest, LeavesAnEmptyNameToTheFactory) {
    EXPECT_EQ(refusal(request(" \n")), "");
}

TEST_F(RequestCheckTest, RefusesNamesThatLeadElsewhere) {
    for (const char* name : {"a/b", ".", "..", " ../x"}) {
        EXPECT_THAT(refusal(request(name)), HasSubstr("can’t be used")) << name;
    }
    EXPECT_THAT(refusal(request("bell\x07")), HasSubstr("control characters"));
    EXPECT_THAT(refusal(request("\xff")), HasSubstr("not UTF-8"));
}

TEST_F(RequestCheckTest, NamesTheFirstFaultOfAName) {
    EXPECT_EQ(refusal(request(" a/\xff\x07 ")), "The name “a/\xff\x07” is not UTF-8 text.");
    EXPECT_EQ(refusal(request(" a/\x07 ")),
              "The name “a/\x07” can’t be used: it must not contain “/” and not be “.” or “..”.");
    EXPECT_EQ(refusal(request(" \x07 ")), "The name “\x07” contains control characters.");
}

TEST_F(RequestCheckTest, DistinguishesControlCharactersFromOthers) {
    for (const char* name : {"a\x01"
                             "b",
                             "a\x1F"
                             "b",
                             "a\x7F"
                             "b",
                             "a\rb"}) {
        EXPECT_THAT(refusal(request(name)), HasSubstr("control characters")) << name;
    }
    for (const char* name : {"a b", "a\nb", "a\tb", "a~b", "é", "語", "...", ".a"}) {
        EXPECT_EQ(refusal(request(name)), "") << name;
        EXPECT_EQ(validatedCloneName(std::string(" ") + name + "\n"), name);
    }
}

TEST_F(RequestCheckTest, AllowsMakingACloneAgain) {
    makeWrapper(place, "Work");
    EXPECT_EQ(refusal(request()), "");
}

TEST_F(RequestCheckTest, NamesTheCloneThatMustNotBeReplaced) {
    makeWrapper(place, minimalConfig("Older name"));
    EXPECT_EQ(refusal(request(), std::nullopt, {.sharedHome = true, .damagedClone = true}),
              "“Older name” already exists at " + place.string() +
                  "; choose another name or folder.");
    EXPECT_THROW(requireReplaceable(place, {}), CloneExists);
    EXPECT_NO_THROW(requireReplaceable(home / "Applications/Other.app", {}));
}

TEST_F(RequestCheckTest, RefusesToReplaceAnApplicationAFileOrALink) {
    const std::string text =
        place.string() + " is not a clone; choose another name or folder for the new one.";
    makeAppBundle(place);
    EXPECT_EQ(refusal(request()), text);
    fs::remove_all(place);
    write(place, "a file");
    EXPECT_EQ(refusal(request()), text);
    fs::remove(place);
    fs::create_symlink("/nowhere", place);
    EXPECT_EQ(refusal(request()), text);
}

TEST_F(RequestCheckTest, RefusesToReplaceABundleWhoseConfigurationCantBeRead) {
    makeAppBundle(place);
    write(place / "Contents/Resources/instance.json", "{");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
}

TEST_F(RequestCheckTest, AllowsReplacingAnUnfinishedWrapper) {
    for (const char* last : {"", "Contents", "Contents/MacOS", "Contents/Resources"}) {
        fs::create_directories(place / last);
        EXPECT_EQ(refusal(request()), "") << last;
    }
    for (const char* file : {"MacOS/runner", "Resources/instance.json", "Resources/AppIcon.icns"}) {
        write(place / "Contents" / file, "half");
        EXPECT_EQ(refusal(request()), "") << file;
    }
    write(place / "Contents/Resources/notes.txt", "mine");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
}

TEST_F(RequestCheckTest, RefusesToReplaceWhatOnlyHasTheNamesOfAnUnfinishedWrapper) {
    write(place / "Contents/Resources/AppIcon.icns", "somebody's own");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
    fs::remove_all(place);
    write(place / "Contents/MacOS/runner/letters", "dear");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
}

TEST_F(RequestCheckTest, RefusesToReplaceAnUnfinishedWrapperWithAnythingElseInIt) {
    for (const char* folder : {"", "Contents", "Contents/MacOS", "Contents/Resources"}) {
        write(place / "Contents/MacOS/runner", "half");
        write(place / "Contents/Resources/instance.json", "half");
        ASSERT_EQ(refusal(request()), "");
        write(place / folder / "notes.txt", "mine");
        EXPECT_THAT(refusal(request()), HasSubstr("not a clone")) << folder;
        fs::remove_all(place);
    }
}

TEST_F(RequestCheckTest, RefusesToReplaceAnUnfinishedWrapperWithoutRegularFiles) {
    for (const char* file : {"MacOS/runner", "Resources/instance.json", "Resources/AppIcon.icns"}) {
        write(place / "Contents/MacOS/runner", "half");
        fs::remove(place / "Contents" / file);
        fs::create_directories(place / "Contents" / file);
        EXPECT_THAT(refusal(request()), HasSubstr("not a clone")) << file << " as a folder";
        fs::remove(place / "Contents" / file);
        fs::create_symlink("/nowhere", place / "Contents" / file);
        EXPECT_THAT(refusal(request()), HasSubstr("not a clone")) << file << " as a link";
        fs::remove_all(place);
    }
}

TEST_F(RequestCheckTest, RefusesToReplaceAFolderThatItCantRead) {
    const TemporaryFolder folder;
    WrapperFactory::Request elsewhere = request();
    elsewhere.outputDir = folder.path();
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        const fs::path contents = folder / "Work.app/Contents";
        fs::create_directories(contents);
        const bool passes = refusal(elsewhere).empty();
        fs::permissions(contents, fs::perms::none);
        const bool refuses = !refusal(elsewhere).empty();
        fs::permissions(contents, fs::perms::owner_all);
        return passes && refuses;
    }));
}

TEST_F(RequestCheckTest, FollowsNoLinkOfAnUnfinishedWrapper) {
    fs::create_directories(place);
    fs::create_directories(home / "Elsewhere");
    fs::create_symlink(home / "Elsewhere", place / "Contents");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
}

TEST_F(RequestCheckTest, RefusesToUsePartsOfTheCloneThatItReplaces) {
    makeWrapper(place, "Work");
    const fs::path part = place / "Contents/Resources/AppIcon.icns";
    for (const fs::path& used : {part, place, place / "."}) {
        const std::string text = used.string() + " belongs to the clone that would be replaced.";
        WrapperFactory::Request withIcon = request();
        withIcon.customIcon = used;
        EXPECT_EQ(refusal(withIcon), text);
        WrapperFactory::Request withTarget = request();
        withTarget.targetApp = used;
        EXPECT_EQ(refusal(withTarget), text);
        EXPECT_EQ(refusal(request(), used), text) << "as the runner";
    }
}

TEST_F(RequestCheckTest, RecognizesAPartOfTheReplacedCloneThroughALink) {
    makeWrapper(place, "Work");
    fs::create_directory_symlink(place / "Contents", home / "link");
    WrapperFactory::Request withIcon = request();
    withIcon.customIcon = home / "link/Resources/instance.json";
    EXPECT_THAT(refusal(withIcon), HasSubstr("belongs to the clone"));
}

TEST_F(RequestCheckTest, AllowsPartsOfOtherBundles) {
    makeWrapper(place, "Work");
    const fs::path other = makeWrapper(home / "Applications/Other.app", "Other");
    WrapperFactory::Request parts = request();
    parts.targetApp = other;
    parts.customIcon = home / "nowhere/icon.png";
    parts.outputDir = home / "Applications";
    EXPECT_EQ(refusal(parts, other / "Contents/Resources/instance.json"), "");
}

TEST_F(RequestCheckTest, ReportsTheOccupiedPathBeforeThePartsUsed) {
    makeAppBundle(place);
    WrapperFactory::Request withTarget = request();
    withTarget.targetApp = place;
    EXPECT_THAT(refusal(withTarget), HasSubstr("is not a clone"));
}

} // namespace
} // namespace quorvel
