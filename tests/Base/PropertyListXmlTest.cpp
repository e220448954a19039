// Property lists as other tools write them and as XML allows.
#include "Base/PropertyList.h"
#include "Base/PropertyListLimits.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace std::string_literals;

const std::string mark = "\xEF\xBB\xBF";
const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const std::string list = "<plist version=\"1.0\"><dict><key>Name</key><string>Café 😀</string>"
                         "<key>On</key><true/></dict></plist>";
const PropertyListDictionary expected{{"Name", "Café 😀"}, {"On", true}};

std::string utf16(const std::u16string& text, bool bigEndian) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char high = static_cast<char>(unit >> 8U);
        const char low = static_cast<char>(unit & 0xFFU);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

std::string inList(const std::string& start, const std::string& value) {
    return start + "<plist><dict><key>k</key>" + value + "</dict></plist>";
}

void expectText(const std::string& document, const std::string& text) {
    EXPECT_EQ(PropertyList::parseDictionary(document), (PropertyListDictionary{{"k", text}}))
        << document;
}

TEST(PropertyListXmlTest, AByteOrderMarkIsSkipped) {
    EXPECT_EQ(PropertyList::parseDictionary(mark + declaration + list), expected);
    EXPECT_EQ(PropertyList::parseDictionary(mark + list), expected);
}

TEST(PropertyListXmlTest, Utf16IsReadInBothOrders) {
    const std::u16string document =
        u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<plist version=\"1.0\"><dict><key>Name</key>"
        u"<string>Café 😀</string><key>On</key><true/></dict></plist>";
    for (const bool bigEndian : {false, true}) {
        EXPECT_EQ(PropertyList::parseDictionary(utf16(u"\uFEFF" + document, bigEndian)), expected);
        EXPECT_EQ(PropertyList::parseDictionary(utf16(document, bigEndian)), expected);
    }
}

TEST(PropertyListXmlTest, BrokenUtf16IsRefused) {
    const std::u16string head = u"\uFEFF<plist><dict><key>k</key><string>";
    const std::u16string tail = u"</string></dict></plist>";
    const std::u16string half(1, char16_t{0xD83D});
    for (const bool bigEndian : {false, true}) {
        EXPECT_TRUE(PropertyList::parseDictionary(utf16(head + tail, bigEndian)));
        EXPECT_FALSE(PropertyList::parseDictionary(utf16(head + half + tail, bigEndian)));
        EXPECT_FALSE(PropertyList::parseDictionary(utf16(head + half, bigEndian)));
        EXPECT_FALSE(PropertyList::parseDictionary(utf16(head + tail, bigEndian) + "\n"));
    }
}

TEST(PropertyListXmlTest, AnInternalSubsetIsSkipped) {
    const std::string value = "<string>v</string>";
    for (const char* subset :
         {"<!DOCTYPE plist [ ]>", "<!DOCTYPE plist [<!ELEMENT plist ANY>\n<!ENTITY e \"]>\">]>",
          "<!DOCTYPE plist PUBLIC \"-//X//Y\" \"http://example.test/a>b\" [<!-- ]> ' -->] >",
          "<!DOCTYPE plist [<?x ]> ?> <!ATTLIST dict a CDATA 'it>is]'>]>"}) {
        expectText(inList(declaration + subset, value), "v");
    }
}

// Each entity would expand to ten of the previous one.
TEST(PropertyListXmlTest, EntitiesAreNeverExpanded) {
    std::string subset = "<!DOCTYPE plist [<!ENTITY e0 \"lol\">";
    for (int level = 1; level < 30; ++level) {
        subset += "<!ENTITY e" + std::to_string(level) + " \"";
        for (int time = 0; time < 10; ++time) {
            subset += "&e" + std::to_string(level - 1) + ";";
        }
        subset += "\">";
    }
    EXPECT_FALSE(PropertyList::parseDictionary(inList(subset + "]>", "<string>&e29;</string>")));
    EXPECT_FALSE(PropertyList::parseDictionary(inList(subset + "]>", "&e29;")));
    EXPECT_FALSE(PropertyList::parseDictionary(inList(
        "<!DOCTYPE plist [<!ENTITY f SYSTEM \"file:///etc/passwd\">]>", "<string>&f;</string>")));
    expectText(inList(subset + "]>", "<string>&lt;&amp;&#233;&#x1F600;</string>"), "<&é😀");
}

TEST(PropertyListXmlTest, AnAttributeMayContainAClosingBracket) {
    expectText("<plist version=\">\"><dict a='>'><key b=\"'/>\">k</key><string c='\">'>v</string>"
               "</dict></plist>",
               "v");
    EXPECT_EQ(PropertyList::parseDictionary(inList("", "<array a='/>'><true b='>' /></array>")),
              (PropertyListDictionary{{"k", PropertyListArray{true}}}));
}

TEST(PropertyListXmlTest, CommentsAndInstructionsMayContainAnything) {
    expectText(inList("<?x > <!-- ?><!-- <dict> ' -->", "<?y </dict> ?><string>v</string>"), "v");
    expectText(inList("<!DOCTYPE plist []>", "<string><![CDATA[<a> & ]]]>v</string>"), "<a> & ]v");
}

TEST(PropertyListXmlTest, UnterminatedMarkupIsRefused) {
    for (const char* start : {"<!DOCTYPE plist [", "<!DOCTYPE plist [<!-- ]>", "<!DOCTYPE 'plist>",
                              "<!DOCTYPE plist [<!ENTITY e \"]>", "<? >", "<!-- >", "<![CDATA[ >",
                              "<a '>", "<a b=\"", "<>", "<", "</", "<!ELEMENT a>"}) {
        EXPECT_FALSE(PropertyList::parseDictionary(start)) << start;
        EXPECT_FALSE(PropertyList::parseDictionary(inList(start, "<true/>"))) << start;
    }
}

TEST(PropertyListXmlTest, ADeclarationWithinTheListIsRefused) {
    EXPECT_FALSE(PropertyList::parseDictionary(inList("", "<!DOCTYPE a []><true/>")));
}

TEST(PropertyListXmlTest, NestingIsLimitedInEverySpelling) {
    std::string nested;
    for (int level = 0; level < 100'000; ++level) {
        nested += "<array a='>'>";
    }
    EXPECT_FALSE(PropertyList::parseDictionary(inList("<!DOCTYPE plist []>", nested)));
}

} // namespace
} // namespace quorvel
