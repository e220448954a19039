// Malicious property lists: each must be refused or read as a small dictionary, without exhausting
// stack, memory or time.
#include "Base/PropertyListLimits.h"

#include "Base/PropertyList.h"
#include "tests/support/BinaryList.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using testing::bigEndian;
using testing::BinaryList;

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t index = 0; index < count; ++index) {
        result.append(text);
    }
    return result;
}

std::string nestedXml(std::string_view level, std::size_t count) {
    return "<plist version=\"1.0\"><dict><key>k</key>" + repeated(level, count);
}

BinaryList simpleList() {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("k"));
    list.add(BinaryList::text("value"));
    return list;
}

// Nested arrays, numbered from `first`.
void addChain(BinaryList& list, std::uint64_t first, std::size_t depth) {
    for (std::uint64_t level = 0; level < depth; ++level) {
        list.add(BinaryList::array({first + level + 1}));
    }
    list.add(BinaryList::text("end"));
}

void expectRefused(const std::string& bytes) {
    EXPECT_FALSE(PropertyList::parseDictionary(bytes));
}

// Refused before it is parsed.
void expectNotWithin(const std::string& bytes) {
    EXPECT_FALSE(PropertyListLimits::neededBytes(bytes));
}

TEST(PropertyListLimitsTest, OrdinaryListsAreWithinTheLimits) {
    EXPECT_TRUE(
        PropertyListLimits::neededBytes("<plist><dict><key>a</key><array/></dict></plist>"));
    EXPECT_TRUE(PropertyListLimits::neededBytes(simpleList().finish(0)));
    EXPECT_EQ(PropertyList::parseDictionary(simpleList().finish(0)),
              (PropertyListDictionary{{"k", "value"}}));
}

TEST(PropertyListLimitsTest, NestingIsReadUpToTheLimitAndNotBeyond) {
    const auto nested = [](std::size_t depth) {
        return nestedXml("<array>", depth) + repeated("</array>", depth) + "</dict></plist>";
    };
    EXPECT_TRUE(PropertyList::parseDictionary(nested(PropertyListLimits::maximumDepth - 1)));
    expectRefused(nested(PropertyListLimits::maximumDepth));
}

TEST(PropertyListLimitsTest, ExcessiveNestingIsRefused) {
    expectNotWithin(nestedXml("<array>", 100'000));
    expectNotWithin(nestedXml("<dict><key>k</key>", 100'000));
    expectNotWithin(nestedXml("<array >", 100'000));
    expectNotWithin(nestedXml("<array\n>", 100'000));
}

TEST(PropertyListLimitsTest, NestingIsNotHiddenByFalseClosingTags) {
    expectNotWithin(nestedXml("<array><!--</array>-->", 100'000));
    expectNotWithin(nestedXml("<array><?x </array> ?>", 100'000));
    expectNotWithin(nestedXml("<array><?x \"?>\" </array> ?>", 100'000));
    expectNotWithin(nestedXml("<array><string><![CDATA[</array>]]></string>", 100'000));
    expectNotWithin(nestedXml("<array><string><!--</array>--></string>", 100'000));
    expectNotWithin(nestedXml("<array><!DOCTYPE x [</array>]>", 100'000));
    expectNotWithin(nestedXml("<array><!DOCTYPE x \"</array>\">", 100'000));
}

TEST(PropertyListLimitsTest, NestingIsNotHiddenByAttributesThatLookLikeAnEnd) {
    expectNotWithin(nestedXml("<array a=\"/>\">", 100'000));
    expectNotWithin(nestedXml("<array a='/>'>", 100'000));
    expectNotWithin(nestedXml("<array a=\"</array>\">", 100'000));
    expectNotWithin(nestedXml("<array a='\"' b=\"/>\">", 100'000));
    expectNotWithin(nestedXml("<array / >", 100'000));
}

TEST(PropertyListLimitsTest, NestingIsNotHiddenByFalseComments) {
    const std::string chain = repeated("<array>", 100'000);
    expectNotWithin("<?x \"<!--\" ?><plist>" + chain + "-->");
    expectNotWithin("<?x > <!-- ?><plist>" + chain + "-->");
    expectNotWithin("<!DOCTYPE x \"<!--\"><plist>" + chain + "-->");
    expectNotWithin("<!DOCTYPE x \"> <!-- \"><plist>" + chain + "-->");
    expectNotWithin("<!DOCTYPE x [ <!-- ]><plist>" + chain + "-->");
    expectNotWithin("<plist a=\"<!--\">" + chain + "-->");
    expectNotWithin("<plist a='\"' b=\"> <!-- \">" + chain + "-->");
}

TEST(PropertyListLimitsTest, ManyTagsTakeLinearTime) {
    const std::size_t size = PropertyList::maximumFileSize - 100;
    expectRefused(std::string(size, '<'));
    expectRefused("<plist><dict>" + repeated("<dict", size / 5 - 10));
    expectRefused("<plist><dict>" + repeated("<dict", size / 5 - 10) + "/>");
    expectRefused("<plist><dict>" + repeated("<!--", size / 4 - 10));
    expectRefused("<plist><dict>" + repeated("<![CDATA[", size / 9 - 10));
    expectRefused("<plist><dict>" + repeated("<array ", size / 7 - 10));
}

TEST(PropertyListLimitsTest, ADictionaryOfManyKeysIsReadOrRefusedQuickly) {
    std::string bytes = "<plist><dict>";
    for (int index = 0; index < 100'000; ++index) {
        bytes += "<key>k" + std::to_string(index) + "</key><true/>";
    }
    EXPECT_EQ(PropertyList::parseDictionary(bytes + "</dict></plist>")->size(), 100'000U);
}

TEST(PropertyListLimitsTest, AnArrayThatContainsItselfIsRefused) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("k"));
    list.add(BinaryList::array({2}));
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, ADictionaryThatContainsItselfIsRefused) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 0));
    list.add(BinaryList::text("k"));
    expectRefused(list.finish(0));
}

// The parser aborts the program on such a key.
TEST(PropertyListLimitsTest, AKeyThatContainsANulIsRefused) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text(std::string("k\0y", 3)));
    list.add(BinaryList::text("value"));
    expectNotWithin(list.finish(0));
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, AWideKeyThatContainsANulIsRefused) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 1));
    list.add(std::string("\x62\0k\0\0", 5));
    expectNotWithin(list.finish(0));
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, AKeyThatIsNotTextIsRefused) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 1));
    list.add(BinaryList::array({}));
    expectNotWithin(list.finish(0));
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, AValueMayContainANul) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("k"));
    list.add(BinaryList::text(std::string("a\0b", 3)));
    EXPECT_TRUE(PropertyList::parseDictionary(list.finish(0)));
}

TEST(PropertyListLimitsTest, AChainOfAHundredThousandArraysIsRefused) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("k"));
    addChain(list, 2, 100'000);
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, AChainIsNotHiddenByACountOfUnusualWidth) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("k"));
    // One reference, whose count has sixteen bytes.
    list.add("\xAF\x14" + bigEndian(0, 8) + bigEndian(1, 8) + bigEndian(3, 4));
    addChain(list, 3, 100'000);
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, AChainIsNotHiddenByAnInvalidReference) {
    BinaryList list;
    list.add(BinaryList::container(0xD0, 2, {1, 99'999'999, 2, 1}));
    list.add(BinaryList::text("k"));
    addChain(list, 2, 100'000);
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, SharedReferencesThatExpandWithoutBoundAreRefused) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("k"));
    for (std::uint64_t level = 2; level < 40; ++level) {
        list.add(BinaryList::array(std::vector<std::uint64_t>(10, level + 1)));
    }
    list.add(BinaryList::text("lol"));
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, SharedContentsCountAsOftenAsTheyAreCopied) {
    const std::string long_(60'000, 'x');
    for (const std::string& object :
         {BinaryList::text(long_), BinaryList::data(long_), BinaryList::wideText(long_)}) {
        for (const std::size_t times : {1U, 5'000U}) {
            BinaryList list;
            list.add(BinaryList::dictionary(1, 2));
            list.add(BinaryList::text("k"));
            list.add(BinaryList::array(std::vector<std::uint64_t>(times, 3)));
            list.add(object);
            EXPECT_EQ(PropertyListLimits::neededBytes(list.finish(0)).has_value(), times == 1);
        }
    }
}

TEST(PropertyListLimitsTest, SharedReferencesThatStaySmallAreRead) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("k"));
    list.add(BinaryList::array({3, 3, 3}));
    list.add(BinaryList::text("x"));
    EXPECT_EQ(PropertyList::parseDictionary(list.finish(0)),
              (PropertyListDictionary{{"k", PropertyListArray{"x", "x", "x"}}}));
}

TEST(PropertyListLimitsTest, WrongCountsAreRefused) {
    for (const std::uint64_t count :
         {std::uint64_t{14}, std::uint64_t{1} << 20U, std::uint64_t{1} << 32U, ~std::uint64_t{0}}) {
        BinaryList list;
        list.add(BinaryList::dictionary(1, 2));
        list.add(BinaryList::text("k"));
        list.add(BinaryList::container(0xA0, count, {1}));
        expectRefused(list.finish(0));
        BinaryList dictionaries;
        dictionaries.add(BinaryList::container(0xD0, count, {1, 1}));
        dictionaries.add(BinaryList::text("k"));
        expectRefused(dictionaries.finish(0));
    }
}

TEST(PropertyListLimitsTest, ATextLongerThanTheFileIsRefused) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("k"));
    list.add("\x5F\x13" + bigEndian(std::uint64_t{1} << 40U, 8) + "short");
    expectRefused(list.finish(0));
}

TEST(PropertyListLimitsTest, AnInconsistentTrailerIsRefused) {
    const BinaryList list = simpleList();
    const std::uint64_t most = ~std::uint64_t{0};
    expectRefused(list.finish(3));
    expectRefused(list.finish(most));
    for (const int width : {0, 9, 16, 255}) {
        expectRefused(list.finish(0, {.offsetSize = width}));
        expectRefused(list.finish(0, {.referenceSize = width}));
    }
    for (const std::uint64_t count : {std::uint64_t{0}, std::uint64_t{1} << 32U, most}) {
        expectRefused(list.finish(0, {.count = count}));
    }
    for (const std::uint64_t table : {std::uint64_t{0}, std::uint64_t{1} << 32U, most}) {
        expectRefused(list.finish(0, {.table = table}));
    }
}

TEST(PropertyListLimitsTest, ABinaryListWithAnyByteChangedIsNeverACrash) {
    const std::string whole = simpleList().finish(0);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const int byte : {0x00, 0x01, 0x7F, 0x80, 0xAF, 0xD1, 0xFF}) {
            std::string changed = whole;
            changed[at] = static_cast<char>(byte);
            (void)PropertyList::parseDictionary(changed);
        }
        (void)PropertyList::parseDictionary(whole.substr(0, at));
    }
}

} // namespace
} // namespace quorvel
