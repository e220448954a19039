#include "LaunchKit/RequestCheck.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class RequestCheck : public ::testing::Test {
protected:
    static WrapperFactory::Request request(const std::string& name = "Work") {
        WrapperFactory::Request request;
        request.kind = ShortcutKind::web;
        request.displayName = name;
        return request;
    }
    // What the check says; nothing when it lets the request pass.
    static std::string refusal(const WrapperFactory::Request& request) {
        try {
            checkRequest(request);
            return {};
        } catch (const RefusedRequest& refused) {
            return refused.what();
        }
    }

    TemporaryHome home;
    fs::path place = home / "Applications/Work.app";
};

TEST_F(RequestCheck, PassesWhereNothingIsYet) {
    EXPECT_EQ(refusal(request()), "");
}

TEST_F(RequestCheck, LeavesAnEmptyNameToTheFactory) {
    EXPECT_EQ(refusal(request(" \n")), "");
}

TEST_F(RequestCheck, RefusesNamesThatLeadElsewhere) {
    for (const char* name : {"a/b", ".", "..", " ../x"}) {
        EXPECT_THAT(refusal(request(name)), HasSubstr("can’t be used")) << name;
    }
    EXPECT_THAT(refusal(request("bell\x07")), HasSubstr("control characters"));
    EXPECT_THAT(refusal(request("\xff")), HasSubstr("not UTF-8"));
}

TEST_F(RequestCheck, LetsACloneBeMadeAgain) {
    makeWrapper(place, minimalConfig());
    EXPECT_EQ(refusal(request()), "");
}

TEST_F(RequestCheck, RefusesToReplaceAnApplicationAFileOrALink) {
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

TEST_F(RequestCheck, RefusesToReplaceABundleWhoseConfigurationCantBeRead) {
    makeAppBundle(place);
    write(place / "Contents/Resources/instance.json", "{");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
}

TEST_F(RequestCheck, LetsWhatAGenerationLeftUnfinishedBeReplaced) {
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

TEST_F(RequestCheck, RefusesToReplaceWhatOnlyHasTheNamesOfAnUnfinishedWrapper) {
    write(place / "Contents/Resources/AppIcon.icns", "somebody's own");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
    fs::remove_all(place);
    write(place / "Contents/MacOS/runner/letters", "dear");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
}

TEST_F(RequestCheck, FollowsNoLinkOfAnUnfinishedWrapper) {
    fs::create_directories(place);
    fs::create_directories(home / "Elsewhere");
    fs::create_symlink(home / "Elsewhere", place / "Contents");
    EXPECT_THAT(refusal(request()), HasSubstr("not a clone"));
}

TEST_F(RequestCheck, RefusesToUsePartsOfTheCloneThatItReplaces) {
    makeWrapper(place, minimalConfig());
    WrapperFactory::Request withIcon = request();
    withIcon.customIcon = place / "Contents/Resources/AppIcon.icns";
    EXPECT_THAT(refusal(withIcon), HasSubstr("belongs to the clone that would be replaced"));
}

} // namespace
} // namespace quorvel
