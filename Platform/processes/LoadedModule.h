#pragma once

#include <filesystem>
#include <string>

namespace quorvel {

/// A function of a module that was loaded into this process, where it stays.
struct LoadedModule {
    void* function = nullptr; ///< null if it can't be loaded
    std::string problem{};    ///< then, why: for the log
};

/// Loads the module at that path, resolves all of its symbols at once and shows its own to no other
/// module, and returns its function of that name. A path that is not absolute is refused.
[[nodiscard]] LoadedModule loadModule(const std::filesystem::path& module, const char* function);

/// Returns whether a module has to be a part of the bundle of the program that loads it: on macOS
/// the installed one may be moved, and belongs to another application.
[[nodiscard]] bool modulesBelongToBundles() noexcept;

} // namespace quorvel
