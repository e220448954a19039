#include "QuorvelApp/model/CopyResult.h"

#include "Presentation/CopyTexts.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/Translated.h"

namespace quorvel {

std::string copyResult(const FolderCopyReport& report, const CopyFindings& findings) {
    std::string text = copySentence(report, translated);
    for (const std::string& more :
         {keyringSentence(findings, translated),
          findingLines(
              findings, [](const std::string& name) { return displayLine(name).toStdString(); },
              translated)}) {
        text += more.empty() ? more : "\n" + more;
    }
    return text;
}

} // namespace quorvel
