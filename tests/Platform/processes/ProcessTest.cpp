#include "Platform/processes/Process.h"

#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

constexpr std::size_t plenty = std::size_t{64} << 20U;

Process::Options helper(std::vector<std::string> steps) {
    Process::Options options;
    options.executable = helperProgram();
    options.arguments = std::move(steps);
    return options;
}

std::string output(const Process::Options& options) {
    return Process::capture(options, plenty);
}

std::errc startError(const Process::Options& options) {
    try {
        Process started = Process::run(options);
        started.waitUntilExit();
    } catch (const PlatformError& error) {
        return static_cast<std::errc>(error.code().value());
    }
    return {};
}

std::string startFailure(const Process::Options& options) {
    try {
        Process started = Process::run(options);
        started.waitUntilExit();
    } catch (const PlatformError& error) {
        return error.description();
    }
    return "no error";
}

bool processExists(pid_t pid) {
    return fs::exists("/proc/" + std::to_string(pid));
}

std::string statusLine(const std::string& status, const std::string& key) {
    const std::size_t at = status.find(key + ":\t");
    return status.substr(at, status.find('\n', at) - at);
}

TEST(ProcessTest, ArgumentsArriveUnchanged) {
    EXPECT_EQ(output(helper({"arguments", "a b", "", "\"'$x\n", "--flag=*"})),
              "4\na b\n\n\"'$x\n\n--flag=*\n");
}

TEST(ProcessTest, EndsWithTheStatusOfTheProgram) {
    EXPECT_EQ(Process::run(helper({"exit", "7"})).waitUntilExit(), 7);
    EXPECT_EQ(Process::run(helper({"exit", "0"})).waitUntilExit(), 0);
}

TEST(ProcessTest, ASignalsNumberIsAddedTo128) {
    EXPECT_EQ(Process::run(helper({"signal", "9"})).waitUntilExit(), 128 + 9);
    EXPECT_EQ(Process::run(helper({"signal", "15"})).waitUntilExit(), 128 + 15);
}

TEST(ProcessTest, ReturnsTheSameStatusAgain) {
    Process process = Process::run(helper({"exit", "3"}));
    EXPECT_EQ(process.waitUntilExit(), 3);
    EXPECT_FALSE(process.isRunning());
    EXPECT_EQ(process.waitUntilExit(), 3);
}

TEST(ProcessTest, RunsUntilItIsTerminated) {
    Process process = Process::run(helper({"wait"}));
    EXPECT_TRUE(process.isRunning());
    process.terminate();
    EXPECT_EQ(process.waitUntilExit(), 128 + SIGTERM);
    process.terminate();
}

TEST(ProcessTest, ReceivesASignal) {
    Process process = Process::run(helper({"wait"}));
    process.sendSignal(SIGHUP);
    EXPECT_EQ(process.waitUntilExit(), 128 + SIGHUP);
}

TEST(ProcessTest, AMissingProgramIsAnErrorAtTheStart) {
    const TemporaryFolder folder;
    EXPECT_EQ(startError({.executable = folder / "none"}), std::errc::no_such_file_or_directory);
}

TEST(ProcessTest, AFileWithoutExecutePermissionIsAnErrorAtTheStart) {
    const TemporaryFolder folder;
    write(folder / "plain", "#!/bin/sh\n");
    EXPECT_EQ(startError({.executable = folder / "plain"}), std::errc::permission_denied);
    EXPECT_EQ(startError({.executable = folder.path()}), std::errc::permission_denied);
}

TEST(ProcessTest, AFileThatIsNotAProgramIsAnErrorAtTheStart) {
    const TemporaryFolder folder;
    write(folder / "text", "neither a script nor a program");
    makeExecutable(folder / "text");
    EXPECT_EQ(startError({.executable = folder / "text"}), std::errc::executable_format_error);
}

TEST(ProcessTest, AMissingInterpreterIsAnErrorAtTheStart) {
    const TemporaryFolder folder;
    write(folder / "script", "#!/no/such/interpreter\n");
    makeExecutable(folder / "script");
    EXPECT_EQ(startError({.executable = folder / "script"}), std::errc::no_such_file_or_directory);
}

TEST(ProcessTest, TheErrorNamesTheProgram) {
    try {
        (void)Process::run({.executable = "/no/such/Tool"});
        FAIL() << "it started";
    } catch (const PlatformError& error) {
        EXPECT_EQ(error.description(), "“Tool” couldn’t be started: no such file or directory");
        EXPECT_EQ(error.path(), "/no/such/Tool");
    }
}

TEST(ProcessTest, AMissingFolderIsAnErrorAtTheStart) {
    Process::Options options = helper({});
    options.directory = "/no/such/folder";
    EXPECT_EQ(startError(options), std::errc::no_such_file_or_directory);
    EXPECT_EQ(startFailure(options),
              "“folder” couldn’t be used as the working folder: no such file or directory");
    options.directory = "/dev/null";
    EXPECT_EQ(startFailure(options),
              "“null” couldn’t be used as the working folder: not a directory");
    options.directory = "/";
    options.executable = "/no/such/program";
    EXPECT_EQ(startFailure(options), "“program” couldn’t be started: no such file or directory");
}

TEST(ProcessTest, TextWithANulIsRefused) {
    EXPECT_EQ(startError(helper({"print", "a\0b"s})), std::errc::invalid_argument);
    EXPECT_EQ(startError({.executable = "/bin/true\0x"s}), std::errc::invalid_argument);
    Process::Options options = helper({});
    options.environment = Environment{{"A", "1\0B=2"s}};
    EXPECT_EQ(startError(options), std::errc::invalid_argument);
    options = helper({});
    options.directory = "/tmp\0x"s;
    EXPECT_EQ(startError(options), std::errc::invalid_argument);
}

TEST(ProcessTest, TheEnvironmentIsExactlyTheGivenOne) {
    Process::Options options = helper({"environment"});
    options.environment = Environment{{"A", "1"}, {"EMPTY", ""}, {"TEXT", "x=y z"}};
    std::istringstream lines(output(options));
    std::vector<std::string> entries;
    for (std::string line; std::getline(lines, line);) {
        entries.push_back(line);
    }
    EXPECT_THAT(entries, ::testing::UnorderedElementsAre("A=1", "EMPTY=", "TEXT=x=y z"));
}

TEST(ProcessTest, AnEmptyEnvironmentStaysEmpty) {
    Process::Options options = helper({"environment"});
    options.environment = Environment{};
    EXPECT_EQ(output(options), "");
}

TEST(ProcessTest, WithoutAnEnvironmentOursIsInherited) {
    const ScopedEnvironment variable("QUORVEL_TEST_VARIABLE", "passed on");
    EXPECT_THAT(output(helper({"environment"})),
                ::testing::HasSubstr("QUORVEL_TEST_VARIABLE=passed on\n"));
    EXPECT_EQ(currentEnvironment().at("QUORVEL_TEST_VARIABLE"), "passed on");
}

TEST(ProcessTest, RunsInTheGivenFolder) {
    const TemporaryFolder folder;
    Process::Options options = helper({"directory"});
    options.directory = folder.path();
    EXPECT_EQ(output(options), folder.path().string() + "\n");
}

TEST(ProcessTest, WithoutAFolderItRunsInOurs) {
    EXPECT_EQ(output(helper({"directory"})), fs::current_path().string() + "\n");
}

TEST(ProcessTest, ARelativeProgramIsRelativeToOurFolder) {
    const TemporaryFolder folder;
    Process::Options options = helper({"directory"});
    options.executable = fs::relative(helperProgram());
    options.directory = folder.path();
    EXPECT_EQ(output(options), folder.path().string() + "\n");
}

TEST(ProcessTest, ARelativeProgramIsAnErrorIfOurFolderIsGone) {
    const fs::path before = fs::current_path();
    {
        const TemporaryFolder folder;
        fs::current_path(folder.path());
    }
    Process::Options options{.executable = "tool"};
    options.directory = "/";
    EXPECT_EQ(startError(options), std::errc::no_such_file_or_directory);
    fs::current_path(before);
}

TEST(ProcessTest, NoOtherDescriptorIsInherited) {
    const TemporaryFolder folder;
    write(folder / "file", "");
    const FileHandle file(::open((folder / "file").c_str(), O_RDONLY));
    const FileHandle high(::fcntl(file.descriptor(), F_DUPFD, 200));
    ASSERT_GE(high.descriptor(), 200);
    EXPECT_EQ(output(helper({"descriptors"})), "0\n1\n2\n");
}

TEST(ProcessTest, SignalsAreResetToTheirDefaults) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGRTMIN + 3);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    for (const int signal : {SIGINT, SIGPIPE, SIGHUP, SIGRTMIN + 4}) {
        std::signal(signal, SIG_IGN);
    }
    const std::string status =
        output({.executable = "/bin/cat", .arguments = {"/proc/self/status"}});
    for (const int signal : {SIGINT, SIGPIPE, SIGHUP, SIGRTMIN + 4}) {
        std::signal(signal, SIG_DFL);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(statusLine(status, "SigBlk"), "SigBlk:\t0000000000000000");
    // The C library reserves signals 32 and 33 and ignores them until it needs them.
    constexpr unsigned long kept = 0x180000000;
    EXPECT_EQ(std::stoul(statusLine(status, "SigIgn").substr(8), nullptr, 16) & ~kept, 0U)
        << status;
}

TEST(ProcessTest, ADetachedProcessKeepsRunningAndLeavesNoZombie) {
    pid_t pid = 0;
    {
        Process process = Process::run(helper({"wait"}));
        pid = process.identifier();
        process.detach();
    }
    EXPECT_TRUE(processExists(pid));
    ASSERT_EQ(::kill(pid, SIGTERM), 0);
    EXPECT_TRUE(waitUntil([&] { return !processExists(pid); }));
}

TEST(ProcessTest, AProcessThatHasEndedIsReapedByItsDestructor) {
    pid_t pid = 0;
    {
        const Process process = Process::run(helper({"exit", "0"}));
        pid = process.identifier();
        siginfo_t info{};
        ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT), 0);
        EXPECT_TRUE(processExists(pid));
    }
    EXPECT_FALSE(processExists(pid));
}

TEST(ProcessTest, AProcessThatHasEndedCanBeDetached) {
    Process process = Process::run(helper({"exit", "0"}));
    const pid_t pid = process.identifier();
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT), 0);
    process.detach();
    EXPECT_FALSE(processExists(pid));
}

TEST(ProcessTest, MovingMovesTheChild) {
    Process first = Process::run(helper({"exit", "5"}));
    Process second = std::move(first);
    EXPECT_EQ(second.waitUntilExit(), 5);
    Process third = Process::run(helper({"exit", "6"}));
    third = std::move(second);
    EXPECT_EQ(third.waitUntilExit(), 5);
}

TEST(ProcessTest, ADetachedProcessHasItsOwnSessionAndNoInput) {
    Process::Options options = helper({"wait"});
    options.detached = true;
    Process process = Process::run(options);
    EXPECT_EQ(::getsid(process.identifier()), process.identifier());
    EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(process.identifier()) + "/fd/0"),
              "/dev/null");
    process.terminate();
    process.waitUntilExit();
}

TEST(ProcessTest, OnlyTheKeptDescriptorIsInherited) {
    const TemporaryFolder folder;
    write(folder / "kept", "");
    // One descriptor below `keptDescriptor` and one above, both without FD_CLOEXEC.
    const FileHandle below(::open("/dev/null", O_RDONLY));
    const FileHandle above(::fcntl(below.descriptor(), F_DUPFD, Process::keptDescriptor + 1));
    const FileHandle kept(::open((folder / "kept").c_str(), O_RDONLY | O_CLOEXEC));
    Process::Options options = helper({"descriptors"});
    options.kept = kept.descriptor();
    EXPECT_EQ(output(options), "0\n1\n2\n30\n");
    options = {.executable = "/usr/bin/readlink", .arguments = {"/proc/self/fd/30"}};
    options.kept = kept.descriptor();
    EXPECT_EQ(output(options), (folder / "kept").string() + "\n");
    const FileHandle same(::fcntl(kept.descriptor(), F_DUPFD_CLOEXEC, Process::keptDescriptor));
    ASSERT_EQ(same.descriptor(), Process::keptDescriptor);
    options.kept = same.descriptor();
    EXPECT_EQ(output(options), (folder / "kept").string() + "\n") << "under its own number already";
}

TEST(ProcessTest, OutputAndErrorsGoIntoAFile) {
    const TemporaryFolder folder;
    const std::string file = folder / "log";
    {
        const FileHandle log(::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
        Process::Options options = helper({"print", "said", "complain", "complained"});
        options.standardOutput = Process::ToFile{log.descriptor()};
        options.standardError = Process::ToFile{log.descriptor()};
        EXPECT_EQ(Process::run(options).waitUntilExit(), 0);
    }
    EXPECT_EQ(read(file), "said\ncomplained\n");
}

TEST(ProcessTest, CapturingReadsMoreThanAPipeHolds) {
    EXPECT_EQ(output(helper({"flood", "3000000"})).size(), 3000000U);
}

TEST(ProcessTest, CapturingStopsKeepingAtTheLimitAndStillWaits) {
    EXPECT_EQ(Process::capture(helper({"flood", "3000000"}), 1000).size(), 1000U);
}

TEST(ProcessTest, CapturingDiscardsStandardError) {
    EXPECT_EQ(output(helper({"complain", "quiet", "print", "loud"})), "loud\n");
}

TEST(ProcessTest, CapturingAMissingProgramIsAnError) {
    EXPECT_THROW((void)Process::capture({.executable = "/no/such"}, plenty), PlatformError);
}

} // namespace
} // namespace quorvel
