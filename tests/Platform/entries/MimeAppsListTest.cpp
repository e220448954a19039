#include "Platform/entries/MimeAppsList.h"

#include <array>
#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::array<std::string, 2> types{"x-scheme-handler/http", "text/html"};
const std::string ours = "x-scheme-handler/http=us.desktop;\ntext/html=us.desktop;\n";

TEST(MimeAppsListTest, TheDefaultsOfATypeAreReadInTheirOrder) {
    const std::string list = "text/html=before.desktop\n"
                             "[Added Associations]\n"
                             "text/html=added.desktop\n"
                             "[Default Applications]\r\n"
                             "# text/html=comment.desktop\n"
                             "text/htm=other.desktop\n"
                             " text/html = a.desktop ; b.desktop;;a.desktop \r\n"
                             "[Removed Associations]\n"
                             "text/html=removed.desktop\n"
                             "[Default Applications]\n"
                             "text/html=c.desktop;b.desktop";
    EXPECT_THAT(defaultHandlersIn(list, "text/html"),
                ElementsAre("a.desktop", "b.desktop", "c.desktop"));
    EXPECT_THAT(defaultHandlersIn(list, "text/plain"), IsEmpty());
    EXPECT_THAT(defaultHandlersIn("", "text/html"), IsEmpty());
}

TEST(MimeAppsListTest, AnEmptyListGetsAGroup) {
    EXPECT_EQ(preferringHandler("", types, "us.desktop"), "[Default Applications]\n" + ours);
}

TEST(MimeAppsListTest, OtherLinesAreKeptByteForByte) {
    const std::string before = "junk \xFF\r\n\n[Added Associations]\ntext/html=x.desktop\n";
    EXPECT_EQ(preferringHandler(before, types, "us.desktop"),
              before + "\n[Default Applications]\n" + ours);
    EXPECT_EQ(preferringHandler("[Other]\nunfinished", types, "us.desktop"),
              "[Other]\nunfinished\n\n[Default Applications]\n" + ours);
    EXPECT_EQ(preferringHandler("[Default Applications]\nimage/png=p.desktop\n# a comment\n", types,
                                "us.desktop"),
              "[Default Applications]\n" + ours + "image/png=p.desktop\n# a comment\n");
}

TEST(MimeAppsListTest, EarlierDefaultsComeNext) {
    const std::string list = "[Default Applications]\ntext/html=a.desktop;us.desktop\n"
                             "[Default Applications]\ntext/html=b.desktop\n";
    const std::string preferred = preferringHandler(list, types, "us.desktop");
    EXPECT_EQ(preferred, "[Default Applications]\nx-scheme-handler/http=us.desktop;\n"
                         "text/html=us.desktop;a.desktop;b.desktop;\n[Default Applications]\n");
    EXPECT_EQ(preferringHandler(preferred, types, "us.desktop"), preferred);
}

TEST(MimeAppsListTest, AHandlerIsTakenBackAndWhatWasThereRemains) {
    const std::string list = "[Default Applications]\ntext/html=a.desktop;b.desktop;\n"
                             "image/png=p.desktop\n[Added Associations]\ntext/html=us.desktop\n";
    EXPECT_EQ(withoutHandler(preferringHandler(list, types, "us.desktop"), "us.desktop"), list);
    EXPECT_EQ(withoutHandler(list, "us.desktop"), list) << "an association is not a default";
    EXPECT_EQ(withoutHandler(preferringHandler("", types, "us.desktop"), "us.desktop"),
              "[Default Applications]\n");
}

} // namespace
} // namespace quorvel
