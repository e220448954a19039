#include "Platform/processes/StandardStreams.h"

#include <unistd.h>

namespace quorvel {

bool inputIsTerminal() {
    return ::isatty(STDIN_FILENO) != 0;
}

bool outputIsTerminal() {
    return ::isatty(STDOUT_FILENO) != 0;
}

} // namespace quorvel
