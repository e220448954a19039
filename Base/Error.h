#pragma once

#include <stdexcept>
#include <string>

namespace quorvel {

/// The base of the errors that this system throws. The text is a sentence for the user.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    /// The same text as `what()`.
    [[nodiscard]] std::string description() const { return what(); }
};

} // namespace quorvel
