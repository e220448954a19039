// Files that web clones download, with the real engine.
#include "Base/StableHash.h"
#include "Base/Utf8.h"
#include "WebHost/Downloads/DownloadName.h"
#include "tests/EndToEnd/WebCloneFixture.h"
#include "tests/WebHost/Downloads/HostileNames.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <map>
#include <numeric>
#include <set>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class WebDownloadsTest : public WebCloneFixture {
protected:
    [[nodiscard]] fs::path downloads() const { return session->home / "Downloads"; }

    // Returns a line for each of the user's files, without those in the folder of downloads and
    // what the desktop writes down.
    [[nodiscard]] std::string everythingElse() const {
        std::set<std::string> lines;
        for (auto at = fs::recursive_directory_iterator(session->home); at != fs::end(at); ++at) {
            const fs::path& file = at->path();
            if (file == downloads() || file.filename() == ".cache" ||
                file.filename() == "gvfs-metadata") {
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
    const std::map<std::string, std::string> mine{
        {"passwd", "mine"}, {"evil.sh", "mine"}, {"x.desktop", "mine"}};
    for (const auto& [name, text] : mine) {
        session->write(downloads() / name, text);
    }
    session->write(session->home / "precious", "mine");
    fs::create_symlink(session->home / "precious", downloads() / "evil.exe");
    fs::create_symlink(session->home / "missing", downloads() / "bashrc");
    fs::create_directory(downloads() / "profile");
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
    for (const auto& [name, text] : mine) {
        EXPECT_EQ(read(downloads() / name), text) << name;
    }
    EXPECT_EQ(fs::read_symlink(downloads() / "evil.exe"), session->home / "precious");
    EXPECT_EQ(fs::read_symlink(downloads() / "bashrc"), session->home / "missing");
    std::set<std::string> numbers;
    for (const auto& entry : fs::directory_iterator(downloads())) {
        const std::string name = entry.path().filename().string();
        struct stat facts {};
        ASSERT_EQ(::lstat(entry.path().c_str(), &facts), 0);
        if (!S_ISREG(facts.st_mode) || mine.contains(name)) {
            continue;
        }
        EXPECT_EQ(facts.st_mode & 07777U, 0600U) << name;
        EXPECT_EQ(safeDownloadName(name), name) << "it is a safe name";
        EXPECT_TRUE(isUtf8(name)) << name;
        numbers.insert(read(entry.path()));
    }
    EXPECT_EQ(numbers.size(), 2 * count) << "each is there, once: " << session->log();
}

} // namespace
} // namespace quorvel
