#include "CommandLine/CopyTexts.h"

#include "Base/TerminalText.h"
#include "CommandLine/ProbeTexts.h"
#include "Presentation/CopyTexts.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

#include <ostream>
#include <utility>

namespace quorvel {

FolderCopyOptions CopyBar::options() {
    FolderCopyOptions options{.cancelled = &interrupt_.flag()};
    if (context_.outputIsTerminal) {
        options.progress = [this](const CopyProgress& progress) {
            isShown_ = true;
            context_.errors << progressBar(shareDone(progress)) << std::flush;
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
    return copySentence(report, inSystemWords) + "\n";
}

std::string keyringLine(const CopyFindings& findings) {
    const std::string sentence = keyringSentence(findings, inSystemWords);
    return sentence.empty() ? sentence : sentence + "\n";
}

std::string findingLines(const CopyFindings& findings) {
    const std::string lines = findingLines(
        findings, [](const std::string& name) { return terminalText(name); }, inSystemWords);
    return lines.empty() ? lines : lines + "\n";
}

nlohmann::json jsonForm(const FolderCopyReport& report, const CopyFindings& findings) {
    return {{"method", copyMethod(report)},
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
