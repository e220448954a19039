#pragma once

#include "ProbeKit/FSEventProbe.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorvel::testing {

/// A recording of some folders that began with its construction.
class Recording {
public:
    explicit Recording(const std::vector<std::filesystem::path>& folders)
        : probe_({folders.begin(), folders.end()}) {
        probe_.start();
    }
    explicit Recording(const std::filesystem::path& folder) : Recording(std::vector{folder}) {}

    const std::vector<WriteEvent>& stop() {
        events_ = probe_.stopAndDrain();
        return events_;
    }

    [[nodiscard]] bool isComplete() const { return probe_.isComplete(); }

    /// Every path of the stopped recording, once.
    [[nodiscard]] std::set<std::string> paths() const {
        std::set<std::string> paths;
        for (const WriteEvent& event : events_) {
            paths.insert(event.path);
        }
        return paths;
    }

    [[nodiscard]] bool has(const std::filesystem::path& path) const { return at(path).has_value(); }

    /// All that was recorded of the path, as one event; nothing when nothing was.
    [[nodiscard]] std::optional<WriteEvent> at(const std::filesystem::path& path) const {
        std::optional<WriteEvent> sum;
        for (const WriteEvent& event : events_) {
            if (event.path == path.native()) {
                sum = sum.value_or(WriteEvent{event.path});
                sum->isDir = sum->isDir || event.isDir;
                sum->created = sum->created || event.created;
                sum->modified = sum->modified || event.modified;
                sum->renamed = sum->renamed || event.renamed;
            }
        }
        return sum;
    }

private:
    FSEventProbe probe_;
    std::vector<WriteEvent> events_{};
};

} // namespace quorvel::testing
