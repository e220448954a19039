#pragma once

#include <string>
#include <string_view>

/// Where the parts of an application bundle are, as text. Names are appended as they are; nothing
/// is read from the disk.
namespace quorvel {

/// Names of a bundle's folders and files.
namespace BundleItem {

inline constexpr std::string_view contents = "Contents";
inline constexpr std::string_view executables = "MacOS";
inline constexpr std::string_view resources = "Resources";
inline constexpr std::string_view frameworks = "Frameworks";
inline constexpr std::string_view helpers = "Helpers";
inline constexpr std::string_view infoPlist = "Info.plist";
inline constexpr std::string_view pkgInfo = "PkgInfo";

} // namespace BundleItem

/// Returns `bundle`/Contents.
[[nodiscard]] std::string contentsOf(const std::string& bundle);

/// Returns `bundle`/Contents/Info.plist.
[[nodiscard]] std::string infoPlistOf(const std::string& bundle);

/// Returns `bundle`/Contents/MacOS/`name`.
[[nodiscard]] std::string executableOf(const std::string& bundle, std::string_view name);

/// Returns `bundle`/Contents/MacOS.
[[nodiscard]] std::string executablesOf(const std::string& bundle);

/// Returns `bundle`/Contents/Resources/`name`.
[[nodiscard]] std::string resourceOf(const std::string& bundle, std::string_view name);

/// Returns `bundle`/Contents/Resources.
[[nodiscard]] std::string resourcesOf(const std::string& bundle);

/// Returns `bundle`/Contents/Frameworks.
[[nodiscard]] std::string frameworksOf(const std::string& bundle);

/// Returns `bundle`/Contents/Helpers. The system does not take a program there for the bundle's
/// own: it gets neither the bundle's name nor its identifier or icon.
[[nodiscard]] std::string helpersOf(const std::string& bundle);

/// Returns the application bundle in whose Contents/MacOS the executable is, "/A/B.app" for
/// "/A/B.app/Contents/MacOS/x"; empty for any other path. An executable that was replaced while it
/// ran is in a folder with `changeFolderPrefix`, and belongs to the bundle that took its place
/// beside that folder.
[[nodiscard]] std::string bundleOfExecutable(std::string_view executable);

} // namespace quorvel
