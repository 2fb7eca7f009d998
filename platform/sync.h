// Locks, events and sleep.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace zck {

constexpr uint32_t kInfinite = 0xFFFFFFFF;    ///< a time-out that never comes

/// Sleeps for at least that many milliseconds; 0 gives the processor to another thread that is ready.
void SleepMs(uint32_t ms) noexcept;

/// A lock that its owner may enter again, for `std::lock_guard` and its kin. Must be left as often as entered.
class CriticalSection {
public:
    /// `spinCount`: tries before a waiting thread sleeps, where the system takes such a number.
    explicit CriticalSection(uint32_t spinCount = 0) noexcept;
    ~CriticalSection();
    CriticalSection(const CriticalSection &) = delete;
    CriticalSection &operator=(const CriticalSection &) = delete;

    void lock() noexcept;
    bool try_lock() noexcept;
    void unlock() noexcept;

private:
    alignas(std::max_align_t) unsigned char m_state[64];
};

/// An event that threads wait for. With `manualReset` it stays set until `Reset`; without, one wait takes it.
/// A thread whose wait has returned may destroy it, also while the thread that set it is still on its way out of `Set`.
class Event {
public:
    explicit Event(bool manualReset, bool signalled = false) noexcept;
    ~Event();
    Event(const Event &) = delete;
    Event &operator=(const Event &) = delete;

    /// False when the system had no event to give; the last system error says why. Such an event is never set.
    bool Valid() const noexcept;
    void Set() noexcept;
    void Reset() noexcept;
    /// True when the event was set within the time, in milliseconds; 0 looks without waiting.
    bool Wait(uint32_t ms) noexcept;

private:
    friend bool WaitAll(Event *const *events, int n, uint32_t ms) noexcept;
    struct State;
    State &Own() noexcept;
    const State &Own() const noexcept;
    alignas(8) unsigned char m_state[16];
};

/// Most events of one `WaitAll`.
constexpr int kWaitAllMax = 64;

/// Waits until all of `n` different events (1 to `kWaitAllMax`) are set. True when they were, and then those without manual
/// reset are taken; after a time-out none is taken. False at once for a bad count or a null or invalid event.
bool WaitAll(Event *const *events, int n, uint32_t ms) noexcept;

/// Whether a thread that holds a `FrameRWLock` shared may enter it shared again.
enum class SharedRecursion { No, Yes };

/// Reader-writer lock of a critical section and a reader count, for `std::unique_lock` and `std::shared_lock`.
///
/// The exclusive owner may enter again, exclusively or shared. A thread that holds it shared must not ask for it exclusively,
/// and may ask for it shared again only with `SharedRecursion::Yes`: without, a writer that came in between stops both for
/// ever. Entries must be left on the thread that made them.
class FrameRWLock {
public:
    explicit FrameRWLock(uint32_t spinCount = 1024, SharedRecursion recursion = SharedRecursion::No) noexcept
        : m_section(spinCount), m_recursion(recursion) {}

    void lock() noexcept;
    void unlock() noexcept;
    void lock_shared() noexcept;
    void unlock_shared() noexcept;

private:
    void EnterShared() noexcept;

    CriticalSection m_section;
    const SharedRecursion m_recursion;
    std::atomic<int32_t> m_readers{0};
    std::atomic<bool> m_writer{false};
    int32_t m_depth = 0;    // exclusive entries of the owner; guarded by the section
};

}    // namespace zck
