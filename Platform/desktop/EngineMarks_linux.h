#pragma once

#include "Platform/desktop/ProgramResolution.h"

namespace quorvel {

/// What the files of a folder say about the engine of the program `name` in it. Java is not told
/// by files alone, so it is never the answer.
[[nodiscard]] ResolvedProgram::Engine engineIn(const std::filesystem::path& folder,
                                               const std::string& name);

/// Whether a Java archive lies in the folder.
[[nodiscard]] bool hasJar(const std::filesystem::path& folder);

/// The name of the Firefox family's program in a folder, by which its windows are known.
[[nodiscard]] std::string remotingNameIn(const std::filesystem::path& folder);

/// By the libraries that a program asks for.
[[nodiscard]] ResolvedProgram::Toolkit toolkitOf(const std::vector<std::string>& libraries);

} // namespace quorvel
