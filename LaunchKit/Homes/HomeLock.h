#pragma once

#include "Base/Error.h"
#include "Platform/files/FileLock.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

struct InstanceConfig;

/// The file in an instance home that is locked while a target runs there.
inline constexpr std::string_view homeLockName = ".quorvel-lock";

/// Another target runs in the instance home: that of the same clone, whose runner may have exited,
/// or of a clone that shares the home.
class HomeInUse : public Error {
public:
    explicit HomeInUse(const std::string& displayName);
};

/// Claims the clone's instance home, which is created if missing, for one target, and calls
/// `keepCopiedData`. The claim lasts as long as the lock's descriptor is open in any process. If
/// the lock file can't be made, on a full disk for example, the home folder itself is locked.
/// Returns `std::nullopt` if that fails too. Throws `HomeInUse`, or `PlatformError` if the home
/// can't be made or the lock's path is occupied by something else.
[[nodiscard]] std::optional<FileLock> lockHome(const InstanceConfig& config);

/// Removes the mark that copied data has until its clone is made (see `CopiedData`), so that the
/// data is never taken for what an interrupted copy left.
void keepCopiedData(const InstanceConfig& config);

/// A claim on a home in which another target is still running. A target that inherits the
/// descriptor shares the claim once it is taken.
class PendingHomeLock {
public:
    /// Opens what `lockHome` would lock. Returns std::nullopt if nothing can be locked there.
    [[nodiscard]] static std::optional<PendingHomeLock> of(const InstanceConfig& config);

    /// Claims the home, without waiting. Returns false while another target runs in it. Never
    /// throws.
    [[nodiscard]] bool tryTake() noexcept;

    [[nodiscard]] int descriptor() const noexcept { return lock_.descriptor(); }

private:
    PendingHomeLock(PendingLock lock, std::filesystem::path other) noexcept
        : lock_(std::move(lock)),
          other_(std::move(other)) {}

    PendingLock lock_;
    std::filesystem::path other_; // what an earlier target may have locked instead
};

/// Returns whether a target runs in the clone's instance home, perhaps without its runner.
[[nodiscard]] bool isHomeInUse(const InstanceConfig& config);

/// Throws `HomeInUse` if a target runs in the clone's instance home.
void requireUnusedHome(const InstanceConfig& config);

/// Removes the folder for temporary files of an app clone that was deleted, as far as possible.
/// Does nothing while a target runs in its home, which may have sockets there.
void removeUnusedTemporaryFolder(const InstanceConfig& config);

} // namespace quorvel
