#include "Platform/entries/BoundedLookup_linux.h"

#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace quorvel {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::set<std::string> filesInFolders(int folders) {
    std::set<std::string> files;
    for (int folder = 0; folder < folders; ++folder) {
        files.insert("/" + std::to_string(folder) + "/file");
    }
    return files;
}

TEST(BoundedLookupTest, ReturnsTheFilesThatAreThere) {
    const auto isOne = [](const std::string& file) { return file == "/a/1" || file == "1"; };
    EXPECT_THAT(presentAmong({"/a/1", "/a/2", "/b/1", "1"}, isOne), ElementsAre("/a/1", "1"));
    std::atomic<int> asked{0};
    EXPECT_THAT(presentAmong({}, [&](const auto&) { return ++asked > 0; }), IsEmpty());
    EXPECT_EQ(asked, 0);
}

// The limit holds for all processes of the user, so some of the threads can be started or none.
TEST(BoundedLookupTest, DoesWithoutTheThreadsThatTheSystemRefuses) {
    const testing::TemporaryFolder folder;
    for (const rlim_t most : {1U, 3U}) {
        EXPECT_TRUE(testing::asUnprivilegedUser(folder.path(), [&] {
            const rlimit limit{most, most};
            const auto slowly = [](const std::string& /*file*/) {
                std::this_thread::sleep_for(200ms);
                return true;
            };
            const auto start = std::chrono::steady_clock::now();
            if (::setrlimit(RLIMIT_NPROC, &limit) != 0) {
                return false;
            }
            const std::size_t found = presentAmong(filesInFolders(20), slowly).size();
            return found < 20 && std::chrono::steady_clock::now() - start < 1500ms;
        })) << most;
    }
}

TEST(BoundedLookupTest, ListsAreWaitedForAsLongAsTheyAnswer) {
    const auto read = [](const std::string& file) {
        std::this_thread::sleep_for(file == "/dead" ? 5s : file == "/fast" ? 0ms : 150ms);
        return file == "/slow/2" ? std::nullopt : std::optional(file.size());
    };
    const std::vector<std::vector<std::string>> lists{
        {"/slow/1", "/slow/2", "/slow/3", "/slow/4", "/slow/5"}, {"/fast", "/dead", "/after"}};
    const auto start = std::chrono::steady_clock::now();
    const auto found = readInLists<std::size_t>(lists, read, 400ms);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4s);
    EXPECT_THAT(found, ElementsAre(std::pair("/fast", 5U), std::pair("/slow/1", 7U),
                                   std::pair("/slow/3", 7U), std::pair("/slow/4", 7U),
                                   std::pair("/slow/5", 7U)));
}

} // namespace
} // namespace quorvel
