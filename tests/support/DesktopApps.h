#pragma once

#include "tests/support/TemporaryHome.h"

#include <filesystem>
#include <string>

namespace quorvel::testing {

/// A desktop with applications of its own: while the object lives, programs, desktop entries and
/// icons are looked for in its folder only.
class DesktopApps {
public:
    DesktopApps();

    [[nodiscard]] std::filesystem::path at(std::string_view name) const { return folder_ / name; }

    /// Copies a program into `PATH` and returns its path.
    std::filesystem::path addProgram(const std::string& name,
                                     const std::filesystem::path& program) const;
    /// The same for a shell script of this text (after "#!/bin/sh").
    std::filesystem::path addScript(const std::string& name, const std::string& text) const;

    /// Writes the desktop entry `id` (without ".desktop") named like it; `keys` are further lines.
    /// Returns its path.
    std::filesystem::path addEntry(const std::string& id, const std::string& exec,
                                   const std::string& keys = "") const;

    /// Writes an icon into the theme "hicolor", in a folder such as "48x48", and returns its path.
    std::filesystem::path addIcon(const std::string& size, const std::string& fileName,
                                  const std::string& bytes) const;

private:
    TemporaryFolder folder_{};
    ScopedEnvironment path_;
    ScopedEnvironment data_;
    ScopedEnvironment others_;
};

} // namespace quorvel::testing
