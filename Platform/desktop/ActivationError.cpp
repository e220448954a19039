#include "Platform/desktop/ActivationError.h"

namespace quorvel {
namespace {

class ActivationCategory final : public std::error_category {
public:
    [[nodiscard]] const char* name() const noexcept override { return "activation"; }
    [[nodiscard]] std::string message(int failure) const override {
        return static_cast<ActivationFailure>(failure) == ActivationFailure::noWindow
                   ? "it is running, but has no window"
                   : "it is running, but this desktop lets only you do that. Click its icon in "
                     "the dock or taskbar";
    }
};

const std::error_category& activationCategory() {
    static const ActivationCategory category;
    return category;
}

} // namespace

PlatformError activationError(ActivationFailure failure, const std::filesystem::path& bundle) {
    return {{static_cast<int>(failure), activationCategory()}, bundle, "brought to the front"};
}

bool isActivationError(const PlatformError& error) {
    return error.code().category() == activationCategory();
}

} // namespace quorvel
