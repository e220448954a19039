#include "Platform/desktop/Workspace.h"

#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"
#include "tests/support/Waiting.h"

#include <atomic>
#include <barrier>
#include <csignal>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

const std::string waiting = "read line"; // waits without starting another process

class WorkspaceTest : public ::testing::Test {
protected:
    ~WorkspaceTest() override {
        for (const RunningApplication& application : ours()) {
            ::kill(application.pid, SIGKILL);
        }
        EXPECT_TRUE(waitUntil([&] { return ours().empty(); }));
    }

    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    // Tests that run in parallel have applications with the same names elsewhere.
    [[nodiscard]] std::vector<RunningApplication>
    inOurFolder(std::vector<RunningApplication> applications) const {
        std::erase_if(applications, [&](const RunningApplication& application) {
            return !application.bundleURL.string().starts_with(folder_.path().string());
        });
        return applications;
    }

    std::vector<RunningApplication> ours() {
        return inOurFolder(workspace_->runningApplications().all());
    }

    std::vector<RunningApplication> running(const std::string& bundleId) {
        return inOurFolder(workspace_->runningApplications().withBundleIdentifier(bundleId));
    }

    std::optional<PlatformError> open(const fs::path& bundle) {
        std::promise<std::optional<PlatformError>> outcome;
        workspace_->openApplication(bundle, true, [&](std::optional<PlatformError> error) {
            outcome.set_value(std::move(error));
        });
        return outcome.get_future().get();
    }

    // A running program, which ends when the object is destroyed, because that closes its input.
    class Started {
    public:
        Started(const fs::path& program, std::vector<std::string> arguments) {
            int ends[2];
            if (::pipe(ends) != 0) {
                throw std::runtime_error("no pipe");
            }
            input_.emplace(ends[1]);
            const FileHandle reading(ends[0]);
            const int before = ::dup(STDIN_FILENO);
            ::dup2(ends[0], STDIN_FILENO);
            process_.emplace(Process::run({.executable = program,
                                           .arguments = std::move(arguments),
                                           .standardOutput = Process::Discard{},
                                           .standardError = Process::Discard{}}));
            ::dup2(before, STDIN_FILENO);
            ::close(before);
        }
        Started(const Started&) = delete;
        Started& operator=(const Started&) = delete;
        ~Started() {
            process_->sendSignal(SIGKILL);
            process_->waitUntilExit();
        }

        [[nodiscard]] pid_t pid() const { return process_->identifier(); }

    private:
        std::optional<FileHandle> input_;
        std::optional<Process> process_;
    };

    fs::path waitingApp(const std::string& name, std::string_view firstLine = "#!/bin/sh") {
        const fs::path bundle = makeScriptedAppBundle(at(name + ".app"), "");
        fs::path script = bundle / "Contents/MacOS" / name;
        write(script, std::string(firstLine) + "\n" + waiting + "\n");
        makeExecutable(script);
        return script;
    }

    TemporaryFolder folder_;
    std::unique_ptr<Workspace> workspace_ = makeSystemWorkspace();
};

TEST_F(WorkspaceTest, AProgramInABundleCountsForItsIdentifier) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    const Started program(bundle / "Contents/MacOS/Thing", {"wait"});
    const auto found = running("com.example.Thing");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].pid, program.pid());
    EXPECT_EQ(found[0].bundleURL, bundle);
}

TEST_F(WorkspaceTest, AProgramStartedThroughALinkCountsByItsRealPath) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    fs::create_symlink(bundle / "Contents/MacOS/Thing", at("shortcut"));
    const Started program(at("shortcut"), {"wait"});
    ASSERT_EQ(running("com.example.Thing").size(), 1U);
    EXPECT_EQ(running("com.example.Thing")[0].bundleURL, bundle);
}

TEST_F(WorkspaceTest, ABundleWithoutAnIdentifierCountsByItsName) {
    const fs::path bundle = makeAppBundle(at("Quorvel Unnamed Test.app"));
    write(bundle / "Contents/Info.plist", PropertyList::xml({}));
    const Started program(bundle / "Contents/MacOS/Quorvel Unnamed Test", {"wait"});
    EXPECT_EQ(running("Quorvel Unnamed Test").size(), 1U);
}

TEST_F(WorkspaceTest, ABundleWithoutAReadablePropertyListDoesNotCount) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    write(bundle / "Contents/Info.plist", "");
    const Started program(bundle / "Contents/MacOS/Thing", {"wait"});
    EXPECT_TRUE(ours().empty());
    fs::remove(bundle / "Contents/Info.plist");
    EXPECT_TRUE(ours().empty());
}

TEST_F(WorkspaceTest, AChangedIdentifierIsReadAgain) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    const Started program(bundle / "Contents/MacOS/Thing", {"wait"});
    EXPECT_EQ(running("com.example.Thing").size(), 1U);
    write(bundle / "Contents/Info.plist", PropertyList::xml({{"CFBundleIdentifier", "com.new"}}));
    EXPECT_EQ(running("com.new").size(), 1U);
    EXPECT_TRUE(running("com.example.Thing").empty());
}

TEST_F(WorkspaceTest, AProgramElsewhereInABundleDoesNotCount) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    fs::create_directories(bundle / "Contents/MacOS/deeper");
    fs::copy_file(helperProgram(), bundle / "Contents/MacOS/deeper/tool");
    fs::create_directories(bundle / "Contents/Resources");
    fs::copy_file(helperProgram(), bundle / "Contents/Resources/tool");
    const Started deeper(bundle / "Contents/MacOS/deeper/tool", {"wait"});
    const Started beside(bundle / "Contents/Resources/tool", {"wait"});
    EXPECT_TRUE(ours().empty());
}

TEST_F(WorkspaceTest, AScriptInABundleCountsByItsInterpretersProcess) {
    const Started program(waitingApp("Script"), {"an argument"});
    EXPECT_TRUE(waitUntil([&] { return running("com.example.Script").size() == 1; }));
}

TEST_F(WorkspaceTest, AScriptWhoseFirstLineHasOptionsCounts) {
    const Started program(waitingApp("Script", "#! /bin/sh -u"), {});
    EXPECT_TRUE(waitUntil([&] { return running("com.example.Script").size() == 1; }));
}

TEST_F(WorkspaceTest, AScriptWhoseInterpreterEnvFindsCounts) {
    const Started program(waitingApp("Script", "#!/usr/bin/env sh"), {});
    EXPECT_TRUE(waitUntil([&] { return running("com.example.Script").size() == 1; }));
}

TEST_F(WorkspaceTest, AScriptWhoseInterpreterEnvFindsWithOptionsCounts) {
    const Started program(waitingApp("Script", "#!/usr/bin/env -S LANG=C bash -u"), {});
    EXPECT_TRUE(waitUntil([&] { return running("com.example.Script").size() == 1; }));
}

TEST_F(WorkspaceTest, AScriptThatWasPassedToItsInterpreterCounts) {
    const Started program("/bin/sh", {waitingApp("Script").string()});
    EXPECT_TRUE(waitUntil([&] { return running("com.example.Script").size() == 1; }));
}

TEST_F(WorkspaceTest, AProgramThatMerelyHasTheScriptAsAnArgumentDoesNotCount) {
    const std::string script = waitingApp("Script");
    const std::string env = waitingApp("Env", "#!/usr/bin/env sh");
    const Started concatenating("/bin/cat", {"-", script});
    const Started reading("/usr/bin/tail", {"-f", script});
    const Started other("/usr/bin/tail", {"-f", env});
    const Started helper(helperProgram(), {script, "wait"});
    EXPECT_TRUE(waitUntil([&] {
        return fs::read_symlink("/proc/" + std::to_string(helper.pid()) + "/exe") ==
               fs::canonical(helperProgram());
    }));
    EXPECT_TRUE(ours().empty());
}

TEST_F(WorkspaceTest, AProgramThatHasAnotherBundlesProgramAsAnArgumentDoesNotCount) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    const Started reading("/usr/bin/tail", {"-f", (bundle / "Contents/MacOS/Thing").string()});
    EXPECT_TRUE(ours().empty());
}

TEST_F(WorkspaceTest, AScriptThatIsAFifoDoesNotBlock) {
    const fs::path script = waitingApp("Script");
    fs::remove(script);
    ::mkfifo(script.c_str(), 0700);
    const Started program(helperProgram(), {script.string(), "wait"});
    EXPECT_TRUE(ours().empty());
}

TEST_F(WorkspaceTest, ASnapshotDoesNotChange) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    RunningApplications snapshot;
    {
        const Started program(bundle / "Contents/MacOS/Thing", {"wait"});
        snapshot = workspace_->runningApplications();
    }
    EXPECT_EQ(inOurFolder(snapshot.withBundleIdentifier("com.example.Thing")).size(), 1U);
    EXPECT_TRUE(running("com.example.Thing").empty());
}

TEST_F(WorkspaceTest, ManyThreadsMayAskConcurrently) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    const Started program(bundle / "Contents/MacOS/Thing", {"wait"});
    std::atomic<int> found = 0;
    {
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (int index = 0; index < 4; ++index) {
            threads.emplace_back(
                [&] { found += static_cast<int>(running("com.example.Thing").size()); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    EXPECT_EQ(found, 4);
}

TEST_F(WorkspaceTest, OpeningStartsTheProgramInItsOwnSession) {
    const fs::path bundle = makeScriptedAppBundle(
        at("Thing.app"), "echo $$ > " + at("pid").string() + "; while :; do sleep 0.1; done");
    ASSERT_FALSE(open(bundle));
    ASSERT_TRUE(waitUntil([&] { return running("com.example.Thing").size() == 1; }));
    const pid_t pid = running("com.example.Thing")[0].pid;
    EXPECT_EQ(::getsid(pid), pid);
    for (const char* stream : {"0", "1", "2"}) {
        EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(pid) + "/fd/" + stream), "/dev/null");
    }
    ::kill(pid, SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !fs::exists("/proc/" + std::to_string(pid)); }))
        << "a zombie is left";
}

TEST_F(WorkspaceTest, OpeningDoesNotStartASecondTime) {
    const fs::path bundle = makeScriptedAppBundle(
        at("Thing.app"), "echo started >> " + at("log").string() + "; while :; do sleep 0.1; done");
    fs::create_directory_symlink(bundle, at("Link.app"));
    ASSERT_FALSE(open(bundle));
    ASSERT_TRUE(waitUntil([&] { return read(at("log")) == "started\n"; }));
    EXPECT_FALSE(open(bundle));
    EXPECT_FALSE(open(bundle.string() + "/"));
    EXPECT_FALSE(open(at("Link.app")));
    // Briefly, a shell's child is a copy of the shell.
    EXPECT_TRUE(waitUntil([&] { return running("com.example.Thing").size() == 1; }));
    EXPECT_EQ(read(at("log")), "started\n");
}

TEST_F(WorkspaceTest, ConcurrentOpensStartABundleOnce) {
    ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);
    const fs::path bundle =
        makeScriptedAppBundle(at("Thing.app"), "read line < " + at("fifo").string());
    for (int round = 0; round < 20; ++round) {
        std::barrier start(2);
        std::atomic<int> errors = 0;
        const auto openOnCue = [&] {
            const auto own = makeSystemWorkspace(); // as in another program
            start.arrive_and_wait();
            own->openApplication(bundle, true, [&](const std::optional<PlatformError>& error) {
                errors += error ? 1 : 0;
            });
        };
        std::thread other(openOnCue);
        openOnCue();
        other.join();
        EXPECT_EQ(errors, 0);
        const auto started = ours();
        EXPECT_EQ(started.size(), 1U) << "in round " << round;
        for (const RunningApplication& application : started) {
            ::kill(application.pid, SIGKILL);
        }
        ASSERT_TRUE(waitUntil([&] { return ours().empty(); }));
    }
}

TEST_F(WorkspaceTest, ABundleThatStaysLockedIsStillOpened) {
    const fs::path bundle =
        makeScriptedAppBundle(at("Thing.app"), "echo x > " + at("log").string());
    const FileHandle folder(::open(bundle.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(::flock(folder.descriptor(), LOCK_EX), 0);
    EXPECT_FALSE(open(bundle));
    EXPECT_TRUE(waitUntil([&] { return read(at("log")) == "x\n"; }));
}

TEST_F(WorkspaceTest, ACopyElsewhereIsAnotherApplication) {
    const fs::path first = makeAppBundle(at("a/Thing.app"));
    const fs::path second = makeScriptedAppBundle(at("b/Thing.app"), "while :; do sleep 0.1; done");
    const Started program(first / "Contents/MacOS/Thing", {"wait"});
    EXPECT_FALSE(open(second));
    EXPECT_TRUE(waitUntil([&] { return running("com.example.Thing").size() == 2; }));
}

TEST_F(WorkspaceTest, OpeningAnUnstartableBundleIsAnErrorThatNamesIt) {
    const fs::path missing = makeAppBundle(at("Missing.app"));
    fs::remove(missing / "Contents/MacOS/Missing");
    const auto error = open(missing);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->description(), "“Missing” couldn’t be started: no such file or directory");

    const fs::path plain = makeAppBundle(at("Plain.app"));
    fs::permissions(plain / "Contents/MacOS/Plain", fs::perms{0644});
    EXPECT_EQ(open(plain)->code(), std::errc::permission_denied);

    const fs::path dangling = makeAppBundle(at("Dangling.app"));
    fs::remove(dangling / "Contents/MacOS/Dangling");
    fs::create_symlink("nowhere", dangling / "Contents/MacOS/Dangling");
    EXPECT_EQ(open(dangling)->code(), std::errc::no_such_file_or_directory);
}

TEST_F(WorkspaceTest, OpeningAFolderThatIsNotABundleIsAnErrorThatNamesIt) {
    fs::create_directories(at("Empty.app"));
    const auto error = open(at("Empty.app/"));
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->description().starts_with("“Empty.app” couldn’t be opened"))
        << error->description();
    EXPECT_TRUE(open(at("none.app")));
    fs::create_directories(at("Fifo.app/Contents"));
    ::mkfifo(at("Fifo.app/Contents/Info.plist").c_str(), 0600);
    EXPECT_TRUE(open(at("Fifo.app")));
}

TEST_F(WorkspaceTest, TheSystemHasAVersion) {
    const OperatingSystemVersion version = workspace_->operatingSystemVersion();
    EXPECT_GT(version.major, 0);
    const std::string name = fs::exists("/etc/os-release") ? read("/etc/os-release") : "Linux";
    EXPECT_NE(name.find(version.distribution.substr(0, version.distribution.find(' '))),
              std::string::npos);
    EXPECT_FALSE(version.distribution.empty());
}

// Activating may take a while, so it has a thread of its own where it can.
TEST_F(WorkspaceTest, ReportsAnActivationForWhichThereIsNoThread) {
    const fs::path bundle = makeAppBundle(at("Thing.app"));
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        const Started program(bundle / "Contents/MacOS/Thing", {"wait"});
        const rlimit limit{1, 1};
        if (::setrlimit(RLIMIT_NPROC, &limit) != 0) {
            return false;
        }
        bool isReported = false;
        workspace_->openApplication(bundle, true,
                                    [&](const auto& /*error*/) { isReported = true; });
        return isReported;
    }));
}

} // namespace
} // namespace quorvel
