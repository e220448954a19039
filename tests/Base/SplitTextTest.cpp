#include "Base/SplitText.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> parts(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        parts.emplace_back(takePart(list, ':'));
    }
    return parts;
}

TEST(SplitTextTest, PartsAreTakenInTheirOrder) {
    EXPECT_THAT(parts("a:bc:d"), ElementsAre("a", "bc", "d"));
    EXPECT_THAT(parts("alone"), ElementsAre("alone"));
    EXPECT_THAT(parts(""), IsEmpty());
}

TEST(SplitTextTest, PartsMayBeEmptyButForOneAfterTheLastSeparator) {
    EXPECT_THAT(parts(":a::b:"), ElementsAre("", "a", "", "b"));
    EXPECT_THAT(parts(":"), ElementsAre(""));
}

} // namespace
} // namespace quorvel
