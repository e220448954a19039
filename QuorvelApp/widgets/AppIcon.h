#pragma once

#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

#include <filesystem>

namespace quorvel {

/// The icon of a file or bundle in a square.
class AppIcon : public QWidget {
    Q_OBJECT

public:
    /// `size` is in points. `loader` must outlive the widget.
    AppIcon(IconLoader& loader, int size, QWidget* parent = nullptr);

    /// Shows the icon of another file; an empty path shows nothing.
    void setPath(const std::filesystem::path& path);
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    IconLoader& loader_;
    std::filesystem::path path_{};
};

} // namespace quorvel
