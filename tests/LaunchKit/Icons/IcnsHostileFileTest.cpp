#include "LaunchKit/Icons/IcnsContainer.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/Icons/IconImage.h"
#include "LaunchKit/Icons/Jpeg2000Image.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/TemporaryHome.h"

#include <QImage>

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>

namespace quorvel::testing {
namespace {

const std::string good = icnsEntry("ic04", argbOf(testPicture(16)));

std::size_t imagesIn(const std::string& bytes) {
    const auto file = IcnsFile::parse(bytes);
    return file ? file->entries().size() : 0;
}

std::string png(int side) {
    return pngOf(testPicture(side));
}

std::string withNumber(std::string bytes, std::size_t at, std::uint32_t number) {
    for (std::size_t index = 0; index < 4; ++index) {
        bytes.at(at + index) = static_cast<char>(number >> (24 - 8 * index));
    }
    return bytes;
}

TEST(IcnsHostileFileTest, IsNotAContainerWithoutItsSignature) {
    EXPECT_FALSE(IcnsFile::parse(""));
    EXPECT_FALSE(IcnsFile::parse("icns"));
    EXPECT_FALSE(IcnsFile::parse("icnt" + good));
    EXPECT_FALSE(IcnsFile::parse(std::string("icns\0\0\0", 7)));
}

TEST(IcnsHostileFileTest, IsReadToItsEndIfItsDeclaredSizeIsWrong) {
    for (const std::uint32_t size : {0U, 7U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        EXPECT_EQ(imagesIn(withNumber(icnsOf({good}), 4, size)), 1U) << size;
    }
    EXPECT_EQ(imagesIn(icnsOf({good}) + good), 1U) << "what follows the container is not its own";
}

class IcnsHostileFileTestInvalidSizes : public ::testing::TestWithParam<std::uint32_t> {};
INSTANTIATE_TEST_SUITE_P(HostileIcns, IcnsHostileFileTestInvalidSizes,
                         ::testing::Values(1, 7, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF8));

TEST_P(IcnsHostileFileTestInvalidSizes, EndsItsFamilyAndKeepsWhatCameBefore) {
    EXPECT_EQ(imagesIn(icnsOf({good, icnsEntry("ic11", png(32), GetParam()), good})), 1U);
    EXPECT_EQ(imagesIn(icnsOf({icnsEntry("slct", icnsEntry("ic11", png(32), GetParam())), good})),
              1U)
        << "an invalid size inside a nested family does not affect the outer one";
}

TEST(IcnsHostileFileTest, MayContainAnEmptyChunk) {
    EXPECT_EQ(imagesIn(icnsOf({icnsEntry("ic11", ""), icnsEntry("is32", ""), icnsEntry("ics#", ""),
                               icnsEntry("slct", ""), good})),
              1U);
}

TEST(IcnsHostileFileTest, IsReadUpToWhereItIsCutOff) {
    const std::string whole = icnsOf({good, icnsEntry("ic12", png(64)), good});
    std::size_t before = 0;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::size_t count = imagesIn(whole.substr(0, size));
        EXPECT_GE(count, before);
        before = count;
    }
    EXPECT_EQ(before, 3U);
}

TEST(IcnsHostileFileTest, ReturnsNullForATruncatedPayload) {
    const QImage picture = testPicture(32);
    const QImage small = testPicture(16);
    const std::vector<std::pair<const char*, std::string>> payloads{
        {"ic11", png(32)},
        {"ic11", jpeg2000Of(picture, Jpeg2000Form::rgba)},
        {"ic05", argbOf(picture)},
        {"il32", rle24Of(picture)},
        {"ics#", bitmapOf(small)},
        {"ics8", alphaMaskOf(small)},
        {"ics4", alphaMaskOf(small).substr(128)},
    };
    for (const auto& [type, payload] : payloads) {
        for (const double part : {0.05, 0.5, 0.8}) {
            const auto size = static_cast<std::size_t>(static_cast<double>(payload.size()) * part);
            const auto file = IcnsFile::parse(icnsOf({icnsEntry(type, payload.substr(0, size))}));
            ASSERT_TRUE(file);
            EXPECT_TRUE(file->entries().empty() || file->decode(0).isNull()) << type << " " << part;
        }
    }
}

TEST(IcnsHostileFileTest, SurvivesEveryBrokenByteOfASmallFile) {
    const std::string whole =
        icnsOf({icnsEntry("ic11", png(32)), icnsEntry("is32", rle24Of(testPicture(16))),
                icnsEntry("icp4", jpeg2000Of(testPicture(16), Jpeg2000Form::rgb))});
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string broken = whole;
        broken[at] = static_cast<char>(~broken[at]);
        const auto file = IcnsFile::parse(broken);
        for (std::size_t index = 0; file && index < file->entries().size(); ++index) {
            const QImage image = file->decode(index);
            EXPECT_TRUE(image.isNull() || image.width() == file->entries()[index].width);
        }
    }
}

TEST(IcnsHostileFileTest, IsNotReadDeeperThanAFewFamilies) {
    std::string nested = good;
    for (int depth = 0; depth < 10000; ++depth) {
        nested = icnsEntry("slct", nested);
    }
    EXPECT_EQ(imagesIn(icnsOf({good, nested})), 1U);
    EXPECT_EQ(imagesIn(icnsOf({icnsEntry("slct", icnsEntry("over", good))})), 1U);
}

TEST(IcnsHostileFileTest, ReturnsABoundedNumberOfChunks) {
    std::string many;
    for (int count = 0; count < 100000; ++count) {
        many += count % 2 == 0 ? icnsEntry("ic04", "") : icnsEntry("slct", icnsEntry("ic04", "x"));
    }
    std::size_t chunks = 0;
    for (const IcnsFamily& family : icnsFamilies(icnsEntry("icns", many))) {
        chunks += family.size();
    }
    EXPECT_LE(chunks, maximumIcnsChunks);
}

TEST(IcnsHostileFileTest, FindsTheGoodImageAmongManyBrokenOnesOfItsOwn) {
    std::vector<std::string> entries(20, icnsEntry("ic07", png(128).substr(0, 60)));
    entries.push_back(good);
    const auto file = IcnsFile::parse(icnsOf(entries));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->widest(), testPicture(16));
}

TEST(IcnsHostileFileTest, RefusesSizesThatAreNotTheTypesOwn) {
    const auto pngOfSize = [](std::uint32_t width, std::uint32_t height) {
        return withNumber(withNumber(png(32), 16, width), 20, height);
    };
    for (const std::uint32_t side : {0U, 1U, 33U, 4097U, 65536U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        EXPECT_EQ(imagesIn(icnsOf({icnsEntry("ic11", pngOfSize(side, side)), good})), 1U) << side;
        EXPECT_EQ(imagesIn(icnsOf({icnsEntry("ic11", pngOfSize(32, side)), good})), 1U) << side;
    }
}

// The position of a number of the codestream's size marker, counted as in the standard.
std::size_t sizePosition(const std::string& bytes, std::size_t index) {
    return bytes.find("\xFF\x4F\xFF\x51") + 8 + 4 * index;
}

TEST(IcnsHostileFileTest, RefusesJpeg2000OfAbsurdGeometry) {
    const std::string bytes = jpeg2000Of(testPicture(16), Jpeg2000Form::rgba);
    EXPECT_EQ(jpeg2000Size(bytes), QSize(16, 16));
    const auto sizeWith = [&](std::size_t index, std::uint32_t number) {
        return jpeg2000Size(withNumber(bytes, sizePosition(bytes, index), number));
    };
    EXPECT_FALSE(sizeWith(0, 0).isValid());
    EXPECT_FALSE(sizeWith(0, 4097).isValid());
    EXPECT_FALSE(sizeWith(1, 0xFFFFFFFF).isValid());
    EXPECT_FALSE(sizeWith(2, 16).isValid()) << "nothing right of its left edge";
    EXPECT_FALSE(sizeWith(4, 0).isValid()) << "tiles of no width";
    EXPECT_FALSE(sizeWith(6, 1).isValid()) << "tiles that begin inside of the image";
    const std::string tiled = withNumber(bytes, sizePosition(bytes, 4), 1);
    EXPECT_EQ(jpeg2000Size(tiled), QSize(16, 16)) << "a few tiles are fine";
    EXPECT_FALSE(jpeg2000Size(withNumber(tiled, sizePosition(bytes, 5), 0)).isValid());
    std::string manyComponents = bytes;
    manyComponents.at(sizePosition(bytes, 8)) = '\x40';
    EXPECT_FALSE(jpeg2000Size(manyComponents).isValid());
}

TEST(IcnsHostileFileTest, RefusesAJpeg2000BoxOfAnInvalidSize) {
    const std::string bytes = jpeg2000Of(testPicture(16), Jpeg2000Form::rgb);
    const std::size_t box = bytes.find("jp2c") - 4;
    EXPECT_FALSE(jpeg2000Size(withNumber(bytes, 12, 7)).isValid());
    EXPECT_FALSE(jpeg2000Size(withNumber(bytes, box, 0xFFFFFFFF)).isValid());
    EXPECT_EQ(jpeg2000Size(withNumber(bytes, box, 0)), QSize(16, 16)) << "0: to the end";
}

TEST(IcnsHostileFileTest, IsNotReadBeyondSixtyFourMebibytes) {
    const TemporaryFolder folder;
    write(folder / "large.icns", icnsOf({good}));
    std::filesystem::resize_file(folder / "large.icns", IcnsFile::maximumFileSize);
    EXPECT_TRUE(IcnsFile::read(folder / "large.icns"));
    std::filesystem::resize_file(folder / "large.icns", IcnsFile::maximumFileSize + 1);
    EXPECT_FALSE(IcnsFile::read(folder / "large.icns"));
    EXPECT_TRUE(widestIconImage(folder / "large.icns").isNull());
}

TEST(IcnsHostileFileTest, NeverWaitsForAPipe) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe.icns").c_str(), 0600), 0);
    EXPECT_FALSE(IcnsFile::read(folder / "pipe.icns"));
    EXPECT_TRUE(widestIconImage(folder / "pipe.icns").isNull());
}

} // namespace
} // namespace quorvel::testing
