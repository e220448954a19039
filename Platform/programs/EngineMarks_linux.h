#pragma once

#include "Platform/programs/ProgramResolution.h"

namespace quorvel {

/// Returns the engine of the program `name` as the files beside it indicate. Never Java, which
/// files alone don't indicate.
[[nodiscard]] ResolvedProgram::Engine engineIn(const std::filesystem::path& folder,
                                               const std::string& name);

/// Returns whether the folder contains a Java archive.
[[nodiscard]] bool hasJar(const std::filesystem::path& folder);

/// Returns the name by which the windows of the Firefox family's program in a folder are known;
/// empty if there is none.
[[nodiscard]] std::string remotingNameIn(const std::filesystem::path& folder);

/// Returns the toolkit that is indicated by the libraries that a program asks for.
[[nodiscard]] ResolvedProgram::Toolkit toolkitOf(const std::vector<std::string>& libraries);

} // namespace quorvel
