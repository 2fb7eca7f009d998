// Owning buffers, shared-memory sections and their pool.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "frames/memory/blob_holder.h"
#include "frames/memory/ipc_buffer.h"
#include "frames/memory/ipc_buffer_heap.h"
#include "platform/section.h"
#include "platform/status.h"
#include "tests/support/eventually.h"

namespace conformance {
namespace {

using zck::CBLOBHolder;
using zck::IPCBuffer;
using zck::IPCBufferHeap;

template <class Allocator>
class Holders : public testing::Test {};
using Owning = testing::Types<zck::CHeapAlloc, zck::CNewAlloc, zck::CCoTaskAlloc>;
TYPED_TEST_SUITE(Holders, Owning);

TYPED_TEST(Holders, ReservingKeepsTheBlockWhileItReaches) {
    CBLOBHolder<TypeParam> h;
    EXPECT_EQ(h.Reserve(0), S_FALSE);
    EXPECT_EQ(h.Data(), nullptr);
    EXPECT_EQ(h.Reserve(100), S_OK);
    EXPECT_EQ(h.Size(), 100U);
    EXPECT_EQ(h.Capacity(), 100U);
    std::memset(h.Data(), 7, 100);
    uint8_t *const block = h.Data();
    EXPECT_EQ(h.Reserve(40), S_FALSE);
    EXPECT_EQ(h.Size(), 40U);
    EXPECT_EQ(h.Capacity(), 100U);
    EXPECT_EQ(h.Data(), block);
    EXPECT_EQ(h.Data()[99], 7);
    EXPECT_EQ(h.Reserve(100), S_FALSE);
    EXPECT_EQ(h.Size(), 100U);
    EXPECT_EQ(h.Reserve(0), S_FALSE);
    EXPECT_EQ(h.Size(), 0U);
    EXPECT_EQ(h.Data(), block);
    EXPECT_EQ(h.Reserve(101), S_OK);
    EXPECT_EQ(h.Capacity(), 101U);
}

TYPED_TEST(Holders, FillByteCoversTheUsedBytesInBothCases) {
    CBLOBHolder<TypeParam> h;
    EXPECT_EQ(h.Reserve(8, 0xAB), S_OK);
    for (uint32_t i = 0; i < 8; ++i) EXPECT_EQ(h.Data()[i], 0xAB);
    EXPECT_EQ(h.Reserve(3, 0x11), S_FALSE);
    for (uint32_t i = 0; i < 8; ++i) EXPECT_EQ(h.Data()[i], i < 3 ? 0x11 : 0xAB) << i;
    EXPECT_EQ(h.Reserve(2, 0), S_FALSE);
    for (uint32_t i = 0; i < 3; ++i) EXPECT_EQ(h.Data()[i], i < 2 ? 0 : 0x11) << i;
}

TYPED_TEST(Holders, UsedSizeAndOffsetsStopAtTheCapacity) {
    CBLOBHolder<TypeParam> h;
    EXPECT_EQ(h.SetSize(0), S_OK);
    EXPECT_EQ(h.SetSize(1), E_INVALIDARG);
    h.Reserve(10);
    EXPECT_EQ(h.SetSize(10), S_OK);
    EXPECT_EQ(h.SetSize(11), E_INVALIDARG);
    EXPECT_EQ(h.Size(), 10U);
    EXPECT_EQ(h.SetSize(4), S_OK);
    EXPECT_EQ(h.Data(9), h.Data() + 9);    // the capacity counts, not the used size
    EXPECT_EQ(h.Data(10), nullptr);
    EXPECT_EQ(h.Data(0xFFFFFFFF), nullptr);
}

TYPED_TEST(Holders, CopyInStopsAtTheCapacity) {
    CBLOBHolder<TypeParam> h;
    h.Reserve(4, 0);
    h.SetSize(1);
    const uint8_t source[] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(h.CopyIn(source, 6, 2), S_OK);
    EXPECT_EQ(h.Size(), 1U);
    EXPECT_EQ(h.Data()[2], 1);
    EXPECT_EQ(h.Data()[3], 2);
    EXPECT_EQ(h.CopyIn(source, 6, 4), S_OK);
    EXPECT_EQ(h.CopyIn(source, 6, 0xFFFFFFFF), S_OK);
    EXPECT_EQ(h.CopyIn(nullptr, 6), S_OK);
    EXPECT_EQ(h.Data()[0], 0);
}

TYPED_TEST(Holders, TakingOverABlock) {
    CBLOBHolder<TypeParam> h;
    h.Reserve(5);
    uint8_t *const block = TypeParam::Alloc(20);
    block[19] = 9;
    h.Attach(block, 20);
    EXPECT_EQ(h.Size(), 20U);
    EXPECT_EQ(h.Capacity(), 20U);
    EXPECT_EQ(h.Data(), block);
    h.Attach(block, 12);    // its own
    EXPECT_EQ(h.Size(), 12U);
    EXPECT_EQ(h.Data(), block);
    h.Attach(nullptr, 50);
    EXPECT_EQ(h.Size(), 0U);
    EXPECT_EQ(h.Capacity(), 0U);
}

TEST(FakeHolder, PointsAndNeverAllocates) {
    CBLOBHolder<zck::CFakeAlloc> h;
    uint8_t bytes[6] = {};
    h.Attach(bytes, 6);
    EXPECT_EQ(h.Reserve(6), S_FALSE);
    EXPECT_EQ(h.Reserve(7), E_OUTOFMEMORY);
    EXPECT_EQ(h.Size(), 0U);
    EXPECT_EQ(h.Capacity(), 0U);
    EXPECT_EQ(h.Data(), nullptr);
}

TEST(CountedHolder, AnswersTheBaseUnknownOnly) {
    auto *h = new CBLOBHolder<zck::CHeapAlloc>;
    void *out = h;
    EXPECT_EQ(h->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(h->QueryInterface(IID_IClassFactory, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(h->QueryInterface(IID_IUnknown, &out), S_OK);
    EXPECT_EQ(out, static_cast<IUnknown *>(h));
    EXPECT_EQ(h->AddRef(), 3U);
    EXPECT_EQ(h->Release(), 2U);
    EXPECT_EQ(h->Release(), 1U);
    EXPECT_EQ(h->Release(), 0U);
}

uint32_t Header(const IPCBuffer &b) {
    uint32_t total = 0;
    std::memcpy(&total, b.DataPointer(0) - 32, 4);
    return total;
}

TEST(Sections, SizesRoundUpWithTheHeader) {
    const std::pair<uint32_t, uint32_t> sizes[] = {
        {1, 512}, {480, 512}, {481, 1024}, {992, 1024}, {993, 1536}, {4096 - 32, 4096}, {622080, (622080 + 543) & ~511U}};
    for (const auto &[wanted, total] : sizes) {
        IPCBuffer b;
        EXPECT_EQ(b.DataSize(0), 0U);
        EXPECT_EQ(b.DataPointer(0), nullptr);
        EXPECT_EQ(b.BufferId(), 0U);
        ASSERT_EQ(b.AllocBuffer(wanted), S_OK);
        EXPECT_EQ(b.DataSize(0), total - 32) << wanted;
        EXPECT_EQ(b.DataSize(100), total - 132) << wanted;
        EXPECT_EQ(b.DataSize(total), 0U) << wanted;
        EXPECT_EQ(Header(b), total) << wanted;
        EXPECT_EQ(b.DataPointer(7), b.DataPointer(0) + 7);
        for (int i = 4; i < 32; ++i) EXPECT_EQ(b.DataPointer(0)[i - 32], 0);
        for (uint32_t i = 0; i < total - 32; ++i) ASSERT_EQ(b.DataPointer(0)[i], 0);
        b.CloseBuffer();
        b.CloseBuffer();
        EXPECT_EQ(b.DataSize(0), 0U);
        EXPECT_EQ(b.BufferId(), 0U);
    }
}

TEST(Sections, AskingForNoMoreThanTheTotalKeepsTheSection) {
    IPCBuffer b;
    ASSERT_EQ(b.AllocBuffer(1), S_OK);
    b.DataPointer(0)[0] = 77;
    const uint64_t id = b.BufferId();
    EXPECT_EQ(b.AllocBuffer(512), S_OK);    // the total, although only 480 are usable
    EXPECT_EQ(b.BufferId(), id);
    EXPECT_EQ(b.DataSize(0), 480U);
    EXPECT_EQ(b.DataPointer(0)[0], 77);
    EXPECT_EQ(b.AllocBuffer(513), S_OK);
    EXPECT_EQ(b.DataSize(0), 1024U - 32);
    EXPECT_EQ(b.DataPointer(0)[0], 0);
}

TEST(Sections, HugeSizesAreRefused) {
    IPCBuffer b;
    EXPECT_EQ(b.AllocBuffer(0xFFFFFFFF - 542), E_OUTOFMEMORY);
    EXPECT_EQ(b.AllocBuffer(0xFFFFFFFF), E_OUTOFMEMORY);
    EXPECT_EQ(b.DataSize(0), 0U);
}

TEST(Sections, ATakenNumberLeadsToTheNext) {
    IPCBuffer b;
    const uint64_t address = reinterpret_cast<uintptr_t>(&b);
    zck::Section taken;
    ASSERT_EQ(taken.Create(address, 4096), S_OK);
    ASSERT_EQ(b.AllocBuffer(1), S_OK);
    EXPECT_EQ(b.BufferId(), address + 1);
    b.CloseBuffer();
    taken.Close();
    ASSERT_EQ(b.AllocBuffer(1), S_OK);
    EXPECT_EQ(b.BufferId(), address);
}

TEST(Sections, OpeningByNumberShowsTheSameBytes) {
    IPCBuffer a, b;
    ASSERT_EQ(a.AllocBuffer(1000), S_OK);
    a.DataPointer(0)[999] = 42;
    ASSERT_EQ(b.AllocBuffer(1), S_OK);
    ASSERT_EQ(b.OpenBuffer(a.BufferId()), S_OK);
    EXPECT_EQ(b.BufferId(), a.BufferId());
    EXPECT_EQ(b.DataSize(0), a.DataSize(0));
    EXPECT_EQ(b.DataPointer(0)[999], 42);
    b.DataPointer(0)[1] = 43;
    EXPECT_EQ(a.DataPointer(0)[1], 43);
    const uint64_t id = a.BufferId();
    a.CloseBuffer();
    EXPECT_EQ(b.DataPointer(0)[999], 42);    // lives while a handle is open
    EXPECT_EQ(a.OpenBuffer(id), S_OK);
    a.CloseBuffer();
    b.CloseBuffer();
    EXPECT_EQ(a.OpenBuffer(id), zck::kErrorFileNotFound);
    // A failed opening has closed what was open before.
    ASSERT_EQ(b.AllocBuffer(1), S_OK);
    EXPECT_EQ(b.OpenBuffer(id + 0x12345677), zck::kErrorFileNotFound);
    EXPECT_EQ(b.BufferId(), 0U);
    EXPECT_EQ(b.DataPointer(0), nullptr);
}

TEST(Sections, TheStoredTotalCountsWithinTheMapping) {
    zck::Section s;
    const uint64_t id = 0x5EC0DD0000ULL + static_cast<uint64_t>(reinterpret_cast<uintptr_t>(&s) & 0xFFFF);
    ASSERT_EQ(s.Create(id, 4096), S_OK);
    ASSERT_EQ(s.Map(), S_OK);
    IPCBuffer b;
    const std::pair<uint32_t, uint32_t> totals[] = {{4096, 4064}, {1000, 968}, {33, 1}, {32, 0}, {5, 0}, {0, 0}};
    for (const auto &[total, usable] : totals) {
        std::memcpy(s.View(), &total, 4);
        EXPECT_EQ(b.OpenBuffer(id), S_OK) << total;
        EXPECT_EQ(b.DataSize(0), usable) << total;
    }
    const uint32_t tooLarge = static_cast<uint32_t>(s.Size()) + 1;
    std::memcpy(s.View(), &tooLarge, 4);
    EXPECT_EQ(b.OpenBuffer(id), E_UNEXPECTED);
    EXPECT_EQ(b.DataSize(0), 0U);
    EXPECT_EQ(b.DataPointer(0), nullptr);
}

// A pool whose thread has nothing to trim.
constexpr int32_t kNever = 1000000;

TEST(Pool, ThreeAreMadeForOne) {
    IPCBufferHeap heap(0, kNever);
    IPCBuffer *first = nullptr, *second = nullptr;
    EXPECT_EQ(heap.GetBuffer(480, &first, 3), S_OK);
    EXPECT_EQ(heap.BufferCount(), 3);
    EXPECT_EQ(heap.IdleCount(), 2);
    EXPECT_EQ(heap.GetBuffer(480, &second, 3), S_OK);    // 2 found, 1 made
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(heap.BufferCount(), 4);
    EXPECT_EQ(heap.IdleCount(), 2);
    EXPECT_EQ(heap.ReturnFrame(first), S_OK);
    EXPECT_EQ(heap.ReturnFrame(second), S_OK);
    EXPECT_EQ(heap.IdleCount(), 4);
    EXPECT_EQ(heap.ReturnFrame(nullptr), E_POINTER);
}

TEST(Pool, TheLongestIdleGoesOutFirst) {
    IPCBufferHeap heap(0, kNever);
    IPCBuffer *b[3] = {};
    for (auto &one : b) ASSERT_EQ(heap.GetBuffer(480, &one, 1), S_OK);
    heap.ReturnFrame(b[1]);
    heap.ReturnFrame(b[0]);
    heap.ReturnFrame(b[2]);
    for (const int i : {1, 0, 2}) {
        IPCBuffer *out = nullptr;
        ASSERT_EQ(heap.GetBuffer(480, &out, 1), S_OK);
        EXPECT_EQ(out, b[i]);
        b[i] = out;
    }
    EXPECT_EQ(heap.BufferCount(), 3);
    for (auto *one : b) one->Release();
}

TEST(Pool, ExactlyDoubleIsReused) {
    IPCBufferHeap heap(0, kNever);
    ASSERT_EQ(heap.GetBuffer(992, nullptr, 1), S_OK);
    EXPECT_EQ(heap.IdleCount(), 1);
    IPCBuffer *out = nullptr;
    ASSERT_EQ(heap.GetBuffer(495, &out, 1), S_OK);    // 992 / 495 is above 2
    EXPECT_EQ(heap.BufferCount(), 2);
    EXPECT_EQ(out->DataSize(0), 992U);    // a new one of the next step of 512
    IPCBuffer *other = nullptr;
    ASSERT_EQ(heap.GetBuffer(496, &other, 1), S_OK);
    EXPECT_EQ(heap.BufferCount(), 2);
    EXPECT_EQ(heap.IdleCount(), 0);
    EXPECT_NE(out, other);
    out->Release();
    other->Release();
}

TEST(Pool, SpareCountsOverAllFittingSizes) {
    IPCBufferHeap heap(0, kNever);
    ASSERT_EQ(heap.GetBuffer(480, nullptr, 2), S_OK);
    ASSERT_EQ(heap.GetBuffer(992, nullptr, 2), S_OK);    // 480 is too small for it
    EXPECT_EQ(heap.BufferCount(), 4);
    IPCBuffer *out = nullptr;
    EXPECT_EQ(heap.GetBuffer(480, &out, 5), S_OK);    // 480: 2; 992 / 480 is above 2, so three are made
    EXPECT_EQ(heap.BufferCount(), 7);
    EXPECT_EQ(heap.IdleCount(), 6);
    EXPECT_EQ(out->DataSize(0), 480U);
    IPCBuffer *other = nullptr;
    EXPECT_EQ(heap.GetBuffer(500, &other, 2), S_OK);    // 480 passed over, two of 992 found
    EXPECT_EQ(heap.BufferCount(), 7);
    EXPECT_EQ(other->DataSize(0), 992U);
    out->Release();
    other->Release();
}

TEST(Pool, NegativeSizesAreRefused) {
    IPCBufferHeap heap(0, kNever);
    IPCBuffer *out = nullptr;
    EXPECT_EQ(heap.GetBuffer(-1, &out, 3), E_INVALIDARG);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(heap.BufferCount(), 0);
}

TEST(Pool, CountsBelowOneAreOne) {
    IPCBufferHeap heap(0, kNever);
    IPCBuffer *out = nullptr;
    EXPECT_EQ(heap.GetBuffer(100, &out, -5), S_OK);
    EXPECT_EQ(heap.BufferCount(), 1);
    out->Release();
}

TEST(Pool, TheCapTellsWhetherSomethingWasFound) {
    IPCBufferHeap heap(2, kNever);
    IPCBuffer *first = nullptr, *second = nullptr, *third = nullptr;
    // Nothing was in the pool: the failure, although two were made and one came out.
    EXPECT_EQ(heap.GetBuffer(480, &first, 3), E_OUTOFMEMORY);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(heap.BufferCount(), 2);
    EXPECT_EQ(heap.IdleCount(), 1);
    EXPECT_EQ(heap.GetBuffer(480, &second, 3), S_FALSE);
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(heap.BufferCount(), 2);
    EXPECT_EQ(heap.GetBuffer(480, &third, 1), E_OUTOFMEMORY);
    EXPECT_EQ(third, nullptr);
    EXPECT_EQ(heap.BufferCount(), 2);
    heap.ReturnFrame(first);
    heap.ReturnFrame(second);
}

TEST(Pool, AtTheCapIdleOnesMakeRoom) {
    IPCBufferHeap heap(2, 0);
    ASSERT_EQ(heap.GetBuffer(480, nullptr, 2), S_OK);
    IPCBuffer *out = nullptr;
    EXPECT_EQ(heap.GetBuffer(5000, &out, 1), S_OK);
    EXPECT_NE(out, nullptr);
    EXPECT_EQ(heap.BufferCount(), 2);    // one of the two idle went
    EXPECT_EQ(heap.IdleCount(), 1);
    out->Release();
}

TEST(Pool, ReleasingStopsInsideAnEntryBelowTheMinimum) {
    IPCBufferHeap heap(0, 16);
    ASSERT_EQ(heap.GetBuffer(480, nullptr, 20), S_OK);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 5);
    EXPECT_EQ(heap.BufferCount(), 15);
    EXPECT_EQ(heap.IdleCount(), 15);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 0);
}

TEST(Pool, ReleasingStartsWithTheSmallestAndTheNumberBoundsTheCall) {
    IPCBufferHeap heap(0, 2);
    ASSERT_EQ(heap.GetBuffer(5000, nullptr, 3), S_OK);
    ASSERT_EQ(heap.GetBuffer(480, nullptr, 3), S_OK);
    EXPECT_EQ(heap.ReleaseFreeFrames(2, 12345), 2);
    EXPECT_EQ(heap.BufferCount(), 4);
    // Two of the small size went: a request for it finds one and makes one.
    ASSERT_EQ(heap.GetBuffer(480, nullptr, 2), S_OK);
    EXPECT_EQ(heap.BufferCount(), 5);
    EXPECT_EQ(heap.ReleaseFreeFrames(2, 0), 2);    // empties the entry and ends there
    EXPECT_EQ(heap.BufferCount(), 3);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 2);    // 3, 2, then below 2
    EXPECT_EQ(heap.BufferCount(), 1);
}

TEST(Pool, ReleasingWalksOverEntries) {
    IPCBufferHeap heap(0, 2);
    ASSERT_EQ(heap.GetBuffer(480, nullptr, 3), S_OK);
    ASSERT_EQ(heap.GetBuffer(5000, nullptr, 3), S_OK);
    EXPECT_EQ(heap.ReleaseFreeFrames(0, 0), 5);
    EXPECT_EQ(heap.BufferCount(), 1);
}

TEST(Pool, AReturnTrimsBehindTheCaller) {
    IPCBufferHeap heap(0, 4);
    std::vector<IPCBuffer *> all(12);
    for (auto &one : all) ASSERT_EQ(heap.GetBuffer(480, &one, 1), S_OK);
    for (auto *one : all) heap.ReturnFrame(one);
    // A walk that has begun above four ends at four or three. Between the two counts it may take a step.
    EXPECT_TRUE(zck::test::Eventually([&] { return heap.BufferCount() <= 4 && heap.IdleCount() == heap.BufferCount(); }));
    EXPECT_GE(heap.BufferCount(), 3);
}

TEST(Pool, ABufferWithASecondOwnerWaits) {
    IPCBufferHeap heap(0, kNever);
    IPCBuffer *b = nullptr;
    ASSERT_EQ(heap.GetBuffer(480, &b, 1), S_OK);
    b->AddRef();
    EXPECT_EQ(heap.ReturnFrame(b), S_OK);
    IPCBuffer *other = nullptr;
    ASSERT_EQ(heap.GetBuffer(480, &other, 1), S_OK);
    EXPECT_NE(other, b);
    b->Release();
    IPCBuffer *again = nullptr;
    ASSERT_EQ(heap.GetBuffer(480, &again, 1), S_OK);
    EXPECT_EQ(again, b);
    other->Release();
    again->Release();
}

TEST(Pool, ManyThreadsTakeAndReturn) {
    IPCBufferHeap heap(0, 8);
    std::vector<std::thread> threads;
    for (uint8_t t = 0; t < 4; ++t)
        threads.emplace_back([&heap, t] {
            for (int i = 0; i < 200; ++i) {
                IPCBuffer *b = nullptr;
                ASSERT_EQ(heap.GetBuffer(500 + 400 * (i % 3), &b, 3), S_OK);
                std::memset(b->DataPointer(0), t, 500);
                ASSERT_EQ(b->DataPointer(0)[250], t);
                heap.ReturnFrame(b);
            }
        });
    for (auto &one : threads) one.join();
    EXPECT_GE(heap.BufferCount(), heap.IdleCount());
}

}    // namespace
}    // namespace conformance
