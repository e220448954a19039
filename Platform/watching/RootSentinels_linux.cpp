#include "Platform/watching/RootSentinels_linux.h"

#include "Platform/watching/InotifyQueue_linux.h"

#include <sys/inotify.h>

namespace quorvel {
namespace {

constexpr std::uint32_t nameChanges =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR;

// Returns the part of `path` before `slash`.
std::string folderAt(const std::string& path, std::size_t slash) {
    return slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace

RootSentinels::RootSentinels(std::vector<std::string> roots)
    : inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      roots_(std::move(roots)) {
    for (std::size_t root = 0; works() && root < roots_.size(); ++root) {
        arm(root);
    }
}

// Missing parents are armed when their own parent reports their creation.
void RootSentinels::arm(std::size_t root) {
    const std::string& path = roots_[root];
    for (std::size_t slash = path.find('/'); slash != std::string_view::npos;) {
        const std::size_t next = path.find('/', slash + 1);
        const std::string name =
            path.substr(slash + 1, next == std::string_view::npos ? next : next - slash - 1);
        if (!name.empty()) {
            const int watch = ::inotify_add_watch(inotify_.descriptor(),
                                                  folderAt(path, slash).c_str(), nameChanges);
            if (watch < 0) {
                return;
            }
            steps_[watch].emplace(root, name);
        }
        slash = next;
    }
}

std::set<std::size_t> RootSentinels::takeChanged() {
    std::set<std::size_t> changed;
    const auto take = [&](const InotifyEvent& event) {
        if ((event.mask & IN_Q_OVERFLOW) != 0) {
            for (std::size_t root = 0; root < roots_.size(); ++root) {
                changed.insert(root);
            }
        } else if ((event.mask & IN_IGNORED) != 0) {
            steps_.erase(event.watch);
        } else if (const auto steps = steps_.find(event.watch); steps != steps_.end()) {
            for (const Step& step : steps->second) {
                if (step.second == event.name) {
                    changed.insert(step.first);
                }
            }
        }
    };
    drainInotifyQueue(descriptor(), [&] { return readInotifyQueue(descriptor(), take); });
    for (const std::size_t root : changed) {
        arm(root);
    }
    return changed;
}

} // namespace quorvel
