// Real programs, where they are installed, are recognized by what they are made of.
#include "Platform/programs/ProgramResolution.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quorvel::testing {
namespace {

using Engine = ResolvedProgram::Engine;
using Toolkit = ResolvedProgram::Toolkit;

struct Expectation {
    const char* program;
    Engine engine;
    Toolkit toolkit;
    const char* executable;
    const char* interpreter;
    const char* remotingName;
};

void PrintTo(const Expectation& expectation, std::ostream* stream) {
    *stream << expectation.program;
}

std::string nameOf(const ::testing::TestParamInfo<Expectation>& test) {
    std::string name = test.param.program;
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
}

class InstalledProgramsTest : public ::testing::TestWithParam<Expectation> {};

TEST_P(InstalledProgramsTest, AreRecognizedByTheirFiles) {
    const Expectation& expected = GetParam();
    const auto program = resolveProgram(expected.program);
    if (!program) {
        GTEST_SKIP() << expected.program << " is not installed";
    }
    EXPECT_EQ(program->engine, expected.engine);
    EXPECT_EQ(program->toolkit, expected.toolkit);
    EXPECT_EQ(program->executable, expected.executable);
    EXPECT_EQ(program->interpreter, expected.interpreter);
    EXPECT_EQ(program->remotingName, expected.remotingName);
    EXPECT_EQ(program->packaging, ResolvedProgram::Packaging::none);
}

// Names as Debian has them. gedit asks for GTK through a library of its own only.
INSTANTIATE_TEST_SUITE_P(
    OfDebian, InstalledProgramsTest,
    ::testing::Values(
        Expectation{"firefox-esr", Engine::firefox, Toolkit::unknown,
                    "/usr/lib/firefox-esr/firefox-esr", "", "firefox-esr"},
        Expectation{"thunderbird", Engine::firefox, Toolkit::unknown,
                    "/usr/lib/thunderbird/thunderbird", "", "thunderbird-default"},
        Expectation{"chromium", Engine::chromium, Toolkit::unknown, "/usr/lib/chromium/chromium",
                    "", ""},
        Expectation{"gedit", Engine::other, Toolkit::unknown, "/usr/bin/gedit", "", ""},
        Expectation{"transmission-gtk", Engine::other, Toolkit::gtk3, "/usr/bin/transmission-gtk",
                    "", ""},
        Expectation{"gnome-calculator", Engine::other, Toolkit::gtk4, "/usr/bin/gnome-calculator",
                    "", ""},
        Expectation{"kcalc", Engine::other, Toolkit::qt5, "/usr/bin/kcalc", "", ""},
        Expectation{"keepassxc", Engine::other, Toolkit::qt5, "/usr/bin/keepassxc", "", ""},
        Expectation{"filezilla", Engine::other, Toolkit::wx, "/usr/bin/filezilla", "", ""},
        Expectation{"meld", Engine::other, Toolkit::unknown, "/usr/bin/meld", "python3", ""},
        Expectation{"libreoffice", Engine::libreOffice, Toolkit::unknown,
                    "/usr/lib/libreoffice/program/soffice", "sh", ""},
        Expectation{"freeplane", Engine::java, Toolkit::unknown,
                    "/usr/share/freeplane/freeplane.sh", "bash", ""}),
    nameOf);

} // namespace
} // namespace quorvel::testing
