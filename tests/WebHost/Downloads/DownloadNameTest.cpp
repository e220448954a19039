#include "WebHost/Downloads/DownloadName.h"

#include "Base/Utf8.h"
#include "tests/WebHost/Downloads/HostileNames.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(DownloadNameTest, OrdinaryNamesStay) {
    for (const char* name : {"report.pdf", "Größe 2.tar.gz", "报告.txt", "a-b_c (1).zip"}) {
        EXPECT_EQ(safeDownloadName(name), name);
    }
}

TEST(DownloadNameTest, HostileNamesAreMadeSafe) {
    for (const auto& [hostile, safe] : testing::hostileNames()) {
        EXPECT_EQ(safeDownloadName(hostile), safe) << hostile;
    }
}

TEST(DownloadNameTest, IsNeverAFolderHiddenAnOptionOrTooLong) {
    for (const auto& [hostile, safe] : testing::hostileNames()) {
        const std::string name = safeDownloadName(hostile);
        EXPECT_FALSE(name.empty());
        EXPECT_LE(name.size(), longestDownloadName) << name;
        EXPECT_EQ(name.find_first_of("/\\\n\t"), std::string::npos) << name;
        EXPECT_NE(name.front(), '.') << name;
        EXPECT_NE(name.front(), '-') << name;
        EXPECT_TRUE(isUtf8(name)) << name;
        EXPECT_EQ(safeDownloadName(name), name) << "nothing is left to do";
    }
}

TEST(DownloadNameTest, ACopyIsNumberedBeforeItsExtension) {
    EXPECT_EQ(numberedName("a.txt", 1), "a.txt");
    EXPECT_EQ(numberedName("a.txt", 2), "a (2).txt");
    EXPECT_EQ(numberedName("a", 13), "a (13)");
    EXPECT_EQ(numberedName("a.has no extension at all", 2), "a.has no extension at all (2)");
    const std::string longest = safeDownloadName(std::string(300, 'x') + ".pdf");
    EXPECT_EQ(numberedName(longest, 2).size(), longestDownloadName);
    EXPECT_TRUE(numberedName(longest, 2).ends_with("x (2).pdf"));
}

} // namespace
} // namespace quorvel
