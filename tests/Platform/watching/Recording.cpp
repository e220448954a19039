#include "tests/Platform/watching/Recording.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace quorvel::testing {

void ChangeList::add(const FSEventBatch& batch) {
    ASSERT_EQ(batch.paths.size(), batch.flags.size());
    const std::lock_guard guard(lock_);
    for (std::size_t index = 0; index < batch.paths.size(); ++index) {
        const auto has = [flags = batch.flags[index]](std::uint32_t flag) {
            return (flags & flag) != 0;
        };
        complete_ = complete_ && !has(FSEventFlag::mustScanSubDirs);
        const Change change{batch.paths[index], has(FSEventFlag::itemIsDir),
                            has(FSEventFlag::itemCreated), has(FSEventFlag::itemModified),
                            has(FSEventFlag::itemRenamed)};
        if (change.created || change.modified || change.renamed) {
            changes_.push_back(change);
        }
    }
}

std::set<std::string> ChangeList::paths() const {
    std::set<std::string> paths;
    for (const Change& change : changes_) {
        paths.insert(change.path);
    }
    return paths;
}

Recording::Recording(const std::vector<std::filesystem::path>& folders) {
    FSEventStream::Options options;
    options.paths = {folders.begin(), folders.end()};
    stream_ =
        FSEventStream::start(options, [this](const FSEventBatch& batch) { list_.add(batch); });
    if (!stream_) {
        throw std::runtime_error("the system gives no stream");
    }
}

const std::vector<Change>& Recording::stop() {
    stream_->stop();
    return list_.changes();
}

std::optional<Change> Recording::at(const std::filesystem::path& path) const {
    std::optional<Change> sum;
    for (const Change& change : list_.changes()) {
        if (change.path == path.native()) {
            sum = sum.value_or(Change{change.path});
            sum->isDir = sum->isDir || change.isDir;
            sum->created = sum->created || change.created;
            sum->modified = sum->modified || change.modified;
            sum->renamed = sum->renamed || change.renamed;
        }
    }
    return sum;
}

} // namespace quorvel::testing
