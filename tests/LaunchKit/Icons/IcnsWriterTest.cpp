#include "LaunchKit/Icons/IcnsWriter.h"

#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/Icons/IcnsRunLength.h"
#include "tests/support/IcnsBuilder.h"

#include <QImage>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::string packed(const Bytes& bytes) {
    std::string result;
    packRuns(bytes, result);
    return result;
}

TEST(IcnsWriterTest, RunLengthPacksRunsOfThreeAndMore) {
    EXPECT_EQ(packed({}), "");
    EXPECT_EQ(packed({7, 7, 7}), std::string("\x80\x07", 2));
    EXPECT_EQ(packed({1, 1}), std::string("\x01\x01\x01", 3));
    EXPECT_EQ(packed({1, 2, 3, 3, 3, 3}), std::string("\x01\x01\x02\x81\x03", 5));
    EXPECT_EQ(packed(Bytes(130, 9)), std::string("\xFF\x09", 2));
    EXPECT_EQ(packed(Bytes(131, 9)), std::string("\xFF\x09\x00\x09", 4));
}

TEST(IcnsWriterTest, RunLengthUnpacksWhatItPacked) {
    Bytes bytes;
    for (unsigned index = 0; index < 5000; ++index) {
        const unsigned run = index % 13 == 0 ? 150 : index % 5 == 0 ? 3 : 1;
        bytes.insert(bytes.end(), run, static_cast<std::uint8_t>(index * 31 / 7));
    }
    EXPECT_EQ(unpackRuns(packed(bytes), bytes.size()), bytes);
    EXPECT_FALSE(unpackRuns(packed(bytes), bytes.size() + 1));
}

TEST(IcnsWriterTest, RunLengthNeverUnpacksMoreThanAsked) {
    EXPECT_EQ(unpackRuns("\xFF\x09", 5), Bytes(5, 9));
    EXPECT_EQ(unpackRuns(std::string("\x04\x01\x02\x03\x04\x05", 6), 2), (Bytes{1, 2}));
    EXPECT_FALSE(unpackRuns("\xFF", 1)) << "a run of nothing";
    EXPECT_FALSE(unpackRuns("\x7F", 1));
}

TEST(IcnsWriterTest, WritesEachSizeAsItsType) {
    const std::vector<std::pair<int, std::string>> types{
        {1024, "ic10"}, {512, "ic09"}, {256, "ic08"}, {128, "ic07"},
        {64, "ic12"},   {32, "ic05"},  {16, "ic04"}};
    for (const auto& [side, type] : types) {
        const auto file = IcnsFile::parse(icnsFile(std::vector{icnsChunk(testPicture(side))}));
        ASSERT_TRUE(file);
        ASSERT_EQ(file->entries().size(), 1U);
        EXPECT_EQ(file->entries()[0].type, type);
        EXPECT_EQ(file->entries()[0].encoding, side > 32 ? IcnsEncoding::png : IcnsEncoding::argb);
        EXPECT_EQ(file->decode(0), testPicture(side)) << side;
    }
}

TEST(IcnsWriterTest, WritesEachSizeForScreensOfDoubleDensityAsItsType) {
    const std::vector<std::pair<int, std::string>> types{
        {1024, "ic10"}, {512, "ic14"}, {256, "ic13"}, {64, "ic12"}, {32, "ic11"}};
    for (const auto& [side, type] : types) {
        const auto file =
            IcnsFile::parse(icnsFile(std::vector{icnsDoubleChunk(testPicture(side))}));
        ASSERT_TRUE(file);
        ASSERT_EQ(file->entries().size(), 1U);
        EXPECT_EQ(file->entries()[0], (IcnsEntry{type, IcnsEncoding::png, side, side}));
        EXPECT_EQ(file->decode(0), testPicture(side)) << side;
    }
}

TEST(IcnsWriterTest, WritesNoOtherSize) {
    for (const int side : {16, 48, 128}) {
        EXPECT_EQ(icnsDoubleChunk(testPicture(side)), "");
    }
    EXPECT_EQ(icnsDoubleChunk(QImage()), "");
    EXPECT_EQ(icnsChunk(testPicture(48)), "");
    EXPECT_EQ(icnsChunk(testPicture(64).copy(0, 0, 64, 32)), "");
    EXPECT_EQ(icnsChunk(QImage()), "");
}

TEST(IcnsWriterTest, EndsPlanesWithAByteThatMayBeLost) {
    for (const int side : {16, 32}) {
        std::string bytes = icnsChunk(testPicture(side));
        EXPECT_EQ(bytes.back(), '\0');
        bytes.pop_back();
        bytes[7] = static_cast<char>(bytes[7] - 1); // the entry's length
        const auto file = IcnsFile::parse(icnsFile(std::vector{bytes}));
        ASSERT_TRUE(file);
        EXPECT_EQ(file->decode(0), testPicture(side));
    }
}

TEST(IcnsWriterTest, MarksPngAsStandardColors) {
    const std::string bytes = pngBytes(testPicture(64));
    EXPECT_EQ(bytes.substr(33, 13), std::string("\0\0\0\1sRGB\0\xAE\xCE\x1C\xE9", 13));
    EXPECT_EQ(bytes.find("iCCP"), std::string::npos);
    EXPECT_EQ(bytes.substr(12, 4), "IHDR");
}

TEST(IcnsWriterTest, CompressesItsPng) {
    QImage flat(1024, 1024, QImage::Format_ARGB32);
    flat.fill(Qt::blue);
    EXPECT_LT(pngBytes(flat).size(), 20000U);
}

} // namespace
} // namespace quorvel::testing
