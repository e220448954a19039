// Removing folders in which something is mounted, with real mounts.
#include "Platform/files/PlatformError.h"
#include "Platform/removal/FileRemoval.h"
#include "Platform/removal/ItemRemoval.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryHome.h"

#include <cerrno>
#include <cstddef>
#include <gtest/gtest.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// Makes the system call fail with this error from now on, as in older kernels and containers.
bool withoutSystemCall(unsigned number, unsigned error) {
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{.len = std::size(filter), .filter = filter};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

struct Kernel {
    const char* name;
    bool (*restrict)();
};

const Kernel kernels[] = {
    {"AsItIs", [] { return true; }},
    {"WithoutOpenat2", [] { return withoutSystemCall(SYS_openat2, ENOSYS); }},
    {"ForbiddingOpenat2", [] { return withoutSystemCall(SYS_openat2, EPERM); }},
    {"WithoutOpenat2AndStatx",
     [] { return withoutSystemCall(SYS_openat2, ENOSYS) && withoutSystemCall(SYS_statx, ENOSYS); }},
};

class MountedRemovalTest : public ::testing::TestWithParam<Kernel> {
protected:
    MountedRemovalTest() {
        write(at("foreign/precious"), "x");
        write(at("foreign/file"), "x");
        write(at("tree/a/mine"), "x");
        write(at("tree/z/file"), "x");
        fs::create_directories(at("tree/m/point"));
    }
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    // Mounts, then runs the check, which returns what is wrong.
    void expectNoProblem(const std::function<std::string()>& check) const {
        const auto problem = inPrivateMounts([&]() -> std::string {
            return GetParam().restrict() ? check() : "the kernel takes no filter";
        });
        if (!problem) {
            GTEST_SKIP() << "the kernel lets this user mount nothing";
        }
        EXPECT_EQ(*problem, "");
    }

    // Returns what is wrong after `removeItem` should have refused `path`.
    [[nodiscard]] std::string problemUnlessRefused(const fs::path& path,
                                                   const fs::path& mounted) const {
        const auto before = treeOf(folder_.path());
        try {
            removeItem(path);
            return "removed";
        } catch (const PlatformError& error) {
            std::string text = error.what();
            if (text.find("mounted at " + mounted.string()) == std::string::npos) {
                return text;
            }
        }
        return treeOf(folder_.path()) == before ? "" : "something is gone";
    }

    TemporaryFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(OnAKernel, MountedRemovalTest, ::testing::ValuesIn(kernels),
                         [](const auto& kernel) { return std::string(kernel.param.name); });

TEST_P(MountedRemovalTest, AMountedFolderIsRefusedBeforeAnythingIsRemoved) {
    expectNoProblem([&] {
        bindMount(at("foreign"), at("tree/m/point"));
        return problemUnlessRefused(at("tree"), at("tree/m/point"));
    });
}

TEST_P(MountedRemovalTest, AMountedFileIsRefusedBeforeAnythingIsRemoved) {
    expectNoProblem([&] {
        bindMount(at("foreign/file"), at("tree/z/file"));
        return problemUnlessRefused(at("tree"), at("tree/z/file"));
    });
}

TEST_P(MountedRemovalTest, AMountedFileSystemIsRefusedBeforeAnythingIsRemoved) {
    expectNoProblem([&]() -> std::string {
        if (::mount("none", at("tree/m/point").c_str(), "tmpfs", 0, "size=64k") != 0) {
            return "can't mount";
        }
        write(at("tree/m/point/precious"), "x");
        return problemUnlessRefused(at("tree"), at("tree/m/point"));
    });
}

TEST_P(MountedRemovalTest, AMountPointItselfIsRefused) {
    expectNoProblem([&] {
        bindMount(at("foreign"), at("tree/m"));
        return problemUnlessRefused(at("tree/m"), at("tree/m"));
    });
}

TEST_P(MountedRemovalTest, AMountAddedAfterTheCheckStaysToo) {
    expectNoProblem([&]() -> std::string {
        const auto removal = ItemRemoval::of(at("tree"));
        removal->refuseMounts();
        bindMount(at("foreign"), at("tree/m/point"));
        bindMount(at("foreign/file"), at("tree/z/file"));
        const RemovalReport report = removal->remove();
        if (report.isComplete() || !report.failure) {
            return "reported that everything was removed";
        }
        if (fs::exists(at("tree/a"))) {
            return "the rest was not removed";
        }
        return fs::exists(at("foreign/precious")) && fs::exists(at("foreign/file"))
                   ? ""
                   : "foreign files are gone";
    });
}

TEST_P(MountedRemovalTest, ADeepMountIsRefusedWithFewOpenFiles) {
    fs::create_directories(at("tree/d/d/d/d/d/d/point"));
    expectNoProblem([&]() -> std::string {
        bindMount(at("foreign"), at("tree/d/d/d/d/d/d/point"));
        const auto before = treeOf(folder_.path());
        rlimit usual{};
        ::getrlimit(RLIMIT_NOFILE, &usual);
        for (rlim_t most = 3; most < 40; ++most) {
            const rlimit few{most, usual.rlim_max};
            bool removed = true;
            ::setrlimit(RLIMIT_NOFILE, &few);
            try {
                removeItem(at("tree"));
            } catch (const PlatformError&) {
                removed = false;
            }
            ::setrlimit(RLIMIT_NOFILE, &usual);
            if (removed || treeOf(folder_.path()) != before) {
                return "something is gone with a limit of " + std::to_string(most);
            }
        }
        return "";
    });
}

TEST_P(MountedRemovalTest, ATreeOnItsOwnMountIsRemoved) {
    expectNoProblem([&]() -> std::string {
        bindMount(at("tree"), at("foreign"));
        fs::create_directory_symlink(at("tree/z"), at("foreign/a/link"));
        removeItem(at("foreign/a"));
        removeItem(at("foreign/m"));
        return fs::exists(at("tree/z/file")) && !fs::exists(at("tree/a")) ? "" : "wrong ones gone";
    });
}

} // namespace
} // namespace quorvel
