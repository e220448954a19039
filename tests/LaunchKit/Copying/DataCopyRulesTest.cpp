#include "LaunchKit/Copying/DataCopyRules.h"

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class DataCopyRulesTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path from(const std::string& name) const { return folder_ / "from" / name; }

    void link(const std::string& target, const std::string& name) const {
        fs::create_directories(from(name).parent_path());
        fs::create_symlink(target, from(name));
    }

    // Returns what is left of the folder in a copy of it.
    [[nodiscard]] std::set<std::string> kept() const {
        fs::create_directory(folder_ / "to");
        const FileHandle to(::open((folder_ / "to").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        (void)FolderCopy(folder_ / "from", {.excludes = staysBehind}).copyInto(to.descriptor());
        std::set<std::string> names;
        for (const auto& [path, text] : treeOf(folder_ / "to")) {
            if (text != "<folder>") {
                names.insert(path);
            }
        }
        return names;
    }

    [[nodiscard]] std::optional<std::string> lock() const { return lockInUse(folder_ / "from"); }

    static std::string host() {
        std::array<char, 256> name{};
        (void)::gethostname(name.data(), name.size() - 1);
        return name.data();
    }

    void setDate(const std::string& name, time_t seconds) const {
        const std::array<timespec, 2> dates{timespec{seconds, 0}, timespec{seconds, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, from(name).c_str(), dates.data(), AT_SYMLINK_NOFOLLOW), 0);
    }

    TemporaryFolder folder_{};
};

TEST_F(DataCopyRulesTest, LocksStayBehind) {
    link("host-1234", "QuorvelData/SingletonLock");
    link("/tmp/x/SingletonSocket", "QuorvelData/SingletonSocket");
    link("1234567", "QuorvelData/SingletonCookie");
    write(from("QuorvelData/DevToolsActivePort"), "1");
    link("/tmp/x/SS", "Old/SS");
    link("127.0.0.1:+1234", "FirefoxProfile/lock");
    write(from("FirefoxProfile/.parentlock"), "");
    write(from(".config/libreoffice/4/.lock"), "");
    write(from(".ICEauthority"), "");
    write(from(".Xauthority"), "");
    write(from(".quorvel-lock"), "");
    write(from(".quorvel-copied"), "");
    write(from(".local/share/quorvel/links/session"), "");
    write(from(".local/share/quorvel/web/store.json"), "{}");
    for (const char* end : {"", ".1", ".2", ".3"}) {
        write(from("quorvel-instance.log" + std::string(end)), "");
    }
    EXPECT_EQ(kept(), std::set<std::string>());
}

TEST_F(DataCopyRulesTest, OtherItemsWithTheNamesOfLocksAreCopied) {
    write(from("lock"), "a file of another program");
    link("somewhere", "links/lock");
    write(from("SS"), "");
    write(from("SingletonLock/file"), "in a folder");
    write(from("sub/quorvel-instance.log"), "");
    write(from("quorvel-instance.log.4"), "");
    write(from("quorvel-instance.log.old"), "");
    write(from("sub/.quorvel-lock"), "");
    write(from(".lock/file"), "in a folder");
    EXPECT_EQ(kept().size(), 9U);
}

TEST_F(DataCopyRulesTest, ADatabasesJournalsGoWithItAndItsIndexDoesNot) {
    for (const char* name : {"places.sqlite", "places.sqlite-wal", "places.sqlite-journal",
                             "places.sqlite-shm", "alone-shm"}) {
        write(from(name), "");
    }
    EXPECT_EQ(kept(), (std::set<std::string>{"alone-shm", "places.sqlite", "places.sqlite-journal",
                                             "places.sqlite-wal"}));
}

TEST_F(DataCopyRulesTest, ALockIsInUseWhileItsProcessRunsHere) {
    write(from("file"), "");
    EXPECT_FALSE(lock());
    Process process = Process::run({.executable = "/bin/sleep", .arguments = {"60"}});
    const std::string pid = std::to_string(process.identifier());
    link(host() + "-" + pid, "QuorvelData/SingletonLock");
    EXPECT_EQ(lock(), "QuorvelData/SingletonLock");
    setDate("QuorvelData/SingletonLock", ::time(nullptr) - 3600);
    EXPECT_FALSE(lock()) << "its process has ended, and another has got its number";
    fs::remove(from("QuorvelData/SingletonLock"));

    link("another-" + host() + "-" + pid, "QuorvelData/SingletonLock");
    EXPECT_FALSE(lock()) << "another computer's";
    link("192.168.1.5:+" + pid, "FirefoxProfile/lock");
    EXPECT_EQ(lock(), "FirefoxProfile/lock");
    process.sendSignal(SIGKILL);
    process.waitUntilExit();
    EXPECT_FALSE(lock());
}

TEST_F(DataCopyRulesTest, ALockedFileIsInUse) {
    write(from("FirefoxProfile/.parentlock"), "");
    EXPECT_FALSE(lock());
    // Another process has to hold it.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const int file = ::open(from("FirefoxProfile/.parentlock").c_str(), O_RDWR);
        struct flock whole {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        (void)::fcntl(file, F_SETLK, &whole);
        while (true) {
            ::pause();
        }
    }
    bool isSeen = false;
    for (int attempt = 0; attempt < 500 && !isSeen; ++attempt) {
        ::usleep(10'000);
        isSeen = lock() == "FirefoxProfile/.parentlock";
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(isSeen);
    EXPECT_FALSE(lock());
}

} // namespace
} // namespace quorvel
