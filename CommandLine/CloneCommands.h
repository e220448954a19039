#pragma once

#include "CommandLine/CreateOptions.h"
#include "CommandLine/Surroundings.h"

#include <string>
#include <vector>

/// The commands behind `quorvelctl`. Each prints its result and throws what goes wrong:
/// `CommandError`, `UsageError` or an error of the layers below.
namespace quorvel {

/// Prints the facts about an application bundle.
void inspectCommand(const Surroundings& with, const std::string& app, bool json);
/// Prints the clones in the folders; without any, those in ~/Applications.
void listCommand(const Surroundings& with, const std::vector<std::string>& searchDirs, bool json);
/// Prints one clone's facts.
void showCommand(const Surroundings& with, const std::string& clone, bool json);
/// Makes a clone, prints its path and opens it if the options say so.
void createCommand(const Surroundings& with, const CreateOptions& options, bool json);
/// Opens a clone.
void openCommand(const Surroundings& with, const std::string& clone, bool json);

/// What the options of `quorvelctl delete` set.
struct DeleteOptions {
    bool includingData = false;
    bool yes = false; ///< don't ask
};

/// Deletes a clone, after a question unless `yes` is set.
void deleteCommand(const Surroundings& with, const std::string& clone, const DeleteOptions& options,
                   bool json);

} // namespace quorvel
