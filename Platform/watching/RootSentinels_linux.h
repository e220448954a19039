#pragma once

#include "Platform/files/FileHandle.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quorvel {

/// Notices when one of the given folders, or a parent of it, is created, removed or replaced, by
/// watching the names in the parent folders.
class RootSentinels {
public:
    /// If the system has no more watches, nothing is noticed and `works()` is false.
    explicit RootSentinels(std::vector<std::string> roots);

    [[nodiscard]] bool works() const { return inotify_.descriptor() >= 0; }
    /// Becomes readable when something has happened.
    [[nodiscard]] int descriptor() const { return inotify_.descriptor(); }

    /// Returns the indexes of the roots that may have been replaced since the last call.
    [[nodiscard]] std::set<std::size_t> takeChanged();

private:
    using Step = std::pair<std::size_t, std::string>; // the root's index, the name to look for

    void arm(std::size_t root);

    FileHandle inotify_;
    std::vector<std::string> roots_;
    std::map<int, std::set<Step>> steps_{};
};

} // namespace quorvel
