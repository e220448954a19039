#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/BackgroundCopy.h"
#include "QuorvelApp/model/FilePanels.h"
#include "QuorvelApp/model/NewCloneForm.h"

#include <QObject>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace quorvel {

/// The state of one new-clone sheet: its form, and the requests it makes of the model. The panes
/// edit the form here and read it again at each `changed`.
class NewCloneSession : public QObject {
    Q_OBJECT

public:
    /// `model` must outlive the session.
    NewCloneSession(AppModel& model, FilePanels panels, QObject* parent = nullptr);

    /// The last chosen icon known to be an icon file, to which a refused choice returns.
    [[nodiscard]] const std::optional<std::filesystem::path>& checkedIcon() const {
        return checkedIcon_;
    }
    [[nodiscard]] const NewCloneForm& form() const { return form_; }
    [[nodiscard]] AppModel& model() const { return model_; }
    [[nodiscard]] const FilePanels& panels() const { return panels_; }

    /// Changes the form, then emits `changed`.
    void edit(const std::function<void(NewCloneForm&)>& change);
    /// Shows one of the panels over `window` and calls `take` with the answer. The sheet, and this
    /// session with it, may no longer exist when the panel closes.
    void choose(const FilePanels::Panel& panel, QObject* window,
                const std::function<void(NewCloneForm&, const std::filesystem::path&)>& take);
    /// Shows the panel for an icon file over `window` and enters the answer. If it turns out not to
    /// be an icon file, that becomes the model's `lastError`, and the previous icon returns.
    void chooseIcon(QObject* window);
    /// Returns to the target's own icon.
    void clearIcon();
    /// Makes the app the target, and requests the proposal for it.
    void select(const InstalledApp& app);
    /// Creates the clone. Ends with `created`, or with the model's `lastError`; or with neither if
    /// the copy of the original's data is cancelled. The outcome of the copy becomes the model's
    /// `statusMessage`.
    void create();
    /// Detects the selected app's strategy.
    void detect();
    /// Asks the web clone's site for its title and icon, and enters them.
    void askSite();

Q_SIGNALS:
    void changed();
    void created();
    /// The original's data is being copied, until `copy` is destroyed. Cancelling that cancels the
    /// creation, which leaves nothing behind.
    void copyBegan(quorvel::BackgroundCopy* copy);

protected:
    /// Returns the temporary folder with the icons of sites, which exists as long as it is held;
    /// null if there is none.
    [[nodiscard]] std::shared_ptr<QTemporaryDir> siteFolders() const { return siteFolders_; }

private:
    void enterIcon(const std::filesystem::path& icon);
    void forgetIcons();
    [[nodiscard]] std::optional<std::filesystem::path> newSiteFolder();
    void creationEnded(bool isCreated);
    void siteAnswered(const std::string& address, const SitePreview& preview);

    AppModel& model_;
    FilePanels panels_;
    NewCloneForm form_{};
    /// Contains a folder for each site that was asked: an icon of an earlier one may be chosen.
    std::shared_ptr<QTemporaryDir> siteFolders_{};
    int sitesAsked_ = 0;
    std::unique_ptr<BackgroundCopy> copy_{};
    int iconChoices_ = 0; ///< the number made; answers about earlier ones are ignored
    std::optional<std::filesystem::path> checkedIcon_{}; ///< the last one known to be an icon file
};

} // namespace quorvel
