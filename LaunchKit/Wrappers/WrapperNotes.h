#pragma once

#include "LaunchKit/Records/EnumNames.h"

#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Where a clone's arguments for its target come from.
enum class ArgumentSource { engine, typed };

template<>
inline constexpr auto enumNames<ArgumentSource> = namesOfAllCases<ArgumentSource>({
    {ArgumentSource::engine, "engine"},
    {ArgumentSource::typed, "typed"},
});

/// Where a clone's icon comes from.
enum class IconSource { target, chosen };

template<>
inline constexpr auto enumNames<IconSource> = namesOfAllCases<IconSource>({
    {IconSource::target, "target"},
    {IconSource::chosen, "chosen"},
});

/// What is known about a wrapper besides its configuration: the contents of its `wrapper.json`. Of
/// a wrapper without that file, nothing of this is known.
struct WrapperNotes {
    std::string version{}; ///< of the Quorvel that wrote the wrapper last
    ArgumentSource arguments = ArgumentSource::typed;
    bool hidesIcon = false;
    IconSource icon = IconSource::target; ///< `target` also if there is no icon
    std::string targetIcon{}; ///< the state of the target's icon file, as `fileState` returns it
    /// The hashes of the icon, the property list and the arguments as they were written; the user
    /// may have changed them since. Empty for no icon.
    std::string writtenIcon{};
    std::string writtenArguments{};
    std::string writtenList{};
    /// The folder of the runner's programs, if it is an unusual one.
    std::optional<std::string> helpers{};

    /// Returns the notes of a wrapper; std::nullopt if they are missing or unreadable.
    [[nodiscard]] static std::optional<WrapperNotes> read(const std::string& wrapper);

    /// Writes them into a wrapper that is flushed afterwards. Throws `PlatformError`.
    void write(const std::string& wrapper) const;
};

/// Returns a text that changes when the file does, without reading it; empty if there is no file.
[[nodiscard]] std::string fileState(const std::string& file);

/// Returns the hash of arguments, by which changed ones are recognized.
[[nodiscard]] std::string argumentsHash(const std::vector<std::string>& arguments);

/// Returns the hash of a file's bytes; empty if it can't be read.
[[nodiscard]] std::string fileHash(const std::string& file);

} // namespace quorvel
