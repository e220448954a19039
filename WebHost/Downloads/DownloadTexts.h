#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

/// What the window says about its downloads.
namespace quorvel {

/// Returns what to say of a complete file.
[[nodiscard]] std::string savedText(const std::filesystem::path& file);
/// `name` is the file's safe name, `reason` a sentence.
[[nodiscard]] std::string failedText(const std::string& name, const std::string& reason);

/// How all running downloads together are getting on.
struct DownloadProgress {
    std::size_t count = 0;
    double sum = 0;     ///< of the progress of each, from 0 to 1
    std::string name{}; ///< of one of them

    /// Returns the progress in whole percent; 0 if none runs.
    [[nodiscard]] int percent() const;
    [[nodiscard]] std::string text() const;
};

} // namespace quorvel
