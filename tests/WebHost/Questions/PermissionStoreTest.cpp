#include "WebHost/Questions/PermissionStore.h"

#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;
using Answer = PermissionStore::Answer;

class PermissionStoreTest : public ::testing::Test {
protected:
    [[nodiscard]] PermissionStore store() const { return {home_.path(), file()}; }
    [[nodiscard]] std::string file() const { return (home_ / "web/permissions.json").string(); }

    TemporaryFolder home_;
};

TEST_F(PermissionStoreTest, RemembersByOriginAndKind) {
    PermissionStore first = store();
    EXPECT_EQ(first.answer("https://a.b", "camera"), std::nullopt);
    EXPECT_TRUE(first.remember("https://a.b", "camera", true));
    EXPECT_TRUE(first.remember("https://a.b", "location", false));
    EXPECT_TRUE(first.remember("https://a.b:81", "camera", false));
    const PermissionStore second = store();
    EXPECT_EQ(second.answer("https://a.b", "camera"), true);
    EXPECT_EQ(second.answer("https://a.b", "location"), false);
    EXPECT_EQ(second.answer("https://a.b:81", "camera"), false);
    EXPECT_EQ(second.answer("http://a.b", "camera"), std::nullopt);
    EXPECT_THAT(second.list(), ElementsAre(Answer{"https://a.b", "camera", true},
                                           Answer{"https://a.b", "location", false},
                                           Answer{"https://a.b:81", "camera", false}));
}

TEST_F(PermissionStoreTest, AnswersCanBeTakenBack) {
    PermissionStore first = store();
    first.remember("https://a.b", "camera", true);
    first.remember("https://a.b", "location", true);
    EXPECT_TRUE(first.forget("https://a.b", "camera"));
    EXPECT_THAT(store().list(), ElementsAre(Answer{"https://a.b", "location", true}));
    EXPECT_TRUE(first.forgetAll());
    EXPECT_THAT(store().list(), IsEmpty());
}

TEST_F(PermissionStoreTest, TheFileIsTheUsersOwnAndReplacedAsAWhole) {
    PermissionStore first = store();
    first.remember("https://a.b", "camera", true);
    struct stat before {};
    ASSERT_EQ(::stat(file().c_str(), &before), 0);
    EXPECT_EQ(before.st_mode & 0777U, 0600U);
    first.remember("https://a.b", "camera", false);
    struct stat after {};
    ASSERT_EQ(::stat(file().c_str(), &after), 0);
    EXPECT_NE(before.st_ino, after.st_ino) << "readers never see half a file";
    EXPECT_EQ(after.st_mode & 0777U, 0600U);
    EXPECT_EQ(std::distance(fs::directory_iterator(home_ / "web"), {}), 1);
}

TEST_F(PermissionStoreTest, WhatCantBeReadHasNoAnswers) {
    for (const char* text :
         {"{", "[]", "{\"permissions\":1}", "{\"permissions\":{\"a b\":true}}"}) {
        write(file(), text);
        const PermissionStore damaged = store();
        EXPECT_THAT(damaged.list(), IsEmpty()) << text;
        EXPECT_NE(damaged.problem(), "") << text;
    }
    write(file(),
          "{\"permissions\":{\"https://a.b camera\":\"maybe\",\"x\":\"allow\",\"https://a.b "
          "location\":\"allow\"}}");
    EXPECT_THAT(store().list(), ElementsAre(Answer{"https://a.b", "location", true}));
    EXPECT_EQ(store().problem(), "");
}

TEST_F(PermissionStoreTest, WhatCantBeReadIsKeptUnderAnotherName) {
    write(file(), "{damaged");
    write(file() + ".damaged-1", "another");
    PermissionStore damaged = store();
    EXPECT_TRUE(damaged.remember("https://a.b", "camera", true));
    EXPECT_EQ(damaged.problem(), "");
    EXPECT_EQ(read(file() + ".damaged-2"), "{damaged");
    EXPECT_EQ(read(file() + ".damaged-1"), "another");
    EXPECT_EQ(store().answer("https://a.b", "camera"), true);
}

TEST_F(PermissionStoreTest, ALinkIsNeitherReadNorWrittenThrough) {
    write(home_ / "elsewhere", R"({"permissions":{"https://a.b camera":"allow"}})");
    fs::create_directory(home_ / "web");
    fs::create_symlink(home_ / "elsewhere", file());
    PermissionStore linked = store();
    EXPECT_THAT(linked.list(), IsEmpty());
    EXPECT_THAT(linked.problem(), HasSubstr("can’t be read"));
    EXPECT_TRUE(linked.remember("https://a.b", "location", false));
    EXPECT_THAT(read(home_ / "elsewhere"), HasSubstr("camera"));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(file())));
}

TEST_F(PermissionStoreTest, AnUnwritableFileStillHoldsForNow) {
    fs::create_directories(fs::path(file())); // a folder is not replaced
    PermissionStore first = store();
    EXPECT_FALSE(first.remember("https://a.b", "camera", true));
    EXPECT_EQ(first.answer("https://a.b", "camera"), true);
}

} // namespace
} // namespace quorvel
