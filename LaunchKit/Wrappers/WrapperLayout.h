#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// What a wrapper consists of and where its parts are, and whether a bundle is a wrapper although
/// its configuration can't be read.
namespace quorvel {

/// The name of a wrapper's icon, without its extension.
inline constexpr std::string_view wrapperIconName = "AppIcon";

/// The file name of the module that shows web clones, installed or in a wrapper.
inline constexpr std::string_view webHostModule = "quorvel-web-host.so";

/// The file name of the program that shows clones in the tray or the menu bar, installed or in a
/// wrapper.
inline constexpr std::string_view statusItemProgram = "quorvel-status-item";

/// The option with which a wrapper's executable starts one of its target's actions; the action's id
/// follows.
inline constexpr std::string_view actionOption = "--action=";

/// Returns the path of a wrapper's configuration, "instance.json" in its resources.
[[nodiscard]] std::string configOf(const std::string& wrapper);

/// Returns the path of a wrapper's icon, which need not exist.
[[nodiscard]] std::string iconOf(const std::string& wrapper);

/// Returns the path of what Quorvel notes about a wrapper, "wrapper.json" in its resources, which
/// need not exist.
[[nodiscard]] std::string notesOf(const std::string& wrapper);

/// Returns the path of a chosen icon without the label that is drawn onto it, which need not exist.
[[nodiscard]] std::string chosenIconOf(const std::string& wrapper);

/// Returns the path of a wrapper's executable.
[[nodiscard]] std::string runnerOf(const std::string& wrapper);

/// Returns the path of the module in a wrapper that contains it.
[[nodiscard]] std::string webHostOf(const std::string& wrapper);

/// Returns the path of the program in a wrapper that contains the one for the menu bar.
[[nodiscard]] std::string statusItemOf(const std::string& wrapper);

/// Returns the path of the wrapper of a clone with that name: `directory`/`displayName`.app.
[[nodiscard]] std::filesystem::path wrapperPath(const std::filesystem::path& directory,
                                                std::string_view displayName);

/// Returns the folder in which clones are made and found, "~/Applications", expanded.
[[nodiscard]] std::filesystem::path userApplicationsFolder();

/// Returns whether the bundle is what a failed generation leaves, on a full disk for example: it
/// may be replaced like a whole clone.
[[nodiscard]] bool isUnfinishedWrapper(const std::filesystem::path& wrapper);

/// Returns whether the bundle is a whole wrapper, with nothing else in it, whose configuration
/// can't be read or is missing.
[[nodiscard]] bool isDamagedWrapper(const std::filesystem::path& wrapper);

} // namespace quorvel
