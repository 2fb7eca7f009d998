#include "tests/failures/failing_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "platform/process.h"

// The linker's --wrap sends the program's own calls of `x` to `__wrap_x`, and gives the C library's as `__real_x`.
extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__wrap_malloc(size_t size);
void *__wrap_calloc(size_t count, size_t size);
}

namespace zck::test {
namespace {

std::atomic<int64_t> s_left{0};    // requests until the one that fails; 0 when none is to fail
std::atomic<size_t> s_size{0};
std::atomic<bool> s_failed{false};
std::atomic<int64_t> s_blocks{0};
// A thread's own variables may take memory at their first use, so the thread that pauses is known by its number.
std::atomic<uint32_t> s_paused{0};

}    // namespace

void FailingMemory::FailNth(int64_t n, size_t size) noexcept {
    s_failed = false;
    s_size = size;
    s_left = n;
}

bool FailingMemory::End() noexcept {
    s_left = 0;
    return s_failed;
}

int64_t FailingMemory::Blocks() noexcept { return s_blocks; }

bool FailingMemory::Fails(size_t size) noexcept {
    if (s_left <= 0 || s_paused == CurrentThreadId()) return false;
    if (s_size != 0 && s_size != size) return false;
    if (s_left.fetch_sub(1) != 1) return false;
    s_failed = true;
    return true;
}

FailingMemory::Pause::Pause() noexcept : m_before(s_paused.exchange(CurrentThreadId())) {}
FailingMemory::Pause::~Pause() { s_paused = m_before; }

namespace {

void *Take(size_t size) noexcept {
    void *block = FailingMemory::Fails(size) ? nullptr : __real_malloc(size != 0 ? size : 1);
    if (block != nullptr) ++s_blocks;
    return block;
}

void *TakeOrThrow(size_t size) {
    if (void *block = Take(size)) return block;
    throw std::bad_alloc();
}

void Give(void *block) noexcept {
    if (block != nullptr) --s_blocks;
    std::free(block);
}

}    // namespace
}    // namespace zck::test

void *operator new(size_t size) { return zck::test::TakeOrThrow(size); }
void *operator new[](size_t size) { return zck::test::TakeOrThrow(size); }
void *operator new(size_t size, const std::nothrow_t &) noexcept { return zck::test::Take(size); }
void *operator new[](size_t size, const std::nothrow_t &) noexcept { return zck::test::Take(size); }
void operator delete(void *block) noexcept { zck::test::Give(block); }
void operator delete[](void *block) noexcept { zck::test::Give(block); }
void operator delete(void *block, size_t) noexcept { zck::test::Give(block); }
void operator delete[](void *block, size_t) noexcept { zck::test::Give(block); }
void operator delete(void *block, const std::nothrow_t &) noexcept { zck::test::Give(block); }
void operator delete[](void *block, const std::nothrow_t &) noexcept { zck::test::Give(block); }

void *__wrap_malloc(size_t size) { return zck::test::FailingMemory::Fails(size) ? nullptr : __real_malloc(size); }
void *__wrap_calloc(size_t count, size_t size) {
    return zck::test::FailingMemory::Fails(count * size) ? nullptr : __real_calloc(count, size);
}
