#pragma once

#include <cstddef>
#include <string>

namespace quorvel {

/// The downloads that were refused because too many run or wait for an answer.
class RefusedDownloads {
public:
    /// `name` is the file's safe name.
    void add(const std::string& name);
    /// Forgets them, once the user has had the chance to read about them.
    void reset() { *this = RefusedDownloads(); }

    /// Returns what to tell the user about the downloads, with what was refused at the end.
    [[nodiscard]] std::string appendedTo(const std::string& text) const;

private:
    std::size_t count_ = 0;
    std::string last_{};
};

} // namespace quorvel
