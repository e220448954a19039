#include "tests/QuorvelApp/WidgetLookup.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QHelpEvent>
#include <QLabel>
#include <QRegularExpression>
#include <QTextDocumentFragment>
#include <QToolTip>

#include <algorithm>
#include <stdexcept>

namespace quorvel::testing {
namespace {

QString plain(QString text) {
    return text.replace(QLatin1String("&&"), QLatin1String("\n")).remove(u'&').replace(u'\n', u'&');
}

} // namespace

QPushButton* visibleButton(QWidget* root, const QString& text) {
    QPushButton* found = nullptr;
    // Later widgets are drawn over earlier ones.
    for (QPushButton* button : root->findChildren<QPushButton*>()) {
        if (button->isVisible() && plain(button->text()) == text) {
            found = button;
        }
    }
    if (found == nullptr) {
        throw std::runtime_error("no button " + text.toStdString());
    }
    return found;
}

QLineEdit* fieldNamed(QWidget* root, const QString& name) {
    for (QLineEdit* field : root->findChildren<QLineEdit*>()) {
        if (field->accessibleName() == name) {
            return field;
        }
    }
    throw std::runtime_error("no field " + name.toStdString());
}

QCheckBox* checkBox(QWidget* root, const QString& name) {
    for (QCheckBox* found : root->findChildren<QCheckBox*>()) {
        if (found->accessibleName() == name || plain(found->text()) == name) {
            return found;
        }
    }
    throw std::runtime_error("no box " + name.toStdString());
}

void chooseApp(QWidget* root, const QString& name) {
    auto* grid = root->findChild<AppGrid*>();
    for (int row = 0; row < grid->model()->rowCount(); ++row) {
        if (const QModelIndex tile = grid->model()->index(row, 0); tile.data() == name) {
            grid->selectionModel()->select(tile, QItemSelectionModel::ClearAndSelect);
            return;
        }
    }
    throw std::runtime_error("no app " + name.toStdString());
}

QString tooltipAt(QAbstractItemView* view, QPoint place) {
    QHelpEvent event(QEvent::ToolTip, place, view->viewport()->mapToGlobal(place));
    QApplication::sendEvent(view->viewport(), &event);
    return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText();
}

bool shows(QWidget* root, const QString& text) {
    const auto labels = root->findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
        return label->isVisible() && QString(label->text()).remove(QChar(0x200B)) == text;
    });
}

QStringList shownTexts(const QWidget* root) {
    QStringList texts{root->windowTitle()};
    for (const QWidget* widget : root->findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(root)) {
            continue;
        }
        texts << widget->accessibleName() << widget->accessibleDescription() << widget->toolTip();
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            texts << label->text();
        } else if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            texts << button->text();
        } else if (const auto* field = qobject_cast<const QLineEdit*>(widget)) {
            texts << field->placeholderText();
        } else if (const auto* choices = qobject_cast<const QComboBox*>(widget)) {
            texts << choices->itemText(0);
        }
    }
    return texts.filter(QRegularExpression(QStringLiteral("\\p{L}")));
}

} // namespace quorvel::testing
