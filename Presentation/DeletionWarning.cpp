#include "Presentation/DeletionWarning.h"

namespace quorvel {

DeletionWarning deletionWarning(const std::string& name, bool includingData,
                                const Translate& translate) {
    return {.title = filledIn(translate("Deletion", "“%1” is running"), {name}),
            .text = includingData
                        ? translate("Deletion", "It would lose what it has open, and might write "
                                                "to its data again.")
                        : translate("Deletion", "It goes on until you quit it, perhaps under the "
                                                "original’s icon in the Dock.")};
}

} // namespace quorvel
