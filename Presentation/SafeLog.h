#pragma once

#include <string>

namespace quorvel {

/// Makes a log harmless to show, piece by piece, wherever the pieces begin: what `terminalText`
/// escapes is escaped. Line breaks and tabs stay.
class SafeLog {
public:
    /// Returns what can be shown once these bytes have followed the earlier ones, as UTF-8. The
    /// beginning of a character is kept for the next call.
    [[nodiscard]] std::string operator()(const std::string& bytes);

private:
    std::string broken_{};
};

} // namespace quorvel
