#include "QuorvelApp/library/CloneSheets.h"

#include "LaunchKit/InstanceRecord.h"
#include "Presentation/StopTexts.h"
#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/library/LogPanel.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/model/Translated.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "QuorvelApp/widgets/ProgressSheet.h"
#include "QuorvelApp/widgets/Sheet.h"

#include <QTimer>

namespace quorvel {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// A refresh that ends sooner needs no panel.
constexpr auto noticeable = 300ms;
constexpr auto progressStep = 100ms;

} // namespace

CloneSheets::CloneSheets(AppModel& model, CloneChanges& changes, QWidget* window)
    : QObject(window),
      model_(model),
      changes_(changes),
      window_(window) {
    connect(&changes_, &CloneChanges::stillRunning, this, &CloneSheets::askForForce);
    connect(&changes_, &CloneChanges::activityChanged, this, [this] {
        if (progress_ && !changes_.isRefreshing()) {
            progress_->accept(); // before the outcome is shown
        }
    });
}

CloneSheets::~CloneSheets() {
    if (const auto progress = refresh_.lock()) {
        progress->isCancelled = true;
    }
}

void CloneSheets::showLog(const InstanceRecord& clone) {
    new Sheet(new LogPanel(model_, clone), window_, Sheet::Place::top, LogPanel::idealSize);
}

void CloneSheets::refresh(const std::vector<InstanceRecord>& clones) {
    auto progress = std::make_shared<ChangeProgress>();
    refresh_ = progress;
    changes_.refresh(clones, progress);
    QTimer::singleShot(noticeable, this, [this, total = static_cast<int>(clones.size()), progress] {
        if (changes_.isRefreshing() && refresh_.lock() == progress && !progress_) {
            showProgress(total, progress);
        }
    });
}

void CloneSheets::showProgress(int total, const std::shared_ptr<ChangeProgress>& progress) {
    progress_ =
        new ProgressSheet(total == 1 ? tr("Refreshing the wrapper…") : tr("Refreshing wrappers…"));
    auto* timer = new QTimer(progress_);
    const auto show = [this, total, progress] {
        const int done = progress->done;
        progress_->setProgress(total == 1 ? 0 : done, total == 1 ? 0 : total);
        progress_->setText(total == 1 ? QString() : tr("%1 of %2").arg(done).arg(total));
    };
    connect(timer, &QTimer::timeout, progress_, show);
    connect(progress_, &ProgressSheet::cancelled, this,
            [progress] { progress->isCancelled = true; });
    show();
    timer->start(progressStep);
    new Sheet(progress_, window_, Sheet::Place::middle);
}

void CloneSheets::askForForce(const InstanceRecord& clone, std::size_t left) {
    const QString name = displayLine(clone.config.displayName);
    auto* question = new MessageSheet(
        u"exclamationmark.triangle.fill"_s, Ink::orange, tr("End “%1” by force?").arg(name),
        qtText(stillRunningText(name.toStdString(), left, translated)) + u' ' +
            qtText(lossText(translated)),
        {{.label = tr("End by Force"),
          .look = ButtonLook::destructive,
          .chosen = [this, clone] { changes_.stop(clone, CloneChanges::Force::afterAsking); }},
         {.label = tr("Cancel"), .onEscape = true, .isDefault = true}});
    new Sheet(question, window_, Sheet::Place::middle);
}

} // namespace quorvel
