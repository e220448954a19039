#pragma once

#include <stdexcept>
#include <string>

namespace quorvel {

/// The base class of all our errors. Its text is a sentence for the user.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    /// Returns the same text as `what()`.
    [[nodiscard]] std::string description() const { return what(); }
};

} // namespace quorvel
