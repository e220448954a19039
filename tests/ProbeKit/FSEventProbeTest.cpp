#include "ProbeKit/FSEventProbe.h"
#include "tests/support/InotifyLimit.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

TEST(FSEventProbeTest, NeverStartedItHasNothing) {
    FSEventProbe probe({"/"});
    EXPECT_THAT(probe.stopAndDrain(), IsEmpty());
    EXPECT_TRUE(probe.isComplete());
}

TEST(FSEventProbeTest, StoppedTwiceItReturnsTheSameTwice) {
    const TemporaryFolder folder;
    FSEventProbe probe({folder.path()});
    probe.start();
    write(folder / "file", "text");
    const auto first = probe.stopAndDrain();
    write(folder / "later", "text");
    EXPECT_EQ(probe.stopAndDrain(), first);
    EXPECT_FALSE(first.empty());
}

TEST(FSEventProbeTest, StartedTwiceItRecordsIntoOneListTwice) {
    const TemporaryFolder folder;
    FSEventProbe probe({folder.path()});
    probe.start();
    probe.start();
    fs::create_directory(folder / "dir");
    const WriteEvent event{folder / "dir", true, true, false, false};
    EXPECT_THAT(probe.stopAndDrain(), ElementsAre(event, event));
}

TEST(FSEventProbeTest, ABatchWithoutAFlagForEachPathAddsNothing) {
    FSEventProbe probe({});
    probe.receive({{"/a", "/b"}, {FSEventFlag::itemCreated}});
    probe.receive({{"/a"}, {FSEventFlag::itemCreated, FSEventFlag::itemCreated}});
    probe.receive({});
    EXPECT_THAT(probe.stopAndDrain(), IsEmpty());
}

TEST(FSEventProbeTest, OnlyCreationsModificationsAndRenamesCount) {
    FSEventProbe probe({});
    constexpr std::uint32_t ownerChanged = 0x00004000;
    probe.receive({{"/removed", "/owner", "/both", "/none"},
                   {FSEventFlag::itemRemoved, ownerChanged,
                    FSEventFlag::itemCreated | FSEventFlag::itemModified, 0}});
    EXPECT_THAT(probe.stopAndDrain(), ElementsAre(WriteEvent{"/both", false, true, true, false}));
}

TEST(FSEventProbeTest, WhatTheSystemLostIsKept) {
    FSEventProbe probe({});
    probe.receive({{"/"}, {FSEventFlag::mustScanSubDirs}});
    EXPECT_THAT(probe.stopAndDrain(), IsEmpty());
    EXPECT_FALSE(probe.isComplete());
}

TEST(FSEventProbeTest, EventsComeOnAQueueOfItsOwn) {
    const TemporaryFolder folder;
    const auto queues = [] {
        int count = 0;
        for (const auto& task : fs::directory_iterator("/proc/self/task")) {
            count += read(task.path() / "comm") == "app.quorvel.fsp\n" ? 1 : 0;
        }
        return count;
    };
    FSEventProbe probe({folder.path()});
    probe.start();
    EXPECT_TRUE(waitUntil([&] { return queues() == 1; }));
    (void)probe.stopAndDrain();
    EXPECT_EQ(queues(), 0);
}

TEST(FSEventProbeTest, AsksForItsFoldersInTheirOrderWithATenthOfASecondOfLatency) {
    const FSEventStream::Options options = FSEventProbe({"/b", "/a"}).streamOptions();
    EXPECT_THAT(options.paths, ElementsAre("/b", "/a"));
    EXPECT_EQ(options.latency, std::chrono::milliseconds(100));
    EXPECT_EQ(options.queueLabel, "app.quorvel.fsprobe");
}

TEST(FSEventProbeTest, WithoutAStreamItHasNothingAndSaysSo) {
    if (!holdsInChild([] { return limitInotify(InotifyLimit::instances, 1); })) {
        GTEST_SKIP() << "the system gives no limits of one's own";
    }
    const TemporaryFolder folder;
    EXPECT_TRUE(holdsInChild([&] {
        if (!limitInotify(InotifyLimit::instances, 1)) {
            return false;
        }
        FSEventProbe probe({folder.path()});
        probe.start();
        write(folder / "file", "text");
        return probe.stopAndDrain().empty() && !probe.isComplete();
    }));
}

} // namespace
} // namespace quorvel
