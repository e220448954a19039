#pragma once

#include "LaunchKit/Copying/CopyFindings.h"
#include "Platform/copying/FolderCopy.h"
#include "Presentation/Translation.h"

#include <functional>
#include <string>

/// What the front ends say about the copying of data.
namespace quorvel {

/// Returns how much of a copy is done, from 0 to 1. Many small files take as long as a few large
/// ones, so items and bytes count equally.
[[nodiscard]] double shareDone(const CopyProgress& progress);

/// Returns how far a copy is, in items and bytes.
[[nodiscard]] std::string progressText(const CopyProgress& progress, const Translate& translate);

/// Returns how the files were copied, as scripts read it: "cloned" if all share their blocks with
/// the originals, "copied" if none does, otherwise "partly cloned".
[[nodiscard]] const char* copyMethod(const FolderCopyReport& report);

/// Returns the sentence that says how the data was copied, and how many bytes that took.
[[nodiscard]] std::string copySentence(const FolderCopyReport& report, const Translate& translate);

/// Returns the warning about cookies and passwords that only this session's keyring can decrypt;
/// empty if there are none.
[[nodiscard]] std::string keyringSentence(const CopyFindings& findings, const Translate& translate);

/// Returns which copied files name the original's data folder: a sentence, then a line for each of
/// the first ones. Empty if none does. `shown` makes a file's name safe to display.
[[nodiscard]] std::string findingLines(const CopyFindings& findings,
                                       const std::function<std::string(const std::string&)>& shown,
                                       const Translate& translate);

} // namespace quorvel
