#include "Platform/desktop/OsRelease_linux.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(OsReleaseTest, ConsistsOfTheNameAndTheVersion) {
    EXPECT_EQ(distributionIn("PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n"
                             "NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\nVERSION=\"12 (x)\"\n"),
              "Debian GNU/Linux 12");
    EXPECT_EQ(distributionIn("NAME=Fedora\r\nVERSION_ID=39"), "Fedora 39");
    EXPECT_EQ(distributionIn("VERSION_ID='22.04'\nNAME='Ubuntu' \n"), "Ubuntu 22.04");
}

TEST(OsReleaseTest, MayHaveNoVersion) {
    EXPECT_EQ(distributionIn("NAME=\"Arch Linux\"\nID=arch\n"), "Arch Linux");
}

TEST(OsReleaseTest, IsEmptyWithoutAName) {
    EXPECT_EQ(distributionIn("VERSION_ID=12\n"), "");
    EXPECT_EQ(distributionIn(""), "");
    EXPECT_EQ(distributionIn("#NAME=x\nXNAME=y\n NAME\nNAME\n"), "");
}

TEST(OsReleaseTest, IsReadAsAShellWould) {
    EXPECT_EQ(distributionIn("NAME=\"A \\\"B\\\" \\\\ \\$C\"\n"), "A \"B\" \\ $C");
    EXPECT_EQ(distributionIn("NAME='A \\ B'\n"), "A \\ B");
    EXPECT_EQ(distributionIn("NAME=first\nNAME=last\n"), "last");
    EXPECT_EQ(distributionIn("NAME=\"open\n"), "open");
}

TEST(OsReleaseTest, IgnoresValuesWithControlCharacters) {
    EXPECT_EQ(distributionIn("NAME=\"a\x1b[31m\"\nVERSION_ID=1"), "");
    EXPECT_EQ(distributionIn("NAME=a\xff\n"), "");
    EXPECT_EQ(distributionIn("NAME=a\nVERSION_ID=\x7f\n"), "a");
}

} // namespace
} // namespace quorvel
