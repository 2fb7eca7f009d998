// The objects under which sections are found: files of POSIX shared memory, "/zbuffer-g-<ID>" (global) and
// "/zbuffer-<user>-<ID>" (session), for the same user only.
//
// The system keeps such an object until its name is removed, so the life of a section is told by a lock: every open handle
// holds a shared flock on the object, which the kernel drops when the process dies. An object whose exclusive lock can be had
// has no handle anywhere and is dead: the last one to close removes its name, one who meets a dead object on the way to open
// or create it does, and a sweep removes those that killed processes left behind. Who gets the exclusive lock always removes
// the name before letting go of it, and who waited for a lock looks afterwards whether the name is still there.
//
// All functions answer -1 or nothing at a failure and tell it by `errno`.
#pragma once

#include <cstdint>

#include "platform/posix/section_memory.h"

namespace zck {

struct ObjectName {
    ObjectName(uint64_t id, bool session) noexcept;
    char text[64];
};

/// A new object under a shared lock, with its memory reserved. `EEXIST` when there is a living one.
int CreateObject(const ObjectName &name, uint64_t bytes, AttachedMemory &memory) noexcept;

/// An existing object under a shared lock, with its memory. `ENOENT` when no process holds one.
int OpenObject(const ObjectName &name, AttachedMemory &memory) noexcept;

/// Removes the name if nobody else holds the object. The handle's own lock is lost when somebody does.
void RemoveIfLast(int object, const ObjectName &name) noexcept;

/// Removes all dead objects of this user.
void SweepObjects() noexcept;

/// Sweeps at the first call in a process and then now and again.
void SweepObjectsAtTimes() noexcept;

}    // namespace zck
