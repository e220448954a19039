#pragma once

#include "Platform/desktop/ColorScheme.h"

#include <QDBusVariant>
#include <QObject>

namespace quorvel {

/// Reads the scheme from the freedesktop portal.
class PortalColorScheme final : public QObject, public ColorSchemeSource {
    Q_OBJECT

public:
    explicit PortalColorScheme(std::function<void()> changed);

    [[nodiscard]] std::optional<ColorScheme> current() const override { return scheme_; }

private:
    // D-Bus signals can only be delivered to a slot known by name.
    Q_SLOT void settingChanged(const QString& changedGroup, const QString& changedKey,
                               const QDBusVariant& value);

    std::function<void()> changed_;
    std::optional<ColorScheme> scheme_{};
};

} // namespace quorvel
