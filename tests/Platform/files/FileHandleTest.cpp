#include "Platform/files/FileHandle.h"

#include "tests/support/TemporaryHome.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace {

using namespace testing;

bool isOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) >= 0;
}

TEST(FileHandleTest, ClosesItsDescriptor) {
    int descriptor = -1;
    {
        const FileHandle handle(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        descriptor = handle.descriptor();
        EXPECT_TRUE(isOpen(descriptor));
    }
    EXPECT_FALSE(isOpen(descriptor));
}

TEST(FileHandleTest, HasOnlyOneOwner) {
    FileHandle first(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const int descriptor = first.descriptor();
    const FileHandle second = std::move(first);
    EXPECT_EQ(first.descriptor(), -1); // NOLINT(bugprone-use-after-move): that is the question
    EXPECT_EQ(second.descriptor(), descriptor);
    EXPECT_TRUE(isOpen(descriptor));
}

TEST(FileHandleTest, WritesMoreThanAPipeHoldsAtOnce) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    std::size_t received = 0;
    std::thread reader([&] {
        const FileHandle reading(ends[0]);
        char chunk[4096];
        for (ssize_t count = 1; count > 0;) {
            count = ::read(reading.descriptor(), chunk, sizeof chunk);
            received += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    });
    {
        const FileHandle writing(ends[1]);
        EXPECT_TRUE(writing.write(std::string(1000000, 'x')));
    }
    reader.join();
    EXPECT_EQ(received, 1000000U);
}

TEST(FileHandleTest, ReportsThatWritingFailed) {
    const FileHandle full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    EXPECT_FALSE(full.write("x"));
    EXPECT_EQ(errno, ENOSPC);
}

} // namespace
} // namespace quorvel
