#include "Platform/processes/LoadedModule.h"

#include <dlfcn.h>

namespace quorvel {
namespace {

std::string lastProblem() {
    const char* problem =
        ::dlerror(); // NOLINT(concurrency-mt-unsafe): its text is the thread's own
    return problem == nullptr ? "" : problem;
}

} // namespace

LoadedModule loadModule(const std::filesystem::path& module, const char* function) {
    // Any other name would be searched for, in folders that the environment names.
    if (!module.is_absolute()) {
        return {nullptr, "its path is not absolute"};
    }
    void* const handle = ::dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        return {nullptr, lastProblem()};
    }
    void* const found = ::dlsym(handle, function);
    return {found, found == nullptr ? lastProblem() : std::string()};
}

} // namespace quorvel
