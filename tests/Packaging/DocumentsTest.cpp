// What the documents for contributors say about this tree.
#include "Platform/files/FileSystem.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace quorvel::testing {
namespace {

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

} // namespace
} // namespace quorvel::testing
