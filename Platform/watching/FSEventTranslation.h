#pragma once

#include "Platform/watching/FSEventStream.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Puts what the FSEvents service reports into the words of `FSEventStream`: its real paths under
/// the names that were given to watch, its flags as the ones that callers know.
class FSEventTranslation {
public:
    /// `given` are absolute paths of folders, which may be missing.
    explicit FSEventTranslation(const std::vector<std::string>& given);

    /// The folders to watch: where the given ones really are, each once.
    [[nodiscard]] std::vector<std::string> realRoots() const;

    /// The path under the first given folder that holds it; unchanged when none does.
    [[nodiscard]] std::string givenPath(std::string_view path) const;

    /// Nothing of a batch whose two lists differ in length can be trusted: it becomes empty.
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
