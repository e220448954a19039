#include "LaunchKit/Copying/ElectronName.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;

std::string number(std::size_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(value >> static_cast<unsigned>(shift));
    }
    return bytes;
}

// An archive whose table of contents is this, followed by the bytes of its files.
std::string archive(std::string table, const std::string& files) {
    const std::size_t length = table.size();
    table.resize((length + 3) / 4 * 4);
    return number(4) + number(table.size() + 8) + number(table.size() + 4) + number(length) +
           table + files;
}

class ElectronNameTest : public ::testing::Test {
protected:
    [[nodiscard]] std::optional<std::string> nameIn(const std::string& bytes) const {
        write(folder_ / "resources/app.asar", bytes);
        return electronName(folder_.path());
    }

    TemporaryFolder folder_{};
};

TEST_F(ElectronNameTest, IsThePackagesProductName) {
    const std::string package = R"({"name": "chat-desktop", "productName": "Chat"})";
    const std::string size = std::to_string(package.size());
    EXPECT_EQ(
        nameIn(archive(R"({"files": {"package.json": {"size": )" + size + R"(, "offset": "5"}}})",
                       "other" + package)),
        "Chat");
    write(folder_ / "resources/app.asar", "");
    write(folder_ / "resources/app/package.json", R"({"name": "chat-desktop"})");
    EXPECT_EQ(electronName(folder_.path()), "chat-desktop");
}

TEST_F(ElectronNameTest, DamagedArchivesHaveNone) {
    EXPECT_EQ(electronName(folder_.path()), std::nullopt);
    EXPECT_EQ(nameIn(""), std::nullopt);
    EXPECT_EQ(nameIn(std::string(16, '\xff')), std::nullopt);
    for (const char* table :
         {"", "{", "[]", R"({"files": []})", R"({"files": {"package.json": 1}})",
          R"({"files": {"package.json": {"size": -1, "offset": "0"}}})",
          R"({"files": {"package.json": {"size": 99999999999, "offset": "0"}}})",
          R"({"files": {"package.json": {"size": 2, "offset": "18446744073709551615"}}})",
          R"({"files": {"package.json": {"size": 2, "offset": "x"}}})",
          R"({"files": {"package.json": {"size": 2}}})"}) {
        EXPECT_EQ(nameIn(archive(table, "{}")), std::nullopt) << table;
    }
}

TEST_F(ElectronNameTest, ANameThatLeadsElsewhereIsNotUsed) {
    for (const char* name : {"", ".", "..", "a/b", "/etc"}) {
        write(folder_ / "resources/app/package.json",
              std::string(R"({"productName": ")") + name + "\"}");
        EXPECT_EQ(electronName(folder_.path()), std::nullopt) << name;
    }
}

} // namespace
} // namespace quorvel
