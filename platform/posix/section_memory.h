// Where the bytes of a section lie.
//
// A section's object in the folder of shared memory holds the bytes itself while at least half of the folder stays free. Else,
// as in a container whose folder is small, they lie in a segment of System V shared memory, which no mount bounds, and the
// object holds a record that leads there. The segment is marked for its end as soon as it is attached: the kernel keeps it,
// and lets others of the same user attach it, while one process has it attached, and no killed process leaves it behind. A
// process killed before the mark leaves a segment that the record names by its key.
#pragma once

#include <cstdint>
#include <utility>

namespace zck {

/// A segment that this process has attached, or nothing.
class AttachedMemory {
public:
    AttachedMemory() noexcept = default;
    AttachedMemory(uint8_t *start, uint64_t bytes) noexcept : m_start(start), m_bytes(bytes) {}
    AttachedMemory(AttachedMemory &&other) noexcept
        : m_start(std::exchange(other.m_start, nullptr)), m_bytes(std::exchange(other.m_bytes, 0)) {}
    AttachedMemory &operator=(AttachedMemory &&other) noexcept {
        std::swap(m_start, other.m_start);
        std::swap(m_bytes, other.m_bytes);
        return *this;
    }
    /// Leaves `errno` alone.
    ~AttachedMemory();

    uint8_t *Start() const noexcept { return m_start; }
    uint64_t Bytes() const noexcept { return m_bytes; }
    /// The start, which the caller unmaps from now on.
    uint8_t *Detach() noexcept { return std::exchange(m_start, nullptr); }

private:
    uint8_t *m_start = nullptr;
    uint64_t m_bytes = 0;
};

/// Takes all the room that the section will need, for a new and empty object. `memory` stays empty when the object itself
/// holds the bytes. False with `errno` `ENOSPC` when neither the folder nor the system has the room.
bool ReserveMemory(int object, uint64_t bytes, AttachedMemory &memory) noexcept;

/// Attaches what the object leads to; `memory` stays empty when the object itself holds the bytes. False with `errno`: `ENOENT`
/// when the last process that had it attached has let go of it, `EACCES` for a segment of another namespace.
bool AttachMemory(int object, AttachedMemory &memory) noexcept;

/// Frees the segment that a process killed in the middle of `ReserveMemory` has left, for an object that nobody holds.
void FreeMemoryOfDead(int object) noexcept;

}    // namespace zck
