#pragma once

#include "LaunchKit/WrapperFactory.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

/// What the factory leaves to its callers: it makes a clone of any name, and replaces whatever is
/// in its place. Any thread.
namespace quorvel {

/// A request that would lose something that is no clone; the text is for the user.
class RefusedRequest : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The name without the white space around it. Throws `RefusedRequest` for a name that would lead
/// out of the folder of clones, or that is no text.
[[nodiscard]] std::string checkedCloneName(const std::string& name);

/// Throws `RefusedRequest` for a name as above, when something else than a clone is in the new
/// one's place, or when the new one is to be made of parts of the clone that it replaces.
void checkRequest(const WrapperFactory::Request& request,
                  const std::optional<std::filesystem::path>& runner = std::nullopt);

} // namespace quorvel
