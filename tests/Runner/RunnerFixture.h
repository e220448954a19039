#pragma once

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/WrapperGenerator.h"
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel::testing {

/// A temporary home with clones whose wrappers contain the real runner.
class RunnerFixture : public ::testing::Test {
protected:
    [[nodiscard]] std::filesystem::path at(std::string_view name) const { return folder_ / name; }
    [[nodiscard]] std::filesystem::path cloneHome() const { return home_ / "I"; }
    [[nodiscard]] std::filesystem::path errors() const { return at("errors"); }
    [[nodiscard]] std::string log() const { return read(cloneHome() / "quorvel-instance.log"); }

    [[nodiscard]] InstanceConfig appConfig(std::vector<std::string> steps) const {
        InstanceConfig config = configOf(ShortcutKind::app);
        config.targetAppPath = at("Thing.app");
        config.extraArgs = std::move(steps);
        if (!std::filesystem::exists(at("Thing.app"))) {
            makeAppBundle(at("Thing.app"));
        }
        return config;
    }

    [[nodiscard]] static InstanceConfig configOf(ShortcutKind kind) {
        InstanceConfig config = minimalConfig();
        config.kind = kind;
        config.instanceHome = "~/I";
        return config;
    }

    [[nodiscard]] std::filesystem::path wrapper(const InstanceConfig& config) const {
        WrapperGenerator::Options options;
        options.config = config;
        options.runnerBinary = runnerProgram();
        return WrapperGenerator().generate(home_ / "Applications", options);
    }

    [[nodiscard]] Process start(const std::filesystem::path& bundle,
                                const std::vector<std::string>& documents = {}) const {
        const FileHandle file(
            ::open(errors().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        Process::Options options;
        options.executable = bundle / "Contents/MacOS/runner";
        options.arguments = documents;
        options.standardOutput = Process::ToFile{file.descriptor()};
        options.standardError = Process::ToFile{file.descriptor()};
        return Process::run(options);
    }

    int run(const InstanceConfig& config, const std::vector<std::string>& documents = {}) const {
        return start(wrapper(config), documents).waitUntilExit();
    }

    TemporaryFolder folder_;
    TemporaryHome home_;
};

/// Clones of apps that are shell scripts, whose processes write their numbers into files.
class ScriptedRunnerFixture : public RunnerFixture {
protected:
    ~ScriptedRunnerFixture() override {
        for (const std::filesystem::path& file : {at("pid"), at("child")}) {
            if (const pid_t pid = numberIn(file); pid > 0) {
                ::kill(pid, SIGKILL);
            }
        }
    }

    [[nodiscard]] static pid_t numberIn(const std::filesystem::path& file) {
        const std::string text = read(file);
        return text.ends_with('\n') ? std::stoi(text) : 0;
    }

    // Returns a clone of an app that runs this script.
    [[nodiscard]] InstanceConfig scripted(const std::string& script) const {
        InstanceConfig config = appConfig({});
        makeScriptedAppBundle(at("Thing.app"), script);
        return config;
    }

    // Returns a clone of an app that reports its process number and runs until it is killed.
    [[nodiscard]] InstanceConfig lasting() const {
        return scripted("echo $$ > " + at("pid").string() + "; exec sleep 600");
    }

    [[nodiscard]] bool targetRuns() const {
        return waitUntil([&] { return numberIn(at("pid")) > 0; });
    }

    // Returns what starts a command in a session of its own, and ends its parent.
    [[nodiscard]] std::string detached(const std::string& command) const {
        return "(setsid bash -c 'echo $$ > " + at("child").string() + "; exec " + command +
               "' </dev/null >/dev/null 2>&1 &)";
    }

    [[nodiscard]] bool childRuns() const {
        return waitUntil([&] { return numberIn(at("child")) > 0; });
    }
};

} // namespace quorvel::testing
