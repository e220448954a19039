#pragma once

#include "Platform/watching/FSEventStream.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Translates what the FSEvents service reports to `FSEventStream`'s terms: real paths to paths
/// below the watched folders as given, and its flags to `FSEventFlag`.
class FSEventTranslation {
public:
    /// `given` are absolute paths of folders, which may be missing.
    explicit FSEventTranslation(const std::vector<std::string>& given);

    /// Returns the real paths of the given folders, without duplicates.
    [[nodiscard]] std::vector<std::string> realRoots() const;

    /// Returns the path below the first given folder that contains it, or unchanged if none does.
    [[nodiscard]] std::string givenPath(std::string_view path) const;

    /// Returns the translated batch, which is empty if the two lists differ in length.
    [[nodiscard]] FSEventBatch translated(const std::vector<std::string>& paths,
                                          std::span<const std::uint32_t> flags) const;

private:
    struct Root {
        std::string given{};
        std::string real{};
    };

    std::vector<Root> roots_;
};

} // namespace quorvel
