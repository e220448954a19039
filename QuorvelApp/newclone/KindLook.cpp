#include "QuorvelApp/newclone/KindLook.h"

namespace quorvel {

using namespace Qt::StringLiterals;

KindLook KindLook::of(ShortcutKind kind) {
    switch (kind) {
    case ShortcutKind::web:
        return {u"globe"_s, tr("Web App"), tr("Enter a website URL"), u"globe"_s};
    case ShortcutKind::file:
        return {u"folder"_s, tr("File / Folder"), tr("Choose a file or folder"), u"folder"_s};
    case ShortcutKind::command:
        return {u"terminal"_s, tr("Command"), tr("Choose a command to run"), u"terminal"_s};
    case ShortcutKind::app:
        break;
    }
    return {u"app"_s, tr("App"), tr("Select an app"), u"hand.point.left"_s};
}

} // namespace quorvel
