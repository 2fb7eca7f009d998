#include "platform/sync.h"

namespace zck {
namespace {

/// How often this thread is inside of a lock that allows shared recursion.
struct SharedEntries {
    const FrameRWLock *lock;
    int32_t count;
};

/// Room for as many locks at once. A lock that finds no room is entered for real each time, which is right as long as no
/// writer waits.
thread_local SharedEntries t_shared[16];

SharedEntries *EntriesOf(const FrameRWLock *lock) noexcept {
    for (SharedEntries &entries : t_shared) {
        if (entries.lock == lock) return &entries;
    }
    return nullptr;
}

}    // namespace

void FrameRWLock::lock() noexcept {
    m_section.lock();
    if (m_depth++ != 0) return;
    m_writer.store(true);
    for (uint32_t tries = 1; m_readers.load() != 0; ++tries) SleepMs(tries % 128 == 0 ? 1 : 0);
}

void FrameRWLock::unlock() noexcept {
    if (--m_depth == 0) m_writer.store(false);
    m_section.unlock();
}

void FrameRWLock::EnterShared() noexcept {
    // Counted first and only then looked: either the writer sees this reader, or this reader sees the writer.
    m_readers.fetch_add(1);
    if (!m_writer.load()) return;
    m_readers.fetch_sub(1);
    // Inside the section no other thread is a writer; the owner itself passes because the section admits it again.
    m_section.lock();
    m_readers.fetch_add(1);
    m_section.unlock();
}

void FrameRWLock::lock_shared() noexcept {
    if (m_recursion == SharedRecursion::No) {
        EnterShared();
        return;
    }
    if (SharedEntries *entries = EntriesOf(this)) {
        ++entries->count;
        return;
    }
    EnterShared();
    if (SharedEntries *room = EntriesOf(nullptr)) *room = {this, 1};
}

void FrameRWLock::unlock_shared() noexcept {
    SharedEntries *entries = m_recursion == SharedRecursion::Yes ? EntriesOf(this) : nullptr;
    if (entries != nullptr) {
        if (--entries->count != 0) return;
        entries->lock = nullptr;
    }
    m_readers.fetch_sub(1);
}

}    // namespace zck
