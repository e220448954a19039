#include "LaunchKit/Icons/IconImage.h"

#include "LaunchKit/Icons/IcnsContainer.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/Icons/ImageFile.h"
#include "Platform/files/FileReading.h"

namespace quorvel {
namespace {

template<typename Choice>
QImage chosenImage(const std::filesystem::path& file, Choice choice) {
    std::optional<std::string> bytes = readFile(file, IcnsFile::maximumFileSize);
    if (!bytes) {
        return {};
    }
    if (!isIcns(*bytes)) {
        return widestImage(*bytes);
    }
    const auto container = IcnsFile::parse(std::move(*bytes));
    return container ? choice(*container) : QImage();
}

} // namespace

QImage widestIconImage(const std::filesystem::path& file) {
    return chosenImage(file, [](const IcnsFile& container) { return container.widest(); });
}

QImage iconImageNear(const std::filesystem::path& file, int side) {
    return chosenImage(file, [&](const IcnsFile& container) { return container.nearest(side); });
}

} // namespace quorvel
