#include "Base/PropertyList.h"

#include "Platform/files/FileSystem.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

std::string document(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + body +
           "</plist>";
}

std::string dictionaryHolding(const std::string& value) {
    return document("<dict><key>k</key>" + value + "</dict>");
}

PropertyListValue valueOf(const std::string& value) {
    const auto dictionary = PropertyList::parseDictionary(dictionaryHolding(value));
    return dictionary && dictionary->contains("k") ? dictionary->at("k") : PropertyListValue{};
}

TEST(PropertyListTest, EveryKindOfValueIsRead) {
    EXPECT_EQ(valueOf("<string>text</string>"), "text");
    EXPECT_EQ(valueOf("<true/>"), true);
    EXPECT_EQ(valueOf("<false/>"), false);
    EXPECT_EQ(valueOf("<integer>42</integer>"), std::int64_t{42});
    EXPECT_EQ(valueOf("<integer>-42</integer>"), std::int64_t{-42});
    EXPECT_EQ(valueOf("<real>1.5</real>"), 1.5);
    EXPECT_EQ(valueOf("<array><string>a</string><true/></array>"), (PropertyListArray{"a", true}));
    EXPECT_EQ(valueOf("<dict><key>x</key><string>y</string></dict>"),
              (PropertyListDictionary{{"x", "y"}}));
}

TEST(PropertyListTest, EmptyContainersAreRead) {
    EXPECT_EQ(valueOf("<array/>"), PropertyListArray{});
    EXPECT_EQ(valueOf("<array />"), PropertyListArray{});
    EXPECT_EQ(valueOf("<dict></dict>"), PropertyListDictionary{});
    EXPECT_EQ(PropertyList::parseDictionary(document("<dict/>")), PropertyListDictionary{});
}

TEST(PropertyListTest, DatesAndDataHaveNoValue) {
    EXPECT_EQ(valueOf("<data>AAEC</data>"), PropertyListValue{});
    EXPECT_TRUE(
        PropertyList::parseDictionary(dictionaryHolding("<date>2020-01-01T00:00:00Z</date>"))
            ->contains("k"));
}

TEST(PropertyListTest, EntitiesAndCommentsAreUnderstood) {
    EXPECT_EQ(valueOf("<!-- <array> --><string>&lt;a&gt; &amp; b</string>"), "<a> & b");
}

TEST(PropertyListTest, TheUsualDoctypeIsUnderstood) {
    const std::string bytes =
        "<?xml version=\"1.0\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\"><dict><key>a</key><true/></dict></plist>\n";
    EXPECT_EQ(PropertyList::parseDictionary(bytes), (PropertyListDictionary{{"a", true}}));
}

TEST(PropertyListTest, OnlyADictionaryIsAccepted) {
    EXPECT_FALSE(PropertyList::parseDictionary(document("<array/>")));
    EXPECT_FALSE(PropertyList::parseDictionary(document("<string>x</string>")));
    EXPECT_FALSE(PropertyList::parseDictionary(""));
    EXPECT_FALSE(PropertyList::parseDictionary("plain text"));
    EXPECT_FALSE(PropertyList::parseDictionary("<html><body/></html>"));
    EXPECT_FALSE(PropertyList::parseDictionary("\0\0\0\0"s));
}

TEST(PropertyListTest, ATruncatedDocumentIsRefusedOrShorterAndNeverACrash) {
    const std::string whole = dictionaryHolding("<array><string>a</string><real>1</real></array>");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        (void)PropertyList::parseDictionary(whole.substr(0, length));
    }
    EXPECT_TRUE(PropertyList::parseDictionary(whole));
}

TEST(PropertyListTest, InvalidUtf8IsReadAsLatin1) {
    const std::string bytes =
        document("<dict><key>CFBundleName</key><string>Caf\xE9</string></dict>");
    EXPECT_EQ(PropertyList::stringFor(*PropertyList::parseDictionary(bytes), "CFBundleName"),
              "Café");
}

TEST(PropertyListTest, TheLastOfEqualKeysCounts) {
    const auto dictionary = PropertyList::parseDictionary(
        document("<dict><key>a</key><string>1</string><key>a</key><string>2</string></dict>"));
    ASSERT_TRUE(dictionary);
    EXPECT_EQ(dictionary->at("a"), "2");
}

TEST(PropertyListTest, OnlyTheRequestedKeysAreReturned) {
    const std::string xml = PropertyList::xml(
        {{"a", "1"}, {"b", PropertyListDictionary{{"a", "deep"}}}, {"ab", "2"}, {"c", true}});
    EXPECT_EQ(PropertyList::parseDictionary(xml, {"a", "c", "none"}),
              (PropertyListDictionary{{"a", "1"}, {"c", true}}));
    EXPECT_EQ(PropertyList::parseDictionary(xml, {"b"}),
              (PropertyListDictionary{{"b", PropertyListDictionary{{"a", "deep"}}}}));
    EXPECT_EQ(PropertyList::parseDictionary(xml, {"none"}), PropertyListDictionary{});
    EXPECT_EQ(PropertyList::parseDictionary("<plist><array/></plist>", {"a"}), std::nullopt);
}

TEST(PropertyListTest, AStringIsFoundByItsKeyAndNothingElse) {
    const PropertyListDictionary dictionary{{"text", "x"}, {"flag", true}};
    EXPECT_EQ(PropertyList::stringFor(dictionary, "text"), "x");
    EXPECT_EQ(PropertyList::stringFor(dictionary, "flag"), std::nullopt);
    EXPECT_EQ(PropertyList::stringFor(dictionary, "none"), std::nullopt);
}

TEST(PropertyListTest, OnlyABooleanOrTheNumbersZeroAndOneAreBooleans) {
    EXPECT_EQ(PropertyListValue(true).boolean(), true);
    EXPECT_EQ(PropertyListValue(std::int64_t{1}).boolean(), true);
    EXPECT_EQ(PropertyListValue(std::int64_t{0}).boolean(), false);
    EXPECT_EQ(PropertyListValue(1.0).boolean(), true);
    EXPECT_EQ(PropertyListValue(std::int64_t{2}).boolean(), std::nullopt);
    EXPECT_EQ(PropertyListValue(0.5).boolean(), std::nullopt);
    EXPECT_EQ(PropertyListValue("YES").boolean(), std::nullopt);
    EXPECT_EQ(PropertyListValue().boolean(), std::nullopt);
}

TEST(PropertyListTest, WhatIsWrittenIsReadBackTheSame) {
    const PropertyListDictionary dictionary{
        {"text", "a <b> & \"c\" 'd' é 😀"},
        {"", "an empty key"},
        {"lines", "a\nb\tc"},
        {"flags", PropertyListArray{true, false}},
        {"numbers", PropertyListArray{std::int64_t{0}, std::int64_t{-7},
                                      std::numeric_limits<std::int64_t>::max(),
                                      std::numeric_limits<std::int64_t>::min()}},
        {"real", 0.25},
        {"nested", PropertyListDictionary{{"empty", PropertyListArray{}}}},
    };
    EXPECT_EQ(PropertyList::parseDictionary(PropertyList::xml(dictionary)), dictionary);
}

TEST(PropertyListTest, TheXmlIsAVersion1Document) {
    const std::string xml = PropertyList::xml({{"a", true}});
    EXPECT_TRUE(xml.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    EXPECT_NE(xml.find("<!DOCTYPE plist"), std::string::npos);
    EXPECT_NE(xml.find("<plist version=\"1.0\">"), std::string::npos);
}

TEST(PropertyListTest, NegativeNumbersAreWrittenAsNegative) {
    EXPECT_NE(PropertyList::xml({{"n", std::int64_t{-7}}}).find("<integer>-7</integer>"),
              std::string::npos);
}

TEST(PropertyListTest, TextThatXmlCantRepresentIsRefused) {
    for (const std::string& text :
         {"\x01"s, "a\0b"s, "\x1B[31m"s, "\xFF"s, "a\uFFFE"s, "\uFFFFb"s}) {
        EXPECT_THROW((void)PropertyList::xml({{"k", text}}), std::invalid_argument);
        EXPECT_THROW((void)PropertyList::xml({{text, "v"}}), std::invalid_argument);
    }
    EXPECT_THROW((void)PropertyList::xml({{"k", PropertyListValue{}}}), std::invalid_argument);
    for (const std::string& neighbour : {"\uFFFD"s, "\uFEFF"s, "\U0001FFFE"s, "\u0085"s}) {
        EXPECT_NO_THROW((void)PropertyList::xml({{"k", neighbour}}));
    }
}

TEST(PropertyListTest, ABinaryFileFromAnotherToolIsRead) {
    if (!isExecutableFile("/usr/bin/plistutil")) {
        GTEST_SKIP() << "plistutil is not installed";
    }
    const TemporaryFolder folder;
    const PropertyListDictionary dictionary{
        {"CFBundleIdentifier", "com.example.Thing"},
        {"name", "été 語"},
        {"flag", true},
        {"number", std::int64_t{-3}},
        {"list", PropertyListArray{"a", "b", PropertyListDictionary{{"c", 1.5}}}},
    };
    write(folder / "xml.plist", PropertyList::xml(dictionary));
    Process::Options tool;
    tool.executable = "/usr/bin/plistutil";
    tool.arguments = {"-i", folder / "xml.plist", "-o", folder / "binary.plist", "-f", "bin"};
    ASSERT_EQ(Process::run(tool).waitUntilExit(), 0);
    ASSERT_TRUE(read(folder / "binary.plist").starts_with("bplist00"));
    EXPECT_EQ(readPropertyList(folder / "binary.plist"), dictionary);
}

TEST(PropertyListTest, AnUnreadableFileIsRefused) {
    const TemporaryFolder folder;
    fs::create_symlink(folder / "loop", folder / "loop");
    ::mkfifo((folder / "fifo").c_str(), 0600);
    write(folder / "empty", "");
    for (const char* name : {"none", "loop", "fifo", "empty", "."}) {
        EXPECT_FALSE(readPropertyList(folder / name)) << name;
    }
    EXPECT_FALSE(readPropertyList("/dev/zero"));
}

TEST(PropertyListTest, AFileOverTheLimitIsRefused) {
    const TemporaryFolder folder;
    write(folder / "huge", document("<dict/>"));
    fs::resize_file(folder / "huge", std::uintmax_t{100} << 20U);
    EXPECT_FALSE(readPropertyList(folder / "huge"));
}

} // namespace
} // namespace quorvel
