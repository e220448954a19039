#include "Platform/watching/WatchTree_linux.h"

#include "Base/PathText.h"
#include "Platform/watching/FSEventStream.h"

#include <algorithm>
#include <cerrno>
#include <sys/inotify.h>

namespace quorvel {
namespace {

constexpr std::uint32_t contentChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                         IN_MODIFY | IN_CLOSE_WRITE | IN_EXCL_UNLINK | IN_ONLYDIR;

// Both sides of a rename are queued within microseconds of each other.
constexpr std::chrono::milliseconds renameGap{10};

std::uint32_t dirFlag(bool isDir) {
    return isDir ? FSEventFlag::itemIsDir : 0;
}

bool hasVanished(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP;
}

} // namespace

WatchTree::WatchTree(std::vector<std::string> roots, Report report, Filter filter)
    : roots_(std::move(roots)),
      report_(std::move(report)),
      filter_(std::move(filter)),
      inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      clock_(ChangeClock::start()),
      rootWatches_(roots_.size(), -1) {
    for (std::size_t root = 0; works() && root < roots_.size(); ++root) {
        settle(root, false);
    }
}

WatchTree::~WatchTree() = default;

void WatchTree::settle(std::size_t root, bool reports) {
    const std::string& path = roots_[root];
    const int watch = addWatch(path, IN_MOVE_SELF);
    if (watch >= 0 && watch == rootWatches_[root]) {
        return;
    }
    if (const auto old = nodes_.find(rootWatches_[root]); old != nodes_.end()) {
        if (old->second->isRoot) {
            drop(*old->second);
        }
    }
    rootWatches_[root] = watch;
    // A folder that is also in another root is watched there already.
    if (watch < 0 || nodes_.contains(watch)) {
        return;
    }
    auto node = std::make_unique<Node>();
    node->watch = watch;
    node->name = path;
    node->isRoot = true;
    Node* added = node.get();
    nodes_.emplace(watch, std::move(node));
    const Arrival arrival = reports ? Arrival::created : Arrival::atStart;
    reportItem(path, true, arrival);
    visit({added, path, arrival});
}

std::size_t WatchTree::readQueue() {
    return readInotifyQueue(descriptor(), [this](const InotifyEvent& event) { handle(event); });
}

std::optional<WatchTree::Clock::time_point> WatchTree::tidyDue() const {
    if (overflowed_) {
        return Clock::time_point{};
    }
    return departures_.empty() ? std::nullopt : std::optional(departures_.front().time + renameGap);
}

void WatchTree::tidy(bool everything) {
    while (!departures_.empty() &&
           (everything || departures_.front().time + renameGap <= Clock::now())) {
        Node* gone = departures_.front().node;
        departures_.pop_front();
        drop(*gone);
    }
    // While events are queued, a search would have to be repeated.
    if ((overflowed_ && (everything || inotifyQueueSize(descriptor()) == 0)) ||
        (limitReached_ && everything)) {
        overflowed_ = false;
        search();
    }
}

bool WatchTree::passes(const std::string& folder) const {
    return !filter_ || filter_(folder);
}

void WatchTree::handle(const InotifyEvent& event) {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
        overflowed_ = true;
        for (const std::string& root : roots_) {
            report_(root, FSEventFlag::mustScanSubDirs | FSEventFlag::itemIsDir);
        }
        return;
    }
    const auto found = nodes_.find(event.watch);
    if (found == nodes_.end()) {
        return;
    }
    if ((event.mask & IN_IGNORED) != 0) {
        forget(event.watch);
        return;
    }
    Node& folder = *found->second;
    Node& highest = top(folder);
    if (Departure* departure = departureOf(highest)) {
        departure->held.push_back(event);
    } else if (!highest.isRoot) {
        return;
    } else if (!event.name.empty()) {
        handleInside(folder, event, joinAsText(pathOf(folder), event.name));
    } else if ((event.mask & IN_MOVE_SELF) != 0 && folder.isRoot) {
        const auto root = std::find(rootWatches_.begin(), rootWatches_.end(), folder.watch);
        drop(folder);
        settle(static_cast<std::size_t>(root - rootWatches_.begin()), true);
    }
}

void WatchTree::handleInside(Node& folder, const InotifyEvent& event, std::string path) {
    const bool isDir = (event.mask & IN_ISDIR) != 0;
    if ((event.mask & (IN_MODIFY | IN_CLOSE_WRITE)) != 0) {
        reportContent(path, event.mask);
    } else if ((event.mask & IN_DELETE) != 0) {
        report_(std::move(path), FSEventFlag::itemRemoved | dirFlag(isDir));
    } else if ((event.mask & IN_CREATE) != 0) {
        report_(path, FSEventFlag::itemCreated | dirFlag(isDir));
        if (isDir && passes(path)) {
            watchCreated(folder, event.name, std::move(path));
        }
    } else if ((event.mask & (IN_MOVED_FROM | IN_MOVED_TO)) != 0) {
        report_(path, FSEventFlag::itemRenamed | dirFlag(isDir));
        if (isDir && (event.mask & IN_MOVED_FROM) != 0) {
            depart(folder, event);
        } else if (isDir && passes(path)) {
            arrive(folder, event, path);
        }
    }
}

void WatchTree::watchCreated(Node& folder, const std::string& name, std::string path) {
    bool isNew = false;
    Node* child = watchFolder(&folder, name, path, isNew);
    if (isNew || (child == nullptr && limitReached_)) {
        visit({child, std::move(path), Arrival::created});
    }
}

void WatchTree::depart(Node& folder, const InotifyEvent& event) {
    const auto child = folder.children.find(event.name);
    if (child != folder.children.end()) {
        Node& node = *child->second;
        unlink(node);
        departures_.push_back({event.cookie, &node, Clock::now(), {}});
    }
}

void WatchTree::arrive(Node& folder, const InotifyEvent& event, const std::string& path) {
    std::vector<InotifyEvent> held;
    const auto departure =
        std::find_if(departures_.begin(), departures_.end(),
                     [&](const Departure& one) { return one.cookie == event.cookie; });
    if (departure != departures_.end()) {
        place(*departure->node, &folder, event.name);
        held = std::move(departure->held);
        departures_.erase(departure);
    }
    bool isNew = false;
    Node* node = watchFolder(&folder, event.name, path, isNew);
    // A known folder may contain folders that were created just before it was renamed.
    if (node != nullptr || limitReached_) {
        visit({node, path, isNew || node == nullptr ? Arrival::renamed : Arrival::known});
    }
    for (const InotifyEvent& one : held) {
        handle(one);
    }
}

// A file that was opened for writing may not have been written to, and a write through a memory
// mapping is visible only in its time stamp.
void WatchTree::reportContent(const std::string& path, std::uint32_t mask) {
    if ((mask & IN_MODIFY) == 0) {
        const auto history = path == lastModified_ ? std::nullopt : clock_.historyOf(path);
        if (!history || !history->modified) {
            return;
        }
    }
    lastModified_ = path;
    report_(path, FSEventFlag::itemModified);
}

int WatchTree::addWatch(const std::string& path, std::uint32_t extra) {
    const int watch =
        ::inotify_add_watch(descriptor(), path.c_str(), contentChanges | IN_MASK_ADD | extra);
    if (watch < 0 && !hasVanished(errno)) {
        limitReached_ = limitReached_ || errno == ENOSPC || errno == ENOMEM;
        report_(path, FSEventFlag::mustScanSubDirs | FSEventFlag::itemIsDir);
    }
    return watch;
}

WatchTree::Node* WatchTree::watchFolder(Node* parent, const std::string& name,
                                        const std::string& path, bool& isNew) {
    const int watch = addWatch(path, IN_DONT_FOLLOW);
    if (watch < 0) {
        return nullptr;
    }
    std::unique_ptr<Node>& node = nodes_[watch];
    isNew = node == nullptr;
    if (isNew) {
        node = std::make_unique<Node>();
        node->watch = watch;
    }
    node->round = round_;
    if (!node->isRoot && parent != nullptr) {
        place(*node, parent, name);
    }
    return node.get();
}

void WatchTree::visit(Visit first) {
    std::vector<Visit> waiting;
    waiting.push_back(std::move(first));
    while (!waiting.empty()) {
        const Visit folder = std::move(waiting.back());
        waiting.pop_back();
        // Roots that are links are followed, as they are when they are watched.
        const bool isRoot = folder.node != nullptr && folder.node->isRoot;
        const auto items = listFolder(folder.path, isRoot);
        if (!items) {
            if (!hasVanished(errno)) {
                report_(folder.path, FSEventFlag::mustScanSubDirs | FSEventFlag::itemIsDir);
            }
            continue;
        }
        for (const FolderItem& item : *items) {
            visitItem(folder, item, waiting);
        }
    }
}

void WatchTree::visitItem(const Visit& folder, const FolderItem& item, std::vector<Visit>& next) {
    const std::string path = joinAsText(folder.path, item.name);
    if (item.isDir) {
        visitFolder(folder, item.name, path, next);
    } else {
        reportItem(path, false, folder.arrival);
    }
}

void WatchTree::visitFolder(const Visit& folder, const std::string& name, const std::string& path,
                            std::vector<Visit>& next) {
    Arrival arrival = folder.arrival;
    if (!passes(path)) {
        reportItem(path, true, arrival);
        return;
    }
    bool isNew = false;
    Node* node = watchFolder(folder.node, name, path, isNew);
    if (node != nullptr && (node->isRoot || node->parent != folder.node)) {
        return;
    }
    if (arrival == Arrival::known && isNew) {
        arrival = Arrival::created;
    }
    reportItem(path, true, arrival);
    // A search finds an unwatched folder if its creation was missed or watches had run out.
    if (arrival == Arrival::searched && isNew && !limitReached_) {
        arrival = Arrival::renamed;
    }
    if (node != nullptr || limitReached_) {
        next.push_back({node, path, arrival});
    }
}

void WatchTree::reportItem(const std::string& path, bool isDir, Arrival arrival) {
    switch (arrival) {
    case Arrival::created: {
        const auto history = isDir ? std::nullopt : clock_.historyOf(path);
        const bool modified = history && history->modified;
        report_(path, FSEventFlag::itemCreated | dirFlag(isDir) |
                          (modified ? FSEventFlag::itemModified : 0));
        break;
    }
    case Arrival::renamed:
        report_(path, FSEventFlag::itemRenamed | dirFlag(isDir));
        break;
    case Arrival::searched:
        reportFound(path);
        break;
    case Arrival::atStart:
    case Arrival::known:
        break;
    }
}

void WatchTree::reportFound(const std::string& path) {
    const auto history = clock_.historyOf(path);
    if (!history) {
        return;
    }
    // A missed rename is visible only as some change of the status.
    const bool hasNewContent =
        !history->isDir && (history->modified || (history->changed && !history->created));
    const std::uint32_t flags = (history->created ? FSEventFlag::itemCreated : 0) |
                                (hasNewContent ? FSEventFlag::itemModified : 0);
    if (flags != 0) {
        report_(path, flags | dirFlag(history->isDir));
    }
}

// Searches all roots for items that were created or modified since the start, and for folders whose
// creation or removal was missed.
void WatchTree::search() {
    dropDepartures();
    ++round_;
    for (std::size_t root = 0; root < roots_.size(); ++root) {
        settle(root, true);
        const auto node = nodes_.find(rootWatches_[root]);
        if (node != nodes_.end() && node->second->isRoot) {
            visit({node->second.get(), roots_[root], Arrival::searched});
        }
    }
    dropUnfound();
}

void WatchTree::dropDepartures() {
    while (!departures_.empty()) {
        Node* gone = departures_.front().node;
        departures_.pop_front();
        drop(*gone);
    }
}

void WatchTree::dropUnfound() {
    std::vector<int> unfound;
    for (const auto& [watch, node] : nodes_) {
        if (!node->isRoot && node->round != round_) {
            unfound.push_back(watch);
        }
    }
    for (const int watch : unfound) {
        if (const auto node = nodes_.find(watch); node != nodes_.end()) {
            drop(*node->second);
        }
    }
}

void WatchTree::place(Node& node, Node* parent, const std::string& name) {
    if (node.parent == parent && node.name == name) {
        return;
    }
    unlink(node);
    if (const auto other = parent->children.find(name); other != parent->children.end()) {
        other->second->parent = nullptr;
        other->second = &node;
    } else {
        parent->children.emplace(name, &node);
    }
    node.parent = parent;
    node.name = name;
}

void WatchTree::unlink(Node& node) {
    if (node.parent == nullptr) {
        return;
    }
    const auto place = node.parent->children.find(node.name);
    if (place != node.parent->children.end() && place->second == &node) {
        node.parent->children.erase(place);
    }
    node.parent = nullptr;
}

// Stops watching the folder and all below it.
void WatchTree::drop(Node& node) {
    unlink(node);
    std::vector<Node*> waiting{&node};
    while (!waiting.empty()) {
        Node* next = waiting.back();
        waiting.pop_back();
        for (const auto& [name, child] : next->children) {
            child->parent = nullptr;
            waiting.push_back(child);
        }
        const int watch = next->watch;
        ::inotify_rm_watch(descriptor(), watch);
        std::replace(rootWatches_.begin(), rootWatches_.end(), watch, -1);
        nodes_.erase(watch);
    }
}

// Handles that the system no longer watches this folder, because it is gone.
void WatchTree::forget(int watch) {
    Node& node = *nodes_.at(watch);
    departures_.remove_if([&](const Departure& one) { return one.node == &node; });
    drop(node);
}

WatchTree::Node& WatchTree::top(Node& node) {
    Node* highest = &node;
    while (highest->parent != nullptr) {
        highest = highest->parent;
    }
    return *highest;
}

std::string WatchTree::pathOf(const Node& node) {
    std::vector<const Node*> way;
    std::size_t length = 0;
    for (const Node* step = &node; step != nullptr; step = step->parent) {
        way.push_back(step);
        length += step->name.size() + 1;
    }
    std::string path;
    path.reserve(length + 64);
    for (auto step = way.rbegin(); step != way.rend(); ++step) {
        if (step != way.rbegin()) {
            path += '/';
        }
        path += (*step)->name;
    }
    return path;
}

WatchTree::Departure* WatchTree::departureOf(const Node& top) {
    const auto departure = std::find_if(departures_.begin(), departures_.end(),
                                        [&](const Departure& one) { return one.node == &top; });
    return departure == departures_.end() ? nullptr : &*departure;
}

} // namespace quorvel
