#pragma once

#include "Base/Error.h"
#include "LaunchKit/Copying/CopyFindings.h"
#include "Platform/copying/FolderCopy.h"
#include "Platform/staging/StagedFolder.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace quorvel {

/// Data that can't be copied; the text is for the user.
class DataCopyError : public Error {
public:
    using Error::Error;
};

/// A folder of which a new clone gets a copy.
struct DataPart {
    std::filesystem::path from{};
    std::string to{}; ///< relative to the clone's data folder; empty for the folder itself
    /// If set, called before and after the copy; throws `DataCopyError` if a program uses the
    /// folder and no lock in it shows that.
    std::function<void()> requireUnused{};
};

/// The data folder of a clone that is yet to be made, filled with copies. It is put in its place
/// before the clone is made, and marked until then: `removeUnfinished` removes marked data whose
/// clone was never made.
class CopiedData {
public:
    /// Copies the parts, beside `home`. Throws `DataCopyError` if something is at `home` other than
    /// an empty folder, if a part is in use, or if it contains `home` or is in it; and what
    /// `FolderCopy` throws.
    CopiedData(const std::filesystem::path& home, const std::vector<DataPart>& parts,
               const FolderCopyOptions& options);

    [[nodiscard]] const FolderCopyReport& report() const { return report_; }

    /// Returns what the user should know about the copy.
    [[nodiscard]] CopyFindings findings() const { return search_.findings(folder_.path()); }

    /// Returns where the folder currently is.
    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }

    /// Notes for which clone it is, and flushes everything to disk, which may take long. Throws
    /// `CopyCancelled` and `PlatformError`.
    void complete(const std::filesystem::path& wrapper) const;

    /// Moves everything to `home`, once it is complete. Throws `PlatformError`.
    void publish();

    /// Removes the mark, once the clone is made.
    void finish() noexcept;

    /// Removes everything again.
    void withdraw() noexcept { folder_.withdraw(); }

    /// Removes what interrupted copies left in that folder, and the marks from the data of clones
    /// that exist, under any name. What may be a clone's stays. Never fails.
    static void removeUnfinished(const std::filesystem::path& parent) noexcept;

    /// Throws `DataCopyError` if something is at `home` other than an empty folder.
    static void requireFree(const std::filesystem::path& home);

private:
    StagedFolder folder_;
    CopySearch search_;
    FolderCopyReport report_{};
    const std::atomic<bool>* cancelled_;
};

} // namespace quorvel
