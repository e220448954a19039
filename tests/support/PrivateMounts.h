#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

/// Real mounts that nobody else sees, and that are gone when their process ends.
namespace quorvel::testing {

/// Gives this process mounts of its own: as it is, or as the root of a user namespace. False where
/// the kernel forbids both.
[[nodiscard]] bool hasOwnMounts();

/// Runs `check` in a child process with mounts of its own and gives the problem that it names, the
/// empty text for none; nothing where the kernel forbids it.
[[nodiscard]] std::optional<std::string> inPrivateMounts(const std::function<std::string()>& check);

/// Shows the folder or file `source` at `at` too. Throws when that fails.
void bindMount(const std::filesystem::path& source, const std::filesystem::path& at);

} // namespace quorvel::testing
