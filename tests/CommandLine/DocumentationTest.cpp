#include "tests/CommandLine/CommandLineHarness.h"

#include <gmock/gmock.h>

#include <regex>
#include <set>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;

const std::vector<std::string> commands{
    "inspect", "list",    "show", "create", "open",    "delete", "migrate", "icon",     "apps",
    "probe",   "running", "edit", "rename", "refresh", "stop",   "log",     "duplicate"};

std::set<std::string> optionsIn(const std::string& help) {
    static const std::regex option("--[a-z][a-z-]*");
    return {std::sregex_token_iterator(help.begin(), help.end(), option),
            std::sregex_token_iterator()};
}

std::string packaged(const char* name) {
    return read(std::filesystem::path(QUORVEL_SOURCE_DIR) / "packaging" / name);
}

// The line in which a completion lists the options of a command.
std::string completionLine(const std::string& script, const std::string& command) {
    const std::size_t start = script.find("\n    " + command + ") ");
    return start == std::string::npos ? ""
                                      : script.substr(start, script.find('\n', start + 1) - start);
}

// A hyphen in a manual page's option is written "\-".
std::string manualForm(const std::string& option) {
    return std::regex_replace(option, std::regex("-"), "\\-");
}

TEST(DocumentationTest, TheManualPageAndTheCompletionsKnowEveryCommandAndOption) {
    CommandLineHarness harness;
    const std::string manual = packaged("quorvelctl.1");
    const std::string bash = packaged("completions/quorvelctl.bash");
    const std::string zsh = packaged("completions/_quorvelctl");
    for (const std::string& command : commands) {
        EXPECT_THAT(manual, HasSubstr(".SS " + command)) << command;
        const auto options = optionsIn(harness.run({command, "--help"}).output);
        EXPECT_EQ(optionsIn(completionLine(bash, command)), options) << command;
        EXPECT_EQ(optionsIn(completionLine(zsh, command)), options) << command;
        for (const std::string& option : options) {
            EXPECT_THAT(manual, HasSubstr(manualForm(option))) << command;
        }
    }
}

} // namespace
} // namespace quorvel
