// Events are futex words: a thread that is terminated while it waits leaves nothing locked behind.
#include "platform/sync.h"

#include <linux/futex.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <ctime>
#include <mutex>
#include <new>

namespace zck {
namespace {

constexpr int64_t kNanosecond = 1000000000;

/// A point in time to wait until, or none.
struct Deadline {
    explicit Deadline(uint32_t ms) noexcept : endless(ms == kInfinite) {
        clock_gettime(CLOCK_MONOTONIC, &at);
        const int64_t ns = at.tv_nsec + static_cast<int64_t>(ms % 1000) * 1000000;
        at.tv_sec += static_cast<time_t>(ms / 1000 + ns / kNanosecond);
        at.tv_nsec = ns % kNanosecond;
    }
    timespec at{};
    bool endless;
};

using Word = std::atomic<uint32_t>;
static_assert(sizeof(Word) == 4 && Word::is_always_lock_free);

/// Sleeps while the word is `value`. False when the time has passed.
bool FutexWait(Word &word, uint32_t value, const Deadline &deadline) noexcept {
    const auto result = syscall(SYS_futex, &word, FUTEX_WAIT_BITSET_PRIVATE, value, deadline.endless ? nullptr : &deadline.at,
                                nullptr, FUTEX_BITSET_MATCH_ANY);
    return result == 0 || errno != ETIMEDOUT;
}

void FutexWakeAll(Word &word) noexcept { syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0); }

}    // namespace

void SleepMs(uint32_t ms) noexcept {
    if (ms == 0) {
        sched_yield();
        return;
    }
    const Deadline deadline(ms);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline.at, nullptr) == EINTR) {
    }
}

namespace {
std::recursive_mutex &MutexIn(unsigned char *state) noexcept {
    static_assert(sizeof(std::recursive_mutex) <= 64);
    return *std::launder(reinterpret_cast<std::recursive_mutex *>(state));
}
}    // namespace

CriticalSection::CriticalSection(uint32_t) noexcept { new (m_state) std::recursive_mutex; }
CriticalSection::~CriticalSection() { MutexIn(m_state).~recursive_mutex(); }
void CriticalSection::lock() noexcept { MutexIn(m_state).lock(); }
bool CriticalSection::try_lock() noexcept { return MutexIn(m_state).try_lock(); }
void CriticalSection::unlock() noexcept { MutexIn(m_state).unlock(); }

// One word tells all, so that `Set` touches the event with a single access: whoever waited may destroy it right after.
struct Event::State {
    static constexpr uint32_t kSet = 1;
    /// Added for each thread that may sleep on the word. A terminated one stays counted, which costs a call only.
    static constexpr uint32_t kSleeper = 2;

    Word word{0};
    bool manual{false};

    bool IsSet() const noexcept { return (word.load() & kSet) != 0; }
    /// Takes the event if it is set.
    bool Take() noexcept { return ((manual ? word.load() : word.fetch_and(~kSet)) & kSet) != 0; }
    void Set() noexcept {
        if (word.fetch_or(kSet) >= kSleeper) FutexWakeAll(word);
    }
    void Reset() noexcept { word.fetch_and(~kSet); }
    /// Waits for a change of the word, which is not always a set event. False when the time has passed.
    bool Sleep(const Deadline &deadline) noexcept {
        const uint32_t value = word.fetch_add(kSleeper) + kSleeper;
        const bool inTime = (value & kSet) != 0 || FutexWait(word, value, deadline);
        word.fetch_sub(kSleeper);
        return inTime;
    }
};

Event::State &Event::Own() noexcept { return *std::launder(reinterpret_cast<State *>(m_state)); }
const Event::State &Event::Own() const noexcept { return *std::launder(reinterpret_cast<const State *>(m_state)); }

Event::Event(bool manualReset, bool signalled) noexcept {
    static_assert(sizeof(State) <= sizeof(m_state));
    auto *state = new (m_state) State;
    state->manual = manualReset;
    state->word = signalled ? State::kSet : 0;
}
Event::~Event() { Own().~State(); }
bool Event::Valid() const noexcept { return true; }
void Event::Set() noexcept { Own().Set(); }
void Event::Reset() noexcept { Own().Reset(); }

bool Event::Wait(uint32_t ms) noexcept {
    State &state = Own();
    if (state.Take()) return true;
    if (ms == 0) return false;
    const Deadline deadline(ms);
    for (;;) {
        const bool inTime = state.Sleep(deadline);
        if (state.Take()) return true;
        if (!inTime) return false;
    }
}

bool WaitAll(Event *const *events, int n, uint32_t ms) noexcept {
    if (events == nullptr || n < 1 || n > kWaitAllMax) return false;
    for (int i = 0; i < n; ++i) {
        if (events[i] == nullptr) return false;
    }
    const Deadline deadline(ms);
    bool inTime = true;
    for (;;) {
        int set = 0;
        while (set < n && events[set]->Own().IsSet()) ++set;
        if (set == n) {
            // All are set; the ones without manual reset are taken in turn and given back if another waiter was faster.
            int taken = 0;
            while (taken < n && events[taken]->Own().Take()) ++taken;
            if (taken == n) return true;
            while (taken-- > 0) {
                if (!events[taken]->Own().manual) events[taken]->Set();
            }
            continue;
        }
        if (!inTime) return false;
        inTime = ms != 0 && events[set]->Own().Sleep(deadline);
    }
}

}    // namespace zck
