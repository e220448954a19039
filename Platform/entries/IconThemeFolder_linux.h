#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace quorvel {

/// One icon theme, in all the folders that hold a part of it. A part whose folders don't answer,
/// such as those of a server that is gone, is left out.
class IconThemeFolder {
public:
    /// `folders` are those that may hold the theme `name`. The first that has an index describes
    /// it; without an index it has no icons.
    IconThemeFolder(const std::string& name, const std::vector<std::filesystem::path>& folders);

    /// Returns the names of the themes to look in next.
    [[nodiscard]] const std::vector<std::string>& parents() const { return parents_; }

    /// Returns the best of the theme's files for an icon; std::nullopt if it has none.
    [[nodiscard]] std::optional<std::filesystem::path> find(const std::string& icon);

    static constexpr std::size_t maxFolders = 2000;
    static constexpr std::size_t maxIcons = 500000;
    static constexpr std::size_t maxIndexSize = std::size_t{1} << 20U;

private:
    /// A folder of icons in the theme, as the index describes it.
    struct SizeFolder {
        std::string path{};
        int pixels = 0;
    };
    struct Found {
        std::size_t part = 0;   ///< in `parts_`
        std::size_t folder = 0; ///< in `folders_`
        bool isSvg = false;
    };

    void readIndex(const std::string& index);
    void listFolders();
    void add(const std::vector<std::string>& names, std::size_t part, std::size_t folder);
    [[nodiscard]] int rank(const Found& found) const;

    std::vector<std::filesystem::path> parts_{}; ///< those that are there
    std::vector<SizeFolder> folders_{};
    std::vector<std::string> parents_{};
    std::unordered_map<std::string, Found> icons_{};
    bool isListed_ = false;
};

} // namespace quorvel
