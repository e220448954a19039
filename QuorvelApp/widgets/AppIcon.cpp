#include "QuorvelApp/widgets/AppIcon.h"

#include "QuorvelApp/widgets/CrispPixmap.h"

#include <QPainter>

namespace quorvel {

AppIcon::AppIcon(IconLoader& loader, int size, QWidget* parent) : QWidget(parent), loader_(loader) {
    setFixedSize(size, size);
    connect(&loader_, &IconLoader::loaded, this, [this](const std::filesystem::path& path) {
        if (path == path_) {
            update();
        }
    });
}

void AppIcon::setPath(const std::filesystem::path& path) {
    path_ = path;
    update();
}

void AppIcon::paintEvent(QPaintEvent*) {
    if (path_.empty()) {
        return;
    }
    QPainter painter(this);
    drawCrisp(painter, rect(), loader_.icon(path_, width(), devicePixelRatioF()));
}

} // namespace quorvel
