#include "QuorvelApp/theme/Shortcuts.h"

namespace quorvel {

QList<QKeySequence> deletionKeys(QOperatingSystemVersion::OSType system) {
    QList<QKeySequence> keys{Qt::Key_Delete};
    if (system == QOperatingSystemVersion::MacOS) {
        keys.append(Qt::Key_Backspace); // what the key labelled "delete" sends there
    }
    return keys;
}

} // namespace quorvel
