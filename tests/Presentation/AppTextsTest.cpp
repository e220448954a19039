#include "Presentation/AppTexts.h"

#include "LaunchKit/AppBundle.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::HasSubstr;

TEST(AppTextsTest, SaysWhatACloneWithoutTheBusGivesUp) {
    const std::string cost =
        environmentCost({{"A", "b"}, {"DBUS_SESSION_BUS_ADDRESS", "disabled:"}}, inEnglish)
            .value_or("");
    EXPECT_THAT(cost, HasSubstr("notifications"));
    EXPECT_THAT(cost, HasSubstr("portals"));
    EXPECT_EQ(environmentCost({{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/bus"}}, inEnglish),
              std::nullopt);
    EXPECT_EQ(environmentCost({{"A", "disabled:"}}, inEnglish), std::nullopt);
}

TEST(AppTextsTest, SaysWhereTheDockMixesTheWindows) {
    EXPECT_EQ(groupingNote(WindowGrouping::own, inEnglish), std::nullopt);
    const std::string onWayland = groupingNote(WindowGrouping::ownOnX11, inEnglish).value_or("");
    const std::string everywhere = groupingNote(WindowGrouping::shared, inEnglish).value_or("");
    EXPECT_THAT(onWayland, ::testing::StartsWith("On Wayland, the dock may show"));
    EXPECT_THAT(everywhere, ::testing::StartsWith("The dock may show"));
}

TEST(AppTextsTest, SaysHowToInstallASnapTwice) {
    AppBundle app;
    EXPECT_EQ(snapReason(app, inEnglish), std::nullopt);
    app.desktop.emplace();
    app.desktop->program.launcher = "/snap/bin/thing";
    EXPECT_EQ(snapReason(app, inEnglish), std::nullopt);
    app.desktop->program.packaging = ResolvedProgram::Packaging::snap;
    EXPECT_THAT(snapReason(app, inEnglish).value_or(""),
                HasSubstr("“sudo snap set system experimental.parallel-instances=true”"));
    EXPECT_THAT(snapReason(app, inEnglish).value_or(""), HasSubstr("“sudo snap install thing_2”"));
    app.desktop->entry.snapInstance = "other";
    EXPECT_THAT(snapReason(app, inEnglish).value_or(""), HasSubstr("“sudo snap install other_2”"));
}

} // namespace
} // namespace quorvel
