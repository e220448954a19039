#include "QuorvelApp/widgets/FilePanels.h"

#include "Platform/desktop/FileOrFolderPanel.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QSettings>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

// Its button reads the same whatever is selected; Qt's own would offer to open a folder.
class PromptingDialog : public QFileDialog {
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

// Qt's dialogs give either files or folders. This one, which shows both, also takes a folder that
// is selected in its list; a double click still opens the folder.
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

std::optional<std::filesystem::path> pathOf(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(std::filesystem::path(text.toStdString()));
}

std::optional<std::filesystem::path> chooseFileOrFolder(QWidget* over) {
    if (const FileOrFolderPanel panel = systemFileOrFolderPanel()) {
        return panel(QObject::tr("Choose").toStdString());
    }
    FileOrFolderDialog dialog(over, QObject::tr("Choose"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return dialog.exec() == QDialog::Accepted ? pathOf(dialog.chosen()) : std::nullopt;
}

FilePanels::Panel panel(QFileDialog::FileMode mode, bool mayCreate, const QString& prompt,
                        const QString& filter = {}) {
    return [=](QWidget* over) -> std::optional<std::filesystem::path> {
        PromptingDialog dialog(over, prompt);
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
    // No folder can be made below what is no folder.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, u"/dev/null"_s);
}

FilePanels FilePanels::ofTheSystem() {
    const QString choose = QObject::tr("Choose");
    return {.fileOrFolder = chooseFileOrFolder,
            .file = panel(QFileDialog::ExistingFile, false, choose),
            .folder = panel(QFileDialog::Directory, false, choose),
            .dataFolder = panel(QFileDialog::Directory, true, choose),
            .icon = panel(QFileDialog::ExistingFile, false, QObject::tr("Use Icon"),
                          QObject::tr("Icons (*.icns)"))};
}

} // namespace quorvel
