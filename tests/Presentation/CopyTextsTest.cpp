#include "Presentation/CopyTexts.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(CopyTextsTest, ItemsAndBytesCountEqually) {
    EXPECT_DOUBLE_EQ(shareDone({}), 1.0) << "nothing to do";
    EXPECT_DOUBLE_EQ(shareDone({.items = 1, .allItems = 2, .bytes = 0, .allBytes = 100}), 0.25);
    EXPECT_DOUBLE_EQ(shareDone({.items = 5, .allItems = 2, .bytes = 100, .allBytes = 100}), 1.0);
    EXPECT_EQ(progressText({.items = 1, .allItems = 2, .bytes = 0, .allBytes = 1500}, inEnglish),
              "1 of 2 items, 0 bytes of 1.5 kB");
}

TEST(CopyTextsTest, SaysHowFilesGotThereAndWhatThatTook) {
    const auto sentence = [](std::size_t cloned, std::size_t copied) {
        return copySentence({.clonedFiles = cloned, .copiedFiles = copied, .bytes = 1500},
                            inEnglish);
    };
    EXPECT_EQ(sentence(0, 1), "1 file with 1.5 kB was copied; that took 0 bytes.");
    EXPECT_EQ(sentence(0, 2), "2 files with 1.5 kB were copied; that took 0 bytes.");
    EXPECT_EQ(sentence(1, 0), "1 file with 1.5 kB was cloned; that took 0 bytes.");
    EXPECT_EQ(sentence(2, 0), "2 files with 1.5 kB were cloned; that took 0 bytes.");
    EXPECT_EQ(sentence(1, 1), "2 files with 1.5 kB were partly cloned; that took 0 bytes.");
}

TEST(CopyTextsTest, WarnsOfWhatOnlyTheKeyringCanDecrypt) {
    const auto sentence = [](std::size_t cookies, std::size_t passwords) {
        return keyringSentence({.lockedCookies = cookies, .lockedPasswords = passwords}, inEnglish);
    };
    const std::string end = " can only be decrypted with the keyring of this session. Opened "
                            "without it, the clone loses them for good.";
    EXPECT_EQ(sentence(0, 0), "");
    EXPECT_EQ(sentence(1, 0), "1 cookie" + end);
    EXPECT_EQ(sentence(0, 2), "2 passwords" + end);
    EXPECT_EQ(sentence(3, 1), "3 cookies and 1 password" + end);
}

TEST(CopyTextsTest, ListsTheFirstFilesThatNameTheOriginal) {
    const auto lines = [](const std::vector<std::string>& names) {
        return findingLines(
            {.namingOriginal = names}, [](const std::string& name) { return "<" + name + ">"; },
            inEnglish);
    };
    EXPECT_EQ(lines({}), "");
    EXPECT_EQ(lines({"a"}), "1 file of the copy names the original’s data folder and may lead "
                            "there:\n  <a>");
    const std::string many = lines(std::vector<std::string>(12, "x"));
    EXPECT_TRUE(many.starts_with("12 files of the copy name the original’s"));
    EXPECT_TRUE(many.ends_with("  <x>\n  and 2 more"));
}

} // namespace
} // namespace quorvel
