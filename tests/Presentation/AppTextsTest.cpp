#include "Presentation/AppTexts.h"

#include "LaunchKit/AppBundle.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::HasSubstr;

TEST(AppTextsTest, SaysWhatACloneWithoutTheBusGivesUp) {
    const std::string cost =
        environmentCost({{"A", "b"}, {"DBUS_SESSION_BUS_ADDRESS", "disabled:"}}).value_or("");
    EXPECT_THAT(cost, HasSubstr("notifications"));
    EXPECT_THAT(cost, HasSubstr("portals"));
    EXPECT_EQ(environmentCost({{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/bus"}}), std::nullopt);
    EXPECT_EQ(environmentCost({{"A", "disabled:"}}), std::nullopt);
}

TEST(AppTextsTest, SaysHowToInstallASnapTwice) {
    AppBundle app;
    EXPECT_EQ(snapReason(app), std::nullopt);
    app.desktop.emplace();
    app.desktop->program.launcher = "/snap/bin/thing";
    EXPECT_EQ(snapReason(app), std::nullopt);
    app.desktop->program.packaging = ResolvedProgram::Packaging::snap;
    EXPECT_THAT(snapReason(app).value_or(""),
                HasSubstr("“sudo snap set system experimental.parallel-instances=true”"));
    EXPECT_THAT(snapReason(app).value_or(""), HasSubstr("“sudo snap install thing_2”"));
    app.desktop->entry.snapInstance = "other";
    EXPECT_THAT(snapReason(app).value_or(""), HasSubstr("“sudo snap install other_2”"));
}

} // namespace
} // namespace quorvel
