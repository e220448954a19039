#include "Platform/watching/EventCoalescer.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using namespace std::chrono_literals;

const EventCoalescer::Clock::time_point start{1000s};

TEST(EventCoalescerTest, HasNothingToDeliverAtFirst) {
    EXPECT_EQ(EventCoalescer(100ms).due(), std::nullopt);
}

TEST(EventCoalescerTest, TheFirstEventAfterAQuietPeriodIsDueImmediately) {
    EventCoalescer coalescer(100ms);
    coalescer.add("/a", FSEventFlag::itemCreated);
    EXPECT_LE(coalescer.due(), start);
}

TEST(EventCoalescerTest, LaterEventsAreCollectedForTheLatency) {
    EventCoalescer coalescer(100ms);
    coalescer.add("/a", FSEventFlag::itemCreated);
    EXPECT_THAT(coalescer.take(start).paths, ElementsAre("/a"));
    EXPECT_EQ(coalescer.due(), std::nullopt);
    coalescer.add("/b", FSEventFlag::itemCreated);
    EXPECT_EQ(coalescer.due(), start + 100ms);
}

TEST(EventCoalescerTest, ChangesOfOneItemAreOneEventAtThePositionOfTheFirst) {
    EventCoalescer coalescer(100ms);
    coalescer.add("/a", FSEventFlag::itemCreated);
    coalescer.add("/b", FSEventFlag::itemRenamed);
    coalescer.add("/a", FSEventFlag::itemModified);
    const FSEventBatch batch = coalescer.take(start);
    EXPECT_THAT(batch.paths, ElementsAre("/a", "/b"));
    EXPECT_THAT(batch.flags, ElementsAre(FSEventFlag::itemCreated | FSEventFlag::itemModified,
                                         FSEventFlag::itemRenamed));
}

TEST(EventCoalescerTest, AChangeAfterTheDeliveryIsANewEvent) {
    EventCoalescer coalescer(100ms);
    coalescer.add("/a", FSEventFlag::itemCreated);
    (void)coalescer.take(start);
    coalescer.add("/a", FSEventFlag::itemModified);
    EXPECT_THAT(coalescer.take(start).flags, ElementsAre(FSEventFlag::itemModified));
}

} // namespace
} // namespace quorvel
