#include "QuorvelApp/model/BackgroundCopy.h"

#include <QCoreApplication>
#include <QPointer>

namespace quorvel {

BackgroundCopy::BackgroundCopy(QObject* parent) : QObject(parent) {
    // Called by the thread that copies, perhaps after this object is gone.
    control_->report_ = [self = QPointer(this)](const CopyProgress& progress) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, progress] {
                if (self) {
                    self->progress_ = progress;
                    Q_EMIT self->changed();
                }
            },
            Qt::QueuedConnection);
    };
}

BackgroundCopy::~BackgroundCopy() {
    control_->cancelled_ = true;
}

void BackgroundCopy::cancel() {
    control_->cancelled_ = true;
}

} // namespace quorvel
