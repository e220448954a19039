#pragma once

#include <string>

namespace quorvel {

/// Makes a log safe to display, piece by piece; a piece may begin anywhere. Escapes what
/// `terminalText` escapes, but keeps line breaks and tabs.
class SafeLog {
public:
    /// Returns the safe text of the next bytes of the log, as UTF-8. An incomplete character at
    /// their end is kept for the next call.
    [[nodiscard]] std::string operator()(const std::string& bytes);

private:
    std::string broken_{};
};

} // namespace quorvel
