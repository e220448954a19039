#pragma once

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
};

/// Looks through the copy of these folders, not into the folders themselves. What can't be read is
/// skipped.
[[nodiscard]] CopyFindings findingsIn(const std::filesystem::path& copy,
                                      const std::vector<std::filesystem::path>& originals);

} // namespace quorvel
