#include "Platform/programs/ProgramFile_linux.h"

#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <cstring>
#include <elf.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The least that a program with needed libraries consists of, its dynamic table at address 0x10000.
template<typename Header, typename Segment, typename Dynamic>
struct Image {
    Header header{};
    Segment segments[2]{};
    Dynamic table[5]{};
    char names[64]{};

    explicit Image(unsigned char kind) {
        constexpr unsigned address = 0x10000;
        std::memcpy(header.e_ident, ELFMAG, SELFMAG);
        header.e_ident[EI_CLASS] = kind;
        header.e_ident[EI_DATA] =
            std::endian::native == std::endian::little ? ELFDATA2LSB : ELFDATA2MSB;
        header.e_phoff = offsetof(Image, segments);
        header.e_phentsize = sizeof(Segment);
        header.e_phnum = 2;
        segments[0].p_type = PT_LOAD;
        segments[0].p_vaddr = address;
        segments[0].p_filesz = sizeof *this;
        segments[1].p_type = PT_DYNAMIC;
        segments[1].p_offset = offsetof(Image, table);
        segments[1].p_filesz = sizeof table;
        std::memcpy(names, "\0libgtk-3.so.0\0libc.so.6\0late", 30);
        table[0].d_tag = DT_NEEDED;
        table[0].d_un.d_val = 1;
        table[1].d_tag = DT_NEEDED;
        table[1].d_un.d_val = 15;
        table[2].d_tag = DT_STRTAB;
        table[2].d_un.d_ptr = address + offsetof(Image, names);
        table[3].d_tag = DT_NULL;
        table[4].d_tag = DT_NEEDED;
        table[4].d_un.d_val = 25;
    }

    [[nodiscard]] std::string bytes() const {
        return {reinterpret_cast<const char*>(this), sizeof *this};
    }
};
using Image64 = Image<Elf64_Ehdr, Elf64_Phdr, Elf64_Dyn>;
using Image32 = Image<Elf32_Ehdr, Elf32_Phdr, Elf32_Dyn>;

class ProgramFileTest : public ::testing::Test {
protected:
    [[nodiscard]] ProgramFile fileOf(const std::string& bytes) const {
        write(folder_ / "program", bytes);
        return ProgramFile::open(folder_ / "program").value();
    }

    TemporaryFolder folder_{};
};

TEST_F(ProgramFileTest, ReportsWhichLibrariesAProgramAsksFor) {
    EXPECT_THAT(fileOf(Image64(ELFCLASS64).bytes()).neededLibraries(),
                ElementsAre("libgtk-3.so.0", "libc.so.6"));
    EXPECT_THAT(fileOf(Image32(ELFCLASS32).bytes()).neededLibraries(),
                ElementsAre("libgtk-3.so.0", "libc.so.6"));
}

TEST_F(ProgramFileTest, ReadsARealProgram) {
    const auto file = ProgramFile::open("/proc/self/exe");
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->isElf());
    EXPECT_FALSE(file->isAppImage());
    EXPECT_THAT(file->neededLibraries(), ::testing::Contains("libc.so.6"));
    EXPECT_THAT(file->neededLibraries(), ::testing::Contains("libglib-2.0.so.0"));
}

TEST_F(ProgramFileTest, TrustsNoTable) {
    const auto librariesOf = [&](const auto& change) {
        Image64 image(ELFCLASS64);
        change(image);
        return fileOf(image.bytes()).neededLibraries();
    };
    EXPECT_THAT(librariesOf([](auto& image) { image.header.e_ident[EI_DATA] ^= 3U; }), IsEmpty());
    EXPECT_THAT(librariesOf([](auto& image) { image.header.e_phentsize = 1; }), IsEmpty());
    EXPECT_THAT(librariesOf([](auto& image) { image.header.e_phoff = UINT64_MAX - 8; }), IsEmpty());
    EXPECT_THAT(librariesOf([](auto& image) { image.segments[0].p_filesz = 8; }), IsEmpty());
    EXPECT_THAT(librariesOf([](auto& image) { image.segments[0].p_vaddr = UINT64_MAX; }),
                IsEmpty());
    EXPECT_THAT(librariesOf([](auto& image) { image.segments[1].p_filesz = UINT64_MAX; }),
                ElementsAre("libgtk-3.so.0", "libc.so.6"));
    EXPECT_THAT(librariesOf([](auto& image) { image.table[0].d_un.d_val = UINT64_MAX; }),
                ElementsAre(::testing::_, "libc.so.6"));
    EXPECT_THAT(librariesOf([](auto& image) { image.table[2].d_tag = DT_DEBUG; }), IsEmpty());
}

TEST_F(ProgramFileTest, SurvivesAnyChange) {
    const std::string image = Image64(ELFCLASS64).bytes();
    std::mt19937 random(7);
    for (int round = 0; round < 500; ++round) {
        std::string bytes = image.substr(0, image.size() - (round % 4 == 0 ? random() % 400 : 0));
        for (int change = 0; change < 4; ++change) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        EXPECT_LE(fileOf(bytes).neededLibraries().size(), ProgramFile::maxLibraries);
    }
}

TEST_F(ProgramFileTest, KnowsAnAppImageByItsMark) {
    Image64 image(ELFCLASS64);
    EXPECT_FALSE(fileOf(image.bytes()).isAppImage());
    std::memcpy(image.header.e_ident + 8, "AI\x02", 3);
    EXPECT_TRUE(fileOf(image.bytes()).isAppImage());
    EXPECT_TRUE(fileOf(image.bytes()).isElf());
    EXPECT_FALSE(fileOf("#!/bin/AI\x02").isAppImage());
    EXPECT_FALSE(fileOf("#!/bin/sh\n").isElf());
    EXPECT_FALSE(fileOf("").isElf());
    EXPECT_THAT(fileOf("").neededLibraries(), IsEmpty());
}

TEST_F(ProgramFileTest, OpensRegularFilesOnly) {
    ASSERT_EQ(::mkfifo((folder_ / "fifo").c_str(), 0600), 0);
    fs::create_symlink("loop", folder_ / "loop");
    EXPECT_FALSE(ProgramFile::open(folder_ / "fifo"));
    EXPECT_FALSE(ProgramFile::open(folder_ / "loop"));
    EXPECT_FALSE(ProgramFile::open(folder_ / "missing"));
    EXPECT_FALSE(ProgramFile::open(folder_.path()));
    EXPECT_FALSE(ProgramFile::open("/dev/zero"));
}

} // namespace
} // namespace quorvel::testing
