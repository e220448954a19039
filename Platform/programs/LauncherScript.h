#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Returns whether a program of this name, without a folder, understands the shell's language.
[[nodiscard]] bool isPosixShell(std::string_view name);

/// What a script that starts a program reveals without being run.
struct LauncherScript {
    /// The name of the program that runs it, such as "sh" or "python3".
    std::string interpreter{};
    /// The words of a shell's script, quotes removed, variables replaced by what was assigned to
    /// them before. Words with any other expansion are left out.
    std::vector<std::string> words{};

    /// `text` is the script, or its beginning. The interpreter is empty if it is none.
    [[nodiscard]] static LauncherScript parse(std::string_view text);

    /// Whether a word is Java's launcher, or seems to hold its path.
    [[nodiscard]] bool mentionsJava() const;

    /// Whether a word is the path of a Java archive.
    [[nodiscard]] bool namesJar() const;

    /// Whether it starts an Electron that is installed apart, with an application's archive.
    [[nodiscard]] bool startsElectron() const;
};

} // namespace quorvel
