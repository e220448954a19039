#include "tests/LaunchKit/Changes/ChangedClones.h"

#include "LaunchKit/Changes/CloneCreation.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"

#include <QImage>

namespace quorvel::testing {
namespace fs = std::filesystem;

WrapperFactory::Request ChangedClones::webRequest() {
    WrapperFactory::Request request;
    request.kind = ShortcutKind::web;
    request.displayName = "Work";
    request.url = "https://a.test";
    return request;
}

WrapperFactory::Request ChangedClones::appRequest() const {
    WrapperFactory::Request request;
    request.displayName = "Work";
    request.targetApp = makeAppBundle(home / "Thing.app", {{"CFBundleIconFile", "Icon"}});
    fs::create_directories(home / "Thing.app/Contents/Resources");
    fs::rename(writePicture("icon.png", 64), home / "Thing.app/Contents/Resources/Icon.icns");
    return request;
}

fs::path ChangedClones::make(const WrapperFactory::Request& request) const {
    return createClone(WrapperFactory(runnerProgram()), request, {}).wrapper;
}

fs::path ChangedClones::writePicture(const std::string& name, int side, unsigned color) const {
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    fs::path file = home / name;
    image.save(QString::fromStdString(file.string()), "PNG");
    return file;
}

std::string ChangedClones::iconIn(const fs::path& wrapper) {
    return fileHash(wrapper / "Contents/Resources/AppIcon.icns");
}

ChangedClone ChangedClones::setLabel(const fs::path& wrapper, const std::string& text) {
    return editClone(wrapper, [&](CloneSettings& settings) {
        settings.config.iconLabel =
            text.empty() ? std::nullopt
                         : std::optional(IconLabel{text, "#FFFFFF", IconLabel::Position::bottom});
    });
}

void ChangedClones::forgetNotes(const fs::path& wrapper) {
    fs::remove(wrapper / "Contents/Resources/wrapper.json");
    fs::remove(wrapper / "Contents/Resources/ChosenIcon");
}

} // namespace quorvel::testing
