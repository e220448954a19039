#include "Platform/homes/XdgUserDirs_linux.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(XdgUserDirsTest, FoldersAreReadInTheirOrder) {
    EXPECT_THAT(parseXdgUserDirs("# comment\n"
                                 "XDG_DOWNLOAD_DIR=\"$HOME/Téléchargements\"\n"
                                 "  XDG_MUSIC_DIR=\"/data/music\"\n"
                                 "XDG_DESKTOP_DIR=\"$HOME\"\n"),
                ElementsAre(XdgUserDir{"DOWNLOAD", "$HOME/Téléchargements"},
                            XdgUserDir{"MUSIC", "/data/music"}, XdgUserDir{"DESKTOP", "$HOME"}));
}

TEST(XdgUserDirsTest, OtherLinesAreIgnored) {
    EXPECT_THAT(parseXdgUserDirs("XDG_VIDEOS_DIR=\"relative\"\n"
                                 "XDG_BROKEN_DIR=\"\n"
                                 "XDG_OTHER_DIR=\"$HOMEWORK/x\"\n"
                                 "PATH=\"/bin\"\n"
                                 "=\"/x\"\n"
                                 "_DIR=\"/x\"\n"),
                IsEmpty());
}

TEST(XdgUserDirsTest, NamesWithQuotesAndDollarSignsSurvive) {
    const std::vector<XdgUserDir> folders{{"DOWNLOAD", "$HOME/a \"b\" $c `d` \\e"},
                                          {"MUSIC", "/x/$HOME/\"y\""}};
    const std::string text = xdgUserDirsText(folders);
    EXPECT_NE(text.find(R"(XDG_DOWNLOAD_DIR="$HOME/a \"b\" \$c \`d\` \\e")"), std::string::npos)
        << text;
    EXPECT_EQ(parseXdgUserDirs(text), folders);
}

TEST(XdgUserDirsTest, OnlyALeadingHomeIsExpanded) {
    EXPECT_EQ(withHomeExpanded("$HOME/x", "/home/me"), "/home/me/x");
    EXPECT_EQ(withHomeExpanded("$HOME", "/home/me"), "/home/me");
    EXPECT_EQ(withHomeExpanded("$HOMEWORK", "/home/me"), "$HOMEWORK");
    EXPECT_EQ(withHomeExpanded("/x/$HOME", "/home/me"), "/x/$HOME");
}

} // namespace
} // namespace quorvel
