#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/watching/FolderListing_linux.h"
#include "Platform/watching/InotifyQueue_linux.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace quorvel {

/// Watches folders with everything below them, and translates the system's events to paths and
/// flags. The system watches single folders: this keeps one watch for each, follows renames, and
/// lists the contents of new folders, since files may be created before the watch is. Not
/// thread-safe.
class WatchTree {
public:
    /// Receives what happened to a path, as bits of `FSEventFlag`.
    using Report = std::function<void(std::string path, std::uint32_t flags)>;
    /// Returns whether a folder below a root is watched.
    using Filter = std::function<bool(const std::string& folder)>;
    using Clock = std::chrono::steady_clock;

    /// Without a filter, all folders are watched.
    WatchTree(std::vector<std::string> roots, Report report, Filter filter = {});
    WatchTree(const WatchTree&) = delete;
    WatchTree& operator=(const WatchTree&) = delete;
    ~WatchTree();

    [[nodiscard]] bool works() const { return inotify_.descriptor() >= 0; }
    /// Becomes readable when something has happened.
    [[nodiscard]] int descriptor() const { return inotify_.descriptor(); }

    /// Watches the root with that index as it is now, instead of what was watched for it before.
    /// With `reports`, emits events for it and its contents.
    void settle(std::size_t root, bool reports);

    /// Reads once from the queue and handles the events. Returns the number of bytes read.
    std::size_t readQueue();

    /// Returns when `tidy` has to be called next, or std::nullopt if it has nothing to do.
    [[nodiscard]] std::optional<Clock::time_point> tidyDue() const;

    /// Stops watching folders that were moved away, and searches for what an overflow of the queue
    /// has hidden. With `everything`, does also what is not due yet.
    void tidy(bool everything);

private:
    struct Node {
        int watch = -1;
        Node* parent = nullptr;
        std::string name{}; ///< the path of a root
        std::unordered_map<std::string, Node*> children{};
        bool isRoot = false;
        std::uint32_t round = 0; ///< the last search that found it
    };

    /// A folder that was renamed, whose new name may follow.
    struct Departure {
        std::uint32_t cookie = 0;
        Node* node = nullptr;
        Clock::time_point time{};
        std::vector<InotifyEvent> held{};
    };

    /// Why a folder's contents are listed, which decides what is reported.
    enum class Arrival {
        atStart,  ///< existed before the start: nothing
        known,    ///< was watched before: only new folders in it
        created,  ///< everything
        renamed,  ///< everything
        searched, ///< what has changed according to its time stamps
    };

    struct Visit {
        Node* node = nullptr; ///< null if it could not be watched
        std::string path{};
        Arrival arrival = Arrival::atStart;
    };

    [[nodiscard]] bool passes(const std::string& folder) const;
    void handle(const InotifyEvent& event);
    void handleInside(Node& folder, const InotifyEvent& event, std::string path);
    void watchCreated(Node& folder, const std::string& name, std::string path);
    void depart(Node& folder, const InotifyEvent& event);
    void arrive(Node& folder, const InotifyEvent& event, const std::string& path);
    void reportContent(const std::string& path, std::uint32_t mask);

    [[nodiscard]] Node* watchFolder(Node* parent, const std::string& name, const std::string& path,
                                    bool& isNew);
    [[nodiscard]] int addWatch(const std::string& path, std::uint32_t extra);
    void visit(Visit first);
    void visitItem(const Visit& folder, const FolderItem& item, std::vector<Visit>& next);
    void visitFolder(const Visit& folder, const std::string& name, const std::string& path,
                     std::vector<Visit>& next);
    void reportItem(const std::string& path, bool isDir, Arrival arrival);
    void reportFound(const std::string& path);
    void search();
    void dropDepartures();
    void dropUnfound();
    void place(Node& node, Node* parent, const std::string& name);
    void unlink(Node& node);
    void drop(Node& node);
    void forget(int watch);

    /// Returns the topmost ancestor, or the node itself.
    [[nodiscard]] static Node& top(Node& node);
    [[nodiscard]] static std::string pathOf(const Node& node);
    [[nodiscard]] Departure* departureOf(const Node& top);

    std::vector<std::string> roots_;
    Report report_;
    Filter filter_;
    FileHandle inotify_;
    ChangeClock clock_;
    std::vector<int> rootWatches_;
    std::unordered_map<int, std::unique_ptr<Node>> nodes_{};
    std::list<Departure> departures_{};
    std::uint32_t round_ = 0;
    std::string lastModified_{};
    bool overflowed_ = false;
    bool limitReached_ = false;
};

} // namespace quorvel
