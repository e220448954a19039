#include "tests/support/TemporaryHome.h"

#include <array>
#include <cctype>
#include <gmock/gmock.h>
#include <regex>
#include <set>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

constexpr std::array layers{"Base",         "Platform",    "LinkDoor",   "LaunchKit", "ProbeKit",
                            "Presentation", "CommandLine", "QuorvelApp", "Runner",    "WebHost"};

// "Workspace" for Workspace.h, Workspace_linux.cpp and Workspace_macos.mm.
std::string stemOf(const fs::path& file) {
    return std::regex_replace(file.stem().string(), std::regex("_(linux|macos)$"), "");
}

// The folders of the sources that have this stem, from the root on.
std::set<fs::path> foldersOfSource(const fs::path& root, const std::string& stem) {
    std::set<fs::path> folders;
    for (const char* layer : layers) {
        if (fs::exists(root / layer)) {
            for (const auto& entry : fs::recursive_directory_iterator(root / layer)) {
                if (entry.is_regular_file() && stemOf(entry.path()) == stem) {
                    folders.insert(entry.path().parent_path().lexically_relative(root));
                }
            }
        }
    }
    return folders;
}

// A suite has the file's name, or that and one of its own for a second fixture.
std::vector<std::string> faultsInside(const fs::path& file) {
    static const std::regex test(R"((?:^|\n)TEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\))");
    std::vector<std::string> faults;
    const std::string stem = file.stem().string();
    const std::string text = read(file);
    for (std::sregex_iterator found(text.begin(), text.end(), test), end; found != end; ++found) {
        const std::string suite = found->str(1);
        const std::string rest = suite.starts_with(stem) ? suite.substr(stem.size()) : "_";
        const std::string name = std::regex_replace(found->str(2), std::regex("^DISABLED_"), "");
        if (!rest.empty() && std::isupper(static_cast<unsigned char>(rest.front())) == 0) {
            faults.push_back("suite " + suite);
        }
        if (std::isupper(static_cast<unsigned char>(name.front())) == 0) {
            faults.push_back("name " + suite + "." + name);
        }
    }
    return faults;
}

// Whether the CMakeLists.txt of the folder, or of one above it, names the file.
bool isBuilt(const fs::path& tests, const fs::path& file) {
    for (fs::path folder = file.parent_path(); folder != tests; folder = folder.parent_path()) {
        const fs::path list = folder / "CMakeLists.txt";
        if (fs::exists(list)) {
            return read(list).find(file.lexically_relative(folder).string()) != std::string::npos;
        }
    }
    return false;
}

/// What breaks the rules for the tests of the tree at `root`, in alphabetical order.
std::vector<std::string> faultsOf(const fs::path& root) {
    std::vector<std::string> faults;
    for (const auto& entry : fs::recursive_directory_iterator(root / "tests")) {
        const fs::path& file = entry.path();
        const std::string name = file.lexically_relative(root).string();
        if (!file.filename().string().ends_with("Test.cpp")) {
            continue;
        }
        for (const std::string& fault : faultsInside(file)) {
            faults.push_back(name + ": " + fault);
        }
        if (!isBuilt(root / "tests", file)) {
            faults.push_back(name + ": not built");
        }
        const fs::path folder = file.parent_path().lexically_relative(root / "tests");
        const std::string stem = file.stem().string();
        const auto sources = foldersOfSource(root, stem.substr(0, stem.size() - 4));
        if (!sources.empty() && !sources.contains(folder)) {
            faults.push_back(name + ": its source is in " + sources.begin()->string());
        }
    }
    std::sort(faults.begin(), faults.end());
    return faults;
}

TEST(TestTreeTest, EverySuiteIsNamedAfterItsFileWhichIsInTheFolderOfItsSource) {
    EXPECT_THAT(faultsOf(QUORVEL_SOURCE), IsEmpty());
}

TEST(TestTreeTest, FindsEveryKindOfFault) {
    const TemporaryFolder root;
    write(root / "Base/Text.cpp", "");
    write(root / "Platform/desktop/Workspace_linux.cpp", "");
    write(root / "tests/Base/CMakeLists.txt", "TextTest.cpp");
    write(root / "tests/Base/TextTest.cpp", "TEST(TextTest, IsGood) {}\n"
                                            "TEST_F(TextTestFixture, IsGood) {}\n"
                                            "TEST(TextTest, DISABLED_IsGood) {}\n");
    write(root / "tests/Platform/CMakeLists.txt", "WorkspaceTest.cpp files/ManyTest.cpp");
    EXPECT_THAT(faultsOf(root.path()), IsEmpty());

    write(root / "tests/Base/UnlistedTest.cpp", "TEST(UnlistedTest, IsGood) {}\n");
    write(root / "tests/Platform/WorkspaceTest.cpp", "TEST(Workspaces, AreGood) {}\n");
    write(root / "tests/Platform/files/ManyTest.cpp", "TEST(ManyTest, isGood) {}\n"
                                                      "TEST_P(ManyTesting, IsGood) {}\n");
    EXPECT_THAT(faultsOf(root.path()),
                ElementsAre("tests/Base/UnlistedTest.cpp: not built",
                            "tests/Platform/WorkspaceTest.cpp: its source is in Platform/desktop",
                            "tests/Platform/WorkspaceTest.cpp: suite Workspaces",
                            "tests/Platform/files/ManyTest.cpp: name ManyTest.isGood",
                            "tests/Platform/files/ManyTest.cpp: suite ManyTesting"));
}

} // namespace
} // namespace quorvel
