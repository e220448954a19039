#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Finds the files of icons by the icons' names, in folders laid out as icon themes. Keeps the
/// contents of the folders that it has listed, so an object is for one round of look-ups.
class IconTheme {
public:
    /// PNG images smaller than this come after a scalable icon.
    static constexpr int smallest = 64;

    /// Looks in the theme `name`, then in those that it inherits from, then in "hicolor", then
    /// beside the themes, then in the themes that desktops come with. On macOS there are none.
    explicit IconTheme(const std::string& name,
                       std::vector<std::filesystem::path> folders = iconFolders());
    IconTheme(IconTheme&&) noexcept;
    IconTheme& operator=(IconTheme&&) noexcept;
    ~IconTheme();

    /// Returns the icon's file: of the first theme that has the icon, the largest PNG, else the
    /// scalable SVG. An absolute path is returned as it is, if a PNG or SVG file is there and its
    /// folder answers within two seconds. Returns std::nullopt if there is none.
    [[nodiscard]] std::optional<std::filesystem::path> find(const std::string& icon);

    /// Returns the same for several icons, in their order. All absolute paths together are waited
    /// for two seconds at most.
    [[nodiscard]] std::vector<std::optional<std::filesystem::path>>
    findAll(const std::vector<std::string>& icons);

    /// Returns the theme that the user chose, if it is in a settings file of KDE or GTK; otherwise
    /// "hicolor".
    [[nodiscard]] static std::string chosenTheme();

    /// Returns the folders that may contain themes, the most important first.
    [[nodiscard]] static std::vector<std::filesystem::path> iconFolders();

private:
    class Lookup;
    std::unique_ptr<Lookup> lookup_;
};

} // namespace quorvel
