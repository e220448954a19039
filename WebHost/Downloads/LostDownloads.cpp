#include "WebHost/Downloads/RefusedDownloads.h"

namespace quorvel {

void RefusedDownloads::add(const std::string& name) {
    ++count_;
    last_ = name;
}

std::string RefusedDownloads::appendedTo(const std::string& text) const {
    if (count_ == 0) {
        return text;
    }
    const std::string what =
        count_ == 1 ? "“" + last_ + "” was" : std::to_string(count_) + " files were";
    return text + (text.empty() ? "" : "; ") + what + " not downloaded: too many at once";
}

} // namespace quorvel
