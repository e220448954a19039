// Files that web clones download, with the real engine.
#include "Base/StableHash.h"
#include "Base/Utf8.h"
#include "WebHost/Downloads/DownloadName.h"
#include "tests/EndToEnd/WebCloneFixture.h"
#include "tests/WebHost/Downloads/HostileNames.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <set>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class WebDownloadsTest : public WebCloneFixture {
protected:
    // What must stay as it is.
    void addFiles() {
        for (const char* name : mine) {
            session->write(downloads() / name, "mine");
        }
        session->write(session->home / "precious", "mine");
        fs::create_symlink(session->home / "precious", downloads() / "evil.exe");
        fs::create_symlink(session->home / "missing", downloads() / "bashrc");
        fs::create_directory(downloads() / "profile");
    }

    // What was downloaded has safe names, and all else is as it was. Returns what is in the files.
    [[nodiscard]] std::set<std::string> downloadedSafely() const {
        for (const char* name : mine) {
            EXPECT_EQ(read(downloads() / name), "mine") << name;
        }
        EXPECT_EQ(fs::read_symlink(downloads() / "evil.exe"), session->home / "precious");
        EXPECT_EQ(fs::read_symlink(downloads() / "bashrc"), session->home / "missing");
        EXPECT_EQ(read(session->home / "precious"), "mine");
        EXPECT_FALSE(fs::exists(session->home / "missing"));
        EXPECT_TRUE(fs::is_empty(downloads() / "profile"));
        std::set<std::string> numbers;
        for (const auto& entry : fs::directory_iterator(downloads())) {
            const std::string name = entry.path().filename().string();
            if (!isDownloaded(entry)) {
                continue;
            }
            struct stat facts {};
            EXPECT_EQ(::lstat(entry.path().c_str(), &facts), 0);
            EXPECT_EQ(facts.st_mode & 07777U, 0600U) << name;
            EXPECT_EQ(safeDownloadName(name), name) << "it is a safe name";
            EXPECT_TRUE(isUtf8(name)) << name;
            numbers.insert(read(entry.path()));
        }
        return numbers;
    }

    [[nodiscard]] static bool isDownloaded(const fs::directory_entry& entry) {
        return entry.symlink_status().type() == fs::file_type::regular &&
               std::find(mine.begin(), mine.end(), entry.path().filename()) == mine.end();
    }
    [[nodiscard]] std::size_t countDownloaded() const {
        return static_cast<std::size_t>(
            std::count_if(fs::directory_iterator(downloads()), {}, isDownloaded));
    }

    static constexpr std::array mine{"passwd", "evil.sh", "x.desktop"};

    [[nodiscard]] fs::path downloads() const { return session->home / "Downloads"; }

    // Returns a line for each of the user's files, without those in the folder of downloads, what
    // the desktop writes down, and the clones' own data.
    [[nodiscard]] std::string everythingElse() const {
        std::set<std::string> lines;
        for (auto at = fs::recursive_directory_iterator(session->home); at != fs::end(at); ++at) {
            const fs::path& file = at->path();
            if (file == downloads() || file.filename() == ".cache" ||
                file.filename() == "gvfs-metadata" || file.filename() == "QuorvelInstances") {
                at.disable_recursion_pending();
            } else if (!at->is_directory() && file != requests()) {
                lines.insert(file.string() + " " + stableHash(read(file)) + "\n");
            }
        }
        return std::accumulate(lines.begin(), lines.end(), std::string());
    }

    // Returns the addresses of files with hostile names, by the header and by the address.
    [[nodiscard]] std::string hostileAddresses(std::size_t& count) const {
        std::string names;
        std::string addresses;
        for (const auto& [hostile, safe] : hostileNames()) {
            const std::string encoded = percentEncoded(hostile);
            const std::string number = std::to_string(count++);
            names += encoded + "\n";
            addresses += address("file?download=" + number) + "\n" +
                         address("by-address/" + encoded + "?download=-" + number) + "\n";
        }
        session->write(session->home / "names", names);
        return addresses;
    }

    static std::string percentEncoded(const std::string& text) {
        std::string encoded;
        for (const unsigned char byte : text) {
            char code[4];
            std::snprintf(code, sizeof code, "%%%02X", unsigned{byte});
            encoded += code;
        }
        return encoded;
    }
};

TEST_F(WebDownloadsTest, HostileNamesReachNothingButTheFolder) {
    addFiles();
    std::size_t count = 0;
    session->write(session->home / "addresses", hostileAddresses(count));
    const std::string before = everythingElse();
    ASSERT_GE(count, 40U);

    const std::string program = QUORVEL_DOWNLOAD_FILES;
    ASSERT_EQ(session->run({"/bin/sh", "-c", "exec \"$0\" \"$1\" <\"$2\"", program,
                            downloads().string(), (session->home / "addresses").string()}),
              0)
        << session->log();

    EXPECT_EQ(everythingElse(), before);
    EXPECT_EQ(downloadedSafely().size(), 2 * count) << "each is there, once: " << session->log();
}

#ifdef QUORVEL_ACCESSIBLE
// Three clones, since each lets the user answer twice a second at most.
TEST_F(WebDownloadsTest, HostileNamesThatTheUserAgreesToAreHarmless) {
    addFiles();
    std::size_t count = 0;
    (void)hostileAddresses(count);
    const std::vector<std::string> names{"Portal", "Forum", "Shop"};
    for (std::size_t index = 0; index < names.size(); ++index) {
        create(names[index], "names?" + std::to_string(index) + "," + std::to_string(count) + "," +
                                 std::to_string(names.size()));
        ASSERT_EQ(open(names[index]), 0) << session->log();
    }
    std::vector<std::string> windows;
    windows.reserve(names.size());
    for (const std::string& name : names) {
        windows.push_back(window("Names.* — " + name));
    }
    const std::string before = everythingElse();
    constexpr std::size_t atOnce = 5; // of each
    for (std::size_t asked = 0; asked < count;) {
        asked = std::min(asked + atOnce * names.size(), count);
        for (const std::string& each : windows) {
            session->run({"/usr/bin/xdotool", "windowactivate", "--sync", each, "key", "n"});
        }
        ASSERT_TRUE(waitUntil(
            [&] {
                (void)session->run({QUORVEL_ACCESSIBLE, "press-all", "Download"});
                return countDownloaded() == asked;
            },
            longestWait))
            << asked << controls();
    }
    EXPECT_EQ(everythingElse(), before);
    EXPECT_EQ(downloadedSafely().size(), count) << "each is there, once";
    for (const auto& entry : fs::recursive_directory_iterator(session->home / "QuorvelInstances")) {
        for (const auto& [hostile, safe] : hostileNames()) {
            EXPECT_NE(entry.path().filename(), safe) << entry.path();
        }
    }
}
#endif

} // namespace
} // namespace quorvel
