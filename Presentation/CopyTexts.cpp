#include "Presentation/CopyTexts.h"

#include "Presentation/SizeText.h"

#include <algorithm>

namespace quorvel {
namespace {

// Each in the context "Copy", where extraction tools find the texts.
struct Words {
    const Translate& translate;

    [[nodiscard]] std::string files(std::size_t count) const {
        return count == 1 ? translate("Copy", "1 file")
                          : filledIn(translate("Copy", "%1 files"), {std::to_string(count)});
    }
    [[nodiscard]] std::string cookies(std::size_t count) const {
        return count == 1 ? translate("Copy", "1 cookie")
                          : filledIn(translate("Copy", "%1 cookies"), {std::to_string(count)});
    }
    [[nodiscard]] std::string passwords(std::size_t count) const {
        return count == 1 ? translate("Copy", "1 password")
                          : filledIn(translate("Copy", "%1 passwords"), {std::to_string(count)});
    }
};

template<typename Amount>
double share(Amount done, Amount all) {
    return all == 0 ? 1.0 : std::min(1.0, static_cast<double>(done) / static_cast<double>(all));
}

} // namespace

double shareDone(const CopyProgress& progress) {
    return (share(progress.items, progress.allItems) + share(progress.bytes, progress.allBytes)) /
           2;
}

std::string progressText(const CopyProgress& progress, const Translate& translate) {
    return filledIn(translate("Copy", "%1 of %2 items, %3 of %4"),
                    {std::to_string(progress.items), std::to_string(progress.allItems),
                     sizeText(progress.bytes), sizeText(progress.allBytes)});
}

const char* copyMethod(const FolderCopyReport& report) {
    if (report.clonedFiles == 0) {
        return "copied";
    }
    return report.copiedFiles == 0 ? "cloned" : "partly cloned";
}

std::string copySentence(const FolderCopyReport& report, const Translate& translate) {
    const std::size_t files = report.clonedFiles + report.copiedFiles;
    const std::string amount = filledIn(translate("Copy", "%1 with %2"),
                                        {Words{translate}.files(files), sizeText(report.bytes)});
    const std::string taken = sizeText(report.bytesTaken);
    if (report.clonedFiles == 0) {
        return filledIn(files == 1 ? translate("Copy", "%1 was copied; that took %2.")
                                   : translate("Copy", "%1 were copied; that took %2."),
                        {amount, taken});
    }
    if (report.copiedFiles == 0) {
        return filledIn(files == 1 ? translate("Copy", "%1 was cloned; that took %2.")
                                   : translate("Copy", "%1 were cloned; that took %2."),
                        {amount, taken});
    }
    return filledIn(translate("Copy", "%1 were partly cloned; that took %2."), {amount, taken});
}

std::string keyringSentence(const CopyFindings& findings, const Translate& translate) {
    const Words words{translate};
    std::string what;
    if (findings.lockedCookies > 0 && findings.lockedPasswords > 0) {
        what =
            filledIn(translate("Copy", "%1 and %2"), {words.cookies(findings.lockedCookies),
                                                      words.passwords(findings.lockedPasswords)});
    } else if (findings.lockedCookies > 0) {
        what = words.cookies(findings.lockedCookies);
    } else if (findings.lockedPasswords > 0) {
        what = words.passwords(findings.lockedPasswords);
    }
    return what.empty()
               ? what
               : filledIn(translate("Copy", "%1 can only be decrypted with the keyring of this "
                                            "session. Opened without it, the clone loses them for "
                                            "good."),
                          {what});
}

std::string findingLines(const CopyFindings& findings,
                         const std::function<std::string(const std::string&)>& shown,
                         const Translate& translate) {
    constexpr std::size_t most = 10;
    const std::size_t count = findings.namingOriginal.size();
    if (count == 0) {
        return {};
    }
    std::string lines = filledIn(
        count == 1
            ? translate("Copy",
                        "%1 of the copy names the original’s data folder and may lead there:")
            : translate("Copy",
                        "%1 of the copy name the original’s data folder and may lead there:"),
        {Words{translate}.files(count)});
    for (std::size_t index = 0; index < std::min(most, count); ++index) {
        lines += "\n  " + shown(findings.namingOriginal[index]);
    }
    if (count > most) {
        lines +=
            "\n  " + filledIn(translate("Copy", "and %1 more"), {std::to_string(count - most)});
    }
    return lines;
}

} // namespace quorvel
