// What opening a clone learns from its runner.
#include "Platform/desktop/StartWatch_linux.h"
#include "Platform/desktop/Workspace.h"
#include "Platform/processes/StartReport.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// A script's report.
const std::string report = " > /proc/self/fd/$QUORVEL_START_REPORT";
const std::string waiting = "while :; do sleep 0.05; done";

class StartWatchTest : public ::testing::Test {
protected:
    ~StartWatchTest() override {
        const RunningApplications running = workspace_->runningApplications();
        for (const RunningApplication& application : running.all()) {
            if (application.bundleURL.string().starts_with(folder_.path().string())) {
                ::kill(application.pid, SIGKILL);
            }
        }
    }

    [[nodiscard]] fs::path bundle(const std::string& script) const {
        return makeScriptedAppBundle(
            folder_ / "Work.app", script,
            {{"CFBundleExecutable", "runner"}, {"CFBundleIdentifier", "com.example.Work"}});
    }

    // Returns the error's text, empty on success.
    std::string open(const std::string& script) {
        auto answer = std::make_shared<std::promise<std::string>>();
        auto answered = answer->get_future();
        workspace_->openApplication(bundle(script), true, [=](const auto& error) {
            answer->set_value(error ? error->description() : std::string());
        });
        if (answered.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
            return "no answer";
        }
        return answered.get();
    }

    TemporaryFolder folder_;
    std::unique_ptr<Workspace> workspace_ = makeSystemWorkspace();
};

TEST_F(StartWatchTest, AReportOfSuccessEndsTheWait) {
    const auto start = Clock::now();
    EXPECT_EQ(open("printf .+" + report + "; " + waiting), "");
    EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(900))
        << "as long as for a runner that says nothing";
}

TEST_F(StartWatchTest, AReportOfFailureIsPassedOnUnchanged) {
    EXPECT_EQ(open("printf '.-The target is “gone”.'" + report + "; exit 71"),
              "The target is “gone”.");
}

TEST_F(StartWatchTest, AnAnnouncedReportMayTakeLongerThanAnOldRunnersTimeout) {
    EXPECT_EQ(open("printf ." + report + "; sleep 1.4; printf '%s' -late" + report + "; exit 71"),
              "late");
}

TEST_F(StartWatchTest, ARunnerThatAnnouncesAReportAndEndsWithoutOneHasFailed) {
    EXPECT_EQ(open("printf ." + report + "; exit 3"),
              "“Work.app” couldn’t be opened: it ended immediately with status 3");
    EXPECT_EQ(open("printf ." + report + "; kill -SEGV $$"),
              "“Work.app” couldn’t be opened: it was ended immediately by signal 11");
}

TEST_F(StartWatchTest, AnOldRunnersFailureIsRecognizedByItsStatus) {
    EXPECT_EQ(open("exit 71"),
              "“Work.app” couldn’t be opened: it ended immediately with status 71");
}

TEST_F(StartWatchTest, ARunnerThatCantRunOrCrashesBeforeItReportsHasFailed) {
    for (const int status : {126, 127}) {
        EXPECT_EQ(open("exit " + std::to_string(status)),
                  "“Work.app” couldn’t be opened: it ended immediately with status " +
                      std::to_string(status));
    }
    for (const int signal : {SIGILL, SIGABRT, SIGBUS, SIGFPE, SIGSEGV, SIGSYS}) {
        EXPECT_EQ(open("kill -" + std::to_string(signal) + " $$"),
                  "“Work.app” couldn’t be opened: it was ended immediately by signal " +
                      std::to_string(signal));
    }
}

TEST_F(StartWatchTest, AnOldRunnerWhoseTargetEndsQuicklyHasSucceeded) {
    EXPECT_EQ(open("exit 0"), "");
    EXPECT_EQ(open("exit 7"), "");
    EXPECT_EQ(open("exit 130"), "");
    EXPECT_EQ(open("kill -TERM $$"), "");
}

TEST_F(StartWatchTest, AnOldRunnerThatKeepsRunningHasSucceeded) {
    EXPECT_EQ(open(waiting), "");
}

TEST_F(StartWatchTest, ARunningApplicationIsNotWaitedFor) {
    EXPECT_EQ(open("printf .+" + report + "; " + waiting), "");
    const auto start = Clock::now();
    EXPECT_EQ(open("exit 71"), "") << "no second one was started";
    EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(900));
}

TEST_F(StartWatchTest, TheDesktopsTokenReachesWhatIsOpened) {
    workspace_ = makeSystemWorkspace([] { return std::string("token-1"); });
    EXPECT_EQ(open("printf \"%s %s\" \"$XDG_ACTIVATION_TOKEN\" \"$DESKTOP_STARTUP_ID\" >" +
                   (folder_ / "told").string() + "; printf .+" + report),
              "");
    EXPECT_EQ(read(folder_ / "told"), "token-1 token-1");
}

TEST_F(StartWatchTest, ARunnerThatIsSentARequestIsWaitedFor) {
    const auto told = [&](const std::string& script) {
        const std::filesystem::path program = bundle(script) / "Contents/MacOS/runner";
        return startAndWait(program, {{"QUORVEL_FOCUS", "1"}});
    };
    EXPECT_TRUE(told("[ \"$QUORVEL_FOCUS\" = 1 ] && printf .+" + report));
    EXPECT_FALSE(told("printf '.-no'" + report + "; exit 75"));
    EXPECT_FALSE(told("exit 0"));
    const auto other =
        makeScriptedAppBundle(folder_ / "Other.app", "touch " + (folder_ / "started").string());
    EXPECT_FALSE(startAndWait(other / "Contents/MacOS/Other", {}));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "started")) << "it would run twice";
}

TEST_F(StartWatchTest, DestroyingTheWorkspaceEndsTheWait) {
    std::promise<bool> answer;
    workspace_->openApplication(bundle("printf ." + report + "; " + waiting), true,
                                [&](const auto& error) { answer.set_value(!error); });
    const auto start = Clock::now();
    workspace_ = makeSystemWorkspace();
    EXPECT_TRUE(answer.get_future().get());
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(10));
}

TEST_F(StartWatchTest, TheCompletionIsCalledOnAnotherThread) {
    std::promise<std::thread::id> answer;
    const auto start = Clock::now();
    workspace_->openApplication(
        bundle("sleep 0.5; printf .+" + report + "; " + waiting), true,
        [&](const auto& /*error*/) { answer.set_value(std::this_thread::get_id()); });
    EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(400));
    EXPECT_NE(answer.get_future().get(), std::this_thread::get_id());
}

// A pipe whose write end is passed to a report.
struct Pipe {
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
    }
    std::array<int, 2> ends{};
};

TEST_F(StartWatchTest, StartReportUsesTheInheritedPipe) {
    using enum StartOutcome::Case;
    for (const bool works : {true, false}) {
        const Pipe pipe;
        const FileHandle reading(pipe.ends[0]);
        const ScopedEnvironment variable(StartReport::variable, std::to_string(pipe.ends[1]));
        {
            const StartReport said;
            EXPECT_EQ(std::getenv(StartReport::variable), nullptr)
                << "no child takes it for its own";
            EXPECT_EQ(::fcntl(pipe.ends[1], F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
            works ? said.started() : said.failed("why");
        }
        const StartOutcome heard =
            readStartReport(reading.descriptor(), -1, std::chrono::seconds(5), {});
        EXPECT_EQ(heard.kind, works ? started : failed);
        EXPECT_EQ(heard.sentence, works ? "" : "why");
        EXPECT_TRUE(heard.announced);
    }
}

TEST_F(StartWatchTest, ALongStartReportIsTruncatedAndStillAFailure) {
    const Pipe pipe;
    const FileHandle reading(pipe.ends[0]);
    const ScopedEnvironment variable(StartReport::variable, std::to_string(pipe.ends[1]));
    std::thread writer([] { StartReport().failed(std::string(60'000, 'x')); });
    const StartOutcome heard =
        readStartReport(reading.descriptor(), -1, std::chrono::seconds(5), std::chrono::seconds(5));
    EXPECT_EQ(heard.kind, StartOutcome::Case::failed);
    EXPECT_LE(heard.sentence.size(), 8192U);
    writer.join();
}

TEST_F(StartWatchTest, StartReportsAreDiscardedWithoutAPipe) {
    const TemporaryFolder folder;
    write(folder / "file", "kept");
    const FileHandle file(::open((folder / "file").c_str(), O_WRONLY | O_CLOEXEC));
    const Pipe pipe;
    const FileHandle reading(pipe.ends[0]);
    const FileHandle writing(pipe.ends[1]);
    for (const std::string& value :
         {std::to_string(file.descriptor()), std::to_string(reading.descriptor()),
          std::string("1x"), std::string("-1"), std::string("999999"), std::string()}) {
        const ScopedEnvironment variable(StartReport::variable, value);
        StartReport().failed("lost");
    }
    EXPECT_EQ(read(folder / "file"), "kept");
    EXPECT_GE(::fcntl(file.descriptor(), F_GETFD), 0) << "a file of another owner stays open";
}

TEST_F(StartWatchTest, StartReportSurvivesAClosedPipe) {
    const Pipe pipe;
    ::close(pipe.ends[0]);
    const ScopedEnvironment variable(StartReport::variable, std::to_string(pipe.ends[1]));
    const StartReport said;
    said.started();
}

} // namespace
} // namespace quorvel
