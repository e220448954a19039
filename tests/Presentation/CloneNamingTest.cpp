#include "Presentation/CloneNaming.h"

#include <gtest/gtest.h>

#include <set>

namespace quorvel {
namespace {

struct Row {
    const char* typed;
    const char* name;
};

TEST(CloneNamingTest, AHostIsWhatTheStandardCallsOne) {
    for (const Row& row :
         {Row{"example.com:99999", "Example.Com"}, Row{"example.com:", "Example.Com"},
          Row{"a..b", "A..B"}, Row{"https://a%41.c", "Aa.C"},
          Row{"b%C3%BCcher.example", "Bücher.Example"}, Row{"Bücher.Example", "Bücher.Example"},
          Row{"3rd.web3app.com", "3Rd.Web3App.Com"}, Row{"a_b!c", "A_B!C"},
          Row{"user:p%40w@host", "Host"}, Row{"a.test?x=@b", "A.Test"},
          Row{"a.test#www.b", "A.Test"}, Row{"a.test/100%", "A.Test"},
          Row{"svn+ssh://a.test", "A.Test"}, Row{"http://[2001:db8::a]:8080/", "2001:Db8::A"},
          Row{"www.a.www.b", "A.B"}}) {
        EXPECT_EQ(nameForWebAddress(row.typed), row.name) << row.typed;
    }
}

TEST(CloneNamingTest, WhatIsNotAHostNamesNothing) {
    for (const char* typed :
         {"",     " ",      "a b",  "https://", "https:///x", "https://:80", "https://user@", "a:b",
          "a:8x", "1s://a", "://a", "a%4",      "a%zz",       "a%FF",        "a\\b",          "a<b",
          "a\"b", "a\nb",   "[::1", "[::1]x",   "[x]",        "us er@a"}) {
        EXPECT_EQ(nameForWebAddress(typed), std::nullopt) << typed;
    }
    EXPECT_EQ(nameForWebAddress("www."), "");
}

TEST(CloneNamingTest, ACommandIsNamedAfterItsLastComponent) {
    EXPECT_EQ(nameForCommand("/usr/local/bin/my-tool"), "My-Tool");
    EXPECT_EQ(nameForCommand("h2o"), "H2O");
    EXPECT_EQ(nameForCommand("/opt/o'neil's/it's//"), "It's");
}

TEST(CloneNamingTest, TheRootNamesNothing) {
    EXPECT_EQ(nameForCommand("/"), std::nullopt);
    EXPECT_EQ(nameForCommand("//"), std::nullopt);
    EXPECT_EQ(nameForCommand(""), std::nullopt);
}

TEST(CloneNamingTest, TheFirstNumberIsSuggestedUncheckedWhileTheNameItselfIsFree) {
    EXPECT_EQ(suggestedName("Notes", {}), "Notes (2)");
    EXPECT_EQ(suggestedName("Notes", {"Notes (2)", "Mail"}), "Notes (2)");
}

TEST(CloneNamingTest, AnotherCloneIsNamedWithTheNextFreeNumber) {
    const auto next = [](const std::string& name, const std::set<std::string>& taken) {
        return nextFreeName(name, [&](const std::string& each) { return taken.contains(each); });
    };
    EXPECT_EQ(next("Work", {}), "Work (2)");
    EXPECT_EQ(next("Work", {"Work (2)", "Work (3)"}), "Work (4)");
    EXPECT_EQ(next("Work (2)", {"Work (2)"}), "Work (3)");
    EXPECT_EQ(next("Work (17)", {}), "Work (2)");
    EXPECT_EQ(next("Chat (Work)", {}), "Chat (Work) (2)");
    EXPECT_EQ(next("Chat ()", {}), "Chat () (2)");
    EXPECT_EQ(next(" (2)", {}), " (2) (2)") << "nothing would be left";
}

TEST(CloneNamingTest, TheFirstFreeNumberIsSuggestedOnceTheNameIsTaken) {
    EXPECT_EQ(suggestedName("Notes", {"Notes"}), "Notes (2)");
    EXPECT_EQ(suggestedName("Notes", {"Notes", "Notes (2)", "Notes (4)"}), "Notes (3)");
}

} // namespace
} // namespace quorvel
