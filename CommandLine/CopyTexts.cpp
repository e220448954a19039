#include "CommandLine/CopyTexts.h"

#include "Base/TerminalText.h"
#include "Presentation/CopyTexts.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>

namespace quorvel {

FolderCopyOptions CopyBar::options() {
    return {.progress = [this](const CopyProgress& progress) { bar_.show(shareDone(progress)); },
            .cancelled = &interrupt_.flag()};
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
