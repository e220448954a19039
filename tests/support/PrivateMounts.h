#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

/// Real mounts in a private namespace, which disappear when their process ends.
namespace quorvel::testing {

/// Moves this process into a private mount namespace, as it is or as the root of a user namespace.
/// Returns false if the kernel forbids both.
[[nodiscard]] bool hasOwnMounts();

/// Runs `check` in a child process with private mounts and returns the problem that it names (empty
/// for none). Returns `std::nullopt` if the kernel forbids private mounts.
[[nodiscard]] std::optional<std::string> inPrivateMounts(const std::function<std::string()>& check);

/// Bind-mounts the folder or file `source` at `at`. Throws if that fails.
void bindMount(const std::filesystem::path& source, const std::filesystem::path& at);

/// Mounts a file system there whose server never answers, until this process ends. Returns false if
/// the kernel forbids it.
[[nodiscard]] bool mountWithoutAnswers(const std::filesystem::path& at);

} // namespace quorvel::testing
