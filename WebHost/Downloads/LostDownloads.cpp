#include "WebHost/Downloads/LostDownloads.h"

namespace quorvel {
namespace {

void append(std::string& text, const std::string& sentence) {
    text += (text.empty() ? "" : "; ") + sentence;
}

} // namespace

void LostDownloads::refuse(const std::string& name) {
    ++refusals_;
    lastRefused_ = name;
}

void LostDownloads::fail(const std::string& text) {
    ++failures_;
    lastFailure_ = text;
}

std::string LostDownloads::appendedTo(const std::string& text) const {
    std::string all = text;
    if (failures_ > 1) {
        append(all, std::to_string(failures_) + " downloads failed, the last: " + lastFailure_);
    } else if (failures_ == 1) {
        append(all, lastFailure_);
    }
    if (refusals_ > 0) {
        const std::string what = refusals_ == 1 ? "“" + lastRefused_ + "” was"
                                                : std::to_string(refusals_) + " files were";
        append(all, what + " not downloaded: too many at once");
    }
    return all;
}

} // namespace quorvel
