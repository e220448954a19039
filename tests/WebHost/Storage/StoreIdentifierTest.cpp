#include "WebHost/Storage/StoreIdentifier.h"

#include "Platform/files/PlatformError.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <map>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
namespace fs = std::filesystem;

class StoreIdentifierTest : public ::testing::Test {
protected:
    // Starts the clone with that data folder.
    std::string start(const std::string& name) {
        fs::create_directories(folder_ / name);
        const std::string home = (folder_ / name).string();
        std::string store = storeIdentifier(home, ownerOf_);
        owners_[store] = home;
        return store;
    }

    [[nodiscard]] fs::path file(const std::string& name) const {
        return folder_ / name / ".local/share/quorvel/web/store.json";
    }

    [[nodiscard]] std::vector<std::string> abandoned() const {
        std::vector<std::string> stores{"not-ours"};
        for (const auto& [store, home] : owners_) {
            stores.push_back(store);
        }
        return abandonedStores(stores, ownerOf_);
    }

    TemporaryFolder folder_{};
    std::map<std::string, std::string> owners_{};
    StoreOwner ownerOf_ = [this](const std::string& store) {
        const auto found = owners_.find(store);
        return found == owners_.end() ? std::string() : found->second;
    };
};

TEST_F(StoreIdentifierTest, EachFolderKeepsItsOwnUuid) {
    const std::string store = start("Work");
    EXPECT_THAT(store, MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[0-9A-F]{4}-.{12}"));
    EXPECT_EQ(start("Work"), store);
    EXPECT_NE(start("Home"), store);
    struct stat facts {};
    ASSERT_EQ(::stat(file("Work").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    EXPECT_THAT(abandoned(), IsEmpty());
}

TEST_F(StoreIdentifierTest, ANewFolderOfTheSameNameHasANewStore) {
    const std::string old = start("Work");
    fs::remove_all(folder_ / "Work");
    const std::string store = start("Work");
    EXPECT_NE(store, old);
    EXPECT_THAT(abandoned(), ElementsAre(old));
}

TEST_F(StoreIdentifierTest, TheStoreGoesWithAFolderThatIsMoved) {
    const std::string store = start("Work");
    fs::rename(folder_ / "Work", folder_ / "Moved");
    EXPECT_EQ(start("Moved"), store);
    EXPECT_THAT(abandoned(), IsEmpty());
}

TEST_F(StoreIdentifierTest, ACopyOfAFolderThatIsThereHasAnotherStore) {
    const std::string store = start("Work");
    fs::copy(folder_ / "Work", folder_ / "Copy", fs::copy_options::recursive);
    fs::create_directory_symlink(folder_ / "Work", folder_ / "Alias");
    EXPECT_NE(start("Copy"), store);
    EXPECT_EQ(start("Work"), store);
    EXPECT_EQ(start("Alias"), store);
    EXPECT_THAT(abandoned(), IsEmpty());
}

TEST_F(StoreIdentifierTest, OnlyStoresWhoseFolderIsCertainlyGoneAreAbandoned) {
    const std::string removed = start("Removed");
    (void)start("Disk/Away");
    (void)start("Unreadable");
    fs::remove_all(folder_ / "Removed");
    fs::remove_all(folder_ / "Disk");
    write(file("Unreadable"), "{");
    EXPECT_THAT(abandoned(), ElementsAre(removed));
}

TEST_F(StoreIdentifierTest, WhatIsNotAUuidIsSetAsideAndReplaced) {
    (void)start("Work");
    for (const char* damaged : {"{\"identifier\": \"../../x\"}", "{", "{}"}) {
        write(file("Work"), damaged);
        const std::string store = start("Work");
        EXPECT_EQ(store.size(), 36U) << damaged;
        EXPECT_EQ(start("Work"), store) << damaged;
    }
}

TEST_F(StoreIdentifierTest, AUuidThatCantBeKeptIsAnError) {
    fs::create_directories(file("Work"));
    EXPECT_THROW((void)start("Work"), PlatformError);
    write(folder_ / "Other/.local", "");
    EXPECT_THROW((void)start("Other"), PlatformError);
}

} // namespace
} // namespace quorvel
