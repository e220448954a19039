#include "QuorvelApp/newclone/AdvancedOptions.h"

#include "Platform/entries/DefaultApplication.h"
#include "QuorvelApp/Components.h"
#include "QuorvelApp/newclone/CustomIconRow.h"
#include "QuorvelApp/newclone/FormBindings.h"
#include "QuorvelApp/newclone/LinksRow.h"
#include "QuorvelApp/widgets/ColorWell.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quorvel {
namespace {

QHBoxLayout* makeRow(QWidget* widget) {
    auto* row = new QHBoxLayout(widget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    return row;
}

QVBoxLayout* makeColumn(int spacing) {
    auto* column = new QVBoxLayout;
    column->setSpacing(spacing);
    return column;
}

QVBoxLayout* makeBlock(const QString& label, QWidget* control, const QString& help) {
    QVBoxLayout* block = makeColumn(4);
    QLabel* heading = makeLabel(label, TextStyle::captionMedium);
    heading->setBuddy(control);
    block->addWidget(heading);
    block->addWidget(control);
    if (!help.isEmpty()) {
        block->addWidget(makeWrappingLabel(help, TextStyle::caption, Ink::secondary));
    }
    return block;
}

} // namespace

AdvancedOptions::AdvancedOptions(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : QWidget(parent),
      session_(session),
      column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(12);
    const bool isEdited = session_.form().edited.has_value();
    addBlock(tr("Data location"), makeDataLocation(),
             isEdited ? tr("Where this clone's isolated data is stored.")
                      : tr("Where this clone's isolated data is stored. Put it on an external or "
                           "cloud drive if you like."));
    addSeed();
    addBlock(tr("Icon"), new CustomIconRow(session, icons), {});
    addBlock(tr("Icon label"), makeIconLabel(),
             tr("Draws a short text badge on the Dock icon to tell clones apart."));
    addBlock(tr("Launch arguments"), makeArguments(), argumentsHelp());
    addBlock(tr("Environment variables"),
             makeEditor(tr("Environment variables"), &NewCloneForm::envText),
             tr("One KEY=VALUE per line. {{instanceHome}} expands to the data location."));
    if (isEdited && session_.form().edited->hidesVariables) {
        addNote(tr("Some variables are not shown here; they stay as they are."));
    }
    addEnvironmentCost();
    addBlock(tr("Info.plist overrides"),
             makeEditor(tr("Info.plist overrides"), &NewCloneForm::plistText),
             tr("One KEY=VALUE per line, e.g. LSUIElement=true. Merged into the wrapper's "
                "Info.plist."));
    if (isEdited && session_.form().edited->hidesEntries) {
        addNote(tr("Some entries are not shown here; they stay as they are."));
    }
    addMenuBarBoxes();
    addCheckBox(column_, tr("Hide this clone's Dock icon (menu-bar/background app)"),
                &NewCloneForm::hideDockIcon);
    addCheckBox(column_, tr("Register as a browser / URL handler"),
                &NewCloneForm::registerAsBrowser);
    addCheckBox(column_, tr("Show in Finder's “Open With”"), &NewCloneForm::openWithPassthrough);
    addIsolation();
    if (linksStayInsideClones()) {
        addLinks();
    }
}

void AdvancedOptions::addBlock(const QString& label, QWidget* control, const QString& help) {
    column_->addLayout(makeBlock(label, control, help));
}

void AdvancedOptions::addNote(const QString& text) {
    column_->addWidget(makeWrappingLabel(text, TextStyle::caption, Ink::secondary));
}

QString AdvancedOptions::argumentsHelp() const {
    const QString help =
        tr("Passed to the app on launch. Leave blank for the auto-detected default — Electron & "
           "Chromium browsers get --user-data-dir, Firefox gets -profile, Eclipse gets -data, "
           "automatically.");
    return session_.form().edited
               ? help + QLatin1Char(' ') + tr("Put an argument with spaces in double quotes.")
               : help;
}

QCheckBox* AdvancedOptions::addCheckBox(QVBoxLayout* column, const QString& label,
                                        bool NewCloneForm::*field, bool whenChecked) {
    auto* box = new WrappingCheckBox(label);
    bindField(session_, box->box(), field, whenChecked);
    column->addWidget(box);
    return box->box();
}

QWidget* AdvancedOptions::makeDataLocation() {
    auto* widget = new QWidget;
    auto* field = new QLineEdit;
    field->setAccessibleName(tr("Data location"));
    fixIfEdited(session_, field);
    bindField(session_, field, &NewCloneForm::dataPath);
    const auto showPlaceholder = [this, field] {
        field->setPlaceholderText(QStringLiteral("~/QuorvelInstances/") +
                                  qtText(session_.form().cloneNameOrPlaceholder()));
    };
    connect(&session_, &NewCloneSession::changed, field, showPlaceholder);
    showPlaceholder();
    auto* choose = makeButton(tr("Choo&se…"), ButtonLook::small);
    choose->setAccessibleDescription(tr("Data location"));
    connect(choose, &QPushButton::clicked, this, [this] {
        session_.choose(
            session_.panels().dataFolder, window(),
            [](NewCloneForm& form, const auto& folder) { form.chooseDataFolder(folder); });
    });
    auto* row = makeRow(widget);
    row->addWidget(field, 1);
    row->addWidget(choose);
    choose->setVisible(!session_.form().edited);
    widget->setFocusProxy(field);
    return widget;
}

// Shown only if the original has data that a clone could start with.
void AdvancedOptions::addSeed() {
    auto* box = new WrappingCheckBox(tr("Start with the original's data"));
    bindField(session_, box->box(), &NewCloneForm::seed);
    const auto show = [this, box] {
        box->setVisible(session_.form().canSeed &&
                        session_.form().shortcutType == ShortcutKind::app);
    };
    connect(&session_, &NewCloneSession::changed, box, show);
    column_->addWidget(box); // before it is shown, or it would be a top-level window
    show();
}

QWidget* AdvancedOptions::makeIconLabel() {
    auto* widget = new QWidget;
    auto* field = new QLineEdit;
    field->setPlaceholderText(tr("e.g. WORK"));
    field->setAccessibleName(tr("Icon label"));
    bindField(session_, field, &NewCloneForm::iconLabelText);
    auto* well = new ColorWell;
    const auto showColor = [this, well] {
        well->setColor(QColor(qtText(session_.form().iconLabelColor)));
    };
    connect(&session_, &NewCloneSession::changed, well, showColor);
    connect(well, &ColorWell::colorChosen, &session_, [this](const QColor& color) {
        session_.edit([&](NewCloneForm& form) { form.iconLabelColor = hexRGB(color); });
    });
    showColor();
    auto* row = makeRow(widget);
    row->addWidget(field, 1);
    if (session_.form().edited) {
        row->addWidget(makeLabelPosition());
    }
    row->addWidget(well);
    widget->setFocusProxy(field);
    return widget;
}

// A new clone's label is at the bottom; that of an edited clone may be anywhere.
QWidget* AdvancedOptions::makeLabelPosition() {
    using Position = IconLabel::Position;
    auto* choices = new PaneComboBox;
    choices->setAccessibleName(tr("Position of the label"));
    choices->addItem(tr("Bottom"), static_cast<int>(Position::bottom));
    choices->addItem(tr("Center"), static_cast<int>(Position::center));
    choices->addItem(tr("Top"), static_cast<int>(Position::top));
    choices->setCurrentIndex(
        choices->findData(static_cast<int>(session_.form().iconLabelPosition)));
    connect(choices, &QComboBox::currentIndexChanged, &session_, [this, choices](int index) {
        const auto position = static_cast<Position>(choices->itemData(index).toInt());
        session_.edit([&](NewCloneForm& form) { form.iconLabelPosition = position; });
    });
    return choices;
}

QWidget* AdvancedOptions::makeArguments() {
    auto* field = new QLineEdit;
    field->setPlaceholderText(QStringLiteral("--flag value"));
    field->setAccessibleName(tr("Launch arguments"));
    bindField(session_, field, &NewCloneForm::argsText);
    return field;
}

QWidget* AdvancedOptions::makeEditor(const QString& name, std::string NewCloneForm::*field) {
    auto* editor = new QPlainTextEdit;
    editor->setFixedHeight(editorHeight);
    editor->setFont(monospacedFont());
    editor->setTabChangesFocus(true);
    editor->setAccessibleName(name);
    bindField(session_, editor, field);
    return editor;
}

void AdvancedOptions::addEnvironmentCost() {
    auto* cost = makeWrappingLabel({}, TextStyle::caption, Ink::secondary);
    const auto show = [this, cost] {
        const QString text = qtText(session_.form().environmentCostText());
        cost->setText(text);
        cost->setVisible(!text.isEmpty());
    };
    connect(&session_, &NewCloneSession::changed, cost, show);
    column_->addWidget(cost);
    show();
}

void AdvancedOptions::addMenuBarBoxes() {
    QVBoxLayout* boxes = makeColumn(2);
    addCheckBox(boxes, tr("Show a menu-bar icon while running"), &NewCloneForm::menuBarIcon);
    QVBoxLayout* second = makeColumn(0);
    QCheckBox* monochrome = addCheckBox(second, tr("Menu-bar icon as monochrome (template)"),
                                        &NewCloneForm::menuBarIconTemplate);
    auto* indented = new QHBoxLayout; // unlike margins, its spacing is mirrored
    indented->setSpacing(0);
    indented->addSpacing(18);
    indented->addLayout(second);
    boxes->addLayout(indented);
    const auto enable = [this, monochrome] {
        monochrome->parentWidget()->setEnabled(session_.form().menuBarIcon);
    };
    connect(&session_, &NewCloneSession::changed, monochrome, enable);
    enable();
    column_->addLayout(boxes);
}

void AdvancedOptions::addIsolation() {
    auto* widget = new QWidget;
    auto* column = new QVBoxLayout(widget);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    addCheckBox(column, tr("Isolate this clone's Downloads, Documents & Desktop"),
                &NewCloneForm::shareUserFolders, false);
    column->addWidget(makeWrappingLabel(
        tr("Off (default): saved files go to your shared Finder folders. On: the clone keeps its "
           "own, inside its data folder — for a sandboxed or automated clone you don't want "
           "touching your files."),
        TextStyle::caption, Ink::secondary));
    addForAppsOnly(widget);
}

void AdvancedOptions::addLinks() {
    auto* widget = new QWidget(this);
    QVBoxLayout* block = makeBlock(tr("Links"), new LinksRow(session_, widget),
                                   tr("What opens the links that you click in this clone."));
    block->setContentsMargins(0, 0, 0, 0);
    widget->setLayout(block);
    addForAppsOnly(widget);
}

void AdvancedOptions::addForAppsOnly(QWidget* widget) {
    const auto show = [this, widget] {
        widget->setVisible(session_.form().shortcutType == ShortcutKind::app);
    };
    connect(&session_, &NewCloneSession::changed, widget, show);
    column_->addWidget(widget); // before it is shown, or it would be a top-level window
    show();
}

} // namespace quorvel
