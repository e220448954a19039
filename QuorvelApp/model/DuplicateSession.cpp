#include "QuorvelApp/model/DuplicateSession.h"

#include "Base/Error.h"
#include "Base/Text.h"
#include "LaunchKit/Copying/DataSize.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/UserPaths.h"
#include "Presentation/ChangeTexts.h"
#include "Presentation/CloneNaming.h"
#include "Presentation/JoinedText.h"
#include "QuorvelApp/model/CopyResult.h"
#include "QuorvelApp/model/Translated.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace quorvel {
namespace {

// Counting that many takes a fraction of a second.
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
        return make(registry, wrapper,
                    {.name = name, .withData = withData, .copy = control->options()});
    };
    // The outcome is reported even if the panel is gone, unless that has cancelled the copy.
    model_.services().tasks->detached(
        TaskPriority::userInitiated, &model_, capturingErrors(work),
        [self = QPointer(this), &model = model_](const Outcome<Made>& outcome) {
            report(model, outcome);
            if (self) {
                self->ended(outcome);
            }
        });
    Q_EMIT changed();
    if (copy_) {
        Q_EMIT copyBegan(copy_.get());
    }
}

DuplicateSession::Made DuplicateSession::make(const InstanceRegistry& registry,
                                              const std::filesystem::path& wrapper,
                                              DuplicationOptions options) {
    const auto original = registry.record(wrapper);
    if (!original) {
        throw Error(sentence(tr("The clone at %1 is not there any more."), {wrapper.string()}));
    }
    Made made;
    options.warn = [&](const std::string& text) { made.warnings.push_back(text); };
    try {
        made.clone = duplicateClone(WrapperFactory(), registry, *original, options);
    } catch (const CopyCancelled&) {
        made.isCancelled = true;
        return made;
    }
    if (!made.clone.clone.record) {
        throw Error(unreadableText(made.clone.clone.wrapper, translated));
    }
    return made;
}

void DuplicateSession::report(AppModel& model, const Outcome<Made>& outcome) {
    model.reload();
    if (!outcome.result) {
        model.setLastError(sentence(tr("Couldn't duplicate: %1"), {outcome.failure}));
        return;
    }
    const auto& [made, warnings, isCancelled] = *outcome.result;
    if (made.data) {
        model.setStatusMessage(copyResult(*made.data, made.findings));
    }
    if (!warnings.empty() && !isCancelled) {
        model.setLastError(joined(warnings, "\n"));
    }
}

void DuplicateSession::ended(const Outcome<Made>& outcome) {
    copy_.reset();
    isWorking_ = false;
    Q_EMIT changed();
    if (outcome.result && !outcome.result->isCancelled) {
        Q_EMIT duplicated(outcome.result->clone.clone.wrapper.string());
    }
}

} // namespace quorvel
