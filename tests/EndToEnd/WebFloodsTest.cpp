// Pages that want too much, or what is not theirs, with the real engine.
#include "WebHost/Pages/FloodCaps.h"
#include "tests/EndToEnd/WebCloneFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

class WebFloodsTest : public WebCloneFixture {
protected:
    // Opens a clone with such a page; returns its window.
    std::string openPage(const std::string& page, const std::string& title) {
        create("Portal", page, {"--open-with"});
        EXPECT_EQ(open("Portal"), 0) << session->log();
        return window(title + ".* — Portal");
    }

    [[nodiscard]] std::ptrdiff_t windows() const {
        const std::string all = windowsNamed(" — Portal$");
        return std::count(all.begin(), all.end(), '\n');
    }

    // Returns the names in Downloads.
    [[nodiscard]] std::vector<std::string> downloads() const {
        std::vector<std::string> names;
        std::error_code code;
        for (const auto& entry : fs::directory_iterator(session->home / "Downloads", code)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
    [[nodiscard]] std::ptrdiff_t staged() const {
        const auto all = downloads();
        return std::count_if(all.begin(), all.end(),
                             [](const auto& name) { return name.starts_with(".quorvel-"); });
    }

    // Waits until the site is asked for nothing more.
    void waitUntilQuiet() const {
        EXPECT_TRUE(waitUntil(
            [&] {
                const std::size_t size = read(requests()).size();
                return !waitUntil([&] { return read(requests()).size() > size; }, 1s);
            },
            longestWait));
    }

    // Refuses all downloads that are asked about; returns the questions.
    [[nodiscard]] std::set<std::string> refusedDownloads() const {
        const std::regex question("wants to download another file, “named-[0-9]+”");
        std::set<std::string> questions;
        std::string names;
        std::smatch found;
        while (questions.size() <= mostWaitingQuestions &&
               waitUntil(
                   [&] {
                       names = controls();
                       return std::regex_search(names, found, question);
                   },
                   500ms)) {
            questions.insert(found.str());
            session->run({QUORVEL_ACCESSIBLE, "press", "Don’t Download"});
        }
        return questions;
    }
};

TEST_F(WebFloodsTest, AThousandOfAnythingIsBounded) {
    recordBus("interface='com.canonical.Unity.LauncherEntry'");
    const std::string shown = openPage("flood", "Flood");
    const fs::path titles = session->home / "titles";
    session
        ->start({"/bin/sh", "-c", "exec xprop -spy -id \"$0\" _NET_WM_NAME >\"$1\"", shown,
                 titles.string()})
        .detach();
    EXPECT_TRUE(waitUntil([&] { return !read(titles).empty(); }, longestWait));
    const auto begin = std::chrono::steady_clock::now();
    clickUntil(shown, "/flooded");
    EXPECT_EQ(request("/flooded"), "/flooded?1") << "one window per click";
    EXPECT_TRUE(waitUntil([&] { return windows() == 2; }, longestWait));
    EXPECT_EQ(session->run({runner("Portal")}), 0) << "the window answers";
    // One question about a thousand positions; the answer is for all.
    EXPECT_TRUE(isShown("127.0.0.1 wants to know where you are."));
    EXPECT_TRUE(waitUntil(
        [&] {
            session->run({QUORVEL_ACCESSIBLE, "press", "Don’t Allow"});
            return waitUntil(
                [&] { return read(requests()).find("/all-refused") != std::string::npos; }, 1s);
        },
        longestWait));
    EXPECT_THAT(controls(), Not(HasSubstr("wants to know where you are")));
    // Of the downloads, one starts by itself, and a few are asked about.
    EXPECT_TRUE(waitUntil([&] { return downloads().size() == 1; }, longestWait));
    request("/named\\?1000");
    waitUntilQuiet();
    EXPECT_THAT(controls(), ContainsRegex("[0-9]+ files were not downloaded: too many at once"));
    const std::set<std::string> questions = refusedDownloads();
    EXPECT_GE(questions.size(), 1U);
    EXPECT_LE(questions.size(), mostWaitingQuestions);
    EXPECT_EQ(downloads().size(), 1U);
    EXPECT_EQ(windows(), 2);
    // Titles and badges were shown at a rate, however many there were.
    window("\\(1000\\) Flood.* — Portal");
    const auto seconds =
        std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - begin);
    const std::string all = read(titles);
    EXPECT_LE(std::count(all.begin(), all.end(), '\n'), 4 * seconds.count() + 4);
    EXPECT_GE(countOnBus("member=Update"), 1);
    EXPECT_LE(countOnBus("member=Update"), 4 * seconds.count() + 4);
}

TEST_F(WebFloodsTest, SeveralDownloadsRunAtOnceAndTheDialogsOfAPageEnd) {
    const std::string shown = openPage("slow-downloads", "Many");
    EXPECT_TRUE(waitUntil([&] { return staged() == 1; }, longestWait));
    EXPECT_TRUE(waitUntil(
        [&] {
            session->run({QUORVEL_ACCESSIBLE, "press", "Download"});
            return waitUntil([&] { return staged() == 4; }, 1s);
        },
        longestWait))
        << controls();
    EXPECT_TRUE(isShown("Downloading 4 files: "));
    pressIn(shown, "ctrl+q");
    EXPECT_TRUE(isShown("Files are being downloaded.")) << "before the question about the fifth";
    activate("Keep Downloading");
    EXPECT_TRUE(waitUntil(
        [&] {
            session->run({QUORVEL_ACCESSIBLE, "press", "Download"});
            return controls().find(" %; “slow.bin” was not downloaded: too many at once") !=
                   std::string::npos;
        },
        longestWait))
        << controls();
    EXPECT_EQ(staged(), 4) << "and nothing has its name yet";
    EXPECT_EQ(downloads().size(), 4U);
    session->write(session->home / "release", "");
    EXPECT_TRUE(waitUntil([&] { return staged() == 0 && downloads().size() == 4; }, longestWait));
    for (const char* name : {"slow.bin", "slow (2).bin", "slow (3).bin", "slow (4).bin"}) {
        EXPECT_EQ(read(session->home / "Downloads" / name), std::string(200'000, 'x')) << name;
    }

    EXPECT_TRUE(isShown("” in “Downloads”; “slow.bin” was not downloaded: too many at once"));

    // A thousand dialogs: the third one offers an end.
    ASSERT_EQ(handOver("Portal", "dialogs"), 0);
    for (const char* text : {"Dialog 1", "Dialog 2"}) {
        EXPECT_TRUE(isShown(std::string("\t") + text + "\n"));
        pressIn(window("^127\\.0\\.0\\.1 says"), "Return");
    }
    EXPECT_TRUE(isShown("\tDialog 3\n"));
    activate("Stop Dialogs from This Page");
    request("/dialogs-over");
    EXPECT_TRUE(isGone("^127\\.0\\.0\\.1 says"));
}

TEST_F(WebFloodsTest, AHostilePageGetsNothing) {
    addBrowser();
    const std::string shown = openPage("hostile", "Hostile");
    EXPECT_THAT(request("/tried"),
                AllOf(HasSubstr("frame=undefined&"), HasSubstr("read=no&"),
                      HasSubstr("webkit=undefined&"), HasSubstr("inner=closed&")));
    EXPECT_EQ(session->outputOf({"/usr/bin/xdotool", "getwindowname", shown}),
              "\u2068Hostile  — Bank\u2069 — Portal\n")
        << "no character turns the text around, and the clone's name is the last";
    EXPECT_THAT(controls(), Not(HasSubstr("with another program")))
        << "it asks for no other program without a click";
    EXPECT_FALSE(fs::exists(browsed())) << read(browsed());
    // A page in full screen could look like anything.
    EXPECT_TRUE(waitUntil(
        [&] {
            click(shown);
            return waitUntil(
                [&] {
                    return controls().find("Portal is full screen. Press Esc") != std::string::npos;
                },
                2s);
        },
        longestWait));
}

} // namespace
} // namespace quorvel
