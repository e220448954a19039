#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

#include <string>

class QCheckBox;
class QVBoxLayout;

namespace quorvel {

/// The options that most users never need, top to bottom.
class AdvancedOptions : public QWidget {
    Q_OBJECT

public:
    static constexpr int editorHeight = 54;

    AdvancedOptions(NewCloneSession& session, IconLoader& icons, QWidget* parent);

private:
    void addBlock(const QString& label, QWidget* control, const QString& help);
    void addNote(const QString& text);
    [[nodiscard]] QString argumentsHelp() const;
    QCheckBox* addCheckBox(QVBoxLayout* column, const QString& label, bool NewCloneForm::*field,
                           bool whenChecked = true);
    [[nodiscard]] QWidget* makeDataLocation();
    [[nodiscard]] QWidget* makeIconLabel();
    [[nodiscard]] QWidget* makeLabelPosition();
    [[nodiscard]] QWidget* makeArguments();
    [[nodiscard]] QWidget* makeEditor(const QString& name, std::string NewCloneForm::*field);
    void addSeed();
    void addEnvironmentCost();
    void addLinks();
    void addMenuBarBoxes();
    void addIsolation();
    void addForAppsOnly(QWidget* widget);

    NewCloneSession& session_;
    QVBoxLayout* column_;
};

} // namespace quorvel
