#include "Platform/shutdown/ProcessActivity.h"

namespace quorvel {

ProcessActivity activityOf(pid_t /*process*/) {
    return {};
}

bool isRunningWithHome(const std::filesystem::path& /*executable*/, const std::string& /*home*/) {
    return false;
}

} // namespace quorvel
