#pragma once

#include "Base/Error.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/desktop/Workspace.h"

#include <iosfwd>

namespace quorvel {

/// What a command works with: its streams, the desktop and the clones.
struct CommandContext {
    std::istream& input;
    std::ostream& output;
    std::ostream& errors;
    bool inputIsTerminal = false;
    bool outputIsTerminal = false;
    Workspace& workspace;
    InstanceRegistry registry{};
};

/// Thrown by a command that can't do what it was asked to; the text is for the user.
class CommandError : public Error {
public:
    using Error::Error;
};

/// Thrown for an invalid command line; shown with the usage.
class UsageError : public Error {
public:
    using Error::Error;
};

} // namespace quorvel
