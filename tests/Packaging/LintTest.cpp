#include "tests/Packaging/Commands.h"

#include "Platform/files/FileSystem.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// A new repository with this tree's hook enabled.
class LintTestPreCommitHook : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* program : {"git", "clang-format-14", "shellcheck"}) {
            if (outcomeOf({"/bin/sh", "-c", std::string("command -v ") + program}).status != 0) {
                GTEST_SKIP() << program << " is not installed";
            }
        }
        for (const char* file : {"scripts/lint", "scripts/common.sh", "scripts/hooks/pre-commit",
                                 ".clang-format", ".shellcheckrc"}) {
            fs::create_directories((tree_ / file).parent_path());
            fs::copy_file(fs::path(QUORVEL_SOURCE) / file, tree_ / file);
        }
        git({"init", "--quiet"});
        git({"config", "core.hooksPath", "scripts/hooks"});
        git({"config", "user.name", "Test"});
        git({"config", "user.email", "test@example.com"});
    }

    Outcome git(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"git", "-C", tree_.path().string()});
        return outcomeOf(arguments);
    }

    void stage(const std::string& name, const std::string& text) const {
        write(tree_ / name, text);
        EXPECT_EQ(git({"add", name}).status, 0);
    }

    [[nodiscard]] Outcome commit() const { return git({"commit", "-m", "tests: change"}); }
    [[nodiscard]] bool hasCommits() const {
        return git({"rev-parse", "--verify", "--quiet", "HEAD"}).status == 0;
    }

    // Expects that a commit fails with this text in its output.
    void expectRefusal(const std::string& text) const {
        const Outcome committing = commit();
        EXPECT_NE(committing.status, 0);
        EXPECT_THAT(committing.output, HasSubstr(text));
    }

    TemporaryFolder tree_;
};

TEST_F(LintTestPreCommitHook, LetsWellFormedChangesThrough) {
    stage("a.cpp", "int one() {\n    return 1;\n}\n");
    stage("script", "#!/bin/sh\necho \"$1\"\n");
    const Outcome committing = commit();
    EXPECT_EQ(committing.status, 0) << committing.output;
    EXPECT_TRUE(hasCommits());
}

TEST_F(LintTestPreCommitHook, RefusesASourceThatIsNotFormatted) {
    stage("a.cpp", "int  one( ) { return 1;}\n");
    expectRefusal("a.cpp:1:");
    EXPECT_FALSE(hasCommits());
}

TEST_F(LintTestPreCommitHook, ChecksWhatIsStagedAndNotTheWorkingTree) {
    stage("a.cpp", "int one() {\n    return 1;\n}\n");
    write(tree_ / "a.cpp", "int  one( ) { return 1;}\n");
    EXPECT_EQ(commit().status, 0);
    stage("a.cpp", "int  one( ) { return 2;}\n");
    write(tree_ / "a.cpp", "int one() {\n    return 2;\n}\n");
    EXPECT_NE(commit().status, 0);
}

TEST_F(LintTestPreCommitHook, RefusesAScriptWithUnquotedExpansions) {
    stage("folder with space/script", "#!/bin/sh\nrm $1\n");
    expectRefusal("SC2086");
    EXPECT_FALSE(hasCommits());
}

TEST_F(LintTestPreCommitHook, ChecksASourcedScriptWithWhatItSources) {
    stage("part.sh", "# shellcheck shell=sh\nexport name=one\n");
    stage("script", "#!/bin/sh\n. \"$(dirname \"$0\")/part.sh\"\necho \"$name\"\n");
    const Outcome committing = commit();
    EXPECT_EQ(committing.status, 0) << committing.output;
    stage("part.sh", "# shellcheck shell=sh\nexport name\nname=$(echo $1)\n");
    EXPECT_NE(commit().status, 0);
}

TEST_F(LintTestPreCommitHook, RefusesWhatStaticAnalysisFindsInTheChange) {
    if (outcomeOf({"/bin/sh", "-c", "command -v clang-tidy-diff-14.py"}).status != 0) {
        GTEST_SKIP() << "clang-tidy-14 is not installed";
    }
    const std::string folder = tree_.path().string();
    fs::copy_file(QUORVEL_SOURCE "/.clang-tidy", tree_ / ".clang-tidy");
    write(tree_ / "build/release/compile_commands.json",
          "[{\"directory\": \"" + folder + "\", \"file\": \"" + folder +
              "/a.cpp\", \"command\": \"c++ -c a.cpp\"}]");
    stage("a.cpp", "struct A {\n    static int n;\n};\n");
    EXPECT_EQ(commit().status, 0);
    stage("a.cpp", "struct A {\n    static int n;\n};\nint f(A a) {\n    return a.n;\n}\n");
    expectRefusal("readability-static-accessed-through-instance");
}

TEST(LintTest, RefusesACheckThatItDoesNotHave) {
    const Outcome refusal = outcomeOf({QUORVEL_SOURCE "/scripts/lint", "beauty"});
    EXPECT_EQ(refusal.status, 1);
    EXPECT_EQ(refusal.output, "usage: scripts/lint [format|shell|tidy|--staged]\n");
}

TEST(LintTest, FindsEveryShellScriptOfThisTreeInOrder) {
    if (outcomeOf({"/bin/sh", "-c", "command -v git && command -v shellcheck"}).status != 0 ||
        !itemExists(QUORVEL_SOURCE "/.git")) {
        GTEST_SKIP() << "git or shellcheck is not installed, or this is not a checkout";
    }
    const Outcome checking = outcomeOf({QUORVEL_SOURCE "/scripts/lint", "shell"});
    EXPECT_EQ(checking.status, 0) << checking.output;
}

} // namespace
} // namespace quorvel::testing
