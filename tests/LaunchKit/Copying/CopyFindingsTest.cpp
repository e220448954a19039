#include "LaunchKit/Copying/CopyFindings.h"

#include "tests/support/TemporaryHome.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

const fs::path original = "/home/me/QuorvelInstances/My Work";

class CopyFindingsTest : public ::testing::Test {
protected:
    // Copies everything, and returns what was found meanwhile.
    [[nodiscard]] static CopyFindings findingsIn(const fs::path& folder) {
        const TemporaryFolder copies;
        const fs::path copy = copies / "copy";
        fs::create_directory(copy);
        CopySearch search({original});
        const FileHandle to(::open(copy.c_str(), O_RDONLY | O_DIRECTORY));
        FolderCopyOptions options;
        options.copied = [&](const CopiedContent& item) { search.lookAt(item, ""); };
        (void)FolderCopy(folder, std::move(options)).copyInto(to.descriptor());
        return search.findings(copy);
    }
    [[nodiscard]] CopyFindings findings() const { return findingsIn(folder_.path()); }

    // Opens a database in the copy and runs these statements.
    void run(const std::string& name, const std::string& statements) {
        fs::create_directories((folder_ / name).parent_path());
        sqlite3* opened = nullptr;
        ASSERT_EQ(sqlite3_open((folder_ / name).c_str(), &opened), SQLITE_OK);
        database_.reset(opened);
        ASSERT_EQ(sqlite3_exec(opened, statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(opened);
    }

    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };

    TemporaryFolder folder_{};
    std::unique_ptr<sqlite3, Closer> database_{};
};

TEST_F(CopyFindingsTest, TextFilesAndLinksThatNameTheOriginalAreFound) {
    write(folder_ / "config/app.ini", "last=" + original.string() + "/passwords.kdbx\n");
    write(folder_ / "at-the-end", original.string());
    write(folder_ / "recent.xbel", "href=\"file:///home/me/QuorvelInstances/My%20Work/a.txt\"");
    fs::create_symlink(original / "target", folder_ / "link");
    EXPECT_EQ(findings().namingOriginal,
              (std::vector<std::string>{"at-the-end", "config/app.ini", "link", "recent.xbel"}));
}

TEST_F(CopyFindingsTest, EveryNameOfAFileIsFound) {
    write(folder_ / "one", original.string());
    fs::create_hard_link(folder_ / "one", folder_ / "other");
    EXPECT_EQ(findings().namingOriginal, (std::vector<std::string>{"one", "other"}));
}

TEST_F(CopyFindingsTest, OtherFilesAreNotFound) {
    write(folder_ / "other", "/home/me/QuorvelInstances/My Works/x and "
                             "/home/me/QuorvelInstances/My Work-2/x");
    write(folder_ / "binary", std::string("\0", 1) + original.string());
    write(folder_ / "large", std::string(std::size_t{1} << 20U, ' ') + original.string());
    fs::create_symlink("/home/me", folder_ / "link");
    EXPECT_TRUE(findings().namingOriginal.empty());
    write(folder_ / "just-small-enough",
          std::string((std::size_t{1} << 20U) - original.native().size(), ' ') + original.string());
    EXPECT_EQ(findings().namingOriginal.size(), 1U);
}

TEST_F(CopyFindingsTest, CookiesAndPasswordsOfTheKeyringAreCounted) {
    run("QuorvelData/Default/Cookies",
        "create table cookies(name, encrypted_value blob);"
        "insert into cookies values('plain', x''), ('free', x'763130aa'),"
        "  ('locked', x'763131aa'), ('locked', x'763131bb');");
    run("QuorvelData/Default/Login Data",
        "create table logins(origin_url, password_value blob);"
        "insert into logins values('free', x'763130aa'), ('locked', x'763131aa');");
    EXPECT_EQ(findings().lockedCookies, 2U);
    EXPECT_EQ(findings().lockedPasswords, 1U);
}

TEST_F(CopyFindingsTest, WhatIsOnlyInTheJournalCountsAndTheCopyStaysAsItIs) {
    run("Default/Cookies", "pragma journal_mode=wal;"
                           "create table cookies(name, encrypted_value blob);"
                           "insert into cookies values('locked', x'763131aa');");
    ASSERT_GT(fs::file_size(folder_ / "Default/Cookies-wal"), 0U);
    const TemporaryFolder copy;
    write(copy / "Default/Cookies", read(folder_ / "Default/Cookies"));
    write(copy / "Default/Cookies-wal", read(folder_ / "Default/Cookies-wal"));
    const auto before = treeOf(copy.path());
    EXPECT_EQ(findingsIn(copy.path()).lockedCookies, 1U);
    EXPECT_EQ(treeOf(copy.path()), before);
}

TEST_F(CopyFindingsTest, WhatIsNotADatabaseIsSkipped) {
    write(folder_ / "Default/Cookies", "not a database");
    run("Other/Cookies", "create table something(other);");
    fs::create_symlink("/etc/passwd", folder_ / "Login Data");
    run("elsewhere/database", "create table cookies(name, encrypted_value blob);"
                              "insert into cookies values('locked', x'763131aa');");
    fs::create_directory(folder_ / "Linked");
    fs::create_symlink(folder_ / "elsewhere/database", folder_ / "Linked/Cookies");
    EXPECT_EQ(findings().lockedCookies, 0U);
    EXPECT_EQ(findings().lockedPasswords, 0U);
}

} // namespace
} // namespace quorvel
