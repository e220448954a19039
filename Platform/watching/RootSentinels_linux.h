#pragma once

#include "Platform/files/FileHandle.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quorvel {

/// Notices when a given folder appears, vanishes or is replaced, itself or any folder on the way to
/// it, by watching the names in the folders above.
class RootSentinels {
public:
    /// Nothing is noticed when the system gives no more watches: `works()` tells.
    explicit RootSentinels(std::vector<std::string> roots);

    [[nodiscard]] bool works() const { return inotify_.descriptor() >= 0; }
    /// Readable when something happened.
    [[nodiscard]] int descriptor() const { return inotify_.descriptor(); }

    /// The numbers of the folders that may be others than before, each once.
    [[nodiscard]] std::set<std::size_t> takeChanged();

private:
    using Step = std::pair<std::size_t, std::string>; // the folder's number, the name on its way

    void arm(std::size_t root);

    FileHandle inotify_;
    std::vector<std::string> roots_;
    std::map<int, std::set<Step>> steps_{};
};

} // namespace quorvel
