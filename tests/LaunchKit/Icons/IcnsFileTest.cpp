#include "LaunchKit/Icons/IcnsFile.h"

#include "LaunchKit/Icons/IconImage.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/TemporaryHome.h"

#include <QImage>

#include <gmock/gmock.h>

#include <array>
#include <stdexcept>

namespace quorvel::testing {
namespace {

using ::testing::ElementsAre;

IcnsFile fileOf(const std::vector<std::string>& entries) {
    auto file = IcnsFile::parse(icnsOf(entries));
    if (!file) {
        throw std::runtime_error("not taken as a container");
    }
    return *file;
}

QImage decodedEntry(std::string_view type, std::string_view payload) {
    const IcnsFile file = fileOf({icnsEntry(type, payload)});
    return file.entries().size() == 1 ? file.decode(0) : QImage();
}

// The largest difference of any channel, 256 when the sizes differ.
int difference(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull()) {
        return 256;
    }
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            largest =
                std::max({largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                          std::abs(qBlue(p) - qBlue(q)), std::abs(qAlpha(p) - qAlpha(q))});
        }
    }
    return largest;
}

QImage withAlphaOf(QImage image, const QImage& alpha, bool halves) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int level = qAlpha(alpha.pixel(x, y));
            const auto used = static_cast<QRgb>(halves ? (level > 127 ? 255 : 0) : level);
            image.setPixel(x, y, (image.pixel(x, y) & 0xFFFFFFU) | used << 24U);
        }
    }
    return image;
}

struct SizedType {
    const char* type;
    int side;
};
class IcnsFileTestModernTypes : public ::testing::TestWithParam<SizedType> {};

INSTANTIATE_TEST_SUITE_P(
    IcnsFile, IcnsFileTestModernTypes,
    ::testing::Values(SizedType{"icp4", 16}, SizedType{"icp5", 32}, SizedType{"icp6", 64},
                      SizedType{"ic04", 16}, SizedType{"ic05", 32}, SizedType{"icsb", 18},
                      SizedType{"icsB", 36}, SizedType{"sb24", 24}, SizedType{"SB24", 48},
                      SizedType{"ic07", 128}, SizedType{"ic08", 256}, SizedType{"ic09", 512},
                      SizedType{"ic10", 1024}, SizedType{"ic11", 32}, SizedType{"ic12", 64},
                      SizedType{"ic13", 256}, SizedType{"ic14", 512}),
    [](const auto& row) { return std::string(row.param.type); });

TEST_P(IcnsFileTestModernTypes, ContainsPng) {
    const QImage picture = testPicture(GetParam().side);
    const IcnsFile file = fileOf({icnsEntry(GetParam().type, pngOf(picture))});
    EXPECT_THAT(file.entries(), ElementsAre(IcnsEntry{GetParam().type, IcnsEncoding::png,
                                                      GetParam().side, GetParam().side}));
    EXPECT_EQ(file.decode(0), picture);
}

TEST_P(IcnsFileTestModernTypes, ContainsJpeg2000) {
    const QImage picture = testPicture(GetParam().side);
    const IcnsFile file =
        fileOf({icnsEntry(GetParam().type, jpeg2000Of(picture, Jpeg2000Form::rgba))});
    EXPECT_THAT(file.entries(), ElementsAre(IcnsEntry{GetParam().type, IcnsEncoding::jpeg2000,
                                                      GetParam().side, GetParam().side}));
    EXPECT_EQ(file.decode(0), picture);
}

TEST_P(IcnsFileTestModernTypes, ContainsArgbPlanes) {
    const QImage picture = testPicture(GetParam().side);
    const IcnsFile file = fileOf({icnsEntry(GetParam().type, argbOf(picture))});
    EXPECT_EQ(file.entries().at(0).encoding, IcnsEncoding::argb);
    EXPECT_EQ(file.decode(0), picture);
}

TEST_P(IcnsFileTestModernTypes, RefusesAnImageOfAnotherSize) {
    const QImage other = testPicture(GetParam().side + 1);
    EXPECT_TRUE(fileOf({icnsEntry(GetParam().type, pngOf(other))}).entries().empty());
    EXPECT_TRUE(fileOf({icnsEntry(GetParam().type, jpeg2000Of(other, Jpeg2000Form::rgb))})
                    .entries()
                    .empty());
}

TEST(IcnsFileTest, ReadsPngOfEveryColorTypeAndDepth) {
    const QImage picture = testPicture(32);
    const QImage opaque = opaquePicture(32);
    EXPECT_LE(
        difference(decodedEntry("ic11", pngOf(picture.convertToFormat(QImage::Format_RGBA64))),
                   picture),
        0);
    EXPECT_EQ(decodedEntry("ic11", pngOf(opaque.convertToFormat(QImage::Format_RGB888))), opaque);
    for (const auto format : {QImage::Format_Indexed8, QImage::Format_Grayscale8,
                              QImage::Format_Grayscale16, QImage::Format_Mono}) {
        const QImage converted = opaque.convertToFormat(format);
        EXPECT_LE(difference(decodedEntry("ic11", pngOf(converted)),
                             converted.convertToFormat(QImage::Format_ARGB32)),
                  1)
            << format;
    }
    const QImage palette = picture.convertToFormat(QImage::Format_Indexed8);
    EXPECT_EQ(decodedEntry("ic11", pngOf(palette)), palette.convertToFormat(QImage::Format_ARGB32));
}

TEST(IcnsFileTest, ReadsJpeg2000WithAndWithoutAlpha) {
    const QImage picture = testPicture(32);
    const QImage opaque = opaquePicture(32);
    EXPECT_EQ(decodedEntry("ic11", jpeg2000Of(opaque, Jpeg2000Form::rgb)), opaque);
    EXPECT_EQ(decodedEntry("ic11", jpeg2000Of(picture, Jpeg2000Form::rgba, true)), picture);
    EXPECT_LE(difference(decodedEntry("ic11", jpeg2000Of(opaque, Jpeg2000Form::ycc)), opaque), 2);
}

TEST(IcnsFileTest, ReadsGrayJpeg2000) {
    const QImage picture = testPicture(16);
    const QImage plain = decodedEntry("icp4", jpeg2000Of(picture, Jpeg2000Form::gray));
    const QImage clear = decodedEntry("icp4", jpeg2000Of(picture, Jpeg2000Form::grayAlpha));
    const int level = qGray(picture.pixel(3, 5));
    EXPECT_EQ(plain.pixel(3, 5), qRgb(level, level, level));
    EXPECT_EQ(clear.pixel(3, 5), qRgba(level, level, level, qAlpha(picture.pixel(3, 5))));
}

struct RgbType {
    const char* type;
    const char* mask;
    const char* bitmap;
    int side;
};
class IcnsFileTestColorTypes : public ::testing::TestWithParam<RgbType> {
protected:
    QImage picture_ = testPicture(GetParam().side);
    QImage opaque_ = opaquePicture(GetParam().side);
    std::string padding_ = std::string(GetParam().side == 128 ? 4 : 0, '\0');
};

INSTANTIATE_TEST_SUITE_P(
    IcnsFile, IcnsFileTestColorTypes,
    ::testing::Values(RgbType{"is32", "s8mk", "ics#", 16}, RgbType{"il32", "l8mk", "ICN#", 32},
                      RgbType{"ih32", "h8mk", "ich#", 48}, RgbType{"it32", "t8mk", "", 128},
                      RgbType{"icp4", "s8mk", "ics#", 16}, RgbType{"icp5", "l8mk", "ICN#", 32}),
    [](const auto& row) { return std::string(row.param.type); });

TEST_P(IcnsFileTestColorTypes, TakesItsAlphaFromTheMaskBeforeOrAfterIt) {
    const std::string color = icnsEntry(GetParam().type, padding_ + rle24Of(picture_));
    const std::string mask = icnsEntry(GetParam().mask, alphaMaskOf(picture_));
    EXPECT_EQ(fileOf({color, mask}).decode(0), picture_);
    EXPECT_EQ(fileOf({mask, color}).decode(0), picture_);
    EXPECT_EQ(fileOf({mask, color}).entries().at(0).encoding, IcnsEncoding::rle24);
}

TEST_P(IcnsFileTestColorTypes, IsOpaqueWithoutAMask) {
    EXPECT_EQ(decodedEntry(GetParam().type, padding_ + rle24Of(picture_)), opaque_);
}

TEST_P(IcnsFileTestColorTypes, MayHoldPlainPixels) {
    const IcnsFile file = fileOf({icnsEntry(GetParam().type, raw32Of(picture_)),
                                  icnsEntry(GetParam().mask, alphaMaskOf(picture_))});
    EXPECT_EQ(file.entries().at(0).encoding, IcnsEncoding::raw32);
    EXPECT_EQ(file.decode(0), picture_);
}

TEST_P(IcnsFileTestColorTypes, FallsBackToTheOneBitMask) {
    if (std::string_view(GetParam().bitmap).empty()) {
        return;
    }
    const IcnsFile file =
        fileOf({icnsEntry(GetParam().bitmap, bitmapOf(picture_) + bitMaskOf(picture_)),
                icnsEntry(GetParam().type, rle24Of(picture_))});
    EXPECT_EQ(file.entries().at(0).type, GetParam().type) << "full color is listed first";
    EXPECT_EQ(file.decode(0), withAlphaOf(picture_, picture_, true));
}

TEST(IcnsFileTest, ReadsTheLargestColorTypeWithoutItsPaddingToo) {
    const QImage opaque = opaquePicture(128);
    EXPECT_EQ(decodedEntry("it32", rle24Of(opaque)), opaque);
    EXPECT_EQ(decodedEntry("it32", std::string(4, '\0') + raw32Of(opaque)), opaque);
}

TEST(IcnsFileTest, IgnoresAMaskThatIsTooShort) {
    const QImage picture = testPicture(16);
    const IcnsFile file = fileOf(
        {icnsEntry("is32", rle24Of(picture)), icnsEntry("s8mk", alphaMaskOf(picture).substr(1))});
    EXPECT_EQ(file.decode(0), opaquePicture(16));
}

TEST(IcnsFileTest, ReadsBlackAndWhite) {
    const QImage picture = testPicture(32);
    const QImage masked =
        fileOf({icnsEntry("ICN#", bitmapOf(picture) + bitMaskOf(picture))}).decode(0);
    const QImage bare = decodedEntry("ICON", bitmapOf(picture));
    for (const QPoint at : {QPoint(1, 1), QPoint(20, 3), QPoint(9, 25), QPoint(31, 31)}) {
        const QRgb expected = qGray(picture.pixel(at)) < 128 ? 0x000000U : 0xFFFFFFU;
        EXPECT_EQ(bare.pixel(at), expected | 0xFF000000U);
        EXPECT_EQ(masked.pixel(at) & 0xFFFFFFU, expected);
        EXPECT_EQ(qAlpha(masked.pixel(at)), qAlpha(picture.pixel(at)) > 127 ? 255 : 0);
    }
}

TEST(IcnsFileTest, ReadsTheFixedColors) {
    const QImage eight = decodedEntry(
        "ics8", std::string("\x00\x05\x23\xD7\xE0\xE1\xEB\xF5\xFF", 9) + std::string(247, '\0'));
    EXPECT_EQ(eight.pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(eight.pixel(1, 0), qRgb(255, 255, 0));
    EXPECT_EQ(eight.pixel(2, 0), qRgb(255, 0, 0));
    EXPECT_EQ(eight.pixel(3, 0), qRgb(0xEE, 0, 0));
    EXPECT_EQ(eight.pixel(4, 0), qRgb(0x11, 0, 0));
    EXPECT_EQ(eight.pixel(5, 0), qRgb(0, 0xEE, 0));
    EXPECT_EQ(eight.pixel(6, 0), qRgb(0, 0, 0xEE));
    EXPECT_EQ(eight.pixel(7, 0), qRgb(0xEE, 0xEE, 0xEE));
    EXPECT_EQ(eight.pixel(8, 0), qRgb(0, 0, 0));
    const QImage four = decodedEntry("ics4", std::string("\x0F\x3C", 2) + std::string(126, '\0'));
    EXPECT_EQ(four.pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(four.pixel(1, 0), qRgb(0, 0, 0));
    EXPECT_EQ(four.pixel(2, 0), qRgb(0xDD, 0x08, 0x06));
    EXPECT_EQ(four.pixel(3, 0), qRgb(0xC0, 0xC0, 0xC0));
}

TEST(IcnsFileTest, ReadsTheFlatOldTypesAtTheirOwnSize) {
    const IcnsFile file = fileOf({icnsEntry("icm#", std::string(48, '\xFF')),
                                  icnsEntry("icm4", std::string(96, '\x11')),
                                  icnsEntry("icm8", std::string(192, '\x05'))});
    EXPECT_THAT(file.entries(), ElementsAre(IcnsEntry{"icm8", IcnsEncoding::indexed8, 16, 12},
                                            IcnsEntry{"icm4", IcnsEncoding::indexed4, 16, 12},
                                            IcnsEntry{"icm#", IcnsEncoding::bitmap, 16, 12}));
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_EQ(file.decode(index).size(), QSize(16, 12));
    }
}

TEST(IcnsFileTest, SkipsWhatIsNotAnImage) {
    const QImage picture = testPicture(16);
    const IcnsFile file =
        fileOf({icnsEntry("TOC ", "ic04"), icnsEntry("icnV", "1234"), icnsEntry("info", "notes"),
                icnsEntry("name", "a name"), icnsEntry("zzzz", "?"),
                icnsEntry("s8mk", std::string(256, 'x')), icnsEntry("ic04", argbOf(picture))});
    ASSERT_THAT(file.entries(), ElementsAre(IcnsEntry{"ic04", IcnsEncoding::argb, 16, 16}));
    EXPECT_EQ(file.decode(0), picture);
}

TEST(IcnsFileTest, ReadsNestedFamiliesAfterTheIconsOwnImages) {
    const std::string inner = icnsEntry("ic11", pngOf(testPicture(32, 1)));
    const std::string masked = icnsEntry("is32", rle24Of(testPicture(16, 2))) +
                               icnsEntry("s8mk", alphaMaskOf(testPicture(16, 2)));
    const IcnsFile file =
        fileOf({icnsEntry("slct", inner), icnsEntry("\xFD\xD9\x2F\xA8", icnsOf({masked})),
                icnsEntry("ic11", pngOf(testPicture(32)))});
    ASSERT_EQ(file.entries().size(), 3U);
    EXPECT_EQ(file.decode(0), testPicture(32));
    EXPECT_EQ(file.decode(1), testPicture(32, 1));
    EXPECT_EQ(file.decode(2), testPicture(16, 2));
}

TEST(IcnsFileTest, DecodesEverythingInAFileOfEveryKind) {
    const auto file = IcnsFile::parse(icnsOfEveryKind());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->entries().size(), 27U);
    for (std::size_t index = 0; index < file->entries().size(); ++index) {
        EXPECT_FALSE(file->decode(index).isNull()) << file->entries()[index].type << " " << index;
    }
}

TEST(IcnsFileTest, NamesTheEncodings) {
    std::vector<std::string> names;
    names.reserve(8);
    for (int encoding = 0; encoding < 8; ++encoding) {
        names.emplace_back(rawString(static_cast<IcnsEncoding>(encoding)));
    }
    EXPECT_THAT(names,
                ElementsAre("png", "jpeg2000", "argb", "rle24", "raw32", "8bit", "4bit", "1bit"));
}

TEST(IcnsFileTest, ChoosesTheImageForASizeWithoutTouchingOthers) {
    const auto entry = [](const char* type, int side) {
        return icnsEntry(type, pngOf(testPicture(side)));
    };
    const IcnsFile file = fileOf({entry("ic07", 128), entry("icp4", 16), entry("ic12", 64),
                                  // Broken after its header: decoding it would fail.
                                  icnsEntry("ic10", pngOf(testPicture(1024)).substr(0, 100))});
    EXPECT_EQ(file.nearest(64).width(), 64);
    EXPECT_EQ(file.nearest(1).width(), 16);
    EXPECT_EQ(file.nearest(17).width(), 64);
    EXPECT_EQ(file.nearest(65).width(), 128);
    EXPECT_EQ(file.nearest(500).width(), 128) << "a broken image is passed over";
    EXPECT_EQ(file.nearest(4000).width(), 128);
    EXPECT_EQ(file.widest().width(), 128);
}

TEST(IcnsFileTest, TakesTheFirstOfTwoEquallyWideImages) {
    const QImage first = testPicture(256, 1);
    const IcnsFile file =
        fileOf({icnsEntry("ic13", pngOf(first)), icnsEntry("ic08", pngOf(testPicture(256, 2)))});
    EXPECT_EQ(file.widest(), first);
    EXPECT_EQ(file.nearest(200), first);
}

TEST(IcnsFileTest, HasNoImageWithoutEntries) {
    const IcnsFile file = fileOf({});
    EXPECT_TRUE(file.entries().empty());
    EXPECT_TRUE(file.widest().isNull());
    EXPECT_TRUE(file.nearest(64).isNull());
    EXPECT_THROW((void)file.decode(0), std::out_of_range);
}

TEST(IcnsFileTest, ReadsFromDiskAndOutlivesTheFile) {
    const TemporaryFolder folder;
    write(folder / "a.icns", icnsOf({icnsEntry("ic04", argbOf(testPicture(16)))}));
    std::optional<IcnsFile> file = IcnsFile::read(folder / "a.icns");
    ASSERT_TRUE(file);
    std::filesystem::remove(folder / "a.icns");
    const IcnsFile moved = std::move(*file);
    file.reset();
    EXPECT_EQ(moved.decode(0), testPicture(16));
    EXPECT_FALSE(IcnsFile::read(folder / "a.icns"));
    EXPECT_FALSE(IcnsFile::read(folder.path()));
}

TEST(IcnsFileTest, IconImageReadsContainersAndOtherFiles) {
    const TemporaryFolder folder;
    write(folder / "a.icns", icnsOf({icnsEntry("ic04", argbOf(testPicture(16))),
                                     icnsEntry("ic12", pngOf(testPicture(64)))}));
    write(folder / "b", pngOf(testPicture(40)));
    write(folder / "c.png", "no image");
    EXPECT_EQ(iconImageNear(folder / "a.icns", 10).width(), 16);
    EXPECT_EQ(widestIconImage(folder / "a.icns").width(), 64);
    EXPECT_EQ(iconImageNear(folder / "b", 10), testPicture(40));
    EXPECT_TRUE(widestIconImage(folder / "c.png").isNull());
    EXPECT_TRUE(widestIconImage(folder / "missing").isNull());
}

} // namespace
} // namespace quorvel::testing
