#include "LaunchKit/Icons/AppIconImage.h"

#include "LaunchKit/Icons/IconImage.h"
#include "LaunchKit/Icons/SvgImage.h"
#include "Platform/files/FileReading.h"

namespace quorvel {
namespace {

bool isDrawing(const std::filesystem::path& file) {
    return file.extension() == ".svg";
}

QImage drawing(const std::filesystem::path& file, int side) {
    const auto bytes = readFile(file, maximumSvgSize);
    return bytes ? svgImage(*bytes, side) : QImage();
}

} // namespace

QImage widestAppIconImage(const std::filesystem::path& file) {
    constexpr int side = 1024;
    return isDrawing(file) ? drawing(file, side) : widestIconImage(file);
}

QImage appIconImageNear(const std::filesystem::path& file, int side) {
    return isDrawing(file) ? drawing(file, side) : iconImageNear(file, side);
}

} // namespace quorvel
