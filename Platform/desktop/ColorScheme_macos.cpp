#include "Platform/desktop/ColorScheme.h"

namespace quorvel {
namespace {

// Qt's native style follows the system by itself.
class ToolkitColorScheme final : public ColorSchemeSource {
public:
    [[nodiscard]] std::optional<ColorScheme> current() const override { return std::nullopt; }
};

} // namespace

std::unique_ptr<ColorSchemeSource> makeColorSchemeSource(std::function<void()> /*changed*/) {
    return std::make_unique<ToolkitColorScheme>();
}

} // namespace quorvel
