#include "QuorvelApp/model/LogFollower.h"

#include "tests/QuorvelApp/StubServices.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sys/stat.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

class LogFollowerTest : public ::testing::Test {
protected:
    // Starts to read; the rest of the test adds to what was read.
    void follow() {
        follower_ = std::make_unique<LogFollower>(tasks_, place.path().string());
        QObject::connect(follower_.get(), &LogFollower::read, follower_.get(),
                         [this](const QString& piece) {
                             text += piece.toStdString();
                             longestPiece = std::max(longestPiece, piece.count(u'\n'));
                         });
        QObject::connect(follower_.get(), &LogFollower::skipped, follower_.get(),
                         [this](std::uintmax_t bytes) { skipped = bytes; });
    }
    [[nodiscard]] bool reads(const std::string& expected) {
        return eventually([&] { return text == expected; }, std::chrono::seconds(5));
    }
    void add(const std::string& bytes) const {
        std::ofstream(log, std::ios::app | std::ios::binary) << bytes;
    }

    TemporaryFolder place;
    fs::path log = place / "quorvel-instance.log";
    std::string text{};
    std::uintmax_t skipped = 0;
    qsizetype longestPiece = 0; ///< in lines

private:
    std::shared_ptr<ThreadPoolTasks> tasks_ = std::make_shared<ThreadPoolTasks>();
    std::unique_ptr<LogFollower> follower_{};
};

TEST_F(LogFollowerTest, ReadsWhatIsThereAndWhatIsAdded) {
    add("one\n");
    follow();
    EXPECT_TRUE(reads("one\n")) << text;
    add("two\n");
    EXPECT_TRUE(reads("one\ntwo\n")) << text;
    EXPECT_EQ(skipped, 0U);
}

TEST_F(LogFollowerTest, WaitsForALogThatIsMissingAndGoesOnWhenItIsSetAside) {
    follow();
    EXPECT_FALSE(eventually([&] { return !text.empty(); }, std::chrono::milliseconds(50)));
    add("old\n");
    EXPECT_TRUE(reads("old\n")) << text;
    fs::rename(log, place / "quorvel-instance.log.1");
    add("new\n");
    EXPECT_TRUE(reads("old\nnew\n")) << text;
}

TEST_F(LogFollowerTest, ReadsOnlyTheEndOfALargeLogFromTheBeginningOfALine) {
    std::string bytes;
    while (bytes.size() <= LogFollower::most + 5000) {
        bytes += "line " + std::to_string(bytes.size()) + std::string(200, '.') + "\n";
    }
    bytes += "end\n";
    add(bytes);
    follow();
    EXPECT_TRUE(eventually([&] { return text.ends_with("end\n"); }));
    EXPECT_EQ(skipped, bytes.size() - LogFollower::most);
    EXPECT_TRUE(text.starts_with("line ")) << text.substr(0, 20);
    EXPECT_GT(text.size(), LogFollower::most - 100);
    EXPECT_TRUE(bytes.ends_with(text));
}

TEST_F(LogFollowerTest, HandsOutAFewLinesAtATimeAndNoMoreThanAreKept) {
    add(std::string(60000, '\n') + "end\n");
    follow();
    EXPECT_TRUE(eventually([&] { return text.ends_with("end\n"); }));
    EXPECT_EQ(text.size(), LogFollower::mostLines + 3U);
    EXPECT_EQ(longestPiece, LogFollower::linesAtOnce);
}

TEST_F(LogFollowerTest, BreaksEndlessLinesAndLosesNothing) {
    add(std::string(LogFollower::most + 10, 'x'));
    follow();
    const auto letters = [&] {
        return static_cast<std::uintmax_t>(std::count(text.begin(), text.end(), 'x'));
    };
    EXPECT_TRUE(eventually([&] { return letters() == LogFollower::most; }));
    EXPECT_EQ(text.find('\n'), static_cast<std::size_t>(LogFollower::longestLine));
    EXPECT_EQ(text.rfind('\n') % (LogFollower::longestLine + 1), LogFollower::longestLine)
        << "also across the pieces";
}

TEST_F(LogFollowerTest, ShowsControlAndBidirectionalCharactersHarmlessly) {
    add("\x1b[2J \xe2\x80\xae \xff\ttab\n");
    follow();
    EXPECT_TRUE(reads("\\u{1b}[2J \\u{202e} \\xff\ttab\n")) << text;
}

TEST_F(LogFollowerTest, ACharacterThatComesInTwoPiecesIsOne) {
    add("gr\xc3");
    follow();
    EXPECT_TRUE(reads("gr")) << text;
    add("\xbcn\n");
    EXPECT_TRUE(reads("grün\n")) << text;
}

TEST_F(LogFollowerTest, NeverWaitsForAFIFOAndFollowsALinkToAFile) {
    ASSERT_EQ(::mkfifo(log.c_str(), 0600), 0);
    follow();
    EXPECT_FALSE(eventually([&] { return !text.empty(); }, std::chrono::milliseconds(50)));
    write(place / "elsewhere", "linked\n");
    fs::remove(log);
    fs::create_symlink(place / "elsewhere", log);
    EXPECT_TRUE(reads("linked\n")) << text;
}

} // namespace
} // namespace quorvel::testing
