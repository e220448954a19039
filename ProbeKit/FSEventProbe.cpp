#include "ProbeKit/FSEventProbe.h"

#include <utility>

namespace quorvel {
namespace {

constexpr std::uint32_t writeMask =
    FSEventFlag::itemCreated | FSEventFlag::itemRenamed | FSEventFlag::itemModified;

WriteEvent writeEvent(std::string path, std::uint32_t flags) {
    const auto has = [flags](std::uint32_t flag) { return (flags & flag) != 0; };
    return {std::move(path), has(FSEventFlag::itemIsDir), has(FSEventFlag::itemCreated),
            has(FSEventFlag::itemModified), has(FSEventFlag::itemRenamed)};
}

} // namespace

FSEventStream::Options FSEventProbe::streamOptions() const {
    FSEventStream::Options options;
    options.paths = pathsToWatch_;
    options.isOfInterest = isOfInterest_;
    options.latency = std::chrono::milliseconds(100);
    options.queueLabel = "app.quorvel.fsprobe";
    return options;
}

void FSEventProbe::start() {
    auto stream = FSEventStream::start(streamOptions(),
                                       [this](FSEventBatch batch) { receive(std::move(batch)); });
    if (stream) {
        streams_.push_back(std::move(stream));
    } else {
        const std::lock_guard guard(lock_);
        complete_ = false;
    }
}

std::vector<WriteEvent> FSEventProbe::stopAndDrain() {
    for (const auto& stream : streams_) {
        stream->stop();
    }
    streams_.clear();
    const std::lock_guard guard(lock_);
    return events_;
}

bool FSEventProbe::isComplete() const {
    const std::lock_guard guard(lock_);
    return complete_;
}

void FSEventProbe::receive(FSEventBatch batch) {
    if (batch.paths.size() != batch.flags.size()) {
        return;
    }
    const std::lock_guard guard(lock_);
    for (std::size_t index = 0; index < batch.paths.size(); ++index) {
        const std::uint32_t flags = batch.flags[index];
        complete_ = complete_ && (flags & FSEventFlag::mustScanSubDirs) == 0;
        if ((flags & writeMask) != 0) {
            events_.push_back(writeEvent(std::move(batch.paths[index]), flags));
        }
    }
}

} // namespace quorvel
