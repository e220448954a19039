#pragma once

#include "LaunchKit/InstanceRegistry.h"
#include "Platform/desktop/Workspace.h"

#include <iosfwd>
#include <stdexcept>

namespace quorvel {

/// What a command works with: its streams, the desktop and the clones.
struct Surroundings {
    std::istream& input;
    std::ostream& output;
    std::ostream& errors;
    bool inputIsTerminal = false;
    bool outputIsTerminal = false;
    Workspace& workspace;
    InstanceRegistry registry{};
};

/// A command that can't do what it was asked for; the text is for the user.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A command line that makes no sense; shown with the usage.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace quorvel
