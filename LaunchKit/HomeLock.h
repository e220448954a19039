#pragma once

#include "Base/Error.h"
#include "Platform/files/FileLock.h"

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

struct InstanceConfig;

/// The file in an instance home whose lock says that a target runs there.
inline constexpr std::string_view homeLockName = ".quorvel-lock";

/// Another target runs in the instance home: that of the same clone, whose runner may be gone, or
/// of a clone that shares the home.
class HomeInUse : public Error {
public:
    explicit HomeInUse(const std::string& displayName);
};

/// Claims the clone's instance home, which is created where it is missing, for one target. The
/// claim lasts as long as the lock's descriptor is open anywhere. Where no file can be made, on a
/// full disk for one, the home folder itself is locked. Returns std::nullopt where that can't be
/// done either. Throws `HomeInUse`, or `PlatformError` if the home can't be made or something else
/// has the place of the lock's file.
[[nodiscard]] std::optional<FileLock> lockHome(const InstanceConfig& config);

/// Whether a target runs in the clone's instance home now, though perhaps without its runner.
[[nodiscard]] bool isHomeInUse(const InstanceConfig& config);

/// Throws `HomeInUse` if one does.
void requireUnusedHome(const InstanceConfig& config);

} // namespace quorvel
