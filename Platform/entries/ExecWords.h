#pragma once

#include "Platform/entries/ExecLine.h"

namespace quorvel {

/// Returns the words of a command line, unquoted. Double quotes are what the format of desktop
/// entries knows; single quotes, backslashes and comments as in a shell are understood too, since
/// every desktop does. Throws `ExecLineError` for a quote that is never closed and for a backslash
/// at the end.
[[nodiscard]] std::vector<ExecLine::Word> execWords(std::string_view exec);

/// Returns the text that is read as this one word, in which "%" has no meaning. Throws
/// `ExecLineError` for a line break or a NUL byte.
[[nodiscard]] std::string quotedExecWord(std::string_view word);

} // namespace quorvel
