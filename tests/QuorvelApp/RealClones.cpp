#include "tests/QuorvelApp/RealClones.h"

#include "LaunchKit/Changes/CloneCreation.h"
#include "LaunchKit/Changes/CloneStop.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/homes/UserPaths.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <stdexcept>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

InstanceRecord make(const WrapperFactory::Request& request) {
    return createClone(WrapperFactory(runnerProgram()), request, {}).record.value();
}

InstanceRecord makeScriptClone(const std::string& script) {
    WrapperFactory::Request request;
    request.kind = ShortcutKind::command;
    request.displayName = "Work";
    request.commandPath = "/bin/sh";
    request.commandArgs = {"-c", script};
    return make(request);
}

} // namespace

InstanceRecord makeWebClone(const std::string& name) {
    WrapperFactory::Request request;
    request.kind = ShortcutKind::web;
    request.displayName = name;
    request.url = "https://a.test";
    return make(request);
}

void ageRunner(const InstanceRecord& clone) {
    write(clone.bundleURL / "Contents/MacOS/runner", "an older one");
}

bool hasNewRunner(const InstanceRecord& clone) {
    return read(clone.bundleURL / "Contents/MacOS/runner") == read(runnerProgram());
}

RunningClone::RunningClone(const std::string& script)
    : ready_(fs::path(UserPaths::expandTilde("~/ready"))),
      clone_(makeScriptClone(script + "; > " + ready_.string() + "; while :; do sleep 0.02; done")),
      runner_(Process::run({.executable = clone_.bundleURL / "Contents/MacOS/runner"})) {
    if (!waitUntil([&] { return fs::exists(ready_); })) {
        throw std::runtime_error("the clone did not start");
    }
}

RunningClone::~RunningClone() {
    (void)stopClone(
        InstanceRegistry(), clone_,
        {.patience = std::chrono::milliseconds(0), .mayForce = [](std::size_t) { return true; }});
    runner_.sendSignal(SIGKILL);
    runner_.waitUntilExit();
}

} // namespace quorvel::testing
