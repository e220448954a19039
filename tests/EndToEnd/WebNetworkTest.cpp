// How web clones reach their sites, with the real engine.
#include "tests/EndToEnd/WebCloneFixture.h"
#include "tests/support/PrivateMounts.h"

#include <gmock/gmock.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

using WebNetworkTest = WebCloneFixture;

// The system's list of those who certify sites.
constexpr const char* authorities = "/etc/ssl/certs/ca-certificates.crt";

TEST_F(WebNetworkTest, AHostThatDemandsEncryptionKeepsItForOneClone) {
    // What this process mounts is there for the session's programs too.
    if (::getuid() != 0 || !fs::exists(authorities) || !hasOwnMounts()) {
        GTEST_SKIP() << "the system's list of authorities can't be replaced";
    }
    const fs::path tls = session->home / "tls";
    ASSERT_TRUE(startSite("other-port", {tls.string()}));
    bindMount(tls / "authority.cert", authorities);
    const std::string place = "://site.localhost:" + read(tls / "trusted") + "/";
    const auto show = [&](const std::string& name, const std::string& address) {
        EXPECT_EQ(session->run({runner(name), address}), 0);
    };
    create("Portal", "", {"--open-with"});
    ASSERT_EQ(open("Portal"), 0) << session->log();
    show("Portal", "https" + place + "strict");
    request("/strict-seen");
    for (int restart = 0; restart < 2; ++restart) {
        end("Portal");
        ASSERT_EQ(open("Portal"), 0) << session->log();
        const std::size_t before = read(requests()).size();
        show("Portal", "http" + place + "later");
        EXPECT_EQ(request("/later-seen", before), "/later-seen?https:") << restart;
    }
    // The port understands nothing else.
    create("Forum", "", {"--open-with"});
    ASSERT_EQ(open("Forum"), 0) << session->log();
    const std::size_t before = read(requests()).size();
    show("Forum", "http" + place + "later");
    window("Can’t open site.localhost.* — Forum");
    EXPECT_THAT(read(requests()).substr(before), Not(HasSubstr("/later")));
}

TEST_F(WebNetworkTest, AProxyIsAskedForEveryPage) {
    const std::string proxy = address("").substr(0, address("").size() - 1);
    create("Portal", "facts", {"--open-with"});
    session->write(data("Portal") / ".local/share/quorvel/web/settings.json",
                   R"({"proxy":"address","proxyAddress":")" + proxy + R"("})");
    ASSERT_EQ(open("Portal"), 0) << session->log();
    request(proxy + "/facts-seen");
    // Only the proxy can know this host.
    ASSERT_EQ(session->run({runner("Portal"), "http://portal.test/facts"}), 0);
    request("http://portal\\.test/facts-seen");
    EXPECT_THAT(read(requests()), Not(ContainsRegex("(^|\n)/"))) << "all went through the proxy";
}

} // namespace
} // namespace quorvel
