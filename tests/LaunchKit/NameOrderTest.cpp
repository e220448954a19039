#include "LaunchKit/NameOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>

namespace quorvel {
namespace {

using ::testing::ElementsAre;

struct Item {
    std::string name;
    int number;

    bool operator==(const Item&) const = default;
};

TEST(NameOrderTest, IgnoresCaseAndKeepsTheOrderOfEqualNames) {
    const std::vector<Item> items{{"beta", 1}, {"Alpha", 2}, {"alpha", 3}, {"Gamma", 4}};
    EXPECT_THAT(sortedByName(items, &Item::name),
                ElementsAre(Item{"Alpha", 2}, Item{"alpha", 3}, Item{"beta", 1}, Item{"Gamma", 4}));
    EXPECT_TRUE(sortedByName(std::vector<Item>{}, &Item::name).empty());
}

TEST(NameOrderTest, EveryPermutationMovesEachRecordToItsPlace) {
    std::vector<std::size_t> order(6);
    std::iota(order.begin(), order.end(), 0U);
    do {
        std::vector<std::string> records{"0", "1", "2", "3", "4", "5"};
        permute(records, order);
        for (std::size_t index = 0; index < order.size(); ++index) {
            ASSERT_EQ(records[index], std::to_string(order[index]));
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

} // namespace
} // namespace quorvel
