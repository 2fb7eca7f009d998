#include "platform/copy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace zck {
namespace {

/// `n` bytes that differ from their neighbours.
std::vector<uint8_t> Pattern(size_t n) {
    std::vector<uint8_t> bytes(n);
    for (size_t i = 0; i < n; ++i) bytes[i] = static_cast<uint8_t>(i * 131 + (i >> 8));
    return bytes;
}

TEST(CopyTest, CopiesEveryByteAndNoOther) {
    for (const size_t n : std::initializer_list<size_t>{0, 1, 7, 64, 4096, 100003, 9000001}) {
        const std::vector<uint8_t> src = Pattern(n + 1);
        for (const bool guarded : {false, true}) {
            std::vector<uint8_t> dst(n + 2, 0xEE);
            if (guarded) {
                EXPECT_TRUE(CopyBytesGuarded(dst.data() + 1, src.data() + 1, n));
            } else {
                CopyBytes(dst.data() + 1, src.data() + 1, n);
            }
            EXPECT_EQ(std::memcmp(dst.data() + 1, src.data() + 1, n), 0);
            EXPECT_EQ(dst.front(), 0xEE);
            EXPECT_EQ(dst.back(), 0xEE);
        }
    }
}

TEST(CopyTest, NothingNeedsNoPointers) {
    CopyBytes(nullptr, nullptr, 0);
    EXPECT_TRUE(CopyBytesGuarded(nullptr, nullptr, 0));
}

TEST(CopyTest, UnreadableSourceIsReported) {
    uint8_t dst[64] = {};
    EXPECT_FALSE(CopyBytesGuarded(dst, nullptr, sizeof(dst)));
    EXPECT_FALSE(CopyBytesGuarded(dst, reinterpret_cast<const void *>(uintptr_t{64}), sizeof(dst)));
}

}    // namespace
}    // namespace zck
