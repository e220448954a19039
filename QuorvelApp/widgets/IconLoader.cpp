#include "QuorvelApp/widgets/IconLoader.h"

#include "Base/BundleName.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/theme/Symbols.h"
#include "QuorvelApp/widgets/IconImage.h"

#include <QApplication>
#include <QFileIconProvider>
#include <QMimeDatabase>
#include <QOperatingSystemVersion>
#include <QPainter>
#include <QtMath>

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

// Enough for every app of a large catalog at twice the pixels.
constexpr int cacheKilobytes = 96 * 1024;

// In kilobytes, for a square of that many pixels.
qsizetype costOf(int pixels) {
    return 1 + qsizetype{4} * pixels * pixels / 1024;
}

QString keyFor(const std::filesystem::path& path, int pixels, const QString& variant) {
    return qtText(path) + u'\n' + QString::number(pixels) + variant;
}

// Whether it is an app, or the icon of one.
bool isOfApp(const std::filesystem::path& path) {
    static constexpr std::array endings{".icns", ".desktop", ".AppImage", ".png", ".svg"};
    return isAppBundleName(path.filename().string()) ||
           std::find(endings.begin(), endings.end(), path.extension()) != endings.end();
}

QString symbolFor(const std::filesystem::path& path) {
    return isOfApp(path) ? u"app"_s : u"doc"_s;
}

// Returns the desktop's icon for a file's type, by its name alone; null if it has none.
QPixmap typeIcon(const std::filesystem::path& path, int size, double ratio) {
    if (isOfApp(path)) {
        return {};
    }
    const auto types = QMimeDatabase().mimeTypesForFileName(qtText(path.filename()));
    return types.isEmpty()
               ? QPixmap()
               : QIcon::fromTheme(types.front().iconName()).pixmap(QSize(size, size), ratio);
}

// macOS has an icon for every file, even for a bundle whose own we can't read. Returns null on
// other systems.
QPixmap systemIcon(const std::filesystem::path& path, int size, double ratio) {
    if (QOperatingSystemVersion::currentType() != QOperatingSystemVersion::MacOS) {
        return {};
    }
    return QFileIconProvider().icon(QFileInfo(qtText(path))).pixmap(QSize(size, size), ratio);
}

// Represents an app without an icon of its own: a rounded tile with our symbol.
QPixmap drawStandIn(const QString& symbol, int size, double ratio, const Colors& colors) {
    QPixmap pixmap(QSize(size, size) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const double inset = size * 0.03;
    painter.setPen(QPen(colors.controlBorder, 1));
    painter.setBrush(colors.callout);
    painter.drawRoundedRect(QRectF(0, 0, size, size).adjusted(inset, inset, -inset, -inset),
                            size * 0.22, size * 0.22);
    const int inner = qRound(size * 0.56);
    symbolIcon(symbol, Ink::secondary)
        .paint(&painter, QRect((size - inner) / 2, (size - inner) / 2, inner, inner));
    return pixmap;
}

} // namespace

IconLoader::IconLoader(std::shared_ptr<BackgroundTasks> tasks, QObject* parent)
    : QObject(parent),
      tasks_(std::move(tasks)),
      known_(cacheKilobytes) {}

QPixmap IconLoader::icon(const std::filesystem::path& path, int size, double ratio) {
    const int pixels = qCeil(size * ratio);
    const QString key = keyFor(path, pixels, {});
    // An icon evicted from the cache is read again.
    if ((!fresh_.contains(key) || !known_.contains(key)) && !underWay_.contains(key)) {
        load(path, key, pixels, ratio);
    }
    const QPixmap* known = known_.object(key);
    if (known != nullptr && !known->isNull()) {
        return *known;
    }
    QPixmap system = fresh_.contains(key) ? systemIcon(path, size, ratio) : QPixmap();
    if (system.isNull()) {
        return standIn(path, size, ratio);
    }
    known_.insert(key, new QPixmap(system), costOf(pixels));
    return system;
}

void IconLoader::refresh() {
    fresh_.clear();
}

void IconLoader::load(const std::filesystem::path& path, const QString& key, int pixels,
                      double ratio) {
    underWay_.insert(key);
    tasks_->detached(
        TaskPriority::utility, this, [path, pixels] { return loadIconImage(path, pixels); },
        [this, path, key, ratio](QImage image) {
            underWay_.remove(key);
            fresh_.insert(key);
            image.setDevicePixelRatio(ratio);
            known_.insert(key, new QPixmap(QPixmap::fromImage(image)), costOf(image.width()));
            Q_EMIT loaded(path);
        });
}

QPixmap IconLoader::standIn(const std::filesystem::path& path, int size, double ratio) {
    const Colors& colors = colorsFor(QApplication::palette());
    const QString variant = u'@' + QString::number(ratio) + (colors.dark ? u"d"_s : u"l"_s);
    const QString key = keyFor("*" + path.extension().string(), size, variant);
    if (const QPixmap* known = known_.object(key)) {
        return *known;
    }
    QPixmap drawn = typeIcon(path, size, ratio);
    if (drawn.isNull()) {
        drawn = drawStandIn(symbolFor(path), size, ratio, colors);
    }
    known_.insert(key, new QPixmap(drawn), 16);
    return drawn;
}

} // namespace quorvel
