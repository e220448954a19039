#include "Platform/programs/ProgramResolution.h"

#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using Engine = ResolvedProgram::Engine;
using Packaging = ResolvedProgram::Packaging;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A separate system: programs in "bin", what they belong to in "lib", "share" and "opt".
class ProgramResolutionTest : public ::testing::Test {
protected:
    void script(const std::string& path, const std::string& lines) const {
        write(folder_ / path, "#!/bin/sh\n" + lines);
        fs::permissions(folder_ / path, fs::perms{0755});
    }

    void elf(const std::string& path, const std::string& mark = "") const {
        const std::string identity("\x7f"
                                   "ELF\2\1\1\0",
                                   8);
        write(folder_ / path, identity + mark);
        fs::permissions(folder_ / path, fs::perms{0755});
    }

    void files(const std::string& inFolder, const std::vector<std::string>& names) const {
        for (const std::string& name : names) {
            write(folder_ / inFolder / name, "x");
        }
    }

    void link(const std::string& path, const std::string& target) const {
        fs::create_directories((folder_ / path).parent_path());
        fs::create_symlink(target, folder_ / path);
    }

    [[nodiscard]] std::optional<ResolvedProgram> resolve(const std::string& program) const {
        return resolveProgram(program, {folder_ / "lib", folder_ / "share", folder_ / "opt"},
                              folder_.path());
    }

    [[nodiscard]] Engine engine(const std::string& program) const {
        return resolve(program).value().engine;
    }

    [[nodiscard]] fs::path executable(const std::string& program) const {
        return fs::relative(resolve(program).value().executable, folder_.path());
    }

    const std::vector<std::string> chromiumMarks_{"icudtl.dat", "resources.pak",
                                                  "chrome_100_percent.pak"};
    TemporaryFolder folder_{};
    ScopedEnvironment path_{"PATH", (folder_ / "first").string() + ":" +
                                        (folder_ / "bin").string() + ":relative:"};
};

TEST_F(ProgramResolutionTest, FindsTheFirstProgramInPath) {
    elf("bin/a");
    EXPECT_EQ(findProgram("a"), folder_ / "bin/a");
    write(folder_ / "first/a", "not executable");
    EXPECT_EQ(findProgram("a"), folder_ / "bin/a");
    fs::permissions(folder_ / "first/a", fs::perms{0755});
    EXPECT_EQ(findProgram("a"), folder_ / "first/a");
    EXPECT_EQ(findProgram((folder_ / "bin/a").string()), folder_ / "bin/a");
    EXPECT_EQ(findProgram("bin/a"), std::nullopt);
    EXPECT_EQ(findProgram("b"), std::nullopt);
    EXPECT_EQ(findProgram(""), std::nullopt);
    EXPECT_EQ(findProgram(folder_.path().string()), std::nullopt);
    EXPECT_EQ(findProgram(std::string_view("a\0b", 3)), std::nullopt);
}

TEST_F(ProgramResolutionTest, FollowsLinksToTheRealFile) {
    elf("lib/fox/fox");
    files("lib/fox", {"libxul.so"});
    write(folder_ / "lib/fox/application.ini",
          "; not used\n[App]\nVendor=V\nName=Fox\nRemotingName=fox-esr\n");
    link("bin/fox", "../lib/fox/fox");
    const auto program = resolve("fox");
    ASSERT_TRUE(program);
    EXPECT_EQ(program->launcher, folder_ / "bin/fox");
    EXPECT_EQ(program->executable, folder_ / "lib/fox/fox");
    EXPECT_EQ(program->engine, Engine::firefox);
    EXPECT_EQ(program->remotingName, "fox-esr");
    EXPECT_EQ(program->packaging, Packaging::none);
    write(folder_ / "lib/fox/application.ini", "[App]\nName=Fox\n");
    EXPECT_EQ(resolve("fox")->remotingName, "Fox");
    link("bin/loop", "loop");
    EXPECT_FALSE(resolve("loop"));
}

TEST_F(ProgramResolutionTest, FollowsAWrapperScript) {
    elf("bin/gdb");
    elf("lib/chromium/chromium");
    files("lib/chromium", chromiumMarks_);
    script("bin/chromium", "APPNAME=chromium\nGDB=" + (folder_ / "bin/gdb").string() +
                               "\nLIBDIR=" + (folder_ / "lib").string() +
                               "/$APPNAME\nexec $LIBDIR/$APPNAME $CHROMIUM_FLAGS \"$@\"\n");
    EXPECT_EQ(engine("chromium"), Engine::chromium);
    EXPECT_EQ(executable("chromium"), "lib/chromium/chromium");
    EXPECT_EQ(resolve("chromium")->launcher, folder_ / "bin/chromium");
    EXPECT_EQ(resolve("chromium")->interpreter, "");
}

TEST_F(ProgramResolutionTest, OfSeveralProgramsTakesTheOneWithAnEnginesMarks) {
    elf("lib/tool/tool");
    elf("lib/mail/mail");
    files("lib/mail", {"libxul.so", "application.ini"});
    script("bin/mail", (folder_ / "lib/tool/tool").string() + " --check\nexec " +
                           (folder_ / "lib/mail/mail").string());
    EXPECT_EQ(executable("mail"), "lib/mail/mail");
    script("bin/other", "exec " + (folder_ / "lib/tool/tool").string());
    EXPECT_EQ(executable("other"), "lib/tool/tool");
    EXPECT_EQ(engine("other"), Engine::other);
    elf("bin/gdb");
    script("bin/traced", "exec " + (folder_ / "bin/gdb").string());
    EXPECT_EQ(executable("traced"), "bin/traced") << "what lies in a folder for all is a tool";
}

TEST_F(ProgramResolutionTest, LooksBesideTheScriptFirst) {
    files("opt/chrome", chromiumMarks_);
    elf("opt/chrome/chrome");
    script("opt/chrome/chrome-wrapper",
           "HERE=\"`dirname \"$0\"`\"\nexec \"$HERE/chrome\" \"$@\"\n");
    link("bin/chrome-stable", "../opt/chrome/chrome-wrapper");
    EXPECT_EQ(engine("chrome-stable"), Engine::chromium);
}

TEST_F(ProgramResolutionTest, LooksForAFolderOfItsNameLast) {
    script("bin/app", "exec \"$(find-it)\" \"$@\"\n");
    EXPECT_EQ(executable("app"), "bin/app");
    EXPECT_EQ(resolve("app")->interpreter, "sh");
    elf("share/app/app");
    EXPECT_EQ(executable("app"), "share/app/app");
    files("opt/app", chromiumMarks_);
    EXPECT_EQ(engine("app"), Engine::chromium) << "a folder with marks before one without";
}

TEST_F(ProgramResolutionTest, KnowsElectronByItsArchive) {
    elf("opt/app/app");
    files("opt/app", chromiumMarks_);
    const std::string program = (folder_ / "opt/app/app").string();
    EXPECT_EQ(engine(program), Engine::chromium);
    for (const char* archive : {"app.asar", "app/package.json", "default_app.asar"}) {
        write(folder_ / "opt/app/resources" / archive, "x");
        EXPECT_EQ(engine(program), Engine::electron) << archive;
        fs::remove_all(folder_ / "opt/app/resources");
    }
    fs::remove(folder_ / "opt/app/icudtl.dat");
    EXPECT_EQ(engine(program), Engine::other);
    script("bin/note", "exec electron23 " + (folder_ / "lib/note/app.asar").string() + "\n");
    EXPECT_EQ(engine("note"), Engine::electron);
}

TEST_F(ProgramResolutionTest, KnowsJavaByArchivesBesideTheScript) {
    script("share/plane/plane.sh", "exec java -jar \"$dir/plane.jar\"\n");
    link("bin/plane", "../share/plane/plane.sh");
    EXPECT_EQ(engine("plane"), Engine::other) << "the word alone says nothing";
    files("share/plane", {"plane.jar"});
    EXPECT_EQ(engine("plane"), Engine::java);
    script("share/plane/plane.sh", "exec ./plane\n");
    EXPECT_EQ(engine("plane"), Engine::other) << "nor does the archive";
}

TEST_F(ProgramResolutionTest, KnowsJavaByAnArchiveThatTheScriptNames) {
    script("bin/tool", "exec java -jar /usr/share/tool/tool.jar \"$@\"\n");
    EXPECT_EQ(engine("tool"), Engine::java);
    script("bin/tool", "exec unzip /usr/share/tool/tool.jar\n");
    EXPECT_EQ(engine("tool"), Engine::other);
    elf("lib/ide/ide");
    files("lib/ide", {"ide.ini", "plugins/org.eclipse.equinox.launcher_1.6.jar"});
    script("bin/tool", "exec " + (folder_ / "lib/ide/ide").string() +
                           " -vm /usr/bin/java -startup /usr/share/ide/launcher.jar\n");
    EXPECT_EQ(engine("tool"), Engine::eclipse) << "a program with marks comes first";
}

TEST_F(ProgramResolutionTest, KnowsJavaItself) {
    elf("lib/jvm/bin/java");
    link("bin/java", "../lib/jvm/bin/java");
    EXPECT_EQ(engine("java"), Engine::java);
    link("bin/javaws", "../lib/jvm/bin/javaws");
    elf("lib/jvm/bin/javaws");
    EXPECT_EQ(engine("javaws"), Engine::other);
}

TEST_F(ProgramResolutionTest, KnowsAScriptInFrontOfASnap) {
    const auto packaging = [&](const std::string& name, const std::string& lines) {
        script("bin/" + name, lines);
        return resolve(name).value().packaging;
    };
    // Each leads to the program that starts all Snaps, which may not be there.
    link("snap/bin/fox", "/usr/bin/snap");
    link("var/lib/snapd/snap/bin/fox", "/usr/bin/snap");
    EXPECT_EQ(packaging("fox", "[ -x /snap/bin/fox ] || exit 1\nexec /snap/bin/fox \"$@\"\n"),
              Packaging::snap);
    EXPECT_EQ(packaging("fox", "exec /var/lib/snapd/snap/bin/fox\n"), Packaging::snap);
    EXPECT_EQ(packaging("fox-browser", "exec /snap/bin/fox\n"), Packaging::snap);
    EXPECT_EQ(packaging("foxes", "exec /snap/bin/fox\n"), Packaging::none);
    EXPECT_EQ(packaging("fox", "PATH=/snap/bin:/usr/bin\nexec /snap/bin/\n"), Packaging::none);
}

TEST_F(ProgramResolutionTest, GoesOnInAScriptThatStartsASnapOnlyIfItIsThere) {
    elf("opt/fox/fox");
    files("opt/fox", chromiumMarks_);
    script("bin/fox", "[ -x /snap/bin/fox ] && exec /snap/bin/fox\n"
                      "exec " +
                          (folder_ / "opt/fox/fox").string() + "\n");
    EXPECT_EQ(resolve("fox").value().packaging, Packaging::none);
    EXPECT_EQ(engine("fox"), Engine::chromium);
    EXPECT_EQ(executable("fox"), "opt/fox/fox");
    link("snap/bin/fox", "/usr/bin/snap");
    EXPECT_EQ(resolve("fox").value().packaging, Packaging::snap);
}

TEST_F(ProgramResolutionTest, KnowsLibreOffice) {
    script("lib/office/program/soffice", "exec java\n");
    files("lib/office/program", {"soffice.bin", "unoil.jar"});
    link("bin/office", "../lib/office/program/soffice");
    EXPECT_EQ(engine("office"), Engine::libreOffice);
}

TEST_F(ProgramResolutionTest, KnowsEclipseByItsLauncherAndSettings) {
    elf("opt/ide/ide");
    const std::string program = (folder_ / "opt/ide/ide").string();
    files("opt/ide/plugins", {"org.eclipse.equinox.launcher_1.6.jar"});
    EXPECT_EQ(engine(program), Engine::other);
    files("opt/ide", {"ide.ini"});
    EXPECT_EQ(engine(program), Engine::eclipse);
    fs::remove_all(folder_ / "opt/ide/plugins");
    EXPECT_EQ(engine(program), Engine::other);
}

TEST_F(ProgramResolutionTest, NamesThePortableFoldersOfAnAppImage) {
    elf("apps/Tool.AppImage", std::string("AI\x02"));
    const std::string file = (folder_ / "apps/Tool.AppImage").string();
    EXPECT_EQ(resolve(file)->packaging, Packaging::appImage);
    EXPECT_THAT(resolve(file)->portableFolders, IsEmpty());
    files("apps", {"Tool.AppImage.config/x", "Tool.AppImage.cachet"});
    EXPECT_THAT(resolve(file)->portableFolders, ElementsAre(file + ".config"));
    files("apps", {"Tool.AppImage.home/x", "Tool.AppImage.share/x", "Tool.AppImage.cache/x"});
    EXPECT_THAT(resolve(file)->portableFolders,
                ElementsAre(file + ".home", file + ".config", file + ".share", file + ".cache"));
    link("bin/tool", "../apps/Tool.AppImage");
    files("bin", {"tool.home/x"});
    EXPECT_EQ(resolve("tool")->portableFolders.size(), 5U) << "beside the link too";
}

TEST_F(ProgramResolutionTest, KnowsPackagesThatAreSandboxed) {
    elf("bin/flatpak");
    elf("bin/snap");
    elf("bin/plain");
    link("bin/editor", "snap");
    const auto packaging = [&](const std::string& exec, const DesktopEntry& entry = {}) {
        return resolveProgram(entry, ExecLine::parse(exec), {}).value().packaging;
    };
    EXPECT_EQ(packaging("flatpak run org.example.App"), Packaging::flatpak);
    EXPECT_EQ(packaging("flatpak list"), Packaging::none);
    EXPECT_EQ(packaging("snap run app"), Packaging::snap);
    EXPECT_EQ(packaging("editor %U"), Packaging::snap);
    EXPECT_EQ(packaging("plain"), Packaging::none);
    DesktopEntry entry;
    entry.flatpakId = "org.example.App";
    EXPECT_EQ(packaging("plain", entry), Packaging::flatpak);
    entry.flatpakId.clear();
    entry.snapInstance = "app_two";
    EXPECT_EQ(packaging("plain", entry), Packaging::snap);
}

TEST_F(ProgramResolutionTest, IsNotHeldUpByOddFiles) {
    write(folder_ / "bin/odd", "no program at all");
    fs::permissions(folder_ / "bin/odd", fs::perms{0755});
    EXPECT_EQ(engine("odd"), Engine::other);
    ASSERT_EQ(::mkfifo((folder_ / "fifo").c_str(), 0755), 0);
    script("bin/waits", "exec " + (folder_ / "fifo").string() + "\n");
    EXPECT_EQ(executable("waits"), "bin/waits");
    EXPECT_FALSE(resolve((folder_ / "fifo").string()));
    EXPECT_FALSE(resolve((folder_ / "missing").string()));
    script("bin/long", std::string(200000, 'x') + "\nexec " + (folder_ / "bin/odd").string());
    EXPECT_EQ(executable("long"), "bin/long");
}

} // namespace
} // namespace quorvel::testing
