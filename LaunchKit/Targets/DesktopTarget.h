#pragma once

#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/ExecLine.h"
#include "Platform/programs/ProgramResolution.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Returns what an action passes to the program that `main` starts; `std::nullopt` if it starts
/// another program or can't be started.
[[nodiscard]] std::optional<std::vector<ExecLine::Word>> actionWords(const ExecLine& main,
                                                                     const DesktopAction& action);

/// What a desktop entry or an AppImage starts, as its files are now.
struct DesktopTarget {
    std::filesystem::path file{};
    DesktopEntry entry{}; ///< of an AppImage, only a name
    ExecLine line{};
    ResolvedProgram program{};

    /// Throws `PlatformError`, whose text says why the entry is not an application that can be
    /// started: it can't be read, its command is malformed, or its program is missing.
    [[nodiscard]] static DesktopTarget readEntry(const std::filesystem::path& file);

    /// Throws `PlatformError` if the file can't be executed.
    [[nodiscard]] static DesktopTarget readAppImage(const std::filesystem::path& file);

    /// Returns why a clone of it could not work, as the end of a sentence; `std::nullopt` if it
    /// can.
    [[nodiscard]] std::optional<std::string> obstacle() const;

    /// Returns the arguments of a start: `engineArguments` directly after the program, then the
    /// entry's own, with the documents in place of its field codes. An entry that takes one
    /// document gets the first, except of a browser, which can open several. An entry without a
    /// field code gets all of them at its end. A Flatpak is also told to end with the program that
    /// started it and, if `withoutBus`, to show the application no session bus.
    [[nodiscard]] std::vector<std::string>
    arguments(const std::vector<std::string>& engineArguments,
              const std::vector<std::string>& documents, bool withoutBus = false) const;

    /// Returns how many of that many documents `arguments` leaves out.
    [[nodiscard]] std::size_t documentsLeftOut(std::size_t count) const;

    /// Has `arguments` return those of one of the entry's actions instead of the entry's own.
    /// Changes nothing if there is no such action, or if it starts another program.
    void chooseAction(const std::string& id);

private:
    [[nodiscard]] ExecLine lineForDocuments() const;
};

} // namespace quorvel
