#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/NewCloneForm.h"
#include "QuorvelApp/widgets/FilePanels.h"

#include <QObject>

#include <functional>

namespace quorvel {

/// One showing of the new-clone sheet: its form, and what the form asks of the model. The panes
/// change the form here and read it anew at each `changed`.
class NewCloneSession : public QObject {
    Q_OBJECT

public:
    /// `model` must outlive the session.
    NewCloneSession(AppModel& model, FilePanels panels, QObject* parent = nullptr);

    /// The last chosen icon that has proved to be an icon file; a refused choice returns to it.
    [[nodiscard]] const std::optional<std::filesystem::path>& checkedIcon() const {
        return checkedIcon_;
    }
    [[nodiscard]] const NewCloneForm& form() const { return form_; }
    [[nodiscard]] AppModel& model() const { return model_; }
    [[nodiscard]] const FilePanels& panels() const { return panels_; }

    void edit(const std::function<void(NewCloneForm&)>& change);
    /// Asks with one of the panels, over a widget, and has `take` enter the answer. The sheet, and
    /// this session with it, may be gone by then.
    void choose(FilePanels::Panel panel, QWidget* over,
                const std::function<void(NewCloneForm&, const std::filesystem::path&)>& take);
    /// Asks for an icon file and enters it. When it turns out to be none, that becomes the model's
    /// `lastError`, and the icon before it returns.
    void chooseIcon(QWidget* over);
    void clearIcon();
    /// Takes the app as target and finds out how it stores its data.
    void select(const InstalledApp& app);
    /// Has the clone made. Ends with `created`, or with the model's `lastError`.
    void create();
    /// Has the selected app's strategy detected.
    void detect();

Q_SIGNALS:
    void changed();
    void created();

private:
    void enterIcon(const std::filesystem::path& icon);
    void forgetIcons();

    AppModel& model_;
    FilePanels panels_;
    NewCloneForm form_{};
    int iconChoices_ = 0; ///< made so far; an answer about an earlier one comes too late
    std::optional<std::filesystem::path> checkedIcon_{}; ///< the last one known to be an icon file
};

} // namespace quorvel
