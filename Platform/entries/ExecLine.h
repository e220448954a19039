#pragma once

#include "Base/Error.h"
#include "Platform/processes/Environment.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Why a desktop entry's command can't be run or written. The text completes a sentence: "a quote
/// is never closed".
class ExecLineError : public Error {
public:
    using Error::Error;
};

/// The command line in a desktop entry's `Exec` key, taken apart by the rules of that format.
struct ExecLine {
    /// One word of the line, without its quotes. Field codes ("%U") are still in it.
    struct Word {
        std::string text{};
        bool quoted = false; ///< so that it counts even if it is empty

        bool operator==(const Word&) const = default;
    };

    /// What takes the place of field codes that are not files.
    struct Fields {
        std::string icon{}; ///< the entry's `Icon`, for %i
        std::string name{}; ///< the entry's name in the user's language, for %c
        std::string file{}; ///< the entry's path, for %k
    };

    std::vector<std::string> environment{}; ///< "NAME=value", from an "env" before the program
    std::vector<std::string> unset{};       ///< names of variables that an "env" removes
    std::string program{};                  ///< a name to look up in `PATH`, or a path
    std::vector<Word> words{};              ///< what follows the program

    /// Takes the line apart. Throws `ExecLineError` for a quote that is never closed, a line
    /// without a program, or an "env" whose options can't be followed.
    [[nodiscard]] static ExecLine parse(std::string_view exec);

    /// Returns the program's arguments for one start with these items: absolute paths or URLs.
    /// Files are passed as paths. URLs of other schemes reach only codes for URLs. A line that has
    /// no code for either gets the first item at its end, if it is a file. Codes that are
    /// deprecated or unknown disappear.
    [[nodiscard]] std::vector<std::string> toArguments(const std::vector<std::string>& items,
                                                       const Fields& fields) const;

    /// Returns whether the line has a code for items, so that a start takes at least one.
    [[nodiscard]] bool takesItems() const;

    /// Changes the variables that the "env" before the program changes.
    void applyTo(Environment& variables) const;

    /// Returns whether one start takes all items. Otherwise it takes only the first.
    [[nodiscard]] bool takesSeveral() const;

    /// Returns this line with codes that take all items where a word takes one.
    [[nodiscard]] ExecLine takingSeveral() const;

    /// Returns the index in `arguments` at which an engine's own belong: directly after the
    /// program, since what follows "--" is a file; for Flatpak's "run", after the application's id.
    [[nodiscard]] std::size_t engineArgumentsIndex(const std::vector<std::string>& arguments) const;

    /// Returns the text that `parse` takes apart into this command: a program, and arguments in
    /// which "%" has no meaning. `codes` follow as they are, such as "%U". Throws `ExecLineError`
    /// for what the format can't hold: a line break, a NUL byte, an equals sign in the program.
    [[nodiscard]] static std::string text(const std::vector<std::string>& command,
                                          std::string_view codes = {});
};

} // namespace quorvel
