#include "frames/memory/blob_holder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/com_ptr.h"

namespace zck {
namespace {

// Owning allocators first; `CFakeAlloc` has tests of its own.
template <class Allocator>
class OwningBlobHolder : public testing::Test {};
using Owning = testing::Types<CHeapAlloc, CNewAlloc, CCoTaskAlloc>;
TYPED_TEST_SUITE(OwningBlobHolder, Owning);

template <class Allocator>
bool AllBytesAre(const CBLOBHolder<Allocator> &holder, uint32_t from, uint32_t to, uint8_t value) {
    for (uint32_t i = from; i < to; ++i)
        if (*holder.Data(i) != value) return false;
    return true;
}

TYPED_TEST(OwningBlobHolder, StartsEmpty) {
    CBLOBHolder<TypeParam> holder;
    EXPECT_EQ(holder.Size(), 0u);
    EXPECT_EQ(holder.Capacity(), 0u);
    EXPECT_EQ(holder.Data(), nullptr);
    EXPECT_EQ(holder.Reserve(0), S_FALSE);
    EXPECT_EQ(holder.Reserve(0, 9), S_FALSE);
    EXPECT_EQ(holder.Data(), nullptr);
}

TYPED_TEST(OwningBlobHolder, ReservesExactlyAndZeroed) {
    CBLOBHolder<TypeParam> holder;
    EXPECT_EQ(holder.Reserve(1000), S_OK);
    EXPECT_EQ(holder.Size(), 1000u);
    EXPECT_EQ(holder.Capacity(), 1000u);
    EXPECT_TRUE(AllBytesAre(holder, 0, 1000, 0));
    std::memset(holder.Data(), 0x5A, 1000);
    EXPECT_EQ(holder.Reserve(1001), S_OK);    // a new block: the old bytes are gone
    EXPECT_TRUE(AllBytesAre(holder, 0, 1001, 0));
}

TYPED_TEST(OwningBlobHolder, KeepsABlockThatReaches) {
    CBLOBHolder<TypeParam> holder;
    ASSERT_EQ(holder.Reserve(100, 7), S_OK);
    uint8_t *block = holder.Data();
    EXPECT_EQ(holder.Reserve(40), S_FALSE);
    EXPECT_EQ(holder.Data(), block);
    EXPECT_EQ(holder.Size(), 40u);
    EXPECT_EQ(holder.Capacity(), 100u);
    EXPECT_EQ(holder.Reserve(100), S_FALSE);
    EXPECT_TRUE(AllBytesAre(holder, 0, 100, 7));
}

TYPED_TEST(OwningBlobHolder, FillsTheUsedBytesInBothCases) {
    CBLOBHolder<TypeParam> holder;
    EXPECT_EQ(holder.Reserve(100, 7), S_OK);
    EXPECT_TRUE(AllBytesAre(holder, 0, 100, 7));
    EXPECT_EQ(holder.Reserve(40, 0), S_FALSE);
    EXPECT_TRUE(AllBytesAre(holder, 0, 40, 0));
    EXPECT_TRUE(AllBytesAre(holder, 40, 100, 7));
    EXPECT_EQ(holder.Reserve(200, 0), S_OK);
    EXPECT_TRUE(AllBytesAre(holder, 0, 200, 0));
}

TYPED_TEST(OwningBlobHolder, UsedSizeIsBoundedByTheCapacity) {
    CBLOBHolder<TypeParam> holder;
    ASSERT_EQ(holder.Reserve(100), S_OK);
    EXPECT_EQ(holder.SetSize(10), S_OK);
    EXPECT_EQ(holder.Size(), 10u);
    EXPECT_EQ(holder.SetSize(101), E_INVALIDARG);
    EXPECT_EQ(holder.Size(), 10u);
    EXPECT_EQ(holder.SetSize(100), S_OK);
}

TYPED_TEST(OwningBlobHolder, PointersEndAtTheCapacityNotAtTheUsedSize) {
    CBLOBHolder<TypeParam> holder;
    ASSERT_EQ(holder.Reserve(100), S_OK);
    ASSERT_EQ(holder.SetSize(10), S_OK);
    EXPECT_EQ(holder.Data(99), holder.Data() + 99);
    EXPECT_EQ(holder.Data(100), nullptr);
    EXPECT_EQ(holder.Data(0xFFFFFFFF), nullptr);
}

TYPED_TEST(OwningBlobHolder, TakesABlockOver) {
    CBLOBHolder<TypeParam> holder;
    ASSERT_EQ(holder.Reserve(100), S_OK);
    uint8_t *block = TypeParam::Alloc(50);
    holder.Attach(block, 50);
    EXPECT_EQ(holder.Data(), block);
    EXPECT_EQ(holder.Size(), 50u);
    EXPECT_EQ(holder.Capacity(), 50u);
    holder.Attach(block, 20);    // its own block is not freed
    *holder.Data(19) = 1;
    EXPECT_EQ(holder.Size(), 20u);
    EXPECT_EQ(holder.Capacity(), 20u);
    EXPECT_EQ(holder.Detach(), block);
    EXPECT_EQ(holder.Data(), nullptr);
    EXPECT_EQ(holder.Size(), 0u);
    TypeParam::Free(block);
}

TYPED_TEST(OwningBlobHolder, ANullBlockHasNoBytes) {
    CBLOBHolder<TypeParam> holder;
    ASSERT_EQ(holder.Reserve(100), S_OK);
    holder.Attach(nullptr, 100);
    EXPECT_EQ(holder.Size(), 0u);
    EXPECT_EQ(holder.Capacity(), 0u);
    EXPECT_EQ(holder.Data(), nullptr);
}

TYPED_TEST(OwningBlobHolder, CopiesInUpToTheCapacity) {
    CBLOBHolder<TypeParam> holder;
    ASSERT_EQ(holder.Reserve(10, 1), S_OK);
    ASSERT_EQ(holder.SetSize(4), S_OK);
    const std::vector<uint8_t> source(20, 2);
    EXPECT_EQ(holder.CopyIn(source.data(), 20, 6), S_OK);
    EXPECT_TRUE(AllBytesAre(holder, 0, 6, 1));
    EXPECT_TRUE(AllBytesAre(holder, 6, 10, 2));
    EXPECT_EQ(holder.Size(), 4u);
    EXPECT_EQ(holder.CopyIn(source.data(), 3), S_OK);
    EXPECT_TRUE(AllBytesAre(holder, 0, 3, 2));
    EXPECT_TRUE(AllBytesAre(holder, 3, 6, 1));
    EXPECT_EQ(holder.CopyIn(source.data(), 20, 10), S_OK);
    EXPECT_EQ(holder.CopyIn(source.data(), 20, 0xFFFFFFFF), S_OK);
    EXPECT_EQ(holder.CopyIn(nullptr, 10), S_OK);
    EXPECT_TRUE(AllBytesAre(holder, 0, 3, 2));
}

TYPED_TEST(OwningBlobHolder, IsCountedLikeAnyObject) {
    ComPtr<AutoObjBase<CBLOBHolder<TypeParam>>> held;
    auto *holder = new CBLOBHolder<TypeParam>;
    ASSERT_EQ(holder->Reserve(64, 3), S_OK);
    held.Attach(holder);
    EXPECT_EQ(held->RefCount(), 1u);
}

// A block that nobody can give: the old one is gone all the same.
struct NoMemory {
    static inline int freed = 0;
    static uint8_t *Alloc(uint32_t n) noexcept { return n <= 16 ? static_cast<uint8_t *>(std::calloc(n, 1)) : nullptr; }
    static void Free(uint8_t *block) noexcept {
        if (block != nullptr) ++freed;
        std::free(block);
    }
};

TEST(BlobHolder, IsEmptyWhenThereIsNoMemory) {
    NoMemory::freed = 0;
    CBLOBHolder<NoMemory> holder;
    ASSERT_EQ(holder.Reserve(16), S_OK);
    EXPECT_EQ(holder.Reserve(17, 5), E_OUTOFMEMORY);
    EXPECT_EQ(NoMemory::freed, 1);
    EXPECT_EQ(holder.Size(), 0u);
    EXPECT_EQ(holder.Capacity(), 0u);
    EXPECT_EQ(holder.Data(), nullptr);
    EXPECT_EQ(holder.Reserve(16), S_OK);
}

TEST(FakeBlobHolder, PointsAndNeverOwns) {
    std::vector<uint8_t> bytes(100, 4);
    {
        CBLOBHolder<CFakeAlloc> holder;
        holder.Attach(bytes.data(), 100);
        EXPECT_EQ(holder.Data(99), &bytes[99]);
        EXPECT_EQ(holder.Data(100), nullptr);
        EXPECT_EQ(holder.Reserve(100), S_FALSE);
        EXPECT_EQ(holder.Reserve(101), E_OUTOFMEMORY);
        EXPECT_EQ(holder.Size(), 0u);
        EXPECT_EQ(holder.Data(), nullptr);
        holder.Attach(bytes.data(), 100);
    }
    EXPECT_EQ(bytes, std::vector<uint8_t>(100, 4));
}

}    // namespace
}    // namespace zck
