// The guarded copy at the edge of what is mapped.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/copy.h"

namespace zck {
namespace {

constexpr size_t kPage = 4096;

/// Four pages of 5s, of which the third cannot be read.
class HoleTest : public testing::Test {
protected:
    void SetUp() override {
        void *block = mmap(nullptr, 4 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(block, MAP_FAILED);
        m_block = static_cast<uint8_t *>(block);
        std::memset(m_block, 5, 4 * kPage);
    }
    void TearDown() override { munmap(m_block, 4 * kPage); }

    /// Copies that must work and must not, with the third page gone.
    void Check() const {
        std::vector<uint8_t> dst(4 * kPage);
        EXPECT_TRUE(CopyBytesGuarded(dst.data(), m_block + 1, 2 * kPage - 1));
        EXPECT_EQ(dst[2 * kPage - 2], 5);
        EXPECT_TRUE(CopyBytesGuarded(dst.data(), m_block + 3 * kPage, kPage));
        EXPECT_FALSE(CopyBytesGuarded(dst.data(), m_block + 1, 2 * kPage)) << "one byte behind the edge";
        EXPECT_FALSE(CopyBytesGuarded(dst.data(), m_block + 3 * kPage - 1, 2));
        EXPECT_FALSE(CopyBytesGuarded(dst.data(), m_block, 4 * kPage)) << "a hole inside";
    }

    uint8_t *m_block = nullptr;
};

TEST_F(HoleTest, ProtectedPage) {
    ASSERT_EQ(mprotect(m_block + 2 * kPage, kPage, PROT_NONE), 0);
    Check();
}

TEST_F(HoleTest, UnmappedPage) {
    ASSERT_EQ(munmap(m_block + 2 * kPage, kPage), 0);
    Check();
}

TEST_F(HoleTest, PageBehindTheEndOfItsFile) {
    const int fd = memfd_create("short", MFD_CLOEXEC);
    ASSERT_EQ(ftruncate(fd, kPage), 0);
    void *view = mmap(m_block + kPage, 2 * kPage, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, fd, 0);
    close(fd);
    ASSERT_EQ(view, m_block + kPage);
    std::memset(view, 5, kPage);
    Check();
}

TEST_F(HoleTest, WithoutAFreeFileNumber) {
    const pid_t pid = fork();
    if (pid == 0) {
        const rlimit none{3, 3};
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
        EXPECT_LT(dup(2), 0);
        mprotect(m_block + 2 * kPage, kPage, PROT_NONE);
        Check();
        _exit(HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_EQ(status, 0);
}

TEST_F(HoleTest, LargeBlockWithItsLastPageGone) {
    // More pages than one call looks at.
    constexpr size_t kPages = 2500;
    void *block = mmap(nullptr, kPages * kPage, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(block, MAP_FAILED);
    ASSERT_EQ(munmap(static_cast<uint8_t *>(block) + (kPages - 1) * kPage, kPage), 0);
    std::vector<uint8_t> dst(kPages * kPage, 1);
    EXPECT_FALSE(CopyBytesGuarded(dst.data(), block, (kPages - 1) * kPage + 1));
    EXPECT_TRUE(CopyBytesGuarded(dst.data(), block, (kPages - 1) * kPage));
    EXPECT_EQ(dst[(kPages - 1) * kPage - 1], 0);
    EXPECT_EQ(dst[(kPages - 1) * kPage], 1);
    munmap(block, (kPages - 1) * kPage);
}

}    // namespace
}    // namespace zck
