#include "WebHost/WebHome.h"

#include "Platform/files/ContainedFolder.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/IsolatedEnvironment.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

namespace quorvel {
namespace {

// Ways to the user's keys, and switches that turn the sandbox off.
constexpr std::array<std::string_view, 6> removedVariables{
    "GPG_AGENT_INFO",       "SSH_AGENT_PID",
    "SSH_AUTH_SOCK",        "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS",
    "WEBKIT_FORCE_SANDBOX", "WEBKIT_INSPECTOR_SERVER"};
constexpr std::array<std::string_view, 5> secretMarks{"API_KEY", "CREDENTIAL", "PASSWORD", "SECRET",
                                                      "TOKEN"};
// Has one of the marks in its name, and says which click asked for the window.
constexpr std::string_view activationToken = "XDG_ACTIVATION_TOKEN";

bool isKeptFromPages(const std::string& name) {
    return name.starts_with("QUORVEL_") ||
           std::find(removedVariables.begin(), removedVariables.end(), name) !=
               removedVariables.end() ||
           (name != activationToken &&
            std::any_of(secretMarks.begin(), secretMarks.end(), [&](std::string_view mark) {
                return name.find(mark) != std::string::npos;
            }));
}

void makePrivate(const std::string& folder) {
    std::error_code code;
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, code);
    if (code) {
        throw PlatformError(code, folder, "changed");
    }
}

} // namespace

void WebHome::create() const {
    createDirectories(home);
    makePrivate(home);
    for (const std::string& part : {data, cache}) {
        if (!ensureFolderBelow(home, part)) {
            throw PlatformError(std::make_error_code(std::errc::not_a_directory), part, "created");
        }
    }
    for (const std::string& part : {folder, data, cache}) {
        makePrivate(part);
    }
}

Environment webEnvironment(const std::string& home, const Environment& session,
                           const std::map<std::string, std::string>& own) {
    Environment environment = session;
    std::erase_if(environment, [](const auto& entry) { return isKeptFromPages(entry.first); });
    for (const auto& [name, value] : isolatedEnvironment(home, session)) {
        environment.insert_or_assign(name, value);
    }
    environment.insert_or_assign("HOME", home);
    for (const auto& [name, value] : own) {
        environment.insert_or_assign(name, value);
    }
    return environment;
}

} // namespace quorvel
