#include "Platform/programs/LauncherScript.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

std::vector<std::string> wordsOf(const std::string& lines) {
    return LauncherScript::parse("#!/bin/sh\n" + lines).words;
}

TEST(LauncherScriptTest, KnowsWhatRunsIt) {
    EXPECT_EQ(LauncherScript::parse("#!/bin/sh\n").interpreter, "sh");
    EXPECT_EQ(LauncherScript::parse("#! /usr/bin/python3 -I\n").interpreter, "python3");
    EXPECT_EQ(LauncherScript::parse("#!/usr/bin/env -S python3 -I\n").interpreter, "python3");
    EXPECT_EQ(LauncherScript::parse("#!/usr/bin/env -S A=b sh\n").interpreter, "sh");
    EXPECT_EQ(LauncherScript::parse("#!/bin/bash").interpreter, "bash");
    EXPECT_EQ(LauncherScript::parse("#!\n").interpreter, "");
    EXPECT_EQ(LauncherScript::parse("#!/usr/bin/env\n").interpreter, "");
    EXPECT_EQ(LauncherScript::parse("echo\n").interpreter, "");
    EXPECT_EQ(LauncherScript::parse("").interpreter, "");
}

TEST(LauncherScriptTest, FillsInWhatWasAssigned) {
    EXPECT_THAT(
        wordsOf("APP=mail\n"
                "LIB=\"/usr/lib/$APP\" # where it is\n"
                "exec ${LIB}/$APP-bin \"$@\" >/dev/null\n"),
        ElementsAre("mail", "/usr/lib/mail", "exec", "/usr/lib/mail/mail-bin", "/dev/null"));
    EXPECT_THAT(wordsOf("A=1; A=2; echo $A"), Contains("2"));
    EXPECT_THAT(wordsOf("A=/x\n'$A' \"\\$A\" \\$A"), ElementsAre("/x", "$A", "$A", "$A"));
    EXPECT_THAT(wordsOf("\"/opt/My App/run\" '/opt/b c' /d\\ e \\\n/f"),
                ElementsAre("/opt/My App/run", "/opt/b c", "/d e", "/f"));
    EXPECT_THAT(wordsOf("#a /b\n/c#d"), ElementsAre("/c#d"));
}

TEST(LauncherScriptTest, LeavesOutWhatOnlyRunningItReveals) {
    EXPECT_THAT(wordsOf("/a$UNKNOWN/b"), IsEmpty());
    EXPECT_THAT(wordsOf("/a`id`/b"), IsEmpty());
    EXPECT_THAT(wordsOf("\"/a/${HOME:-/b}\""), IsEmpty());
    EXPECT_THAT(wordsOf("/a$1 /b$?"), IsEmpty());
    EXPECT_THAT(wordsOf("A=/x\nA=$1\n$A/y"), Not(Contains("/x/y")));
    EXPECT_THAT(wordsOf("${A"), IsEmpty());
    EXPECT_THAT(wordsOf("A=b\n${A"), Not(Contains("b/")));
}

TEST(LauncherScriptTest, ReadsNoOtherLanguage) {
    EXPECT_THAT(LauncherScript::parse("#!/usr/bin/python3\nrun('/usr/lib/a/b')\n").words,
                IsEmpty());
}

TEST(LauncherScriptTest, DoesNotGrowWithoutEnd) {
    std::string lines = "A=aaaaaaaaaa\n";
    for (int number = 0; number < 64; ++number) {
        lines += "A=$A$A$A$A\n";
    }
    std::size_t size = 0;
    for (const std::string& word : wordsOf(lines + "echo $A")) {
        size += word.size();
    }
    EXPECT_LT(size, 64U * 4096U);
    EXPECT_THAT(wordsOf("'never closed"), Not(Contains("closed")));
    EXPECT_THAT(wordsOf("a\\"), ElementsAre("a"));
}

TEST(LauncherScriptTest, KnowsJavaAndElectronByTheirLaunchers) {
    const auto script = [](const std::string& lines) {
        return LauncherScript::parse("#!/bin/sh\n" + lines);
    };
    EXPECT_TRUE(script("exec java -jar x.jar").mentionsJava());
    EXPECT_TRUE(script("JAVA=/usr/lib/jvm/bin/java").mentionsJava());
    EXPECT_FALSE(script("echo javascript").mentionsJava());
    EXPECT_TRUE(script("exec electron23 /usr/lib/a/app.asar \"$@\"").startsElectron());
    EXPECT_TRUE(script("exec /usr/bin/electron /usr/lib/a/app.asar").startsElectron());
    EXPECT_FALSE(script("exec electron23").startsElectron());
    EXPECT_FALSE(script("exec electronics /usr/lib/a/app.asar").startsElectron());
    EXPECT_FALSE(script("exec other /usr/lib/a/app.asar").startsElectron());
}

} // namespace
} // namespace quorvel::testing
