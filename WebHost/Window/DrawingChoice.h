#pragma once

#include "Platform/processes/Environment.h"

#include <filesystem>
#include <string>
#include <string_view>

/// Whether OpenGL draws windows and pages. Computed by the processor, it costs more memory than
/// drawing without it, and is not faster.
namespace quorvel {

/// The variable that names GTK's renderer. If it is set, nothing else decides.
inline constexpr const char* rendererVariable = "GSK_RENDERER";
inline constexpr const char* softwareRenderer = "cairo";

/// Returns why OpenGL is not worth a try, or an empty text. `devices` is the folder of device
/// files.
[[nodiscard]] std::string reasonAgainstOpenGL(const Environment& environment,
                                              const std::filesystem::path& devices = "/dev");

/// Returns why an OpenGL of that name should not draw, or an empty text. The name is empty if
/// there is no OpenGL.
[[nodiscard]] std::string reasonAgainst(std::string_view openGLName);

} // namespace quorvel
