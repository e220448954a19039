#pragma once

#include "Platform/copying/FolderCopy.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// What a user should know about data that was copied. Nothing is changed in it.
struct CopyFindings {
    /// Text files and links in the copy that name the original folder, as relative paths.
    std::vector<std::string> namingOriginal{};
    /// Cookies and passwords in the copy that only the session's keyring can decrypt.
    std::size_t lockedCookies = 0;
    std::size_t lockedPasswords = 0;

    /// Returns whether there are any of those.
    [[nodiscard]] bool needsKeyring() const { return lockedCookies > 0 || lockedPasswords > 0; }
};

/// Looks through data while it is copied, when its bytes are in memory. What can't be read is
/// skipped.
class CopySearch {
public:
    /// Looks for the names of these folders.
    explicit CopySearch(const std::vector<std::filesystem::path>& originals);

    /// Looks at one item. `below` is where its folder's copy is in the whole copy; empty, or with a
    /// slash at its end.
    void lookAt(const CopiedContent& item, const std::string& below);

    /// Returns what was found, once everything is copied. Databases are looked at in `copy`.
    [[nodiscard]] CopyFindings findings(const std::filesystem::path& copy) const;

private:
    std::vector<std::string> spellings_;
    std::vector<std::string> naming_{};
    std::vector<std::string> databases_{};
};

} // namespace quorvel
