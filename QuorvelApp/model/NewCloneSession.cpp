#include "QuorvelApp/model/NewCloneSession.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/model/Continuation.h"
#include "QuorvelApp/model/CopyResult.h"
#include "QuorvelApp/model/SeededCreation.h"
#include "QuorvelApp/model/Translated.h"

#include <QDir>
#include <QPointer>

namespace quorvel {
namespace {

// Returns whether the clone was created. With data that only the keyring decrypts it is not
// launched, since it may lose that.
bool report(AppModel& model, const QFuture<InstanceRecord>& outcome, const CopiedSeed* seed,
            bool launchAfter) {
    std::optional<InstanceRecord> clone;
    std::optional<std::string> failure;
    try {
        clone = outcome.result();
    } catch (const CopyCancelled&) {
        return false; // as the user knows
    } catch (const CloneExists& error) {
        model.reload(); // the form warns of it from now on
        failure = error.what();
    } catch (const std::exception& error) {
        failure = error.what();
    }
    if (failure) {
        model.setLastError(failure);
    } else if (seed != nullptr) {
        model.setStatusMessage(copyResult(seed->data, seed->findings));
        if (launchAfter && !seed->findings.needsKeyring()) {
            model.launch(*clone);
        }
    }
    return !failure;
}

} // namespace

NewCloneSession::NewCloneSession(AppModel& model, FilePanels panels, QObject* parent)
    : QObject(parent),
      model_(model),
      panels_(std::move(panels)) {}

void NewCloneSession::edit(const std::function<void(NewCloneForm&)>& change) {
    change(form_);
    Q_EMIT changed();
}

void NewCloneSession::choose(
    const FilePanels::Panel& panel, QObject* window,
    const std::function<void(NewCloneForm&, const std::filesystem::path&)>& take) {
    const QPointer<NewCloneSession> self(this);
    const auto chosen = panel(window);
    if (self && chosen) {
        edit([&](NewCloneForm& form) { take(form, *chosen); });
    }
}

void NewCloneSession::chooseIcon(QObject* window) {
    const QPointer<NewCloneSession> self(this);
    const auto chosen = panels_.icon(window);
    if (self && chosen) {
        enterIcon(*chosen);
    }
}

void NewCloneSession::enterIcon(const std::filesystem::path& icon) {
    const int choice = ++iconChoices_;
    // Entered at once: the clone may be created before the answer.
    edit([&](NewCloneForm& form) { form.customIcon = icon; });
    continued(model_.isIconFile(icon), this, [this, icon, choice](bool isIcon) {
        if (choice != iconChoices_) {
            return;
        }
        if (isIcon) {
            checkedIcon_ = icon;
        } else {
            edit([&](NewCloneForm& form) { form.customIcon = checkedIcon_; });
            model_.setLastError(sentence(
                tr("Couldn't use the icon: %1 is not a readable .icns file"), {icon.native()}));
        }
    });
}

void NewCloneSession::forgetIcons() {
    ++iconChoices_;
    checkedIcon_.reset();
}

void NewCloneSession::clearIcon() {
    forgetIcons();
    edit([](NewCloneForm& form) { form.clearIcon(); });
}

void NewCloneSession::select(const InstalledApp& app) {
    forgetIcons();
    edit([&](NewCloneForm& form) { form.select(app, model_.suggestedName(app)); });
    continued(model_.sandboxInfo(app), this, [this, app](const SandboxInfo& info) {
        // Ignore an answer about an app that is no longer selected.
        if (form_.selected != app) {
            return;
        }
        edit([&](NewCloneForm& form) {
            form.strategy = info.strategy;
            form.strategyReason = info.reason;
            form.selectedSandboxed = info.sandboxed;
            form.suggestEnvironment(info.environment);
            form.canSeed = info.hasSeed;
        });
    });
}

void NewCloneSession::create() {
    if (!form_.hasTarget()) {
        return;
    }
    AppServices::WrapperMaker make;
    std::shared_ptr<CopiedSeed> seed;
    if (form_.startsWithSeed()) {
        copy_ = std::make_unique<BackgroundCopy>();
        seed = std::make_shared<CopiedSeed>();
        make = seededMaker(copy_->control(), seed);
    }
    // Only what the form has warned of is replaced.
    const RequestPermissions permissions{.existingClone =
                                             !form_.replacementText(model_.clones()).empty()};
    edit([](NewCloneForm& form) { form.creating = true; });
    // The outcome is reported even if the sheet has been closed meanwhile, unless that has
    // cancelled the copy.
    const bool launchAfter = form_.launchAfter;
    continued(model_.createClone(form_.makeRequest(), launchAfter && !seed, permissions, make),
              &model_,
              [&model = model_, self = QPointer(this), icons = siteFolders_, seed,
               launchAfter](const QFuture<InstanceRecord>& outcome) {
                  const bool isCreated = report(model, outcome, seed.get(), launchAfter);
                  if (self) {
                      self->creationEnded(isCreated);
                  }
              });
    if (copy_) {
        Q_EMIT copyBegan(copy_.get());
    }
}

void NewCloneSession::creationEnded(bool isCreated) {
    copy_.reset();
    if (isCreated) {
        Q_EMIT created();
    }
    edit([](NewCloneForm& form) { form.creating = false; });
}

std::optional<std::filesystem::path> NewCloneSession::newSiteFolder() {
    if (!siteFolders_) {
        siteFolders_ = std::make_shared<QTemporaryDir>();
    }
    const QString folder = siteFolders_->filePath(QString::number(++sitesAsked_));
    if (siteFolders_->isValid() && QDir().mkdir(folder)) {
        return folder.toStdString();
    }
    siteFolders_.reset();
    return std::nullopt;
}

void NewCloneSession::askSite() {
    const std::string address = form_.webURL;
    const auto folder = newSiteFolder();
    if (!folder) {
        model_.setLastError(
            sentence(tr("Couldn't ask the site: no folder can be made for its icon"), {}));
        return;
    }
    edit([](NewCloneForm& form) { form.askingSite = true; });
    continued(model_.previewSite(address, *folder), this,
              [this, address, kept = siteFolders_](const QFuture<SitePreview>& outcome) {
                  std::optional<std::string> failure;
                  edit([](NewCloneForm& form) { form.askingSite = false; });
                  try {
                      siteAnswered(address, outcome.result());
                  } catch (const std::exception& error) {
                      failure = error.what();
                  }
                  if (failure) {
                      model_.setLastError(sentence(tr("Couldn't ask the site: %1"), {*failure}));
                  }
              });
}

void NewCloneSession::siteAnswered(const std::string& address, const SitePreview& preview) {
    if (form_.webURL != address || form_.shortcutType != ShortcutKind::web) {
        return; // the answer is about another site than the one entered now
    }
    edit([&](NewCloneForm& form) { form.siteNamed(preview.title); });
    if (preview.icon) {
        enterIcon(*preview.icon);
    }
}

void NewCloneSession::detect() {
    if (!form_.selected) {
        return;
    }
    edit([](NewCloneForm& form) { form.beginDetecting(); });
    continued(model_.detectStrategy(*form_.selected), this,
              [this, app = *form_.selected](const QFuture<AppProfile>& outcome) {
                  edit([&](NewCloneForm& form) {
                      if (form.selected != app) {
                          form.detecting = false;
                          return; // the result is about another app than the one selected now
                      }
                      try {
                          const AppProfile profile = outcome.result();
                          form.detected(profile.strategy);
                          if (profile.environment) {
                              form.addEnvironment(*profile.environment);
                          } else if (profile.singleton == SingletonTier::none) {
                              form.withdrawSuggestedBus();
                          }
                      } catch (const std::exception& error) {
                          form.detectionFailed(error.what());
                      }
                  });
              });
}

} // namespace quorvel
