#pragma once

#include <QWidget>

#include <filesystem>
#include <functional>
#include <optional>

namespace quorvel {

/// The panels in which a person chooses files, handed in so that tests can answer for the person.
/// Each gives nothing when it was cancelled.
struct FilePanels {
    using Panel = std::function<std::optional<std::filesystem::path>(QWidget* over)>;

    Panel fileOrFolder{};
    Panel file{};
    Panel folder{};
    Panel dataFolder{}; ///< a folder, which may be made there
    Panel icon{};       ///< an `.icns` file

    [[nodiscard]] static FilePanels ofTheSystem();
};

/// Keeps the toolkit's own dialogs from writing down, in the user's home, where they have been. To
/// be called before any of them is made.
void keepNoDialogState();

} // namespace quorvel
