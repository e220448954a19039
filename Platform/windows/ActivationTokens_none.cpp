#include "Platform/windows/ActivationTokens.h"

namespace quorvel {

class ActivationTokens::Clicks {};

ActivationTokens::ActivationTokens() = default;

ActivationTokens::~ActivationTokens() = default;

std::string ActivationTokens::take() const {
    return {};
}

} // namespace quorvel
