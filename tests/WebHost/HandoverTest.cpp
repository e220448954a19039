#include "WebHost/Handover.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <array>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

// Takes one handover, as the host does, and answers it.
std::string takeOne(const FileHandle& listener) {
    pollfd entry{listener.descriptor(), POLLIN, 0};
    if (::poll(&entry, 1, 10'000) != 1) {
        return "nobody came";
    }
    const FileHandle client(::accept(listener.descriptor(), nullptr, nullptr));
    std::string text;
    std::array<char, 4096> part{};
    for (ssize_t count = 1; count > 0;) {
        count = ::read(client.descriptor(), part.data(), part.size());
        text.append(part.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    client.write("1");
    return text;
}

TEST(HandoverTest, IsReadAsItWasWritten) {
    for (const WebHandover& handover :
         {WebHandover{}, WebHandover{"https://example.com/a?b=c", "token-1"},
          WebHandover{"", "token"}}) {
        EXPECT_EQ(WebHandover::parse(handover.text()), handover);
    }
}

TEST(HandoverTest, AnythingElseIsRefused) {
    for (const char* text : {"", "\n", "\n\n\n", "https://example.com/", "https://example.com/\n",
                             "file:///etc/passwd\n\n", "javascript:alert(1)\n\n", "example.com\n\n",
                             "https://example.com/\nt\nmore\n"}) {
        EXPECT_EQ(WebHandover::parse(text), std::nullopt) << text;
    }
    EXPECT_EQ(WebHandover::parse("\n" + std::string(longestHandover, 'x') + "\n"), std::nullopt);
}

TEST(HandoverTest, ReachesAListenerInAHomeWithAnyPath) {
    const TemporaryFolder folder;
    const fs::path home = folder / std::string(200, 'h');
    fs::create_directory(home);
    const WebHandover handover{"https://example.com/" + std::string(20'000, 'x'), "token"};
    EXPECT_FALSE(sendHandover(home, handover, 1s)) << "nobody listens";
    {
        const FileHandle listener = listenForHandovers(home);
        ASSERT_GE(listener.descriptor(), 0);
        struct stat facts {};
        ASSERT_EQ(::stat((home / ".quorvel-web-socket").c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777U, 0600U);
        std::string taken;
        std::thread host([&] { taken = takeOne(listener); });
        EXPECT_TRUE(sendHandover(home, handover, 10s));
        host.join();
        EXPECT_EQ(taken, handover.text());
        EXPECT_FALSE(sendHandover(home, handover, 50ms)) << "nobody answers";
    }
    EXPECT_FALSE(sendHandover(home, handover, 1s)) << "the socket is left behind";
    EXPECT_GE(listenForHandovers(home).descriptor(), 0) << "and is replaced";
}

TEST(HandoverTest, NothingButASocketIsReplaced) {
    const TemporaryFolder home;
    write(home / ".quorvel-web-socket", "precious");
    EXPECT_EQ(listenForHandovers(home.path()).descriptor(), -1);
    EXPECT_EQ(read(home / ".quorvel-web-socket"), "precious");
}

} // namespace
} // namespace quorvel
