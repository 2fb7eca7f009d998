// Many threads at one pool; run under the thread sanitizer as well.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include "frames/memory/ipc_buffer_heap.h"

namespace zck {
namespace {

// Each thread takes, marks as its own, looks whether anybody else wrote there, and returns.
void TakeAndReturn(IPCBufferHeap &heap, uint32_t seed, std::atomic<int> &errors) {
    std::mt19937 random(seed);
    std::vector<IPCBuffer *> held;
    const auto mark = static_cast<uint8_t>(seed);
    for (int i = 0; i < 150; ++i) {
        const auto size = static_cast<int32_t>(1 + random() % 3000);
        IPCBuffer *b = nullptr;
        heap.GetBuffer(size, &b, 3);
        if (b == nullptr || b->DataSize(0) < static_cast<uint32_t>(size) || b->RefCount() != 1) {
            ++errors;
            continue;
        }
        std::memset(b->DataPointer(0), mark, b->DataSize(0));
        held.push_back(b);
        if (held.size() < 4) continue;
        for (IPCBuffer *h : held) {
            for (uint32_t k = 0; k < h->DataSize(0); k += 64)
                if (*h->DataPointer(k) != mark) ++errors;
            heap.ReturnFrame(h);
        }
        held.clear();
        if (i % 10 == 0) heap.ReleaseFreeFrames(2, 0);
    }
    for (IPCBuffer *h : held) heap.ReturnFrame(h);
}

TEST(PoolThreads, NoBufferHasTwoOwners) {
    std::atomic<int> errors{0};
    IPCBufferHeap heap;
    std::vector<std::thread> threads;
    for (uint32_t i = 1; i <= 4; ++i) threads.emplace_back([&, i] { TakeAndReturn(heap, i, errors); });
    for (auto &t : threads) t.join();
    EXPECT_EQ(errors, 0);
    heap.ReleaseFreeFrames(0, 0);    // from here on the thread finds nothing to do
    EXPECT_LE(heap.BufferCount(), 16);
    EXPECT_EQ(heap.BufferCount(), heap.IdleCount());
}

// A frame that is reloaded gives its buffer back while clones on other threads still read it.
TEST(PoolThreads, ASecondOwnerReadsUndisturbed) {
    IPCBufferHeap heap;
    std::atomic<int> errors{0};
    for (int round = 0; round < 60; ++round) {
        IPCBuffer *b = nullptr;
        ASSERT_EQ(heap.GetBuffer(2000, &b, 1), S_OK);
        std::memset(b->DataPointer(0), round, 2000);
        b->AddRef();
        std::thread reader([&errors, b, round] {
            for (uint32_t k = 0; k < 2000; ++k)
                if (*b->DataPointer(k) != static_cast<uint8_t>(round)) ++errors;
            b->Release();
        });
        ASSERT_EQ(heap.ReturnFrame(b), S_OK);
        IPCBuffer *next = nullptr;
        ASSERT_EQ(heap.GetBuffer(2000, &next, 1), S_OK);
        std::memset(next->DataPointer(0), 0xEE, 2000);
        reader.join();
        ASSERT_EQ(heap.ReturnFrame(next), S_OK);
    }
    EXPECT_EQ(errors, 0);
    EXPECT_LE(heap.BufferCount(), 2);
}

TEST(PoolThreads, TheCapHolds) {
    IPCBufferHeap heap(5, 0);
    std::atomic<int> most{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < 100; ++n) {
                IPCBuffer *b = nullptr;
                heap.GetBuffer(700, &b, 2);
                if (b == nullptr) continue;
                int seen = most.load();
                const int idle = heap.IdleCount();
                while (idle > seen && !most.compare_exchange_weak(seen, idle)) {
                }
                heap.ReturnFrame(b);
            }
        });
    for (auto &t : threads) t.join();
    EXPECT_LE(most, 5);
    EXPECT_LE(heap.BufferCount(), 5);
}

}    // namespace
}    // namespace zck
