// What the documents for contributors say about this tree.
#include "Platform/files/FileSystem.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <map>
#include <regex>
#include <sstream>

namespace quorvel::testing {
namespace {

using ::testing::_;
using ::testing::Each;
using ::testing::Le;
using ::testing::Pair;
using ::testing::UnorderedElementsAreArray;

const std::string sourceFolder = QUORVEL_SOURCE;

std::vector<std::string> matchesIn(const std::string& text, const char* pattern) {
    const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
    return {std::sregex_token_iterator(text.begin(), text.end(), expression, 1),
            std::sregex_token_iterator()};
}

// The part of a document under one heading of the second level.
std::string section(const std::string& text, const std::string& heading) {
    const std::size_t start = text.find("\n## " + heading + "\n");
    return start == std::string::npos ? ""
                                      : text.substr(start, text.find("\n## ", start + 1) - start);
}

bool isThere(const std::string& name) {
    for (const char* ending : {"", ".h", ".cpp"}) {
        if (itemExists(sourceFolder + "/" + name + ending)) {
            return true;
        }
    }
    return false;
}

TEST(DocumentsTest, ContributingHasAtMostTwentyFiveRulesNumberedInOrder) {
    const auto numbers =
        matchesIn(section(read(sourceFolder + "/CONTRIBUTING.md"), "Rules"), "^([0-9]+)\\. ");
    EXPECT_GE(numbers.size(), 10U);
    EXPECT_LE(numbers.size(), 25U);
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        EXPECT_EQ(numbers[index], std::to_string(index + 1));
    }
}

TEST(DocumentsTest, ContributingNamesOnlyFilesThatAreThere) {
    const auto names = matchesIn(read(sourceFolder + "/CONTRIBUTING.md"),
                                 "`((?:[A-Z][A-Za-z]+|docs|fuzz|scripts|tests|tools)/[\\w./-]+)`");
    EXPECT_GE(names.size(), 10U);
    for (const std::string& name : names) {
        EXPECT_TRUE(isThere(name)) << name;
    }
}

TEST(DocumentsTest, LinkOnlyToFilesThatAreThere) {
    for (const char* document : {"README.md", "CONTRIBUTING.md", "SECURITY.md", "CHANGELOG.md"}) {
        for (const std::string& target :
             matchesIn(read(sourceFolder + "/" + document), "\\]\\(([^)#:]+)\\)")) {
            EXPECT_TRUE(itemExists(sourceFolder + "/" + target)) << document << ": " << target;
        }
    }
}

// How many sources each folder inside of the layers has.
std::map<std::string, int> sizesOfFolders() {
    std::map<std::string, int> sizes;
    for (const std::string& layer :
         matchesIn(read(sourceFolder + "/docs/architecture.md"), "^\\| `([A-Z]\\w+)/` \\|")) {
        for (const auto& item :
             std::filesystem::recursive_directory_iterator(sourceFolder + "/" + layer)) {
            const std::string ending = item.path().extension().string();
            if (ending == ".h" || ending == ".cpp" || ending == ".mm") {
                ++sizes[item.path().parent_path().lexically_relative(sourceFolder).string()];
            }
        }
    }
    return sizes;
}

TEST(DocumentsTest, ArchitectureDescribesEveryFolderAndNoOther) {
    std::vector<std::string> folders;
    for (const auto& [folder, size] : sizesOfFolders()) {
        if (folder.find('/') != std::string::npos) {
            folders.push_back(folder);
        }
    }
    EXPECT_GE(folders.size(), 30U);
    EXPECT_THAT(matchesIn(read(sourceFolder + "/docs/architecture.md"), "^\\| `(\\w+/\\w+)/` \\|"),
                UnorderedElementsAreArray(folders));
}

// In more than these, nobody finds a file by looking.
TEST(DocumentsTest, NoFolderIsCrowded) {
    EXPECT_THAT(sizesOfFolders(), Each(Pair(_, Le(48))));
}

} // namespace
} // namespace quorvel::testing
