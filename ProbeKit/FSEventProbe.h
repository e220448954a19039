#pragma once

#include "Platform/watching/FSEventStream.h"
#include "ProbeKit/Models.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace quorvel {

/// Records what is created, modified or renamed below a set of folders. Never fails: without an
/// event stream it records nothing and is not complete.
class FSEventProbe {
public:
    using FolderFilter = decltype(FSEventStream::Options::isOfInterest);

    /// With a filter, writes in folders that it doesn't want may not be recorded.
    explicit FSEventProbe(std::vector<std::string> watching, FolderFilter isOfInterest = {})
        : pathsToWatch_(std::move(watching)),
          isOfInterest_(std::move(isOfInterest)) {}
    FSEventProbe(const FSEventProbe&) = delete;
    FSEventProbe& operator=(const FSEventProbe&) = delete;
    ~FSEventProbe() { stopAndDrain(); }

    /// Starts recording. A second call adds a second stream over the same folders.
    void start();

    /// Ends the recording, which includes every write made before this call, and returns all
    /// recorded events. A second call returns the same events.
    std::vector<WriteEvent> stopAndDrain();

    /// Returns whether nothing was missed. Final after `stopAndDrain()`.
    [[nodiscard]] bool isComplete() const;

    /// Returns the options with which `start` creates a stream.
    [[nodiscard]] FSEventStream::Options streamOptions() const;

    /// Called by the stream, on its own queue. A batch whose numbers of flags and paths differ is
    /// dropped; events that neither create, modify nor rename are ignored.
    void receive(FSEventBatch batch);

private:
    std::vector<std::unique_ptr<FSEventStream>> streams_{};
    mutable std::mutex lock_{};
    std::vector<WriteEvent> events_{};
    bool complete_ = true;
    std::vector<std::string> pathsToWatch_;
    FolderFilter isOfInterest_;
};

} // namespace quorvel
