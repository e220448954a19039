#include "Platform/entries/IconTheme.h"

namespace quorvel {
namespace fs = std::filesystem;

class IconTheme::Lookup {};

IconTheme::IconTheme(const std::string&, std::vector<fs::path>) {}
IconTheme::IconTheme(IconTheme&&) noexcept = default;
IconTheme& IconTheme::operator=(IconTheme&&) noexcept = default;
IconTheme::~IconTheme() = default;

std::optional<fs::path> IconTheme::find(const std::string&) {
    return std::nullopt;
}

std::vector<std::optional<fs::path>> IconTheme::findAll(const std::vector<std::string>& icons) {
    return std::vector<std::optional<fs::path>>(icons.size());
}

std::string IconTheme::chosenTheme() {
    return {};
}

std::vector<fs::path> IconTheme::iconFolders() {
    return {};
}

} // namespace quorvel
