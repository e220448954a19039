#include "Presentation/StopTexts.h"

namespace quorvel {

std::string stillRunningText(const std::string& name, std::size_t left,
                             const Translate& translate) {
    if (left == 1) {
        return filledIn(translate("Stop", "“%1” was asked to end, but 1 process is still running."),
                        {name});
    }
    return filledIn(translate("Stop", "“%1” was asked to end, but %2 processes are still running."),
                    {name, std::to_string(left)});
}

std::string lossText(const Translate& translate) {
    return translate("Stop", "Unsaved work is lost.");
}

std::string usedElsewhereText(const std::string& name, const Translate& translate) {
    return filledIn(translate("Stop", "“%1” is not running, but a program that may be another "
                                      "clone’s uses its data folder."),
                    {name});
}

} // namespace quorvel
