#include "Platform/programs/ProgramResolution.h"

namespace quorvel {
namespace fs = std::filesystem;

const std::vector<fs::path>& applicationRoots() {
    static const std::vector<fs::path> none;
    return none;
}

std::optional<fs::path> findProgram(std::string_view, const std::optional<fs::path>&) {
    return std::nullopt;
}

bool isAppImage(const fs::path&) {
    return false;
}

std::optional<ResolvedProgram> resolveProgram(std::string_view, const std::vector<fs::path>&,
                                              const fs::path&) {
    return std::nullopt;
}

std::optional<ResolvedProgram> resolveProgram(const DesktopEntry&, const ExecLine&,
                                              const std::vector<fs::path>&) {
    return std::nullopt;
}

} // namespace quorvel
