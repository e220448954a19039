#pragma once

#include <cstddef>
#include <string>

namespace quorvel {

/// The downloads that failed, or were refused because too many run or wait for an answer. What is
/// said of them stays until the next ones begin: others that run would replace it at once.
class LostDownloads {
public:
    /// `name` is the file's safe name.
    void refuse(const std::string& name);
    /// `text` says which file failed and why.
    void fail(const std::string& text);
    /// The user has had the chance to read about them.
    void reset() { *this = LostDownloads(); }

    /// Returns what to tell the user about the downloads, with what was lost at the end.
    [[nodiscard]] std::string appendedTo(const std::string& text) const;

private:
    std::size_t failures_ = 0;
    std::string lastFailure_{};
    std::size_t refusals_ = 0;
    std::string lastRefused_{};
};

} // namespace quorvel
