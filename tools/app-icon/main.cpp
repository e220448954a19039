// Draws the application's own icon, while it is built:
//   app_icon DRAWING.svg ICON.icns SIDExSIDE/.../NAME.png...

#include "LaunchKit/Icons/IcnsWriter.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"

#include <QGuiApplication>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

QImage drawn(QSvgRenderer& drawing, int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

// Every size is drawn, none is scaled: the smallest stay as sharp as the largest.
std::vector<std::string> chunks(QSvgRenderer& drawing) {
    std::vector<std::string> result;
    for (const int side : {16, 32, 128, 256, 512}) {
        result.push_back(quorvel::icnsChunk(drawn(drawing, side)));
        result.push_back(quorvel::icnsDoubleChunk(drawn(drawing, 2 * side)));
    }
    return result;
}

// The path says how wide the image is: one of its folders is named "48x48".
int sideIn(const fs::path& file) {
    for (const fs::path& part : file) {
        const std::string name = part.string();
        const auto side = static_cast<int>(std::strtol(name.c_str(), nullptr, 10));
        if (side > 0 && name == std::to_string(side) + "x" + std::to_string(side)) {
            return side;
        }
    }
    return 0;
}

bool writeImage(QSvgRenderer& drawing, const fs::path& file) {
    const int side = sideIn(file);
    std::error_code code;
    fs::create_directories(file.parent_path(), code);
    return side > 0 && drawn(drawing, side).save(QString::fromLocal8Bit(file.c_str()), "PNG");
}

int fail(const char* message) {
    std::fprintf(stderr, "app_icon: %s\n", message);
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen"); // a build has no display
    const QGuiApplication application(argc, argv);
    if (argc < 3) {
        return fail("usage: app_icon DRAWING.svg ICON.icns [SIDExSIDE/NAME.png...]");
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    if (!drawing.isValid()) {
        return fail("the drawing can't be read");
    }
    const std::vector<std::string> entries = chunks(drawing);
    for (const std::string& entry : entries) {
        if (entry.empty()) {
            return fail("a size can't be written");
        }
    }
    try {
        quorvel::writeFile(argv[2], quorvel::icnsFile(entries));
    } catch (const quorvel::PlatformError& error) {
        return fail(error.what());
    }
    for (int index = 3; index < argc; ++index) {
        if (!writeImage(drawing, argv[index])) {
            return fail("an image of the theme can't be written");
        }
    }
    return 0;
}
