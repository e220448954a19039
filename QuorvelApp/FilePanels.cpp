#include "QuorvelApp/FilePanels.h"

#include <QAbstractItemView>
#include <QFileDialog>
#include <QFileSystemModel>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

// Qt's dialogs give either files or folders. This one, which shows both, also takes a folder that
// is selected in its list; a double click still opens the folder.
class FileOrFolderDialog final : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

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

void prepare(QFileDialog& dialog, const QString& prompt) {
    dialog.setWindowTitle(prompt);
    dialog.setLabelText(QFileDialog::Accept, prompt);
}

std::optional<std::filesystem::path> chooseFileOrFolder(QWidget* over) {
    FileOrFolderDialog dialog(over);
    prepare(dialog, QObject::tr("Choose"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return dialog.exec() == QDialog::Accepted ? pathOf(dialog.chosen()) : std::nullopt;
}

FilePanels::Panel panel(QFileDialog::FileMode mode, bool mayCreate, const QString& prompt,
                        const QString& filter = {}) {
    return [=](QWidget* over) -> std::optional<std::filesystem::path> {
        QFileDialog dialog(over);
        prepare(dialog, prompt);
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
