#include "Platform/processes/LockWaiters_linux.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(LockWaitersTest, AreMarkedByAnArrow) {
    EXPECT_THAT(lockWaiters("1: POSIX  ADVISORY  READ  101 fe:01:8000 128 128\n"
                            "2: FLOCK  ADVISORY  WRITE 102 00:19:77 0 EOF\n"
                            "2: -> FLOCK  ADVISORY  WRITE 103 00:19:77 0 EOF\n"
                            "2: -> POSIX  ADVISORY  READ  104 00:19:77 0 EOF\n"
                            "2:  -> FLOCK  ADVISORY  WRITE 105 00:19:77 0 EOF"),
                ElementsAre(103, 104, 105));
    EXPECT_THAT(lockWaiters(""), IsEmpty());
    EXPECT_THAT(lockWaiters("-> FLOCK\n-> \n->\n2: -> a b c d e\n\n"), IsEmpty());
}

} // namespace
} // namespace quorvel
