// The guarded copy at the edge of what is mapped.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/copy.h"
#include "zchromakey/com.h"

namespace zck {
namespace {

constexpr size_t kPage = 4096;

/// Four pages of 5s, of which the third is then taken away.
class HoleTest : public testing::Test {
protected:
    void SetUp() override {
        m_block = static_cast<uint8_t *>(VirtualAlloc(nullptr, 4 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        ASSERT_NE(m_block, nullptr);
        std::memset(m_block, 5, 4 * kPage);
    }
    void TearDown() override { VirtualFree(m_block, 0, MEM_RELEASE); }

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

TEST_F(HoleTest, ProtectedPages) {
    for (const DWORD protection : {DWORD{PAGE_NOACCESS}, DWORD{PAGE_READWRITE | PAGE_GUARD}}) {
        DWORD before = 0;
        ASSERT_TRUE(VirtualProtect(m_block + 2 * kPage, kPage, protection, &before));
        Check();
    }
}

TEST_F(HoleTest, DecommittedPage) {
    ASSERT_TRUE(VirtualFree(m_block + 2 * kPage, kPage, MEM_DECOMMIT));
    Check();
}

}    // namespace
}    // namespace zck
