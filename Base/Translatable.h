#pragma once

namespace quorvel {

/// Returns `text`, and marks it for the tools that extract texts for translation. For texts of a
/// table, whose reader looks them up with the same `context`.
constexpr const char* translatable(const char* /*context*/, const char* text) {
    return text;
}

} // namespace quorvel
