#include "QuorvelApp/widgets/SystemFilePanels.h"

#include "Platform/desktop/FileOrFolderPanel.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QSettings>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

// The button's text never changes, whereas Qt's own would offer to open a selected folder.
class PromptingDialog : public QFileDialog {
    Q_DECLARE_TR_FUNCTIONS(PromptingDialog)

public:
    PromptingDialog(QWidget* over, const QString& prompt) : QFileDialog(over), prompt_(prompt) {
        setWindowTitle(prompt);
        setLabelText(QFileDialog::Accept, prompt);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::LayoutRequest) {
            keepPrompt();
        }
        return QFileDialog::eventFilter(watched, event);
    }

protected:
    void showEvent(QShowEvent* event) override {
        QFileDialog::showEvent(event);
        if (auto* buttons = findChild<QDialogButtonBox*>()) {
            // A button that changes its text asks for a new layout.
            buttons->installEventFilter(this);
            keepPrompt();
        }
    }

private:
    void keepPrompt() {
        const auto* box = findChild<QDialogButtonBox*>();
        for (QAbstractButton* button : box->buttons()) {
            if (box->buttonRole(button) == QDialogButtonBox::AcceptRole &&
                button->text() != prompt_) {
                button->setText(prompt_);
            }
        }
    }

    QString prompt_;
};

// Qt's dialogs return either files or folders. This one, which shows both, also accepts a folder
// that is selected in its list; a double click still opens the folder.
class FileOrFolderDialog final : public PromptingDialog {
public:
    using PromptingDialog::PromptingDialog;

    [[nodiscard]] QString chosen() const {
        return folder_.isEmpty() ? selectedFiles().value(0) : folder_;
    }

    void accept() override {
        folder_ = selectedFolder();
        if (folder_.isEmpty()) {
            QFileDialog::accept();
        } else {
            done(Accepted);
        }
    }

private:
    [[nodiscard]] QString selectedFolder() const {
        for (const QString& name : {u"listView"_s, u"treeView"_s}) {
            const auto* view = findChild<QAbstractItemView*>(name);
            if (view != nullptr && view->isVisible() && view->selectionModel() != nullptr) {
                const QModelIndexList rows = view->selectionModel()->selectedRows();
                const QString path =
                    rows.isEmpty() ? QString()
                                   : rows.front().data(QFileSystemModel::FilePathRole).toString();
                return QFileInfo(path).isDir() ? path : QString();
            }
        }
        return {};
    }

    QString folder_{};
};

QString choose() {
    return PromptingDialog::tr("Choose");
}

std::optional<std::filesystem::path> pathOf(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(std::filesystem::path(text.toStdString()));
}

QWidget* widgetOf(QObject* window) {
    return qobject_cast<QWidget*>(window);
}

std::optional<std::filesystem::path> chooseFileOrFolder(QObject* window) {
    if (const FileOrFolderPanel panel = systemFileOrFolderPanel()) {
        return panel(choose().toStdString());
    }
    FileOrFolderDialog dialog(widgetOf(window), choose());
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return dialog.exec() == QDialog::Accepted ? pathOf(dialog.chosen()) : std::nullopt;
}

FilePanels::Panel panel(QFileDialog::FileMode mode, bool mayCreate, const QString& prompt,
                        const QString& filter = {}) {
    return [=](QObject* window) -> std::optional<std::filesystem::path> {
        PromptingDialog dialog(widgetOf(window), prompt);
        dialog.setFileMode(mode);
        dialog.setOption(QFileDialog::ShowDirsOnly, mode == QFileDialog::Directory);
        dialog.setOption(QFileDialog::ReadOnly, !mayCreate);
        if (!filter.isEmpty()) {
            dialog.setNameFilter(filter);
        }
        return dialog.exec() == QDialog::Accepted ? pathOf(dialog.selectedFiles().value(0))
                                                  : std::nullopt;
    };
}

} // namespace

void keepNoDialogState() {
    // No file can be created below one that is not a folder.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, u"/dev/null"_s);
}

FilePanels systemFilePanels() {
    return {.fileOrFolder = chooseFileOrFolder,
            .file = panel(QFileDialog::ExistingFile, false, choose()),
            .folder = panel(QFileDialog::Directory, false, choose()),
            .dataFolder = panel(QFileDialog::Directory, true, choose()),
            .icon = panel(QFileDialog::ExistingFile, false, PromptingDialog::tr("Use Icon"),
                          PromptingDialog::tr("Icons (*.icns)"))};
}

} // namespace quorvel
