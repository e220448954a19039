#pragma once

#include <filesystem>
#include <functional>
#include <optional>

class QObject;

namespace quorvel {

/// The panels in which the user chooses files, passed in so that tests can answer instead.
struct FilePanels {
    /// Shows the panel over `window`, which is a widget, until it is closed. Returns `std::nullopt`
    /// if it was cancelled.
    using Panel = std::function<std::optional<std::filesystem::path>(QObject* window)>;

    Panel fileOrFolder{};
    Panel file{};
    Panel folder{};
    Panel dataFolder{}; ///< a folder, which may be created in the panel
    Panel icon{};       ///< an `.icns` file
};

} // namespace quorvel
