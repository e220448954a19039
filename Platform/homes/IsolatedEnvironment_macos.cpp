#include "Platform/homes/IsolatedEnvironment.h"

namespace quorvel {

Environment isolatedEnvironment(const std::string& /*home*/, const Environment& /*session*/,
                                const IsolationOptions& /*options*/) {
    return {};
}

void removeTemporaryFolder(const std::string& /*home*/, const Environment& /*session*/) noexcept {}

} // namespace quorvel
