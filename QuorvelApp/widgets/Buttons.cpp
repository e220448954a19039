#include "QuorvelApp/widgets/Buttons.h"

#include "QuorvelApp/theme/Symbols.h"

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

QString lookName(ButtonLook look) {
    switch (look) {
    case ButtonLook::small:
        return u"small"_s;
    case ButtonLook::prominent:
        return u"prominent"_s;
    case ButtonLook::destructive:
        return u"destructive"_s;
    case ButtonLook::tool:
        return u"tool"_s;
    case ButtonLook::standard:
        break;
    }
    return u"standard"_s;
}

Ink inkOn(ButtonLook look) {
    return look == ButtonLook::prominent     ? Ink::onAccent
           : look == ButtonLook::destructive ? Ink::danger
                                             : Ink::text;
}

} // namespace

QPushButton* makeButton(const QString& text, ButtonLook look, const QString& symbol) {
    auto* button = new QPushButton(text);
    button->setProperty("look", lookName(look));
    button->setFont(
        fontFor(look == ButtonLook::small ? TextStyle::captionMedium : TextStyle::medium));
    button->setAutoDefault(true);
    if (!symbol.isEmpty()) {
        button->setIcon(symbolIcon(symbol, inkOn(look)));
        // The style leaves too little space beside the symbol, so the icon is wider than the
        // symbol.
        button->setIconSize({text.isEmpty() ? 16 : 22, 16});
    }
    return button;
}

void makeDefault(QPushButton* button) {
    button->setDefault(true);
    // An auto-default button would stop being the default when it loses the focus.
    button->setAutoDefault(false);
}

QString withoutMnemonics(QString text) {
    return text.replace(u'&', u"&&"_s);
}

} // namespace quorvel
