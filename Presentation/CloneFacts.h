#pragma once

#include "LaunchKit/Launching/WindowIdentity.h"
#include "Presentation/Translation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What the front ends say about a clone, in UTF-8 without markup. Texts from files are returned
/// unchanged.
namespace quorvel {

struct InstanceConfig;
struct InstanceRecord;

/// Returns what a clone runs, in one line: an app's name, an address, a path, or a command with its
/// arguments.
[[nodiscard]] std::string sourceSummary(const InstanceConfig& config);

/// Returns the same with an app's whole path instead of its name.
[[nodiscard]] std::string fullSource(const InstanceConfig& config);

/// One fact about a clone.
struct Fact {
    std::string label{};
    std::vector<std::string> lines{}; ///< the value; a line may itself contain line breaks
    bool monospaced = false;

    /// Returns the lines, separated by line breaks.
    [[nodiscard]] std::string value() const;

    bool operator==(const Fact&) const = default;
};

/// Returns the rows of a clone's details, top to bottom.
[[nodiscard]] std::vector<Fact> cloneDetails(const InstanceRecord& clone,
                                             const Translate& translate,
                                             WindowGrouping grouping = WindowGrouping::own);

/// What is known about a clone besides its configuration.
struct CloneState {
    bool running = false;
    std::optional<std::uintmax_t> logSize{}; ///< bytes; absent without a log
    WindowGrouping grouping = WindowGrouping::own;
};

/// Returns everything known about a clone: the rows of `cloneDetails`, with paths unabbreviated,
/// and others between them.
[[nodiscard]] std::vector<Fact> cloneReport(const InstanceRecord& clone, const CloneState& state,
                                            const Translate& translate);

} // namespace quorvel
