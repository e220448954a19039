#pragma once

#include "Platform/watching/FSEventStream.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorvel::testing {

/// What one event reports of an item.
struct Change {
    std::string path{};
    bool isDir = false;
    bool created = false;
    bool modified = false;
    bool renamed = false;

    bool operator==(const Change&) const = default;
};

/// Collects a stream's creations, modifications and renames.
class ChangeList {
public:
    void add(const FSEventBatch& batch);

    /// Valid once the stream has stopped.
    [[nodiscard]] const std::vector<Change>& changes() const { return changes_; }
    [[nodiscard]] std::set<std::string> paths() const;
    /// Whether the stream reported nothing as missed.
    [[nodiscard]] bool isComplete() const { return complete_; }

private:
    std::mutex lock_{};
    std::vector<Change> changes_{};
    bool complete_ = true;
};

/// Records the changes below some folders from its construction on.
class Recording {
public:
    /// Throws `std::runtime_error` if no stream can be created.
    explicit Recording(const std::vector<std::filesystem::path>& folders);
    explicit Recording(const std::filesystem::path& folder) : Recording(std::vector{folder}) {}

    /// Ends the recording and returns its changes.
    const std::vector<Change>& stop();

    [[nodiscard]] bool isComplete() const { return list_.isComplete(); }
    [[nodiscard]] std::set<std::string> paths() const { return list_.paths(); }
    [[nodiscard]] bool has(const std::filesystem::path& path) const { return at(path).has_value(); }
    /// All changes of the path as one. Returns `std::nullopt` if there are none.
    [[nodiscard]] std::optional<Change> at(const std::filesystem::path& path) const;

private:
    ChangeList list_{};
    std::unique_ptr<FSEventStream> stream_;
};

} // namespace quorvel::testing
