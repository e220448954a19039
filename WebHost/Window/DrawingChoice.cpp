#include "WebHost/Window/DrawingChoice.h"

#include "Platform/files/FileSystem.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

// Names of drivers that compute on the processor.
constexpr std::array<std::string_view, 6> softwareDrivers{
    "llvmpipe", "softpipe", "Software Rasterizer", "SwiftShader", "swrast", "lavapipe"};
// Cards without an entry in "dri": NVIDIA's, that of Windows for its Linux guests, and ARM's.
constexpr std::array<const char*, 4> otherCards{"nvidia0", "nvidiactl", "dxg", "mali0"};

bool mayHaveCard(const std::filesystem::path& devices) {
    const auto cards = directoryEntries(devices / "dri");
    return (cards && !cards->empty()) ||
           std::any_of(otherCards.begin(), otherCards.end(),
                       [&](const char* name) { return itemExists(devices / name); });
}

} // namespace

std::string reasonAgainstOpenGL(const Environment& environment,
                                const std::filesystem::path& devices) {
    return environment.contains(rendererVariable) || mayHaveCard(devices)
               ? ""
               : "there is no graphics card";
}

std::string reasonAgainst(std::string_view openGLName) {
    if (openGLName.empty()) {
        return "there is no OpenGL";
    }
    const bool isSoftware =
        std::any_of(softwareDrivers.begin(), softwareDrivers.end(), [&](std::string_view driver) {
            return openGLName.find(driver) != std::string_view::npos;
        });
    return isSoftware ? "it would run on the processor: " + std::string(openGLName) : "";
}

} // namespace quorvel
