// What the user decides about web clones, with the real engine: settings, certificates, passwords.
#include "tests/EndToEnd/WebCloneFixture.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

class WebSettingsTest : public WebCloneFixture {
protected:
    [[nodiscard]] fs::path kept(const std::string& name) const {
        return data("Portal") / ".local/share/quorvel/web" / name;
    }
    [[nodiscard]] bool isKept(const std::string& file, const std::string& text) const {
        return waitUntil([&] { return read(kept(file)).find(text) != std::string::npos; },
                         longestWait);
    }

    // Opens the panel from the clone's window.
    void openSettings(const std::string& from) {
        pressIn(from, "ctrl+comma");
        EXPECT_TRUE(isActive(window("^Site Settings — Portal")));
    }

    // Focuses what has that mnemonic, and replaces its text.
    void enter(const std::string& mnemonic, const std::string& text) {
        press("alt+" + mnemonic);
        press("ctrl+a");
        type(text);
        press("Return");
    }

    // Opens a page again and again until the site is told this.
    void reloadUntil(const std::string& page, const std::string& text) {
        EXPECT_TRUE(waitUntil(
            [&] {
                (void)handOver("Portal", page);
                return waitUntil([&] { return read(requests()).find(text) != std::string::npos; },
                                 2s);
            },
            longestWait))
            << text;
    }

    [[nodiscard]] std::string secure(const std::string& which) const {
        return "https://127.0.0.1:" + read(session->home / "tls" / which) + "/";
    }
    int handOverAddress(const std::string& address) {
        return session->run({runner("Portal"), address});
    }
};

TEST_F(WebSettingsTest, WhatIsChosenInThePanelHoldsAndIsKept) {
    addBrowser();
    create("Portal", "facts", {"--open-with"});
    const std::string origin = address("").substr(0, address("").size() - 1);
    session->write(kept("permissions.json"),
                   R"({"permissions":{")" + origin +
                       R"( camera":"allow","https://a.b open-mailto":"deny"}})");
    session->write(kept("certificates.json"), "{damaged");
    ASSERT_EQ(open("Portal"), 0) << session->log();
    EXPECT_THAT(request("/facts-seen"), HasSubstr("dark=false&wide=true&agent=Mozilla"));
    const std::string shown = window("Facts.* — Portal");
    openSettings(shown);
    EXPECT_TRUE(isShown("Remove the data of 127.0.0.1"));
    const std::string names = controls();
    for (const char* name : {"Zoom in percent", "Colors", "Check spelling", "Spelling languages",
                             "User agent", "Proxy", "Proxy address", "Host", "Links to it",
                             "Remove: https://a.b may not open “mailto” links with another program",
                             "The certificates can’t be used, and are kept under another name"}) {
        EXPECT_THAT(names, HasSubstr(name));
    }
    std::size_t before = read(requests()).size();
    activate("Remove: " + origin + " may use the camera");
    request("/facts-seen", before); // it must not go on with it
    EXPECT_TRUE(waitUntil(
        [&] { return read(kept("permissions.json")).find("camera") == std::string::npos; },
        longestWait));
    EXPECT_THAT(read(kept("permissions.json")), HasSubstr("open-mailto"));
    enter("u", "Test/1.0 (me)");
    EXPECT_TRUE(isKept("settings.json", "Test\\/1.0 (me)"));
    enter("a", "nonsense");
    EXPECT_TRUE(isShown("address must be like"));
    EXPECT_THAT(read(kept("settings.json")), Not(HasSubstr("nonsense")));
    enter("z", "150");
    enter("h", "localhost");
    EXPECT_TRUE(isKept("settings.json", "\"localhost\": \"inside\""));
    EXPECT_TRUE(isShown("address must be like")) << "the field is still wrong";
    // A list that has just opened takes no keys yet.
    EXPECT_TRUE(waitUntil(
        [&] {
            for (const char* keys : {"alt+c", "space", "Down", "Down", "Return"}) {
                press(keys);
            }
            return waitUntil(
                [&] { return read(kept("settings.json")).find("\"dark\"") != std::string::npos; },
                1s);
        },
        longestWait));
    // The first one may be the list's.
    EXPECT_TRUE(waitUntil(
        [&] {
            press("Escape");
            return waitUntil([&] { return windowsNamed("^Site Settings").empty(); }, 1s);
        },
        longestWait));
    reloadUntil("facts", "dark=true&wide=false&agent=Test/1.0%20(me)");
    reloadUntil("link", "/link");
    window("Link.* — Portal");
    clickUntil(shown, "/elsewhere");
    window("Elsewhere.* — Portal");
    EXPECT_FALSE(fs::exists(browsed())) << "the rule keeps the link inside";
    EXPECT_EQ(read(kept("certificates.json")), "{damaged");

    // All data of the site, after a question.
    before = read(requests()).size();
    ASSERT_EQ(handOver("Portal", ""), 0);
    request("/seen", before);
    // The page that asked first may still be setting its cookie.
    EXPECT_TRUE(waitUntil(
        [&] {
            before = read(requests()).size();
            return handOver("Portal", "") == 0 &&
                   request("/seen", before).find("cookie=none") == std::string::npos;
        },
        longestWait));
    openSettings(shown);
    press("alt+d");
    const std::string question = window("^Clear all data");
    before = read(requests()).size();
    pressIn(question, "alt+c");
    EXPECT_THAT(request("/seen", before), HasSubstr("cookie=none&kept=none")) << "loaded again";

    // It is all the same after a restart.
    end("Portal");
    before = read(requests()).size();
    ASSERT_EQ(open("Portal"), 0) << session->log();
    ASSERT_EQ(handOver("Portal", "facts"), 0);
    EXPECT_THAT(request("/facts-seen", before),
                HasSubstr("dark=true&wide=false&agent=Test/1.0%20(me)"));
    EXPECT_THAT(log("Portal"), HasSubstr("certificates.json: "));
}

TEST_F(WebSettingsTest, NothingIsLoadedBeforeTheUserKnowsThatAProxyIsNotInUse) {
    create("Portal", "facts", {"--open-with"});
    session->write(kept("settings.json"), R"({"proxy":"address","proxyAddress":"damaged"})");
    ASSERT_EQ(open("Portal"), 0) << session->log();
    EXPECT_TRUE(isShown("A proxy that it names is not in use."));
    ASSERT_EQ(handOver("Portal", "link"), 0);
    EXPECT_TRUE(isShown("Site Settings…"));
    EXPECT_EQ(read(requests()), "");
    // A button takes no click in its first moment.
    EXPECT_TRUE(waitUntil(
        [&] {
            (void)session->run({QUORVEL_ACCESSIBLE, "press", "Load Without It"});
            return waitUntil([&] { return read(requests()).find("/link") != std::string::npos; },
                             2s);
        },
        longestWait))
        << controls();
    EXPECT_EQ(read(requests()).find("/facts"), std::string::npos) << "the last address counts";
}

TEST_F(WebSettingsTest, ABadCertificateIsAcceptedForItsHostAlone) {
    ASSERT_TRUE(startSite("other-port", {(session->home / "tls").string()}));
    create("Portal", "", {"--open-with"});
    ASSERT_EQ(open("Portal"), 0) << session->log();
    request("/seen");
    const std::string shown = window("Inbox.* — Portal");
    const std::string dialog = "^Open 127.0.0.1 although it is not secure";
    const auto ask = [&] {
        activate("Open Anyway…");
        EXPECT_TRUE(isActive(window(dialog)));
    };
    for (const auto& [which, reason] : {std::pair("other", "belongs to another site"),
                                        std::pair("self", "not issued by a trusted authority"),
                                        std::pair("expired", "has expired")}) {
        ASSERT_EQ(handOverAddress(secure(which)), 0);
        window("The connection to 127.0.0.1 is not secure.* — Portal");
        EXPECT_TRUE(isShown("The connection to 127.0.0.1 is not secure."));
        ask();
        EXPECT_TRUE(isShown(reason)) << which << controls();
        press("Return"); // what it begins with is the safe answer
        EXPECT_TRUE(isGone(dialog));
        EXPECT_FALSE(fs::exists(kept("certificates.json")));
        ASSERT_EQ(handOver("Portal", "facts"), 0);
        window("Facts.* — Portal");
    }
    // A page in between has taken the offer back.
    EXPECT_TRUE(waitUntil([&] { return controls().find("Open Anyway…") == std::string::npos; },
                          longestWait));
    // A dialog is for the host that it names: it goes with the page.
    ASSERT_EQ(handOverAddress(secure("expired")), 0);
    ask();
    const std::string elsewhere =
        std::regex_replace(secure("self"), std::regex("127\\.0\\.0\\.1"), "localhost");
    ASSERT_EQ(handOverAddress(elsewhere), 0);
    window("The connection to localhost is not secure.* — Portal");
    EXPECT_TRUE(isGone(dialog));
    EXPECT_FALSE(fs::exists(kept("certificates.json")));
    ASSERT_EQ(handOverAddress(secure("expired") + "facts"), 0);
    EXPECT_TRUE(isShown("The connection to 127.0.0.1 is not secure."));
    std::size_t before = read(requests()).size();
    ask();
    EXPECT_THAT(controls(), AllOf(HasSubstr("SHA-256: "), HasSubstr("Valid until: 2021-01-01")));
    press("alt+a");
    request("/facts-seen", before);
    EXPECT_TRUE(isShown("127.0.0.1 — not verified"));
    EXPECT_THAT(read(kept("certificates.json")), HasSubstr("\"127.0.0.1\": \""));

    // Without it, the engine accepts the certificate until it ends.
    const std::string accepted = read(kept("certificates.json"));
    openSettings(shown);
    activate("Remove the certificate of 127.0.0.1");
    EXPECT_TRUE(isShown("No certificate was accepted."));
    pressIn(window("^Site Settings — Portal"), "Escape");
    EXPECT_TRUE(isGone("^Site Settings"));
    before = read(requests()).size();
    ASSERT_EQ(handOverAddress(secure("expired") + "facts"), 0);
    request("/facts-seen", before);
    EXPECT_TRUE(isShown("127.0.0.1 — not verified"));
    session->write(kept("certificates.json"), accepted);

    // It holds after a restart, and not for another certificate.
    end("Portal");
    before = read(requests()).size();
    ASSERT_EQ(open("Portal"), 0) << session->log();
    ASSERT_EQ(handOverAddress(secure("expired") + "facts"), 0);
    request("/facts-seen", before);
    before = read(requests()).size();
    ASSERT_EQ(handOverAddress(secure("self") + "facts"), 0);
    EXPECT_TRUE(isShown("Open Anyway…"));
    EXPECT_THAT(read(requests()).substr(before), Not(HasSubstr("/facts")));
}

TEST_F(WebSettingsTest, APasswordIsAskedForInTheHostsName) {
    recordBus("eavesdrop=true");
    create("Portal", "", {"--open-with"});
    ASSERT_EQ(open("Portal"), 0) << session->log();
    request("/seen");
    const std::string place = address("").substr(7, address("").size() - 8);
    const std::string dialog = "^" + place + " wants a password";
    ASSERT_EQ(handOver("Portal", "members"), 0);
    EXPECT_TRUE(isActive(window(dialog)));
    EXPECT_THAT(controls(), AllOf(HasSubstr("The server says: “Members. Safe, says your bank”."),
                                  HasSubstr("User name"), HasSubstr("without encryption")));
    type("me");
    press("Tab");
    type("wrong");
    press("Return");
    EXPECT_TRUE(
        waitUntil([&] { return controls().find("was wrong") != std::string::npos; }, longestWait));
    EXPECT_TRUE(isActive(window(dialog)));
    type("me");
    press("Tab");
    type("secret");
    press("Return");
    request("/member\n");
    EXPECT_TRUE(isGone(dialog));
    EXPECT_EQ(read(bus()).find("org.freedesktop.secrets"), std::string::npos);
    EXPECT_EQ(read(bus()).find("member=SearchItems"), std::string::npos);

    // Nothing of it is left for the next start.
    end("Portal");
    ASSERT_EQ(open("Portal"), 0) << session->log();
    ASSERT_EQ(handOver("Portal", "members"), 0);
    window(dialog);
    ASSERT_EQ(handOver("Portal", "facts"), 0);
    EXPECT_TRUE(isGone(dialog)) << "nobody waits for the answer any more";
    ASSERT_EQ(handOver("Portal", "members"), 0);
    pressIn(window(dialog), "Escape");
    EXPECT_TRUE(isGone(dialog));
    for (const auto& entry : fs::recursive_directory_iterator(data("Portal"))) {
        if (entry.is_regular_file()) {
            EXPECT_EQ(read(entry.path()).find("secret"), std::string::npos) << entry.path();
        }
    }
}

TEST_F(WebSettingsTest, TheMenuOfAPageHasNothingThatLeavesTheCloneUnasked) {
    addBrowser();
    create("Portal", "menu", {"--open-with"});
    session->write(kept("settings.json"),
                   R"({"checksSpelling":true,"spellingLanguages":["en_US"]})");
    ASSERT_EQ(open("Portal"), 0) << session->log();
    const std::string shown = window("Menu.* — Portal");
    // A click closes a menu that is still open.
    const auto openMenuWith = [&](const std::string& item) {
        EXPECT_TRUE(waitUntil(
            [&] {
                openMenu(shown);
                return waitUntil([&] { return controls().find(item) != std::string::npos; }, 2s);
            },
            longestWait))
            << controls();
    };
    openMenuWith("Open Link in Browser");
    const std::string names = controls();
    EXPECT_THAT(names, AllOf(HasSubstr("Copy Link"), HasSubstr("Download Linked File")));
    for (const char* name : {"New Window", "Inspect", "\tOpen Link\n"}) {
        EXPECT_THAT(names, Not(HasSubstr(name)));
    }
    activate("Open Link in Browser");
    EXPECT_TRUE(waitUntil([&] { return read(browsed()).ends_with('\n'); }, longestWait));
    EXPECT_THAT(read(browsed()), HasSubstr("/file "));
    session->write(session->home / "Downloads/precious.txt", "mine");
    openMenuWith("Download Linked File");
    activate("Download Linked File");
    const auto isThere = [&] { return fs::exists(session->home / "Downloads/precious (2).txt"); };
    EXPECT_TRUE(waitUntil(isThere, longestWait)) << "saved as any download";
    EXPECT_EQ(read(session->home / "Downloads/precious.txt"), "mine");
    if (!fs::exists("/usr/share/hunspell/en_US.dic")) {
        return;
    }
    ASSERT_EQ(handOver("Portal", "misspelt"), 0);
    window("Misspelt.* — Portal");
    openMenuWith("\tWord\n");
}

} // namespace
} // namespace quorvel
