#pragma once

#include "LaunchKit/Copying/CopyFindings.h"
#include "Platform/copying/FolderCopy.h"
#include "Presentation/Translation.h"

#include <functional>
#include <string>

/// What the front ends say about the copying of data.
namespace quorvel {

/// Returns how much of a copy is done, from 0 to 1. Many small files take as long as a few large
/// ones, so that items and bytes count alike.
[[nodiscard]] double shareDone(const CopyProgress& progress);

/// Returns how far a copy is, in items and bytes.
[[nodiscard]] std::string progressText(const CopyProgress& progress,
                                       const Translate& translate = inEnglish);

/// Returns in one word how the files got there: "cloned" if they share their blocks with the
/// originals.
[[nodiscard]] const char* copyMethod(const FolderCopyReport& report);

/// Returns the sentence that says how the data was copied, and how many bytes that took.
[[nodiscard]] std::string copySentence(const FolderCopyReport& report,
                                       const Translate& translate = inEnglish);

/// Returns the sentences that the user should know before anything is started with the copy; empty
/// if there is nothing.
[[nodiscard]] std::string keyringSentence(const CopyFindings& findings,
                                          const Translate& translate = inEnglish);

/// Returns what of the copy may lead to the original: a sentence, then a line for each of the first
/// files. Empty if there is nothing. `shown` makes a file's name fit to be shown.
[[nodiscard]] std::string findingLines(const CopyFindings& findings,
                                       const std::function<std::string(const std::string&)>& shown,
                                       const Translate& translate = inEnglish);

} // namespace quorvel
