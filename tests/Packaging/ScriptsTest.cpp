#include "tests/Packaging/Commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace quorvel::testing {
namespace {

TEST(ScriptsTest, PackagingScriptSaysThatItNeedsAMac) {
    const Outcome outcome = outcomeOf({QUORVEL_SOURCE "/scripts/package-macos"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "scripts/package-macos needs a Mac: the tools that sign and pack an "
                              "application are there only.\n");
}

TEST(ScriptsTest, PackagingScriptsTakeNoOtherWords) {
    const Outcome outcome = outcomeOf({QUORVEL_SOURCE "/scripts/package-linux", "--help"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "usage: scripts/package-linux\n");
}

class ScriptsTestMutations : public ::testing::Test {
protected:
    ScriptsTestMutations() {
        write(source_, "struct Pair {\n"
                       "    bool first; // no mutants: 1 < 2 && \"text\"\n"
                       "    bool second;\n"
                       "};\n"
                       "int sum(const Pair& pair, int limit) {\n"
                       "    if (limit < 1 || !pair.first) {\n"
                       "        return 0;\n"
                       "    }\n"
                       "    note(pair.first);\n"
                       "    note(\"x\");\n"
                       "    return pair.second ? limit : 2;\n"
                       "}\n");
    }

    [[nodiscard]] Outcome run(std::vector<std::string> options) const {
        options.insert(options.begin(), QUORVEL_SOURCE "/scripts/test-mutations");
        options.push_back(source_.string());
        return outcomeOf(options);
    }

    // Line, kind and change of each mutant; their names come from the path, which is new each time.
    [[nodiscard]] std::vector<std::string> listed() const {
        std::vector<std::string> mutants;
        std::istringstream lines(run({"--list"}).output);
        for (std::string line; std::getline(lines, line);) {
            mutants.push_back(line.substr(line.find(source_.string()) + source_.string().size()));
        }
        return mutants;
    }

    TemporaryFolder folder_;
    std::filesystem::path source_ = folder_ / "tiny.cpp";
};

TEST_F(ScriptsTestMutations, ListsExactlyTheMutantsOfASource) {
    EXPECT_THAT(
        listed(),
        ::testing::ElementsAre(
            ":6  guard: if (limit < 1 || !pair.first) { return 0; } → {}",
            ":6  order: if (limit < 1 || !pair.first) { return 0; } note(pair.first… → "
            "note(pair.first); if (limit < 1 || !pair.first) { return 0;…",
            ":6  negated: limit < 1 || !pair.first → !(limit < 1 || !pair.first)",
            ":6  off-by-one: if (limit < 1 || !pair.first) → if (limit <= 1 || !pair.first)",
            ":6  literal: if (limit < 1 || !pair.first) → if (limit < 2 || !pair.first)",
            ":6  negated: if (limit < 1 || !pair.first) { → if (limit < 1 && !pair.first) {",
            ":6  negated: if (limit < 1 || !pair.first) { → if (limit < 1 || pair.first) {",
            ":6  member: first → second", ":7  literal: return 0; → return 1;",
            ":9  order: note(pair.first); note(\"x\"); → note(\"x\"); note(pair.first);",
            ":9  member: first → second", ":10  literal: note(\"x\"); → note(\"xX\");",
            ":11  member: second → first", ":11  negated: limit : 2 → 2 : limit",
            ":11  literal: pair.second ? limit : 2; → pair.second ? limit : 3;"));
}

TEST_F(ScriptsTestMutations, ChoosesTheSameMutantsForASeed) {
    const std::vector<std::string> chosen{"--list", "--sample", "3", "--seed", "5"};
    const std::string output = run(chosen).output;
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 3);
    EXPECT_EQ(run(chosen).output, output);
    EXPECT_NE(run({"--list", "--sample", "3", "--seed", "6"}).output, output);
}

TEST_F(ScriptsTestMutations, FindsAMutantByItsName) {
    const std::string all = run({"--list"}).output;
    const std::string last = all.substr(all.rfind('\n', all.size() - 2) + 1);
    EXPECT_EQ(run({"--list", "--only", last.substr(0, last.find(' '))}).output, last);
}

TEST_F(ScriptsTestMutations, LeavesASourceOfNoLayerAlone) {
    const std::string before = read(source_);
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              "scripts/test-mutations: no layer's tests are known for " + source_.string() + "\n");
    EXPECT_EQ(read(source_), before);
}

// The script with stand-ins for what it starts: the desktop "plasma" fails.
TEST(ScriptsTest, TheTrialOfDesktopsFailsAfterItsTableIfADesktopDid) {
    const TemporaryFolder folder;
    const std::filesystem::path scripts = folder / "scripts";
    std::filesystem::create_directories(scripts / "desktops");
    std::filesystem::copy_file(QUORVEL_SOURCE "/scripts/test-desktops", scripts / "test-desktops");
    write(scripts / "common.sh", "set -euo pipefail\ncd \"" + folder.path().string() +
                                     "\"\ndebian_apps=()\ninstall_packages() { :; }\n"
                                     "install_available() { :; }\nbuild_preset() { :; }\n"
                                     "as_root() { \"$@\"; }\n");
    write(scripts / "desktops/trial.py", "import sys\nprint(sys.argv[2], flush=True)\n"
                                         "sys.exit(1 if sys.argv[2] == 'plasma' else 0)\n");
    write(scripts / "desktops/table.py",
          "import sys\nprint('table of', sys.stdin.read().split())\n");
    const auto tried = [&](const std::string& desktop) {
        return outcomeOf({"/usr/bin/env", "bash", scripts / "test-desktops", desktop, "sway"});
    };
    const Outcome failed = tried("plasma");
    EXPECT_NE(failed.status, 0);
    EXPECT_THAT(failed.output, ::testing::HasSubstr("table of ['plasma', 'plasma-x11', 'sway']\n"));
    const Outcome succeeded = tried("xfce");
    EXPECT_EQ(succeeded.status, 0);
    EXPECT_EQ(succeeded.output, "table of ['xfce', 'sway']\n");
}

// Such desktops name no entry, so that the name of the original's window has to be looked at.
TEST(ScriptsTest, TheTrialOfDesktopsSeesAnOriginalThatCarriesAClonesName) {
    const Outcome outcome = outcomeOf({"/usr/bin/python3", "-c", R"(
import sys
from types import SimpleNamespace as Fake
sys.dont_write_bytecode = True
sys.path.insert(0, sys.argv[1])
try:
    import trial
except ModuleNotFoundError as error:
    print("missing", error.name)
    sys.exit()
clones = [Fake(word="Quorvel-1", entry="Quorvel-1.desktop"), Fake(word="Quorvel-2", entry="app.quorvel-2.desktop")]
def ask(matches, app_id, instance, entry):
    window = Fake(app_id=app_id, instance=instance, entry=entry)
    print(trial.is_nobodys_clone(Fake(matches_entries=matches), clones, window))
ask(False, "gedit", None, None)
ask(False, "Quorvel-1", None, None)
ask(False, "gedit", "Quorvel-2", None)
ask(False, "app.quorvel-2", None, None)
ask(True, "gedit", None, "org.gnome.gedit.desktop")
ask(True, "gedit", None, "Quorvel-1.desktop")
print(trial.is_nobodys_clone(Fake(matches_entries=True), clones, None))
)",
                                       QUORVEL_SOURCE "/scripts/desktops"});
    if (outcome.output.starts_with("missing")) {
        GTEST_SKIP() << outcome.output;
    }
    EXPECT_EQ(outcome.output, "True\nFalse\nFalse\nFalse\nTrue\nFalse\nFalse\n");
}

TEST(ScriptsTest, TestSummaryListsSkippedTestsWithReasonsAndEndsWithTheCounts) {
    const TemporaryFolder folder;
    write(folder / "CMakeLists.txt", R"(cmake_minimum_required(VERSION 3.20)
project(Sample NONE)
enable_testing()
add_test(NAME Passes COMMAND sh -c "echo 'a.cpp:1: Skipped'; echo 'not this'")
add_test(NAME Says COMMAND sh -c "echo Running; echo 'a.cpp:1: Skipped'; echo 'a disk: missing'; echo '[  SKIPPED ]'")
set_tests_properties(Says PROPERTIES SKIP_REGULAR_EXPRESSION "SKIPPED ")
add_test(NAME Ends COMMAND sh -c "echo 'no compiler'; exit 77")
set_tests_properties(Ends PROPERTIES SKIP_RETURN_CODE 77)
add_test(NAME Fails COMMAND false)
)");
    const std::string build = folder / "build";
    const std::string ctest = std::filesystem::path(QUORVEL_CMAKE).parent_path() / "ctest";
    ASSERT_EQ(outcomeOf({QUORVEL_CMAKE, "-S", folder.path(), "-B", build}).status, 0);
    write(folder / "printed", outcomeOf({ctest, "--test-dir", build}).output);
    const std::string output =
        outcomeOf({QUORVEL_SOURCE "/scripts/test-summary", folder / "printed",
                   build + "/Testing/Temporary/LastTest.log"})
            .output;
    EXPECT_TRUE(output.starts_with("\n==> Skipped\nEnds: no compiler\nSays: a disk: missing\n\n"
                                   "75% tests passed, 1 tests failed out of 4\nTotal Test time"))
        << output;
    EXPECT_TRUE(output.ends_with("\n1 passed, 1 failed, 2 skipped\n")) << output;
}

} // namespace
} // namespace quorvel::testing
