// The pool where the system has no room: what lies idle is given up before a request fails.
#include <gtest/gtest.h>

#include <functional>

#include "frames/memory/ipc_buffer_heap.h"
#include "platform/status.h"
#include "tests/support/posix/small_shm.h"

namespace zck {
namespace {

using test::RunInSmallSharedMemory;
using test::WriteTo;

constexpr int32_t kMega = 1 << 20;
constexpr int32_t kNoTrim = 1000;    // the trimming thread stays out

/// A folder of 8 MB, and no segments beside it: room for seven sections of 1 MB and a page.
void RunWithoutSegments(const std::function<bool()> &work) {
    RunInSmallSharedMemory("8m", [&] {
        NEED(WriteTo("/proc/sys/kernel/shmmni", "0"));
        return work();
    });
}

bool Fill(IPCBufferHeap &heap, int32_t count) {
    NEED(heap.GetBuffer(kMega, nullptr, count) == S_OK);
    NEED(heap.IdleCount() == count && heap.BufferCount() == count);
    return true;
}

TEST(PoolWithoutRoom, IdleBuffersAreGivenUpForARequest) {
    RunWithoutSegments([] {
        IPCBufferHeap heap(0, kNoTrim);
        NEED(Fill(heap, 7));
        IPCBuffer *b = nullptr;
        NEED(heap.GetBuffer(4 * kMega, &b, 1) == S_OK && b != nullptr);
        NEED(heap.IdleCount() == 0 && heap.BufferCount() == 1);
        b->Release();
        return true;
    });
}

TEST(PoolWithoutRoom, BuffersInUseStay) {
    RunWithoutSegments([] {
        IPCBufferHeap heap(0, kNoTrim);
        IPCBuffer *used = nullptr;
        NEED(heap.GetBuffer(kMega, &used, 1) == S_OK);
        *used->DataPointer(0) = 5;
        NEED(heap.GetBuffer(kMega, nullptr, 2) == S_OK);
        IPCBuffer *b = nullptr;
        NEED(heap.GetBuffer(7 * kMega, &b, 1) == kErrorDiskFull && b == nullptr);
        NEED(heap.BufferCount() == 1 && heap.IdleCount() == 0);
        NEED(*used->DataPointer(0) == 5);
        used->Release();
        return true;
    });
}

TEST(PoolWithoutRoom, AReturnedBufferIsGivenUpOnceItsSecondOwnerHasLetGo) {
    RunWithoutSegments([] {
        IPCBufferHeap heap(0, kNoTrim);
        IPCBuffer *shared = nullptr;
        NEED(heap.GetBuffer(4 * kMega, &shared, 1) == S_OK);
        shared->AddRef();
        heap.ReturnFrame(shared);
        IPCBuffer *b = nullptr;
        NEED(heap.GetBuffer(7 * kMega, &b, 1) == kErrorDiskFull);
        *shared->DataPointer(4 * kMega - 1) = 1;
        shared->Release();
        NEED(heap.GetBuffer(7 * kMega, &b, 1) == S_OK);
        NEED(heap.BufferCount() == 1);
        b->Release();
        return true;
    });
}

TEST(PoolWithoutRoom, SparesAreNotWorthTheIdleOnes) {
    RunWithoutSegments([] {
        IPCBufferHeap heap(0, kNoTrim);
        NEED(Fill(heap, 4));
        IPCBuffer *b = nullptr;
        NEED(heap.GetBuffer(3 * kMega, &b, 3) == kErrorDiskFull);
        NEED(b != nullptr);    // it came all the same
        NEED(heap.IdleCount() == 4 && heap.BufferCount() == 5);
        b->Release();
        return true;
    });
}

TEST(PoolWithoutRoom, ARequestThatCannotBeServedFails) {
    RunWithoutSegments([] {
        IPCBufferHeap heap(0, kNoTrim);
        IPCBuffer *b = nullptr;
        NEED(heap.GetBuffer(8 * kMega, &b, 1) == kErrorDiskFull);
        NEED(b == nullptr && heap.BufferCount() == 0);
        return true;
    });
}

}    // namespace
}    // namespace zck
