#include "QuorvelApp/panels/CopySheet.h"

#include "Presentation/CopyTexts.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/model/Translated.h"
#include "QuorvelApp/widgets/ProgressSheet.h"
#include "QuorvelApp/widgets/Sheet.h"

namespace quorvel {

void showCopySheet(BackgroundCopy& copy, QWidget* window) {
    auto* dialog = new ProgressSheet(ProgressSheet::tr("Copying the data…"),
                                     ProgressSheet::tr("Looking through it…"));
    QObject::connect(dialog, &ProgressSheet::cancelled, &copy, &BackgroundCopy::cancel);
    QObject::connect(&copy, &QObject::destroyed, dialog, [dialog] { dialog->accept(); });
    QObject::connect(&copy, &BackgroundCopy::changed, dialog, [dialog, &copy] {
        if (const auto& progress = copy.progress()) {
            constexpr int parts = 1000;
            dialog->setProgress(static_cast<int>(shareDone(*progress) * parts), parts);
            dialog->setText(qtText(progressText(*progress, translated)));
        }
    });
    new Sheet(dialog, window, Sheet::Place::middle);
}

} // namespace quorvel
