#pragma once

#include "Platform/watching/FSEventStream.h"
#include "ProbeKit/Models.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace quorvel {

/// Records what is created, modified or renamed below a set of folders. Never fails: without an
/// event stream it records nothing, and says that the record is not complete.
class FSEventProbe {
public:
    explicit FSEventProbe(std::vector<std::string> watching) : pathsToWatch_(std::move(watching)) {}
    FSEventProbe(const FSEventProbe&) = delete;
    FSEventProbe& operator=(const FSEventProbe&) = delete;
    ~FSEventProbe() { stopAndDrain(); }

    /// Records from now on. Starting a second time adds a second stream over the same list.
    void start();

    /// Ends the recording with every write that happened before this call in it. Gives all that was
    /// recorded so far; a second call gives the same again.
    std::vector<WriteEvent> stopAndDrain();

    /// Whether nothing was missed. Final after `stopAndDrain()`.
    [[nodiscard]] bool isComplete() const;

    /// What `start` asks a stream for.
    [[nodiscard]] FSEventStream::Options streamOptions() const;

    /// What the stream calls, on its own queue. A batch without as many flags as paths is dropped
    /// whole; events that neither create, modify nor rename are passed over.
    void receive(FSEventBatch batch);

private:
    std::vector<std::unique_ptr<FSEventStream>> streams_{};
    mutable std::mutex lock_{};
    std::vector<WriteEvent> events_{};
    bool complete_ = true;
    std::vector<std::string> pathsToWatch_;
};

} // namespace quorvel
