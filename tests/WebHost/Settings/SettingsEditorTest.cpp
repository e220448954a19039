#include "WebHost/Settings/SettingsEditor.h"

#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::StartsWith;

class SettingsEditorTest : public ::testing::Test {
protected:
    [[nodiscard]] std::string file(const char* name) const { return (home_ / name).string(); }
    [[nodiscard]] static std::vector<std::string> texts(const SettingsEditor::Rows& rows) {
        std::vector<std::string> all;
        for (const auto& row : rows) {
            all.push_back(row.text);
        }
        return all;
    }
    // Removes the first row, and returns what is said about that.
    std::string
    removeFirst(SettingsEditor::Rows (SettingsEditor::*rows)(const SettingsEditor::Removed&)) {
        std::string said = "nothing";
        for (const auto& row :
             (editor_.*rows)([&](const std::string& problem) { said = problem; })) {
            row.remove();
            break;
        }
        return said;
    }

    TemporaryFolder home_;
    SiteSettingsStore settings_{home_.path(), file("settings.json")};
    PermissionStore permissions_{home_.path(), file("permissions.json")};
    CertificateExceptions certificates_{home_.path(), file("certificates.json")};
    int changes_ = 0;
    std::vector<PermissionStore::Answer> taken_{};
    SettingsEditor editor_{
        {.name = "Work",
         .settings = &settings_,
         .permissions = &permissions_,
         .certificates = &certificates_,
         .settingsChanged = [this] { ++changes_; },
         .permissionsTaken =
             [this](const std::vector<PermissionStore::Answer>& taken) { taken_ = taken; }}};
};

TEST_F(SettingsEditorTest, OnlyAChangeIsWrittenAndReported) {
    EXPECT_EQ(editor_.change([](SiteSettings& all) { all.userAgent = ""; }), "");
    EXPECT_EQ(changes_, 0);
    EXPECT_EQ(editor_.change([](SiteSettings& all) { all.userAgent = "Test/1"; }), "");
    EXPECT_EQ(changes_, 1);
    EXPECT_EQ(SiteSettingsStore(home_.path(), file("settings.json")).settings().userAgent,
              "Test/1");
    EXPECT_THAT(editor_.change([](SiteSettings& all) { all.userAgent = "a\nb"; }),
                HasSubstr("user agent"));
    EXPECT_EQ(editor_.settings().userAgent, "Test/1");
}

TEST_F(SettingsEditorTest, RulesAreAddedListedAndRemoved) {
    EXPECT_THAT(editor_.addRule("", LinkPlace::inside), HasSubstr("example.com"));
    EXPECT_THAT(editor_.links(nullptr), IsEmpty());
    EXPECT_EQ(editor_.addRule("https://In.test/page", LinkPlace::inside), "");
    EXPECT_EQ(editor_.addRule("out.test", LinkPlace::outside), "");
    EXPECT_THAT(texts(editor_.links(nullptr)),
                ElementsAre("in.test: in this window", "out.test: in the browser"));
    EXPECT_EQ(editor_.links(nullptr).front().removes, "Remove the rule for in.test");
    EXPECT_EQ(removeFirst(&SettingsEditor::links), "");
    EXPECT_THAT(editor_.settings().links, ElementsAre(Pair("out.test", "outside")));
}

TEST_F(SettingsEditorTest, PermissionsAreListedAndTakenBack) {
    ASSERT_TRUE(permissions_.remember("https://a.test", "camera", true));
    ASSERT_TRUE(permissions_.remember("https://b.test", "notifications", false));
    EXPECT_THAT(
        texts(editor_.permissions(nullptr)),
        ElementsAre(HasSubstr("https://a.test may use"), HasSubstr("https://b.test may not ")));
    EXPECT_EQ(removeFirst(&SettingsEditor::permissions), "");
    EXPECT_THAT(taken_, ElementsAre(PermissionStore::Answer{"https://a.test", "camera", true}));
    EXPECT_EQ(permissions_.answer("https://a.test", "camera"), std::nullopt);
    EXPECT_EQ(editor_.removePermissions(), "");
    EXPECT_THAT(taken_,
                ElementsAre(PermissionStore::Answer{"https://b.test", "notifications", false}));
    EXPECT_THAT(editor_.permissions(nullptr), IsEmpty());
}

TEST_F(SettingsEditorTest, CertificatesAreListedAndRemoved) {
    ASSERT_TRUE(certificates_.add("a.test", std::string(64, 'c')));
    EXPECT_THAT(texts(editor_.certificates(nullptr)),
                ElementsAre("a.test (SHA-256 " + std::string(16, 'c') + "…)"));
    EXPECT_EQ(removeFirst(&SettingsEditor::certificates), "");
    EXPECT_FALSE(certificates_.hasException("a.test"));
}

TEST_F(SettingsEditorTest, WhatCannotBeWrittenIsReported) {
    ASSERT_TRUE(certificates_.add("a.test", std::string(64, 'c')));
    std::filesystem::remove(file("certificates.json"));
    std::filesystem::create_directories(file("certificates.json") + "/in the way");
    EXPECT_EQ(removeFirst(&SettingsEditor::certificates), "The certificates can’t be written.");
}

TEST_F(SettingsEditorTest, EveryFileThatCannotBeUsedIsNamed) {
    EXPECT_EQ(editor_.fileProblem(), "");
    write(file("settings.json"), "{");
    settings_ = SiteSettingsStore(home_.path(), file("settings.json"));
    EXPECT_THAT(editor_.fileProblem(),
                AllOf(StartsWith("The settings can’t be used"),
                      HasSubstr("kept under another name"), HasSubstr(settings_.problem())));
    write(file("certificates.json"), "{");
    certificates_ = CertificateExceptions(home_.path(), file("certificates.json"));
    EXPECT_THAT(editor_.fileProblem(), AllOf(StartsWith("The settings can’t be used"),
                                             HasSubstr("\nThe certificates can’t be used")));
}

} // namespace
} // namespace quorvel
