#include "LaunchKit/Icons/FontEngine.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QString>

#include <array>
#include <memory>
#include <mutex>

namespace quorvel {
namespace {

// Never deleted: threads may still draw while the process ends.
void makeApplication() {
    static std::array<char, 8> name{"quorvel"};
    static std::array<char, 10> option{"-platform"};
    static std::array<char, 10> platform{"offscreen"};
    static std::array<char*, 4> arguments{name.data(), option.data(), platform.data(), nullptr};
    static int count = 3;
    // Qt's warnings about the session don't matter to a program without windows.
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
    [[maybe_unused]] static const auto* const application =
        new QGuiApplication(count, arguments.data());
    QLoggingCategory::setFilterRules(QString());
}

} // namespace

bool ensureFontEngine() {
    static std::mutex making;
    const std::lock_guard lock(making);
    if (QCoreApplication::instance() == nullptr) {
        makeApplication();
    }
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

} // namespace quorvel
