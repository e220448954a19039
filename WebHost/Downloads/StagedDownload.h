#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvel {

/// A file that is being downloaded: in a folder of its own, mode 0700, until it is complete. Then
/// it gets its name beside that folder, without replacing anything. Removes what is unfinished.
class StagedDownload {
public:
    /// Makes the folder in `downloads`, which is created if missing. `mark` is in its name, and
    /// `suggested` becomes the file's, made safe. Throws `PlatformError`.
    StagedDownload(const std::filesystem::path& downloads, const std::string& mark,
                   std::string_view suggested);
    StagedDownload(StagedDownload&& other) noexcept;
    StagedDownload& operator=(StagedDownload&&) = delete;
    StagedDownload(const StagedDownload&) = delete;
    StagedDownload& operator=(const StagedDownload&) = delete;
    ~StagedDownload();

    /// Returns where to write the file.
    [[nodiscard]] std::filesystem::path file() const { return stage_ / name_; }
    [[nodiscard]] const std::string& name() const { return name_; }

    /// Gives the complete file the first free name, not executable, and returns its path. Throws
    /// `PlatformError`; then nothing has changed.
    [[nodiscard]] std::filesystem::path publish();

    /// Removes the empty folders with that mark that earlier processes left behind.
    static void removeLeftovers(const std::filesystem::path& downloads, const std::string& mark);

private:
    std::filesystem::path downloads_;
    std::filesystem::path stage_{}; ///< empty after a move
    std::string name_;
};

} // namespace quorvel
