#include "platform/sync.h"

#include <new>

#include "zchromakey/com.h"

namespace zck {

void SleepMs(uint32_t ms) noexcept { Sleep(ms); }

namespace {
CRITICAL_SECTION *SectionIn(unsigned char *state) noexcept {
    static_assert(sizeof(CRITICAL_SECTION) <= 64);
    return std::launder(reinterpret_cast<CRITICAL_SECTION *>(state));
}
}    // namespace

CriticalSection::CriticalSection(uint32_t spinCount) noexcept {
    InitializeCriticalSectionAndSpinCount(new (m_state) CRITICAL_SECTION, spinCount);
}
CriticalSection::~CriticalSection() { DeleteCriticalSection(SectionIn(m_state)); }
void CriticalSection::lock() noexcept { EnterCriticalSection(SectionIn(m_state)); }
bool CriticalSection::try_lock() noexcept { return TryEnterCriticalSection(SectionIn(m_state)) != 0; }
void CriticalSection::unlock() noexcept { LeaveCriticalSection(SectionIn(m_state)); }

struct Event::State {
    HANDLE handle;
};

Event::State &Event::Own() noexcept { return *std::launder(reinterpret_cast<State *>(m_state)); }
const Event::State &Event::Own() const noexcept { return *std::launder(reinterpret_cast<const State *>(m_state)); }

Event::Event(bool manualReset, bool signalled) noexcept {
    static_assert(sizeof(State) <= sizeof(m_state));
    new (m_state) State{CreateEventW(nullptr, manualReset, signalled, nullptr)};
}
Event::~Event() {
    if (Valid()) CloseHandle(Own().handle);
}
bool Event::Valid() const noexcept { return Own().handle != nullptr; }
void Event::Set() noexcept { SetEvent(Own().handle); }
void Event::Reset() noexcept { ResetEvent(Own().handle); }
bool Event::Wait(uint32_t ms) noexcept { return WaitForSingleObject(Own().handle, ms) == WAIT_OBJECT_0; }

bool WaitAll(Event *const *events, int n, uint32_t ms) noexcept {
    static_assert(kWaitAllMax == MAXIMUM_WAIT_OBJECTS);
    if (events == nullptr || n < 1 || n > kWaitAllMax) return false;
    HANDLE handles[MAXIMUM_WAIT_OBJECTS];
    for (int i = 0; i < n; ++i) {
        if (events[i] == nullptr || !events[i]->Valid()) return false;
        handles[i] = events[i]->Own().handle;
    }
    const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(n), handles, TRUE, ms);
    return result < WAIT_OBJECT_0 + static_cast<DWORD>(n);
}

}    // namespace zck
