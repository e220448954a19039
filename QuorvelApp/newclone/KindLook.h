#pragma once

#include "LaunchKit/CloneOptions.h"

#include <QCoreApplication>
#include <QString>

namespace quorvel {

/// What a kind of clone looks like in the new-clone sheet.
struct KindLook {
    Q_DECLARE_TR_FUNCTIONS(KindLook)

public:
    QString symbol{};
    QString label{};
    QString prompt{}; ///< shown as long as there is no target
    QString promptSymbol{};

    /// Returns the look of that kind.
    [[nodiscard]] static KindLook of(ShortcutKind kind);
};

} // namespace quorvel
