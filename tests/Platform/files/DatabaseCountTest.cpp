#include "Platform/files/DatabaseCount.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class DatabaseCountTest : public ::testing::Test {
protected:
    DatabaseCountTest() {
        fs::create_directory(scratch_);
        sqlite3* database = nullptr;
        EXPECT_EQ(sqlite3_open(database_.c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database,
                               "create table cookies(name);"
                               "insert into cookies values('a'), ('b');",
                               nullptr, nullptr, nullptr),
                  SQLITE_OK);
        sqlite3_close(database);
    }
    [[nodiscard]] std::optional<std::size_t> count() const {
        return countInDatabase(database_, scratch_, "SELECT count(*) FROM cookies");
    }

    TemporaryFolder folder_;
    fs::path database_ = folder_ / "Cookies";
    fs::path scratch_ = folder_ / "scratch";
};

TEST_F(DatabaseCountTest, CountsAndLeavesNothing) {
    EXPECT_EQ(count(), 2);
    EXPECT_TRUE(fs::is_empty(scratch_));
    EXPECT_EQ(countInDatabase(database_, scratch_, "SELECT count(*) FROM logins"), std::nullopt);
    EXPECT_EQ(countInDatabase(folder_ / "none", scratch_, "SELECT 1"), std::nullopt);
    EXPECT_TRUE(fs::is_empty(scratch_));
}

TEST_F(DatabaseCountTest, ACopyThatFailsHalfwayLeavesNothing) {
    const fs::path journal = folder_ / "Cookies-wal";
    fs::create_directory(journal);
    EXPECT_EQ(count(), std::nullopt);
    EXPECT_TRUE(fs::is_empty(scratch_));
    fs::remove(journal);
    EXPECT_EQ(count(), 2);
}

TEST_F(DatabaseCountTest, ItsJournalsAddToItsSize) {
    const fs::path journal = folder_ / "Cookies-wal";
    write(journal, "");
    fs::resize_file(journal, std::uintmax_t{256} << 20U);
    EXPECT_EQ(count(), std::nullopt);
    fs::resize_file(journal, 100);
    EXPECT_EQ(count(), 2);
}

} // namespace
} // namespace quorvel
