#include "tests/EndToEnd/Programs.h"
#include "tests/support/SessionBus.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

// Makes a runtime out of the system's own programs and two applications, and installs them for the
// user.
constexpr const char* install = R"(
set -e
cd "$1"
mkdir -p runtime/files runtime/usr/bin runtime/usr/lib64 "runtime/usr/lib/$(uname -m)-linux-gnu"
for app in app single; do mkdir -p $app/files/bin $app/export/share/applications; done
cp "$2" single/files/bin/single
for program in /usr/bin/dash /usr/bin/cat /usr/bin/mkdir /usr/bin/sleep "$2"; do
  [ "$program" = "$2" ] || cp "$program" runtime/usr/bin/
  for library in $(ldd "$program" | grep -o '/lib[^ ]*'); do
    case $library in
      */ld-*) cp "$library" runtime/usr/lib64/ ;;
      *) cp "$library" "runtime/usr/lib/$(uname -m)-linux-gnu/" ;;
    esac
  done
done
ln -s dash runtime/usr/bin/sh
name=org.example.Platform/$(uname -m)/stable
printf '[Runtime]\nname=org.example.Platform\nruntime=%s\nsdk=%s\n' "$name" "$name" >runtime/metadata
printf '[Application]\nname=org.example.Boxed\nruntime=%s\ncommand=boxed\n[Context]\nfilesystems=home;\n' \
  "$name" >app/metadata
cat >app/files/bin/boxed <<'END'
#!/bin/sh
echo "arguments $*"
mkdir -p "$XDG_CONFIG_HOME"
echo "$HOME" >"$XDG_CONFIG_HOME/saved"
sleep 60
END
chmod +x app/files/bin/boxed
printf '[Desktop Entry]\nType=Application\nName=Boxed\nExec=boxed --own %%U\n' \
  >app/export/share/applications/org.example.Boxed.desktop
flatpak build-export --runtime repo runtime stable
printf '[Application]\nname=org.example.Single\nruntime=%s\ncommand=single\n' "$name" >single/metadata
printf '[Desktop Entry]\nType=Application\nName=Single\nExec=single\n' \
  >single/export/share/applications/org.example.Single.desktop
flatpak build-export repo app stable
flatpak build-export repo single stable
flatpak --user remote-add --no-gpg-verify test repo
flatpak --user install -y --noninteractive test org.example.Boxed org.example.Single
)";

std::vector<pid_t> boxedProcesses() {
    return processesWhose([](const std::string& commandLine) {
        return commandLine.find(std::string("boxed\0--mine", 12)) != std::string::npos;
    });
}

class FlatpakTest : public ::testing::Test {
protected:
    FlatpakTest() {
        fs::create_directory(folder / "run");
        ::chmod((folder / "run").c_str(), 0700);
        fs::create_directory(folder / "build");
        quorvelctl.environment["XDG_RUNTIME_DIR"] = (folder / "run").string();
        // It asks the system's bus who may install; here that is the session's.
        for (const char* name : {"DBUS_SYSTEM_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS"}) {
            quorvelctl.environment[name] = currentEnvironment()["DBUS_SESSION_BUS_ADDRESS"];
        }
    }

    // Returns what the installation printed, which ends with "installed" if it succeeded.
    [[nodiscard]] std::string installPackage() const {
        Process::Options options;
        options.executable = "/bin/sh";
        options.arguments = {"-c", "sh -c \"$0\" sh \"$1\" \"$2\" 2>&1 && echo installed", install,
                             (folder / "build").string(), QUORVEL_SINGLE_INSTANCE};
        options.environment = quorvelctl.environment;
        return Process::capture(options, 65536);
    }

    const TemporaryFolder folder{};
    const SessionBus bus{};
    QuorvelctlInAHome quorvelctl{};
};

TEST_F(FlatpakTest, TwoClonesRunEachWithTheirOwnData) {
    if (!fs::exists("/usr/bin/flatpak")) {
        GTEST_SKIP() << "the package flatpak is not installed";
    }
    const std::string installed = installPackage();
    ASSERT_THAT(installed, ::testing::EndsWith("installed\n"));
    for (const char* name : {"One", "Two"}) {
        quorvelctl.run({"create", "--name", name, "--target", "Boxed", "--extra-arg=--mine"});
        quorvelctl.run({"open", name});
    }
    for (const char* name : {"One", "Two"}) {
        const fs::path saved = quorvelctl.data(name) / ".var/app/org.example.Boxed/config/saved";
        EXPECT_TRUE(waitUntil([&] { return !read(saved).empty(); }, std::chrono::seconds(60)))
            << quorvelctl.log(name);
        EXPECT_EQ(read(saved), quorvelctl.data(name).string() + "\n");
        EXPECT_THAT(quorvelctl.log(name), HasSubstr("arguments --mine --own\n"));
        EXPECT_TRUE(quorvelctl.isListedAsRunning(name));
    }
    EXPECT_FALSE(fs::exists(quorvelctl.home / ".var"));
    for (const char* name : {"One", "Two"}) {
        const auto runner =
            runnerOf(quorvelctl.home / "Applications" / (name + std::string(".app")));
        ASSERT_TRUE(runner) << name;
        ::kill(*runner, SIGTERM);
    }
    EXPECT_TRUE(waitUntil([] { return boxedProcesses().empty(); }));
    EXPECT_FALSE(fs::exists("/.flatpak-info"));
}

TEST_F(FlatpakTest, ASingleInstanceApplicationRunsOncePerCloneWithoutTheBus) {
    if (!fs::exists("/usr/bin/flatpak")) {
        GTEST_SKIP() << "the package flatpak is not installed";
    }
    const std::string installed = installPackage();
    ASSERT_THAT(installed, ::testing::EndsWith("installed\n"));
    const auto open = [&](const std::string& name, const std::vector<std::string>& more) {
        std::vector<std::string> words{"create", "--name", name, "--target", "Single"};
        words.insert(words.end(), more.begin(), more.end());
        quorvelctl.run(words);
        (void)quorvelctl.outcomeOf({"open", name});
    };
    const auto logBecomes = [&](const std::string& name, const std::string& text) {
        return waitUntil([&] { return quorvelctl.log(name) == text; }, std::chrono::seconds(60));
    };
    open("First", {});
    EXPECT_TRUE(logBecomes("First", "activated\n")) << quorvelctl.log("First");
    open("Swallowed", {});
    EXPECT_TRUE(logBecomes("First", "activated\nactivated\n")) << "why a variable is needed";

    const auto probed = quorvelctl.json({"probe", "Single"});
    EXPECT_EQ(probed["profile"].value("environment", nlohmann::json()),
              (nlohmann::json{{"DBUS_SESSION_BUS_ADDRESS", "disabled:"}}))
        << probed;
    for (const char* name : {"Second", "Third"}) {
        open(name, {"--env", "DBUS_SESSION_BUS_ADDRESS=disabled:"});
        EXPECT_TRUE(logBecomes(name, "activated\n")) << quorvelctl.log(name);
    }
    for (const char* name : {"First", "Second", "Third"}) {
        EXPECT_TRUE(quorvelctl.isListedAsRunning(name)) << name;
    }
}

} // namespace
} // namespace quorvel
