// The Debian package, made from this build: looked into, judged by lintian, and installed, upgraded
// and purged below a folder of its own.
#include "tests/EndToEnd/Programs.h"
#include "tests/Packaging/Commands.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

std::string shellOutput(const std::string& script, const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> command{"/bin/sh", "-c", script, "sh"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Environment environment = currentEnvironment();
    environment["PATH"] += ":/usr/sbin:/sbin"; // where dpkg looks for ldconfig
    environment["LC_ALL"] = "C.UTF-8";
    Outcome outcome = outcomeOf(std::move(command), std::move(environment));
    EXPECT_EQ(outcome.status, 0) << script << "\n" << outcome.output;
    return std::move(outcome.output);
}

class DebianPackageTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* program :
             {"cpack", "dpkg-deb", "dpkg-shlibdeps", "file", "lintian", "readelf"}) {
            if (outcomeOf({"/bin/sh", "-c", "command -v \"$0\"", program}).status != 0) {
                GTEST_SKIP() << program << " is not installed";
            }
        }
        // Compressed lightly, since it is not kept.
        shellOutput(R"(cd "$1" && cpack --config "$2/CPackConfig.cmake" -B "$1" )"
                    "-D CPACK_DEBIAN_COMPRESSION_TYPE=gzip && rm -r _CPack_Packages",
                    {folder_.path().string(), QUORVEL_BUILD});
        for (const auto& entry : fs::directory_iterator(folder_.path())) {
            package_ = entry.path().extension() == ".deb" ? entry.path() : package_;
        }
        ASSERT_FALSE(package_.empty());
    }

    // With the line's end.
    [[nodiscard]] std::string field(const std::string& name) const {
        return shellOutput(R"(dpkg-deb -f "$1" "$2")", {package_.string(), name});
    }

    TemporaryFolder folder_;
    fs::path package_;
};

TEST_F(DebianPackageTest, HasWhatDesktopsAndDebianLookFor) {
    const std::string list = shellOutput(R"(dpkg-deb -c "$1")", {package_.string()});
    for (const std::string program :
         {"bin/quorvel", "bin/quorvelctl", "libexec/quorvel/quorvel-runner"}) {
        EXPECT_THAT(list, ::testing::ContainsRegex("-rwxr-xr-x root/root [^\n]* \\./usr/" +
                                                   program + "\n"));
    }
    for (const std::string file :
         {"applications/app.quorvel.Quorvel.desktop", "bash-completion/completions/quorvelctl",
          "doc/quorvel/changelog.Debian.gz", "doc/quorvel/changelog.gz", "doc/quorvel/copyright",
          "icons/hicolor/16x16/apps/app.quorvel.Quorvel.png",
          "icons/hicolor/48x48/apps/app.quorvel.Quorvel.png",
          "icons/hicolor/128x128/apps/app.quorvel.Quorvel.png",
          "icons/hicolor/256x256/apps/app.quorvel.Quorvel.png",
          "icons/hicolor/512x512/apps/app.quorvel.Quorvel.png",
          "icons/hicolor/scalable/apps/app.quorvel.Quorvel.svg", "man/man1/quorvel.1.gz",
          "man/man1/quorvelctl.1.gz", "metainfo/app.quorvel.Quorvel.metainfo.xml",
          "zsh/site-functions/_quorvelctl"}) {
        EXPECT_THAT(list, ::testing::ContainsRegex("-rw-r--r-- root/root [^\n]* \\./usr/share/" +
                                                   file + "\n"));
    }
    EXPECT_THAT(list, Not(HasSubstr(".app/"))) << "the application's bundle is for another system";
    EXPECT_EQ(field("Package"), "quorvel\n");
    EXPECT_EQ(field("Architecture"), shellOutput("dpkg --print-architecture"));
    EXPECT_THAT(field("Version"), ::testing::StartsWith(QUORVEL_VERSION));
    EXPECT_THAT(field("Depends"), AllOf(HasSubstr("libc6 ("), HasSubstr("libqt6widgets6 ("),
                                        HasSubstr("libplist3 (")));
}

TEST_F(DebianPackageTest, HasProgramsThatAreHardenedAndStripped) {
    const fs::path root = folder_ / "root";
    shellOutput(R"(dpkg-deb -x "$1" "$2")", {package_.string(), root.string()});
    for (const char* program :
         {"usr/bin/quorvel", "usr/bin/quorvelctl", "usr/libexec/quorvel/quorvel-runner"}) {
        const std::string facts =
            shellOutput(R"(readelf -SdW --dyn-syms "$1")", {(root / program).string()});
        EXPECT_THAT(facts, ::testing::ContainsRegex("Flags: NOW PIE\n")) << program;
        EXPECT_THAT(facts, HasSubstr(" __stack_chk_fail@")) << program;
        EXPECT_THAT(facts, ::testing::ContainsRegex(" __[a-z]+_chk@")) << program << ": fortified";
        EXPECT_THAT(facts, Not(HasSubstr(" .symtab "))) << program;
    }
}

TEST_F(DebianPackageTest, SatisfiesLintian) {
    const std::string output = shellOutput(
        R"(lintian --profile debian --fail-on error,warning "$1")", {package_.string()});
    EXPECT_THAT(output, Not(HasSubstr("E: ")));
    EXPECT_THAT(output, Not(HasSubstr("W: quorvel")));
}

// A folder in which dpkg installs as if it were this machine, with the same packages installed.
class DebianPackageTestRoot : public DebianPackageTest {
protected:
    void SetUp() override {
        DebianPackageTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        // A user without rights may own files as root in a namespace.
        if (::geteuid() != 0) {
            asRoot_ = "unshare --map-root-user ";
            if (outcomeOf({"unshare", "--map-root-user", "true"}).status != 0) {
                GTEST_SKIP() << "dpkg needs root or a user namespace";
            }
        }
        shellOutput(R"(mkdir -p "$1/var/lib/dpkg/info" "$1/var/lib/dpkg/updates" &&
                       cd "$1/var/lib/dpkg" && cp /var/lib/dpkg/info/format info/ &&
                       awk 'BEGIN { RS = ""; ORS = "\n\n" } !/^Package: quorvel\n/' \
                         /var/lib/dpkg/status >status &&
                       for list in /var/lib/dpkg/info/*.list; do : >"info/${list##*/}"; done &&
                       rm -f info/quorvel.list)",
                    {root_.path().string()});
    }

    std::string dpkg(const std::string& words, const std::string& argument) {
        return shellOutput(asRoot_ + R"(dpkg --root="$1" --log=/dev/null )" + words + R"( "$2")",
                           {root_.path().string(), argument});
    }
    [[nodiscard]] std::string installedVersion() const {
        return shellOutput(
            R"(dpkg-query --admindir="$1/var/lib/dpkg" -W -f='${Version}\n' quorvel)",
            {root_.path().string()});
    }
    // The package as an older version: with another runner, and a file that is gone since.
    [[nodiscard]] std::string olderPackage() const {
        std::string older = folder_ / "older.deb";
        shellOutput(R"(dpkg-deb -R "$1" "$2" && cd "$2" &&
                       sed -i 's/^Version: .*/Version: 0.0.1-1/' DEBIAN/control &&
                       printf older >>usr/libexec/quorvel/quorvel-runner &&
                       mkdir -p usr/share/quorvel && printf older >usr/share/quorvel/older &&
                       find usr -type f -exec md5sum {} + >DEBIAN/md5sums &&
                       dpkg-deb --root-owner-group -Zgzip -b . "$3")",
                    {package_.string(), (folder_ / "older").string(), older});
        return older;
    }
    // What is below the folder, except what dpkg remembers.
    [[nodiscard]] std::map<std::string, std::string> tree() const {
        auto files = treeOf(root_.path());
        std::erase_if(files,
                      [](const auto& file) { return file.first.starts_with("var/lib/dpkg"); });
        return files;
    }

    TemporaryFolder root_;
    std::string asRoot_;
};

TEST_F(DebianPackageTestRoot, InstallsUpgradesAndPurgesWithoutTouchingClones) {
    const auto before = tree();
    dpkg("--install", olderPackage());
    EXPECT_EQ(installedVersion(), "0.0.1-1\n");
    QuorvelctlInAHome quorvelctl;
    quorvelctl.program = root_ / "usr/bin/quorvelctl";
    EXPECT_THAT(quorvelctl.run({"--version"}), HasSubstr(QUORVEL_VERSION));
    EXPECT_THAT(shellOutput(R"("$1" --version)", {root_ / "usr/bin/quorvel"}),
                HasSubstr(QUORVEL_VERSION));
    const auto make = [&](const std::string& name) {
        quorvelctl.run({"create", "--kind", "command", "--name", name, "--command",
                        "/usr/bin/printf", "--arg", "ran "});
    };
    const auto runnerOfClone = [&](const std::string& name) {
        return read(quorvelctl.home / ("Applications/" + name + ".app/Contents/MacOS/runner"));
    };
    const auto open = [&](const std::string& name, const std::string& log) {
        quorvelctl.run({"open", name});
        EXPECT_TRUE(waitUntil([&] { return quorvelctl.log(name) == log; })) << quorvelctl.log(name);
    };
    const fs::path runner = root_ / "usr/libexec/quorvel/quorvel-runner";
    make("Old");
    EXPECT_EQ(runnerOfClone("Old"), read(runner));
    open("Old", "ran ");

    dpkg("--install", package_);
    EXPECT_EQ(installedVersion(), field("Version"));
    EXPECT_EQ(dpkg("--verify", "quorvel"), "");
    EXPECT_FALSE(fs::exists(root_ / "usr/share/quorvel/older"));
    EXPECT_NE(runnerOfClone("Old"), read(runner));
    open("Old", "ran ran ");
    make("New");
    EXPECT_EQ(runnerOfClone("New"), read(runner));

    const auto home = treeOf(quorvelctl.home.path());
    dpkg("--purge", "quorvel");
    EXPECT_EQ(tree(), before);
    EXPECT_THAT(shellOutput(R"(ls "$1/var/lib/dpkg/info")", {root_.path()}),
                Not(HasSubstr("quorvel")));
    EXPECT_EQ(treeOf(quorvelctl.home.path()), home);
    quorvelctl.program = QUORVEL_CTL;
    open("Old", "ran ran ran ");
    open("New", "ran ");
}

} // namespace
} // namespace quorvel
