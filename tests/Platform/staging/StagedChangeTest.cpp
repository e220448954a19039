#include "Platform/staging/StagedChange.h"

#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/EveryStep.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/TemporaryHome.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

int withoutExchange(int /*folder*/, const char* /*name*/, int /*other*/,
                    const char* /*otherName*/) {
    errno = EINVAL;
    return -1;
}

class StagedChangeTest : public ::testing::Test {
protected:
    using Tree = std::map<std::string, std::string>;

    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }
    [[nodiscard]] std::vector<std::string> names() const {
        return directoryEntries(folder_.path()).value();
    }

    void makeOld() const {
        fs::remove_all(at("item"));
        write(at("item/inside/a"), "old");
        write(at("item/b"), "old");
    }

    static void stage(const StagedChange& change) {
        write(change.path() / "item/inside/a", "new");
        write(change.path() / "item/c", "new");
    }

    void publish(StagedChange::Exchange exchange) const {
        StagedChange change(folder_.path(), std::move(exchange));
        stage(change);
        change.publish("item", "item");
    }

    // Interrupts the replacement of an item at every system call.
    void interruptEverywhere(const StagedChange::Exchange& exchange, bool mayBeAway) const {
        const Tree oldTree{{"inside", "<folder>"}, {"inside/a", "old"}, {"b", "old"}};
        const Tree newTree{{"inside", "<folder>"}, {"inside/a", "new"}, {"c", "new"}};
        bool wasAway = false;
        for (int step = 0;; ++step) {
            makeOld();
            const Kill kill = withFault(step, {}, [&] { publish(exchange); }).kill;
            if (kill == Kill::notPermitted) {
                GTEST_SKIP() << "the kernel forbids tracing";
            }
            wasAway = wasAway || !fs::exists(at("item"));
            EXPECT_TRUE(mayBeAway || fs::exists(at("item"))) << step;
            (void)StagedChange::interruptedIn(folder_.path());
            EXPECT_THAT(names(), ElementsAre("item")) << step;
            const Tree tree = treeOf(at("item"));
            EXPECT_TRUE(tree == oldTree || tree == newTree) << step;
            if (kill == Kill::ended) {
                EXPECT_EQ(tree, newTree);
                break;
            }
        }
        EXPECT_EQ(wasAway, mayBeAway);
    }

    TemporaryFolder folder_;
};

TEST_F(StagedChangeTest, AReplacementIsTheOldItemOrTheNewOneWhereverItIsCutOff) {
    interruptEverywhere(exchangeItems, false);
}

TEST_F(StagedChangeTest, WithoutAnExchangeTheNextCleanupPutsTheOldItemBack) {
    interruptEverywhere(withoutExchange, true);
}

TEST_F(StagedChangeTest, ACallThatFailsLeavesTheOldItemAndAnErrorOrTheNewOne) {
    if (isSanitized) {
        GTEST_SKIP() << "calls of the sanitizer's own would fail";
    }
    const Tree oldTree{{"inside", "<folder>"}, {"inside/a", "old"}, {"b", "old"}};
    for (const auto& exchange :
         {StagedChange::Exchange(exchangeItems), StagedChange::Exchange(withoutExchange)}) {
        bool failed = false;
        for (int step = 0;; ++step) {
            makeOld();
            const FaultOutcome outcome = withFault(step, {EIO}, [&] { publish(exchange); });
            if (outcome.kill == Kill::notPermitted) {
                GTEST_SKIP() << "the kernel forbids tracing";
            }
            failed = failed || outcome.status != 0;
            EXPECT_EQ(treeOf(at("item")) == oldTree, outcome.status != 0) << step;
            (void)StagedChange::interruptedIn(folder_.path());
            EXPECT_THAT(names(), ElementsAre("item")) << step;
            if (outcome.kill == Kill::ended) {
                break;
            }
        }
        EXPECT_TRUE(failed);
    }
}

TEST_F(StagedChangeTest, AnItemIsMadeWhereNothingIs) {
    publish(exchangeItems);
    EXPECT_EQ(read(at("item/c")), "new");
    EXPECT_THAT(names(), ElementsAre("item"));
}

TEST_F(StagedChangeTest, ALinkIsReplacedAndNotFollowed) {
    write(at("kept/file"), "mine");
    for (const auto& exchange :
         {StagedChange::Exchange(exchangeItems), StagedChange::Exchange(withoutExchange)}) {
        fs::remove_all(at("item"));
        fs::create_directory_symlink("kept", at("item"));
        publish(exchange);
        EXPECT_FALSE(fs::is_symlink(at("item")));
        EXPECT_EQ(read(at("kept/file")), "mine");
    }
}

TEST_F(StagedChangeTest, WhatWasReplacedIsStagedInItsPlace) {
    makeOld();
    StagedChange change(folder_.path());
    stage(change);
    fs::rename(change.path() / "item", change.path() / "another");
    change.publish("another", "item");
    EXPECT_EQ(read(change.path() / "another/b"), "old");
    EXPECT_EQ(read(at("item/c")), "new");
}

TEST_F(StagedChangeTest, AChangeThatIsStillGoingOnIsNotInterrupted) {
    StagedChange change(folder_.path());
    stage(change);
    EXPECT_THAT(StagedChange::interruptedIn(folder_.path()), IsEmpty());
    EXPECT_EQ(read(change.path() / "item/c"), "new");
}

TEST_F(StagedChangeTest, CleaningUpTouchesOnlyFoldersOfChanges) {
    fs::create_directory(at(".quorvel-change-mine"));
    fs::create_directory(at("a.quorvel-change-0F2504E0-4F89-41D3-9A0C-0305E82C3301"));
    write(at(".quorvel-change-2F2504E0-4F89-41D3-9A0C-0305E82C3301"), "a file");
    fs::create_directory(at("kept"));
    fs::create_directory_symlink("kept",
                                 at(".quorvel-change-1F2504E0-4F89-41D3-9A0C-0305E82C3301"));
    EXPECT_THAT(StagedChange::interruptedIn(folder_.path()), IsEmpty());
    EXPECT_EQ(names().size(), 5U);
}

TEST_F(StagedChangeTest, NothingIsReplacedByWhatOnlyMoves) {
    makeOld();
    write(at("other"), "mine");
    StagedChange change(folder_.path());
    EXPECT_THROW(change.rename("item", "other"), PlatformError);
    ASSERT_TRUE(change.withdraw("item", "away", *identityOf(at("item"))));
    write(at("item"), "came meanwhile");
    EXPECT_THROW(change.restore("away", "item"), PlatformError);
    change.restore("away", "back");
    EXPECT_EQ(read(at("item")), "came meanwhile");
    EXPECT_EQ(read(at("other")), "mine");
    EXPECT_EQ(read(at("back/b")), "old");
}

TEST_F(StagedChangeTest, OnlyTheItemThatIsMeantIsWithdrawn) {
    makeOld();
    const auto meant = *identityOf(at("item"));
    fs::rename(at("item"), at("elsewhere"));
    StagedChange change(folder_.path());
    EXPECT_FALSE(change.withdraw("item", "item", meant)) << "it is gone";
    write(at("item"), "another");
    EXPECT_FALSE(change.withdraw("item", "item", meant));
    EXPECT_EQ(read(at("item")), "another");
    EXPECT_FALSE(change.holds("item"));
}

TEST_F(StagedChangeTest, NotesOutliveAnInterruption) {
    {
        StagedChange change(folder_.path());
        change.note("plan", "what to do");
        change.keep();
    }
    {
        std::vector<StagedChange> left = StagedChange::interruptedIn(folder_.path());
        ASSERT_EQ(left.size(), 1U);
        EXPECT_EQ(left.front().noted("plan"), "what to do");
        left.front().forget("plan");
        EXPECT_EQ(left.front().noted("plan"), std::nullopt);
    }
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(StagedChangeTest, AFolderThatIsMissingIsNamed) {
    try {
        const StagedChange change(at("missing"));
        FAIL() << "it was made";
    } catch (const PlatformError& error) {
        EXPECT_THAT(error.description(), ::testing::HasSubstr("“missing” couldn’t be changed"));
    }
}

} // namespace
} // namespace quorvel
