#pragma once

#include "Platform/copying/FolderCopy.h"

#include <QObject>

#include <atomic>
#include <memory>
#include <optional>

namespace quorvel {

/// A copy of data on another thread, as the main thread sees it: its progress and its cancellation.
/// Destroying it cancels the copy.
class BackgroundCopy : public QObject {
    Q_OBJECT

public:
    /// What the thread that copies needs; it may outlive the `BackgroundCopy`.
    class Control {
    public:
        [[nodiscard]] const std::atomic<bool>& cancelled() const { return cancelled_; }
        /// Returns the options of the copy, valid as long as this is.
        [[nodiscard]] FolderCopyOptions options() const {
            return {.progress = report_, .cancelled = &cancelled_};
        }

    private:
        friend class BackgroundCopy;
        std::atomic<bool> cancelled_ = false;
        std::function<void(const CopyProgress&)> report_{};
    };

    explicit BackgroundCopy(QObject* parent = nullptr);
    ~BackgroundCopy() override;

    [[nodiscard]] std::shared_ptr<const Control> control() const { return control_; }
    /// Returns how far it is; `std::nullopt` until that is known.
    [[nodiscard]] const std::optional<CopyProgress>& progress() const { return progress_; }

    /// Makes the copy stop soon.
    void cancel();

Q_SIGNALS:
    void changed(); ///< the progress

private:
    std::shared_ptr<Control> control_ = std::make_shared<Control>();
    std::optional<CopyProgress> progress_{};
};

} // namespace quorvel
