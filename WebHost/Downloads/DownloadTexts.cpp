#include "WebHost/Downloads/DownloadTexts.h"

namespace quorvel {

std::string savedText(const std::filesystem::path& file) {
    return "Saved “" + file.filename().string() + "” in “" +
           file.parent_path().filename().string() + "”";
}

std::string failedText(const std::string& name, const std::string& reason) {
    return "“" + name + "” can’t be downloaded: " + reason;
}

int DownloadProgress::percent() const {
    constexpr double whole = 100;
    return count == 0 ? 0 : static_cast<int>(sum / static_cast<double>(count) * whole);
}

std::string DownloadProgress::text() const {
    const std::string what = count == 1 ? "“" + name + "”" : std::to_string(count) + " files";
    return "Downloading " + what + ": " + std::to_string(percent()) + " %";
}

} // namespace quorvel
