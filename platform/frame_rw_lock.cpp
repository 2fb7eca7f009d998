#include "platform/sync.h"

namespace zck {

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

void FrameRWLock::lock_shared() noexcept {
    // Counted first and only then looked: either the writer sees this reader, or this reader sees the writer.
    m_readers.fetch_add(1);
    if (!m_writer.load()) return;
    m_readers.fetch_sub(1);
    // Inside the section no other thread is a writer; the owner itself passes because the section admits it again.
    m_section.lock();
    m_readers.fetch_add(1);
    m_section.unlock();
}

void FrameRWLock::unlock_shared() noexcept { m_readers.fetch_sub(1); }

}    // namespace zck
