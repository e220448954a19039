#include "Presentation/DeletionWarning.h"

namespace quorvel {

DeletionWarning deletionWarning(const std::string& name, const Translate& translate) {
    return {.title = filledIn(translate("Deletion", "“%1” is running"), {name}),
            .text = translate("Deletion", "It would lose what it has open, and might write to its "
                                          "data again.")};
}

} // namespace quorvel
