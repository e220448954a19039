#include "Platform/watching/FSEventStream.h"
#include "Platform/watching/WatchTree_linux.h"
#include "tests/support/InotifyLimit.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <map>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::UnorderedElementsAre;
namespace fs = std::filesystem;

/// A tree of one root, driven by hand: nothing runs beside the test.
class WatchTreeTest : public ::testing::Test {
protected:
    void watch() { tree_.settle(0, false); }

    // What was reported since the last call, with paths from the root on ("" is the root itself).
    std::map<std::string, std::uint32_t> reported() { return reported(tree_); }
    std::map<std::string, std::uint32_t> reported(WatchTree& tree) {
        drainInotifyQueue(tree.descriptor(), [&] { return tree.readQueue(); });
        return std::exchange(reported_, {});
    }

    // A tree that watches the root, but does not look into folders named "skipped".
    WatchTree treeWithoutSkipped() {
        return {{root_.string()}, report_, [](const std::string& folder) {
                    return !folder.ends_with("/skipped");
                }};
    }

    // The number of folders that the system watches for this tree.
    [[nodiscard]] std::size_t watches() const {
        const std::string info = read("/proc/self/fdinfo/" + std::to_string(tree_.descriptor()));
        std::size_t count = 0;
        for (std::size_t at = info.find("inotify wd:"); at != std::string::npos;
             at = info.find("inotify wd:", at + 1)) {
            ++count;
        }
        return count;
    }

    [[nodiscard]] fs::path at(const char* path) const { return root_ / path; }

    TemporaryFolder folder_;
    fs::path root_ = folder_ / "root";
    std::map<std::string, std::uint32_t> reported_{};
    WatchTree::Report report_ = [this](const std::string& path, std::uint32_t flags) {
        reported_[path.substr(root_.string().size())] |= flags;
    };
    WatchTree tree_{{root_.string()}, report_};
};

TEST_F(WatchTreeTest, ReportsNothingOfWhatIsThereAtTheStart) {
    write(at("sub/file"), "text");
    watch();
    EXPECT_THAT(reported(), IsEmpty());
    write(at("sub/file"), "more");
    EXPECT_THAT(reported(), ElementsAre(Key("/sub/file"))) << "folders below are watched";
}

TEST_F(WatchTreeTest, ReportsARootThatAppearsWithAllItsContents) {
    watch();
    write(at("sub/file"), "text");
    EXPECT_THAT(reported(), IsEmpty()) << "a missing root is noticed elsewhere";
    tree_.settle(0, true);
    EXPECT_THAT(reported(), UnorderedElementsAre(Key(""), Key("/sub"), Key("/sub/file")));
}

TEST_F(WatchTreeTest, ListsANewFolderWhoseFilesCameBeforeItsWatch) {
    fs::create_directory(root_);
    watch();
    write(at("new/sub/file"), "text"); // the queue is read only after all of it
    const auto all = reported();
    EXPECT_THAT(all, UnorderedElementsAre(Key("/new"), Key("/new/sub"), Key("/new/sub/file")));
    EXPECT_EQ(all.at("/new"), FSEventFlag::itemCreated | FSEventFlag::itemIsDir);
    EXPECT_EQ(all.at("/new/sub/file") & FSEventFlag::itemIsDir, 0U);
}

TEST_F(WatchTreeTest, KnowsARenamedFolderByItsNewName) {
    write(at("old/sub/file"), "text");
    watch();
    fs::rename(at("old"), at("new"));
    const auto renamed = reported();
    EXPECT_NE(renamed.at("/old") & FSEventFlag::itemRenamed, 0U);
    EXPECT_NE(renamed.at("/new") & FSEventFlag::itemRenamed, 0U);
    write(at("new/sub/file"), "more");
    EXPECT_THAT(reported(), ElementsAre(Key("/new/sub/file")));
}

TEST_F(WatchTreeTest, StopsWatchingAFolderThatMovedOut) {
    write(at("leaving/file"), "text");
    watch();
    EXPECT_FALSE(tree_.tidyDue());
    EXPECT_EQ(watches(), 2U);
    fs::rename(at("leaving"), folder_ / "outside");
    (void)reported();
    EXPECT_TRUE(tree_.tidyDue()) << "it may still turn up under another name";
    tree_.tidy(true);
    EXPECT_FALSE(tree_.tidyDue());
    EXPECT_EQ(watches(), 1U);
    write(folder_ / "outside/file", "more");
    EXPECT_THAT(reported(), IsEmpty());
}

TEST_F(WatchTreeTest, WatchesTheFolderThatReplacedItsRoot) {
    write(at("old"), "text");
    watch();
    fs::rename(root_, folder_ / "aside");
    write(at("new"), "text");
    tree_.settle(0, true);
    EXPECT_THAT(reported(), ::testing::Contains(Key("/new")));
    write(folder_ / "aside/old", "more");
    EXPECT_THAT(reported(), IsEmpty());
}

TEST_F(WatchTreeTest, ReportsWhatItCannotWatch) {
    if (!holdsInChild([] { return limitInotify(InotifyLimit::watches, 2); })) {
        GTEST_SKIP() << "the system gives no limits of one's own";
    }
    for (const char* name : {"a", "b", "c"}) {
        fs::create_directories(at(name));
    }
    EXPECT_TRUE(holdsInChild([&] {
        if (!limitInotify(InotifyLimit::watches, 2)) {
            return false;
        }
        std::uint32_t flags = 0;
        WatchTree tree({root_.string()},
                       [&](const std::string& /*path*/, std::uint32_t more) { flags |= more; });
        tree.settle(0, false);
        tree.tidy(true);
        return (flags & FSEventFlag::mustScanSubDirs) != 0;
    }));
}

TEST_F(WatchTreeTest, FilteredDoesNotLookIntoWhatWasThereAtTheStart) {
    write(at("skipped/sub/file"), "text");
    write(at("other/sub/file"), "text");
    WatchTree filtered = treeWithoutSkipped();
    write(at("skipped/sub/file"), "more");
    write(at("skipped/new"), "text");
    write(at("other/sub/file"), "more");
    EXPECT_THAT(reported(filtered), ElementsAre(Key("/other/sub/file")));
}

TEST_F(WatchTreeTest, FilteredReportsANewFolderButNotItsContents) {
    fs::create_directories(root_);
    WatchTree filtered = treeWithoutSkipped();
    write(at("skipped/sub/file"), "text");
    write(at("other/skipped/file"), "text");
    EXPECT_THAT(reported(filtered),
                UnorderedElementsAre(Key("/skipped"), Key("/other"), Key("/other/skipped")));
    write(at("skipped/sub/file"), "more");
    EXPECT_THAT(reported(filtered), IsEmpty());
}

TEST_F(WatchTreeTest, FilteredReportsAFolderThatIsRenamedButNotItsContents) {
    write(at("other/sub/file"), "text");
    WatchTree filtered = treeWithoutSkipped();
    fs::rename(at("other"), at("skipped"));
    EXPECT_THAT(reported(filtered), UnorderedElementsAre(Key("/other"), Key("/skipped")));
    filtered.tidy(true);
    write(at("skipped/sub/file"), "more");
    EXPECT_THAT(reported(filtered), IsEmpty());
}

} // namespace
} // namespace quorvel
