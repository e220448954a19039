#pragma once

#include "Base/Error.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace quorvel {

/// A failed file-system or process operation, described for the user:
/// “Work.app” couldn’t be removed: permission denied.
class PlatformError : public Error {
public:
    /// `action` completes the sentence “NAME” couldn’t be ACTION (a past participle, such as
    /// "removed"). `path` is the item that the operation was about.
    PlatformError(std::error_code code, const std::filesystem::path& path,
                  const std::string& action);

    [[nodiscard]] const std::error_code& code() const noexcept { return code_; }
    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }

    /// Returns the error for the calling thread's current `errno`.
    [[nodiscard]] static PlatformError fromErrno(const std::filesystem::path& path,
                                                 const std::string& action);

    /// Returns an error with a reason instead of a code. Its code is `std::errc::io_error`.
    [[nodiscard]] static PlatformError because(const std::string& reason,
                                               const std::filesystem::path& path,
                                               const std::string& action);

    /// Returns an error whose description is `sentence`, a complete one from the system or another
    /// program. Its code is `std::errc::io_error`.
    [[nodiscard]] static PlatformError withDescription(const std::string& sentence,
                                                       const std::filesystem::path& path);

    /// Returns the error of an operation on `path` that failed at `inside`, an item below it:
    /// “Photos” couldn’t be moved: “2024/a.jpg”: permission denied.
    [[nodiscard]] static PlatformError inside(std::error_code code,
                                              const std::filesystem::path& inside,
                                              const std::filesystem::path& path,
                                              const std::string& action);

private:
    PlatformError(const std::string& sentence, std::error_code code, std::filesystem::path path);

    std::error_code code_;
    std::filesystem::path path_;
};

} // namespace quorvel
