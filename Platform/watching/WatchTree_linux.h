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

/// Watches folders with everything below them, and turns the system's events into paths and flags.
/// The system watches single folders: this keeps one watch for each, knows where each lies through
/// renames, and lists what a new one holds, since files may be in it before its watch is.
/// Used by one thread at a time.
class WatchTree {
public:
    /// Takes what happened to a path, as bits of `FSEventFlag`.
    using Report = std::function<void(std::string path, std::uint32_t flags)>;
    using Clock = std::chrono::steady_clock;

    WatchTree(std::vector<std::string> roots, Report report);
    WatchTree(const WatchTree&) = delete;
    WatchTree& operator=(const WatchTree&) = delete;
    ~WatchTree();

    [[nodiscard]] bool works() const { return inotify_.descriptor() >= 0; }
    /// Readable when something happened.
    [[nodiscard]] int descriptor() const { return inotify_.descriptor(); }

    /// Watches the root folder of that number as it is now, in place of what was watched for it.
    /// `reports` its coming and what it holds.
    void settle(std::size_t root, bool reports);

    /// Handles one reading of the queue; gives its size in bytes.
    std::size_t readQueue();

    /// When `tidy` has something to do next; nothing when it has not.
    [[nodiscard]] std::optional<Clock::time_point> tidyDue() const;

    /// Lets go of folders that moved away, and looks for what an overflow of the queue has hidden.
    /// `everything`: also what would have time.
    void tidy(bool everything);

private:
    struct Node {
        int watch = -1;
        Node* parent = nullptr;
        std::string name{}; ///< a root's is its path
        std::unordered_map<std::string, Node*> children{};
        bool isRoot = false;
        std::uint32_t round = 0; ///< the last search through everything that found it
    };

    /// A folder that was renamed away, and may turn up under another name at once.
    struct Departure {
        std::uint32_t cookie = 0;
        Node* node = nullptr;
        Clock::time_point time{};
        std::vector<InotifyEvent> held{};
    };

    /// Why a folder's contents are looked at, which tells what to report of them.
    enum class Arrival {
        atStart,  ///< it was there before: nothing is reported
        known,    ///< it was watched before: only folders that are new in it
        created,  ///< all of it
        renamed,  ///< all of it
        searched, ///< what its time stamps tell
    };

    struct Visit {
        Node* node = nullptr; ///< null where no watch can be had
        std::string path{};
        Arrival arrival = Arrival::atStart;
    };

    void handle(const InotifyEvent& event);
    void handleInside(Node& folder, const InotifyEvent& event, std::string path);
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

    /// The topmost folder above, itself included.
    [[nodiscard]] static Node& top(Node& node);
    [[nodiscard]] static std::string pathOf(const Node& node);
    [[nodiscard]] Departure* departureOf(const Node& top);

    std::vector<std::string> roots_;
    Report report_;
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
