#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Returns the program that runs a script, as the first line names it: a path, or what `env` is
/// told to look for, whose options and variables are skipped. Empty if the text is not a script.
[[nodiscard]] std::string interpreterOf(std::string_view text);

/// Returns whether a program of this name, without a folder, understands the shell's language.
[[nodiscard]] bool isPosixShell(std::string_view name);

/// What a script that starts a program reveals without being run.
struct LauncherScript {
    /// The name of the program that runs it, such as "sh" or "python3".
    std::string interpreter{};
    /// The words of a shell's script, quotes removed, variables replaced by what was assigned to
    /// them before. Words with any other expansion are left out.
    std::vector<std::string> words{};

    /// Reads a script, or its beginning. The interpreter is empty if the text is not a script.
    [[nodiscard]] static LauncherScript parse(std::string_view text);

    /// Returns whether a word is Java's launcher or a path that ends with it.
    [[nodiscard]] bool mentionsJava() const;

    /// Returns whether a word is the path of a Java archive.
    [[nodiscard]] bool namesJar() const;

    /// Returns whether it starts a separately installed Electron with an application's archive.
    [[nodiscard]] bool startsElectron() const;
};

} // namespace quorvel
