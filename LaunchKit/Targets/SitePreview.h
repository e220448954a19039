#pragma once

#include "Base/Error.h"
#include "Platform/processes/Environment.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// A site's title and icon, for a clone of it.
struct SitePreview {
    std::string title{};                         ///< as a name; empty if there is none
    std::optional<std::filesystem::path> icon{}; ///< an icon container
};

class SitePreviewError : public Error {
public:
    using Error::Error;
};

/// Returns the program that asks sites, `std::nullopt` if it is not installed.
[[nodiscard]] std::optional<std::filesystem::path> sitePreviewProgram(const Environment& session);

/// How long a site is waited for.
inline constexpr std::chrono::seconds sitePatience{20};

/// Asks the site at the address, by that program, within that time. The icon becomes a file in
/// `folder`, an absolute path. Throws `SitePreviewError`, also once `cancelled` is true; null:
/// can't be cancelled. Any thread.
[[nodiscard]] SitePreview fetchSitePreview(const std::filesystem::path& program,
                                           const std::string& address,
                                           const std::filesystem::path& folder,
                                           std::chrono::milliseconds patience = sitePatience,
                                           const std::atomic<bool>* cancelled = nullptr);

/// Returns a page's title as a name for a clone: on one line, without characters that file names
/// can't have, and not too long.
[[nodiscard]] std::string nameFromTitle(const std::string& title);

} // namespace quorvel
