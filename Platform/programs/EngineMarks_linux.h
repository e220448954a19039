#pragma once

#include "Platform/programs/ProgramResolution.h"

namespace quorvel {

/// Returns the engine of the program `name` as the files beside it indicate. Never Java, which
/// files alone don't indicate.
[[nodiscard]] ResolvedProgram::Engine engineIn(const std::filesystem::path& folder,
                                               const std::string& name);

/// Returns whether the folder contains a Java archive.
[[nodiscard]] bool hasJar(const std::filesystem::path& folder);

/// The name of the Firefox family's program in a folder, by which its windows are known.
[[nodiscard]] std::string remotingNameIn(const std::filesystem::path& folder);

/// By the libraries that a program asks for.
[[nodiscard]] ResolvedProgram::Toolkit toolkitOf(const std::vector<std::string>& libraries);

} // namespace quorvel
