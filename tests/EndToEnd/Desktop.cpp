#include "tests/EndToEnd/Desktop.h"

#include <filesystem>

namespace quorvel::testing {
namespace fs = std::filesystem;

std::vector<std::string> Desktop::missingPrograms() {
    std::vector<std::string> missing = XServer::missingPrograms();
    for (const char* program :
         {"/usr/bin/import", "/usr/bin/dbus-daemon", "/usr/libexec/at-spi-bus-launcher"}) {
        if (!fs::exists(program)) {
            missing.emplace_back(program);
        }
    }
    return missing;
}

Desktop::Desktop() {
    setVariable("XDG_RUNTIME_DIR", folder_.path().string());
    setVariable("QT_QPA_PLATFORM", "xcb");
    setVariable("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    setVariable("NO_AT_BRIDGE", "0");
    bus_.emplace();
    screen_.emplace();
}

void Desktop::setVariable(const std::string& name, const std::string& value) {
    variables_.push_back(std::make_unique<ScopedEnvironment>(name, value));
}

} // namespace quorvel::testing
