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
    return !isWorking_ && !Text::trimmingWhitespace(name_).empty();
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
    isWorking_ = true;
    auto control = std::make_shared<const BackgroundCopy::Control>();
    if (withData_) {
        copy_ = std::make_unique<BackgroundCopy>();
        control = copy_->control();
    }
    const auto work = [wrapper = original_.bundleURL, name = name_, withData = withData_,
                       registry = model_.registry(), control] {
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
    model_.services().tasks->detached(
        TaskPriority::userInitiated, &model_, capturingErrors(work),
        [self = QPointer(this), &model = model_, control](const Outcome<Made>& outcome) {
            report(model, outcome, control->cancelled());
            if (self) {
                self->ended(outcome);
            }
        });
    Q_EMIT changed();
    if (copy_) {
        Q_EMIT copyBegan(copy_.get());
    }
}

void DuplicateSession::report(AppModel& model, const Outcome<Made>& outcome, bool isCancelled) {
    if (!outcome.result) {
        if (!isCancelled) {
            model.reload();
            model.setLastError(outcome.failure);
        }
        return;
    }
    model.reload();
    const auto& [made, warnings] = *outcome.result;
    if (made.data) {
        model.setStatusMessage(copyResult(*made.data, made.findings));
    }
    if (!warnings.empty()) {
        model.setLastError(warnings.front());
    }
}

void DuplicateSession::ended(const Outcome<Made>& outcome) {
    copy_.reset();
    isWorking_ = false;
    Q_EMIT changed();
    if (outcome.result) {
        Q_EMIT duplicated(outcome.result->clone.clone.wrapper.string());
    }
}

} // namespace quorvel
