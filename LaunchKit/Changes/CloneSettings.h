#pragma once

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"

#include <filesystem>
#include <optional>

namespace quorvel {

/// Which icon a changed clone gets.
enum class IconChoice {
    keep,   ///< the one that it has, with the label drawn again if that changes
    target, ///< the target's
    file    ///< that of a file
};

/// Everything about a clone that can be edited.
struct CloneSettings {
    /// The name, the identifier, the data folder, the kind and the target application in it are not
    /// for editing; changes of them are ignored.
    InstanceConfig config{};
    ArgumentSource arguments = ArgumentSource::typed; ///< `engine` replaces those of `config`
    bool restoresArguments = false; ///< `engine` also replaces what the user has changed
    bool hidesIcon = false;
    IconChoice icon = IconChoice::keep;
    std::filesystem::path iconFile{};              ///< for `IconChoice::file`
    std::optional<std::filesystem::path> runner{}; ///< absent: the clone keeps its own
};

} // namespace quorvel
