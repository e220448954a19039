#include "CommandLine/CopyTexts.h"

#include "Base/TerminalText.h"
#include "CommandLine/ProbeTexts.h"
#include "Presentation/SizeText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>
#include <utility>

namespace quorvel {
namespace {

const char* methodOf(const FolderCopyReport& report) {
    if (report.clonedFiles == 0) {
        return "copied";
    }
    return report.copiedFiles == 0 ? "cloned" : "partly cloned";
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace

FolderCopyOptions CopyBar::options() {
    FolderCopyOptions options{.cancelled = &interrupt_.flag()};
    if (context_.outputIsTerminal) {
        options.progress = [this](const CopyProgress& progress) {
            // Many small files take as long as a few large ones.
            const auto share = [](auto done, auto all) {
                return all == 0
                           ? 1.0
                           : std::min(1.0, static_cast<double>(done) / static_cast<double>(all));
            };
            isShown_ = true;
            context_.errors << progressBar((share(progress.items, progress.allItems) +
                                            share(progress.bytes, progress.allBytes)) /
                                           2)
                            << std::flush;
        };
    }
    return options;
}

void CopyBar::erase() {
    if (std::exchange(isShown_, false)) {
        context_.errors << noProgressBar() << std::flush;
    }
}

std::string copyLine(const FolderCopyReport& report) {
    const std::size_t files = report.clonedFiles + report.copiedFiles;
    return counted(files, "file") + " with " + sizeText(report.bytes) + " " +
           (files == 1 ? "was " : "were ") + methodOf(report) + "; that took " +
           sizeText(report.bytesTaken) + ".\n";
}

std::string keyringLine(const CopyFindings& findings) {
    std::string what;
    if (findings.lockedCookies > 0) {
        what = counted(findings.lockedCookies, "cookie");
    }
    if (findings.lockedPasswords > 0) {
        what += (what.empty() ? "" : " and ") + counted(findings.lockedPasswords, "password");
    }
    return what.empty() ? what
                        : what + " can only be decrypted with the keyring of this session. Opened "
                                 "without it, the clone loses them for good.\n";
}

std::string findingLines(const CopyFindings& findings) {
    constexpr std::size_t most = 10;
    const std::size_t count = findings.namingOriginal.size();
    if (count == 0) {
        return {};
    }
    std::string lines = counted(count, "file") + " of the copy " + (count == 1 ? "names" : "name") +
                        " the original’s data folder and may lead there:\n";
    for (std::size_t index = 0; index < std::min(most, count); ++index) {
        lines += "  " + terminalText(findings.namingOriginal[index]) + "\n";
    }
    return count > most ? lines + "  and " + std::to_string(count - most) + " more\n" : lines;
}

nlohmann::json jsonForm(const FolderCopyReport& report, const CopyFindings& findings) {
    return {{"method", methodOf(report)},
            {"items", report.items},
            {"clonedFiles", report.clonedFiles},
            {"copiedFiles", report.copiedFiles},
            {"bytes", report.bytes},
            {"bytesTaken", report.bytesTaken},
            {"namingOriginal", findings.namingOriginal},
            {"lockedCookies", findings.lockedCookies},
            {"lockedPasswords", findings.lockedPasswords}};
}

} // namespace quorvel
