// What is not asked for is left out before parsing, and makes no difference.
#include "Base/PropertyListPruning.h"

#include <gtest/gtest.h>

#include <random>

namespace quorvel {
namespace {

using PropertyListPruning::pruned;

const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<!DOCTYPE plist PUBLIC \"-//Example//DTD PLIST 1.0//EN\" \"x.dtd\">\n"
                         "<plist version=\"1.0\">\n<dict>";
const std::string tail = "</dict></plist>";

TEST(PropertyListPruningTest, PlainValuesOfOtherKeysAreLeftOut) {
    const std::string wanted = "<key>Wanted</key> <string>yes</string>";
    const std::string others = "<key>Text</key><string>é, long</string>"
                               "<key>On</key><true/><key>Off</key><false/>"
                               "<key>Number</key><integer>12</integer>"
                               "<key>Nested</key><dict><key>Wanted</key><array><string>no</string>"
                               "<dict><key>A</key><true/></dict></array></dict>";
    EXPECT_EQ(pruned(head + others + wanted + "\n" + others + tail, {"Wanted"}),
              head + wanted + tail);
    EXPECT_EQ(pruned("<dict>" + others + "</dict>", {"Wanted"}), "<dict></dict>");
}

TEST(PropertyListPruningTest, FromTheFirstUnusualValueEverythingStays) {
    const std::string plain = "<key>A</key><string>a</string>";
    for (const std::string unusual :
         {"<key>B</key><string>&amp;</string>", "<key>B</key><data>AAAA</data>",
          "<key>B&amp;</key><true/>", "<key>B </key><true/>", "<key></key><true/>",
          "<key>B</key><dict><key>C</key></dict>", "<key>B</key><dict><true/></dict>",
          "<key>B</key><integer>-1</integer>", "<key>B</key><integer></integer>",
          "<key>B</key><!-- --><true/>", "<true/>", "<key>B</key></dict>",
          "<key>B</key><array><true/></dict>"}) {
        EXPECT_EQ(pruned(head + plain + unusual + plain + tail, {"Wanted"}),
                  head + unusual + plain + tail);
    }
}

TEST(PropertyListPruningTest, AnUnusualHeadStays) {
    for (const std::string unusual :
         {"<!-- --><plist><dict>", "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><dict>",
          "<plist><dict a=\"b\">", "<plist><array>", "text<dict>"}) {
        const std::string document = unusual + "<key>A</key><true/></dict></plist>";
        EXPECT_EQ(pruned(document, {"Wanted"}), document);
    }
}

const std::vector<std::string> pieces{"<key>A</key><string>v</string>",
                                      "<key>B</key><true/>",
                                      "<key>C</key><integer>7</integer>",
                                      "<key>D</key><dict><key>A</key><string>x</string></dict>",
                                      "<key>E</key><array><string>q</string><false/></array>",
                                      "<key>F</key><dict><key>Z</key></dict>",
                                      "<key>A </key><string>w</string>",
                                      "<key></key><string>z</string>",
                                      "<key>A</key>",
                                      "<key>C</key>",
                                      "<string>t</string>",
                                      "<string/>",
                                      "<string>",
                                      "</string>",
                                      "<true></true>",
                                      "<integer>x</integer>",
                                      "<dict>",
                                      "</dict>",
                                      "<array>",
                                      "</array>",
                                      "<dict/>",
                                      "&amp;",
                                      "&bad;",
                                      "<data>AAAA</data>",
                                      "<!-- x -->",
                                      "<![CDATA[x]]>",
                                      "\x01",
                                      "\xFF",
                                      "<foo>",
                                      "</plist>"};

// Documents of random pieces, valid or not: the parser's answer about the wanted keys must be that
// about the whole document.
TEST(PropertyListPruningTest, AnswersStayTheSame) {
    constexpr int documents = 30000;
    std::mt19937 random(1); // NOLINT(cert-msc51-cpp): the same documents each time
    int answered = 0;
    for (int number = 0; number < documents; ++number) {
        std::string document = head;
        for (unsigned count = random() % 8; count > 0; --count) {
            const bool isPlain = random() % 2 == 0;
            document += pieces[random() % (isPlain ? 5 : pieces.size())];
        }
        document += random() % 8 == 0 ? "" : tail;
        auto whole = PropertyList::parseDictionary(document);
        if (whole) {
            std::erase_if(
                *whole, [](const auto& entry) { return entry.first != "A" && entry.first != "B"; });
            ++answered;
        }
        ASSERT_EQ(PropertyList::parseDictionary(document, {"A", "B"}), whole) << document;
    }
    EXPECT_GT(answered, documents / 10);
}

} // namespace
} // namespace quorvel
