#include "QuorvelApp/model/DuplicateSession.h"

#include "Base/Error.h"
#include "Base/Text.h"
#include "LaunchKit/DataSize.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/UserPaths.h"
#include "Presentation/CloneNaming.h"
#include "Presentation/CopyTexts.h"
#include "QuorvelApp/model/CopyResult.h"
#include "QuorvelApp/model/Translated.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace quorvel {
namespace {

// Takes a fraction of a second to look at.
constexpr std::size_t mostItemsToCount = 50'000;

std::string freeName(const AppModel& model, const InstanceRecord& original) {
    const std::filesystem::path folder = original.bundleURL.parent_path();
    return nextFreeName(original.config.displayName, [&](const std::string& name) {
        const auto& clones = model.clones();
        return itemOrLinkExists(folder / (name + ".app")) ||
               itemOrLinkExists(
                   UserPaths::expandTilde(WrapperFactory::defaultInstanceHome(name))) ||
               std::any_of(clones.begin(), clones.end(), [&](const InstanceRecord& clone) {
                   return clone.config.displayName == name;
               });
    });
}

} // namespace

DuplicateSession::DuplicateSession(AppModel& model, InstanceRecord original, QObject* parent)
    : QObject(parent),
      model_(model),
      original_(std::move(original)),
      name_(freeName(model, original_)) {
    findSize();
}

DuplicateSession::~DuplicateSession() {
    *gone_ = true;
}

void DuplicateSession::findSize() {
    model_.services().tasks->detached(
        TaskPriority::utility, this,
        [config = original_.config, gone = gone_] {
            return dataSizeOf(config, mostItemsToCount, *gone);
        },
        [this](const std::optional<std::uintmax_t>& size) {
            dataSize_ = size;
            Q_EMIT changed();
        });
}

bool DuplicateSession::canDuplicate() const {
    return phase_ == Phase::asking && !Text::trimmingWhitespace(name_).empty();
}

void DuplicateSession::setName(const std::string& name) {
    name_ = name;
    Q_EMIT changed();
}

void DuplicateSession::setWithData(bool withData) {
    withData_ = withData;
    Q_EMIT changed();
}

void DuplicateSession::duplicate() {
    if (!canDuplicate()) {
        return;
    }
    phase_ = Phase::working;
    copy_ = std::make_unique<BackgroundCopy>();
    connect(copy_.get(), &BackgroundCopy::changed, this, &DuplicateSession::changed);
    const auto work = [wrapper = original_.bundleURL, name = name_, withData = withData_,
                       registry = model_.registry(), control = copy_->control()] {
        const auto original = registry.record(wrapper); // as it is now
        if (!original) {
            throw Error("The clone at " + wrapper.string() + " is not there any more.");
        }
        Made made;
        made.clone = duplicateClone(
            WrapperFactory(), registry, *original,
            {.name = name,
             .withData = withData,
             .copy = control->options(),
             .warn = [&](const std::string& text) { made.warnings.push_back(text); }});
        if (!made.clone.clone.record) {
            throw Error("The clone at " + made.clone.clone.wrapper.string() +
                        " can’t be read back.");
        }
        return made;
    };
    // The outcome is reported even if the panel is gone, unless that has cancelled the copy.
    model_.services().tasks->detached(TaskPriority::userInitiated, &model_, capturingErrors(work),
                                      [self = QPointer(this), &model = model_,
                                       control = copy_->control()](const Outcome<Made>& outcome) {
                                          if (outcome.result || !control->cancelled()) {
                                              model.reload();
                                          }
                                          if (!outcome.result && !control->cancelled()) {
                                              model.setLastError(outcome.failure);
                                          } else if (outcome.result &&
                                                     !outcome.result->warnings.empty()) {
                                              model.setLastError(outcome.result->warnings.front());
                                          }
                                          if (self) {
                                              self->ended(outcome);
                                          }
                                      });
    Q_EMIT changed();
}

void DuplicateSession::ended(const Outcome<Made>& outcome) {
    copy_.reset();
    phase_ = outcome.result ? Phase::done : Phase::asking;
    if (outcome.result && outcome.result->clone.data) {
        result_ = copyResult(*outcome.result->clone.data, outcome.result->clone.findings);
    }
    Q_EMIT changed();
    if (outcome.result) {
        Q_EMIT duplicated(outcome.result->clone.clone.wrapper.string());
    }
}

void DuplicateSession::cancel() {
    if (copy_) {
        copy_->cancel();
    }
}

} // namespace quorvel
