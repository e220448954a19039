#include "LaunchKit/Icons/SvgImage.h"

#include "LaunchKit/Icons/AppIconImage.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <chrono>
#include <pthread.h>

namespace quorvel {
namespace {

using namespace testing;

const std::string head = "<svg xmlns='http://www.w3.org/2000/svg' "
                         "xmlns:xlink='http://www.w3.org/1999/xlink' width='10' height='10'>";
const std::string redSquare = head + "<rect width='10' height='10' fill='#ff0000'/></svg>";

bool isDrawn(const std::string& svg) {
    return !svgImage(svg, 16).isNull();
}

TEST(SvgImageTest, IsDrawnAtTheSizeAskedFor) {
    for (const int side : {16, 1024}) {
        const QImage image = svgImage(redSquare, side);
        ASSERT_EQ(image.size(), QSize(side, side));
        EXPECT_EQ(image.pixelColor(side / 2, side - 1), QColor(255, 0, 0));
    }
}

TEST(SvgImageTest, AWideDrawingIsCentered) {
    const QImage image = svgImage("<svg xmlns='http://www.w3.org/2000/svg' width='20' height='10'>"
                                  "<rect width='20' height='10' fill='blue'/></svg>",
                                  64);
    ASSERT_EQ(image.size(), QSize(64, 64));
    EXPECT_EQ(image.pixelColor(32, 5).alpha(), 0);
    EXPECT_EQ(image.pixelColor(32, 58).alpha(), 0);
    EXPECT_EQ(image.pixelColor(1, 32), QColor(0, 0, 255));
}

TEST(SvgImageTest, WhatIsNotADrawingIsNotDrawn) {
    EXPECT_FALSE(isDrawn(""));
    EXPECT_FALSE(isDrawn("<svg"));
    EXPECT_FALSE(isDrawn("<html/>"));
    EXPECT_FALSE(isDrawn("<svg xmlns='http://www.w3.org/2000/svg' width='0' height='0'/>"));
    EXPECT_TRUE(svgImage(redSquare, 0).isNull());
    EXPECT_TRUE(svgImage(redSquare, 100000).isNull());
    EXPECT_FALSE(isDrawn(redSquare + std::string(maximumSvgSize, ' ')));
}

// Counting them once went as deep as the chain is long.
TEST(SvgImageTest, ALongChainOfPartsNeedsNoLargeStack) {
    constexpr int parts = 9000;
    std::string svg = head + "<defs>";
    for (int part = 0; part < parts; ++part) {
        svg += "<g id='a" + std::to_string(part) + "'><use xlink:href='#a" +
               std::to_string(part + 1) + "'/></g>";
    }
    svg += "</defs><use xlink:href='#a0'/></svg>";
    pthread_attr_t attributes;
    ASSERT_EQ(::pthread_attr_init(&attributes), 0);
    ASSERT_EQ(::pthread_attr_setstacksize(&attributes, std::size_t{512} << 10U), 0);
    pthread_t thread{};
    const auto check = [](void* text) -> void* {
        return isDrawn(*static_cast<const std::string*>(text)) ? text : nullptr;
    };
    ASSERT_EQ(::pthread_create(&thread, &attributes, check, &svg), 0);
    void* drawn = &svg;
    ::pthread_join(thread, &drawn);
    ::pthread_attr_destroy(&attributes);
    EXPECT_EQ(drawn, nullptr);
}

TEST(SvgImageTest, PartsThatRepeatOneAnotherAreCounted) {
    const auto doubled = [](int levels) {
        std::string svg = head + "<defs><rect id='a0' width='1' height='1'/>";
        for (int level = 1; level <= levels; ++level) {
            const std::string use = "<use xlink:href='#a" + std::to_string(level - 1) + "'/>";
            svg += "<g id='a" + std::to_string(level) + "'>" + use + use + "</g>";
        }
        return svg + "</defs><use xlink:href='#a" + std::to_string(levels) + "'/></svg>";
    };
    EXPECT_TRUE(isDrawn(doubled(8)));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(isDrawn(doubled(40)));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(SvgImageTest, APartThatContainsItselfIsNotDrawn) {
    EXPECT_FALSE(isDrawn(head + "<g id='a'><use xlink:href='#b'/></g>"
                                "<g id='b'><use xlink:href='#a'/></g></svg>"));
}

TEST(SvgImageTest, EntitiesAreNotExpanded) {
    EXPECT_FALSE(isDrawn("<!DOCTYPE svg [<!ENTITY a 'x'><!ENTITY b '&a;&a;'>]>" + redSquare));
    EXPECT_TRUE(isDrawn("<!DOCTYPE svg PUBLIC '-//W3C//DTD SVG 1.1//EN' 'svg11.dtd'>" + redSquare));
}

TEST(SvgImageTest, DeepAndLongDrawingsAreNotDrawn) {
    std::string deep = head;
    for (int level = 0; level < 100000; ++level) {
        deep += "<g>";
    }
    EXPECT_FALSE(isDrawn(deep));
    std::string many = head;
    for (std::size_t count = 0; count <= maximumSvgElements; ++count) {
        many += "<g/>";
    }
    EXPECT_FALSE(isDrawn(many + "</svg>"));
}

TEST(SvgImageTest, ReferencesAreNotRememberedWithoutEnd) {
    // Each is in all the parts around it.
    const auto nested = [](int parts, int references) {
        std::string drawing = head;
        for (int part = 0; part < parts; ++part) {
            drawing += "<g id='p" + std::to_string(part) + "'>";
        }
        drawing += "<path fill='";
        for (int reference = 0; reference < references; ++reference) {
            drawing += "url(#a)";
        }
        drawing += "'/>";
        for (int part = 0; part < parts; ++part) {
            drawing += "</g>";
        }
        return drawing + redSquare.substr(head.size());
    };
    EXPECT_TRUE(isDrawn(nested(20, 100)));
    EXPECT_FALSE(isDrawn(nested(150, 1000)));
}

TEST(SvgImageTest, DashesWithoutEndTakeNoTime) {
    const auto start = std::chrono::steady_clock::now();
    (void)isDrawn(head + "<path d='M0 0 L1000000 1000000' stroke='red' stroke-width='1' "
                         "stroke-dasharray='0.000001'/></svg>");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(SvgImageTest, PicturesInOtherFilesAreNotRead) {
    const TemporaryFolder folder;
    QImage red(4, 4, QImage::Format_ARGB32);
    red.fill(Qt::red);
    const std::string png = pngBytes(red);
    write(folder / "red.png", png);
    const auto picture = [](const std::string& address) {
        return head + "<image width='10' height='10' xlink:href='" + address + "'/></svg>";
    };
    EXPECT_FALSE(isDrawn(picture((folder / "red.png").string())));
    EXPECT_FALSE(isDrawn(picture("file://" + (folder / "red.png").string())));
    const QByteArray inside = QByteArray(png.data(), static_cast<qsizetype>(png.size())).toBase64();
    const QImage image = svgImage(picture("data:image/png;base64," + inside.toStdString()), 16);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.pixelColor(8, 8), QColor(Qt::red));
    red = red.scaled(3000, 3000);
    const std::string large = pngBytes(red);
    const QByteArray tooLarge =
        QByteArray(large.data(), static_cast<qsizetype>(large.size())).toBase64();
    EXPECT_FALSE(isDrawn(picture("data:image/png;base64," + tooLarge.toStdString())));
}

TEST(SvgImageTest, InstalledDrawingsAreDrawn) {
    int count = 0;
    std::error_code ignored;
    for (const auto& item :
         std::filesystem::directory_iterator("/usr/share/icons/hicolor/scalable/apps", ignored)) {
        if (item.path().extension() == ".svg" && item.is_regular_file(ignored)) {
            EXPECT_FALSE(appIconImageNear(item, 64).isNull()) << item.path();
            ++count;
        }
    }
    if (count == 0) {
        GTEST_SKIP() << "no drawings are installed";
    }
}

TEST(SvgImageTest, AppIconsMayBeDrawingsOrPictures) {
    const TemporaryFolder folder;
    QImage green(48, 48, QImage::Format_ARGB32);
    green.fill(Qt::green);
    write(folder / "a.png", pngBytes(green));
    write(folder / "b.svg", redSquare);
    EXPECT_EQ(widestAppIconImage(folder / "a.png").width(), 48);
    EXPECT_EQ(widestAppIconImage(folder / "b.svg").width(), 1024);
    EXPECT_EQ(appIconImageNear(folder / "b.svg", 64).width(), 64);
    EXPECT_EQ(appIconImageNear(folder / "a.png", 64).width(), 48);
    EXPECT_TRUE(appIconImageNear(folder / "c.svg", 64).isNull());
}

} // namespace
} // namespace quorvel
