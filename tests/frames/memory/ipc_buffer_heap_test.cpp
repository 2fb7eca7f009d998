// What the pool gives, keeps and counts. The trimming thread stays out of these tests: they keep below its minimum.
#include "frames/memory/ipc_buffer_heap.h"

#include <gtest/gtest.h>

#include <limits>

namespace zck {
namespace {

// Many more than any test here makes.
constexpr int32_t kNoTrim = 1000;

class Pool : public testing::Test {
protected:
    IPCBuffer *Get(int32_t size, int32_t count = 1) {
        IPCBuffer *b = nullptr;
        EXPECT_EQ(m_heap.GetBuffer(size, &b, count), S_OK);
        return b;
    }
    IPCBufferHeap m_heap{0, kNoTrim};
};

TEST_F(Pool, MakesTheAskedNumberAndHandsOutOne) {
    IPCBuffer *b = Get(1000, 3);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->RefCount(), 1u);
    EXPECT_GE(b->DataSize(0), 1000u);
    EXPECT_TRUE(b->IsFresh());
    EXPECT_EQ(m_heap.BufferCount(), 3);
    EXPECT_EQ(m_heap.IdleCount(), 2);
    EXPECT_EQ(m_heap.ReturnFrame(b), S_OK);
    EXPECT_EQ(m_heap.IdleCount(), 3);
    EXPECT_EQ(m_heap.BufferCount(), 3);
}

TEST_F(Pool, SteadyStateMakesNothing) {
    IPCBuffer *b = Get(100000, 3);
    m_heap.ReturnFrame(b);
    for (int i = 0; i < 50; ++i) {
        b = Get(100000, 3);
        m_heap.ReturnFrame(b);
    }
    EXPECT_EQ(m_heap.BufferCount(), 3);
}

TEST_F(Pool, SparesInThePoolCountAsFound) {
    IPCBuffer *a = Get(1000, 3);
    IPCBuffer *b = Get(1000, 3);    // two lie there: one is missing
    EXPECT_EQ(m_heap.BufferCount(), 4);
    EXPECT_EQ(m_heap.IdleCount(), 2);
    EXPECT_NE(a, b);
    EXPECT_EQ(m_heap.GetBuffer(1000, nullptr, 2), S_OK);    // two are enough
    EXPECT_EQ(m_heap.BufferCount(), 4);
    EXPECT_EQ(m_heap.GetBuffer(1000, nullptr, 5), S_OK);
    EXPECT_EQ(m_heap.BufferCount(), 7);
    EXPECT_EQ(m_heap.IdleCount(), 5);
    m_heap.ReturnFrame(a);
    m_heap.ReturnFrame(b);
}

TEST_F(Pool, CountBelowOneIsOne) {
    for (int32_t count : {0, -1, std::numeric_limits<int32_t>::min()}) {
        IPCBufferHeap heap(0, kNoTrim);
        IPCBuffer *b = nullptr;
        EXPECT_EQ(heap.GetBuffer(10, &b, count), S_OK);
        EXPECT_EQ(heap.BufferCount(), 1);
        ASSERT_NE(b, nullptr);
        b->Release();
    }
}

TEST_F(Pool, QueuesAreFirstInFirstOut) {
    IPCBuffer *a = Get(1000);
    IPCBuffer *b = Get(1000);
    m_heap.ReturnFrame(a);
    m_heap.ReturnFrame(b);
    EXPECT_EQ(Get(1000), a);
    EXPECT_EQ(Get(1000), b);
    m_heap.ReturnFrame(a);
    m_heap.ReturnFrame(b);
}

TEST_F(Pool, TakesABufferUpToExactlyDouble) {
    IPCBuffer *big = Get(2016);    // 2048 in total
    ASSERT_EQ(big->DataSize(0), 2016u);
    m_heap.ReturnFrame(big);
    IPCBuffer *b = Get(1007);    // one byte less than half
    EXPECT_NE(b, big);
    EXPECT_EQ(Get(1008), big);
    m_heap.ReturnFrame(b);
    m_heap.ReturnFrame(big);
}

TEST_F(Pool, PassesOverBuffersThatAreTooSmallAndPrefersTheSmallest) {
    IPCBuffer *small = Get(480);
    IPCBuffer *middle = Get(992);
    IPCBuffer *large = Get(1504);
    m_heap.ReturnFrame(large);
    m_heap.ReturnFrame(middle);
    m_heap.ReturnFrame(small);
    EXPECT_EQ(Get(992), middle);
    EXPECT_EQ(Get(993), large);
    EXPECT_EQ(Get(480), small);
    for (IPCBuffer *b : {small, middle, large}) m_heap.ReturnFrame(b);
}

TEST_F(Pool, ABufferTooLargeStopsTheWalkAndASmallerRequestMakesItsOwn) {
    m_heap.ReturnFrame(Get(100000));
    IPCBuffer *b = Get(0);    // nothing is at most twice 0
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->DataSize(0), 480u);
    EXPECT_EQ(m_heap.BufferCount(), 2);
    m_heap.ReturnFrame(b);
}

TEST_F(Pool, NegativeSizesAreRefused) {
    IPCBuffer *b = reinterpret_cast<IPCBuffer *>(this);
    EXPECT_EQ(m_heap.GetBuffer(-1, &b, 3), E_INVALIDARG);
    EXPECT_EQ(b, nullptr);
    EXPECT_EQ(m_heap.GetBuffer(std::numeric_limits<int32_t>::min(), nullptr, 3), E_INVALIDARG);
    EXPECT_EQ(m_heap.BufferCount(), 0);
    EXPECT_EQ(m_heap.ReturnFrame(nullptr), E_POINTER);
}

TEST_F(Pool, AReturnedBufferKeepsItsPixels) {
    IPCBuffer *b = Get(1000);
    *b->DataPointer(0) = 9;
    m_heap.ReturnFrame(b);
    ASSERT_EQ(Get(1000), b);
    EXPECT_FALSE(b->IsFresh());
    EXPECT_EQ(*b->DataPointer(0), 9);
    m_heap.ReturnFrame(b);
}

TEST_F(Pool, ASecondOwnerKeepsABufferOutOfThePool) {
    IPCBuffer *b = Get(1000);
    *b->DataPointer(0) = 9;
    b->AddRef();
    EXPECT_EQ(m_heap.ReturnFrame(b), S_OK);
    EXPECT_EQ(m_heap.IdleCount(), 0);
    EXPECT_EQ(m_heap.BufferCount(), 1);
    IPCBuffer *other = Get(1000);
    EXPECT_NE(other, b);
    EXPECT_EQ(*b->DataPointer(0), 9);
    EXPECT_EQ(b->Release(), 1u);
    EXPECT_EQ(Get(1000), b);    // now it can be had
    EXPECT_EQ(m_heap.BufferCount(), 2);
    m_heap.ReturnFrame(b);
    m_heap.ReturnFrame(other);
}

TEST(PoolEnd, BuffersThatAreInUseOutliveThePool) {
    IPCBuffer *used = nullptr;
    IPCBuffer *shared = nullptr;
    uint64_t idle = 0;
    {
        IPCBufferHeap heap(0, kNoTrim);
        ASSERT_EQ(heap.GetBuffer(1000, &used, 1), S_OK);
        ASSERT_EQ(heap.GetBuffer(1000, &shared, 1), S_OK);
        shared->AddRef();
        heap.ReturnFrame(shared);
        IPCBuffer *b = nullptr;
        ASSERT_EQ(heap.GetBuffer(1000, &b, 1), S_OK);
        idle = b->BufferId();
        heap.ReturnFrame(b);
    }
    *used->DataPointer(999) = 1;
    *shared->DataPointer(999) = 1;
    EXPECT_EQ(shared->Release(), 0u);
    EXPECT_EQ(used->Release(), 0u);
    IPCBuffer gone;
    EXPECT_NE(gone.OpenBuffer(idle), S_OK);
}

TEST(CappedPool, NothingFoundIsAFailureEvenIfSomeWereMade) {
    IPCBufferHeap heap(2, 0);
    IPCBuffer *b = nullptr;
    EXPECT_EQ(heap.GetBuffer(1000, &b, 3), E_OUTOFMEMORY);
    ASSERT_NE(b, nullptr);    // it came all the same
    EXPECT_EQ(heap.BufferCount(), 2);
    EXPECT_EQ(heap.IdleCount(), 1);
    b->Release();
}

TEST(CappedPool, SomethingFoundIsAPartSuccess) {
    IPCBufferHeap heap(2, 2);    // nothing idle may be released
    IPCBuffer *a = nullptr;
    ASSERT_EQ(heap.GetBuffer(1000, &a, 2), S_OK);
    IPCBuffer *b = nullptr;
    EXPECT_EQ(heap.GetBuffer(1000, &b, 3), S_FALSE);
    ASSERT_NE(b, nullptr);
    EXPECT_NE(a, b);
    IPCBuffer *c = nullptr;
    EXPECT_EQ(heap.GetBuffer(1000, &c, 1), E_OUTOFMEMORY);
    EXPECT_EQ(c, nullptr);
    EXPECT_EQ(heap.BufferCount(), 2);
    a->Release();
    b->Release();
}

TEST(CappedPool, MakesRoomFromTheIdleOnesWithoutLockingItselfUp) {
    IPCBufferHeap heap(4, 0);
    ASSERT_EQ(heap.GetBuffer(480, nullptr, 4), S_OK);
    IPCBuffer *b = nullptr;
    // Three are wanted, so three idle ones of the wrong size go.
    EXPECT_EQ(heap.GetBuffer(100000, &b, 3), S_OK);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(heap.BufferCount(), 4);
    EXPECT_EQ(heap.IdleCount(), 3);
    b->Release();
}

TEST(CappedPool, WithNothingWantedAtTheCapEverythingIdleMayGo) {
    IPCBufferHeap heap(4, 1);
    ASSERT_EQ(heap.GetBuffer(480, nullptr, 4), S_OK);
    IPCBuffer *b = nullptr;
    EXPECT_EQ(heap.GetBuffer(480, &b, 1), S_OK);
    // One is out; of the three idle ones those above the minimum went, and one more of the same size.
    EXPECT_EQ(heap.BufferCount(), 1);
    EXPECT_EQ(heap.IdleCount(), 0);
    b->Release();
}

}    // namespace
}    // namespace zck
