#include "Platform/windows/ActivationError.h"

namespace quorvel {
namespace {

class ActivationCategory final : public std::error_category {
public:
    [[nodiscard]] const char* name() const noexcept override { return "activation"; }
    [[nodiscard]] std::string message(int failure) const override {
        switch (static_cast<ActivationFailure>(failure)) {
        case ActivationFailure::noWindow:
            return "it is running, but has no window";
        case ActivationFailure::noDisplay:
            return "it is running, but there is no display here to show it on";
        case ActivationFailure::notAllowed:
            break;
        }
        return "it is running, but this desktop lets only you do that. Click its icon in the dock "
               "or taskbar";
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
