#pragma once

#include <QKeySequence>
#include <QList>
#include <QOperatingSystemVersion>

namespace quorvel {

/// Returns the keys that delete what is selected in a list.
[[nodiscard]] QList<QKeySequence>
deletionKeys(QOperatingSystemVersion::OSType system = QOperatingSystemVersion::currentType());

} // namespace quorvel
