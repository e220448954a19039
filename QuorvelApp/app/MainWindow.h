#pragma once

#include "QuorvelApp/ContentView.h"
#include "QuorvelApp/Updater.h"

#include <QMainWindow>
#include <QPointer>

namespace quorvel {

class Sheet;

/// The window and its menu commands. Lists the clones when it first shows.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    static constexpr QSize smallest{760, 480};
    static constexpr QSize initial{980, 690};

    /// All must outlive the window.
    MainWindow(AppModel& model, UpdaterController& updater, IconLoader& icons,
               FilePanels panels = systemFilePanels());

    [[nodiscard]] ContentView& content() const { return *content_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void addCommands(UpdaterController& updater);
    void addFileMenu();
    void addCloneMenu();
    void showAbout();

    AppModel& model_;
    ContentView* content_;
    QPointer<Sheet> about_{};
    bool listed_ = false;
};

} // namespace quorvel
