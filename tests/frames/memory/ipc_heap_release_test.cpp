// Trimming, by call and by the thread.
#include <gtest/gtest.h>

#include <vector>

#include "frames/memory/ipc_buffer_heap.h"
#include "tests/support/eventually.h"

namespace zck {
namespace {

// Waits until the thread has brought the count down.
bool FallsTo(IPCBufferHeap &heap, int32_t count) {
    return test::Eventually([&] { return heap.BufferCount() <= count; });
}

void Fill(IPCBufferHeap &heap, int32_t size, int32_t count) { ASSERT_EQ(heap.GetBuffer(size, nullptr, count), S_OK); }

TEST(ReleaseFreeFrames, OneSizeEndsOneBelowTheMinimum) {
    IPCBufferHeap heap;
    Fill(heap, 480, 20);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 5);
    EXPECT_EQ(heap.BufferCount(), 15);
    EXPECT_EQ(heap.IdleCount(), 15);
}

TEST(ReleaseFreeFrames, AWalkNeverStartsAtTheMinimumOrBelow) {
    IPCBufferHeap heap;
    Fill(heap, 480, 16);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 0);
    EXPECT_EQ(heap.ReleaseFreeFrames(5, 0), 0);
    EXPECT_EQ(heap.BufferCount(), 16);
}

TEST(ReleaseFreeFrames, SmallSizesGoFirst) {
    IPCBufferHeap heap(0, 3);
    Fill(heap, 100000, 2);
    Fill(heap, 480, 2);
    Fill(heap, 2000, 2);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 4);    // both of 480, and both of 2000: the second takes the count below three
    EXPECT_EQ(heap.BufferCount(), 2);
    IPCBuffer *b = nullptr;
    ASSERT_EQ(heap.GetBuffer(100000, &b, 2), S_OK);
    EXPECT_EQ(heap.BufferCount(), 2);    // the large ones are still there
    b->Release();
}

TEST(ReleaseFreeFrames, AnEntryThatEndsAtTheMinimumEndsTheWalk) {
    IPCBufferHeap heap(0, 4);
    Fill(heap, 480, 2);
    Fill(heap, 100000, 4);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 2);
    EXPECT_EQ(heap.BufferCount(), 4);
}

TEST(ReleaseFreeFrames, APositiveNumberBoundsTheWholeCall) {
    IPCBufferHeap heap(0, 0);
    Fill(heap, 480, 3);
    Fill(heap, 100000, 3);
    EXPECT_EQ(heap.ReleaseFreeFrames(2, 0), 2);
    EXPECT_EQ(heap.BufferCount(), 4);
    EXPECT_EQ(heap.ReleaseFreeFrames(1, 0), 1);    // empties the small size, and goes no further
    EXPECT_EQ(heap.BufferCount(), 3);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 99), 3);    // the second argument means nothing
    EXPECT_EQ(heap.BufferCount(), 0);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 0);
}

TEST(ReleaseFreeFrames, BuffersInUseCountButStay) {
    IPCBufferHeap heap(0, 1);
    IPCBuffer *used = nullptr;
    ASSERT_EQ(heap.GetBuffer(480, &used, 3), S_OK);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 2);
    EXPECT_EQ(heap.BufferCount(), 1);
    heap.ReturnFrame(used);
    EXPECT_EQ(heap.BufferCount(), 1);
}

TEST(ReleaseFreeFrames, ClosesTheSections) {
    IPCBufferHeap heap(0, 0);
    IPCBuffer *b = nullptr;
    ASSERT_EQ(heap.GetBuffer(480, &b, 1), S_OK);
    const uint64_t id = b->BufferId();
    heap.ReturnFrame(b);
    ASSERT_TRUE(FallsTo(heap, 0));
    IPCBuffer other;
    // The count falls before the section is closed.
    EXPECT_TRUE(test::Eventually([&] {
        other.CloseBuffer();
        return other.OpenBuffer(id) != S_OK;
    }));
}

TEST(ReleaseWorker, BringsThePoolBackToSixteen) {
    IPCBufferHeap heap;
    std::vector<IPCBuffer *> used(40, nullptr);
    for (IPCBuffer *&b : used) ASSERT_EQ(heap.GetBuffer(5000, &b, 1), S_OK);
    EXPECT_EQ(heap.BufferCount(), 40);
    for (IPCBuffer *b : used) ASSERT_EQ(heap.ReturnFrame(b), S_OK);
    EXPECT_TRUE(FallsTo(heap, 16));
    // A walk that begins above sixteen can end at fifteen, never lower.
    EXPECT_GE(heap.BufferCount(), 15);
}

TEST(ReleaseWorker, LeavesAPoolBelowTheMinimumAlone) {
    IPCBufferHeap heap;
    for (int i = 0; i < 20; ++i) {
        IPCBuffer *b = nullptr;
        ASSERT_EQ(heap.GetBuffer(5000, &b, 3), S_OK);
        ASSERT_EQ(heap.ReturnFrame(b), S_OK);
    }
    SleepMs(20);
    EXPECT_EQ(heap.BufferCount(), 3);
}

TEST(ReleaseWorker, EndsWithThePool) {
    for (int i = 0; i < 20; ++i) {
        IPCBufferHeap heap(0, 0);
        IPCBuffer *b = nullptr;
        ASSERT_EQ(heap.GetBuffer(500, &b, 3), S_OK);
        ASSERT_EQ(heap.ReturnFrame(b), S_OK);
    }
}

}    // namespace
}    // namespace zck
