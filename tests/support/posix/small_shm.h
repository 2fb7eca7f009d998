// A small folder of shared memory, as containers have it, for one process and its children.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/shm.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "tests/support/posix/forked.h"

namespace zck::test {

inline bool WriteTo(const char *path, const std::string &text) {
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) return false;
    const bool done = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(fd);
    return done;
}

/// Puts a folder of this size ("64k", "16m") there, with a System V namespace of its own. Root of a user namespace where this
/// is not root. False where the system lets nobody do so. Only for a process with one thread.
inline bool EnterSmallSharedMemory(const std::string &size) {
    const std::string users = "0 " + std::to_string(geteuid()) + " 1";
    const std::string groups = "0 " + std::to_string(getegid()) + " 1";
    constexpr int kOwn = CLONE_NEWNS | CLONE_NEWIPC;
    const bool alone = unshare(kOwn) == 0 || (unshare(CLONE_NEWUSER | kOwn) == 0 && WriteTo("/proc/self/setgroups", "deny") &&
                                              WriteTo("/proc/self/uid_map", users) && WriteTo("/proc/self/gid_map", groups));
    return alone && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("zbuffer", "/dev/shm", "tmpfs", 0, ("size=" + size).c_str()) == 0;
}

/// Puts a text in the place of a file of the system. Behind `EnterSmallSharedMemory`; uses a page of its folder.
inline bool ReplaceFile(const char *path, const std::string &text) {
    char scratch[] = "/dev/shm/replaced-XXXXXX";
    const int fd = mkstemp(scratch);
    if (fd < 0) return false;
    close(fd);
    return WriteTo(scratch, text) && mount(scratch, path, nullptr, MS_BIND, nullptr) == 0 && unlink(scratch) == 0;
}

inline uint64_t SharedMemoryLeft() {
    struct statvfs info {};
    return statvfs("/dev/shm", &info) == 0 ? info.f_bavail * info.f_frsize : 0;
}

/// Takes all that is left in the folder.
inline bool FillSharedMemory() {
    const int fd = open("/dev/shm/filled", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const bool done = fd >= 0 && posix_fallocate(fd, 0, static_cast<off_t>(SharedMemoryLeft())) == 0;
    if (fd >= 0) close(fd);
    return done && SharedMemoryLeft() == 0;
}

/// Segments of the System V namespace.
inline int CountSegments() {
    struct shm_info info {};
    shmctl(0, SHM_INFO, reinterpret_cast<shmid_ds *>(&info));
    return info.used_ids;
}

/// Runs `work`, which answers whether all was as it should be, in a child with a small folder of shared memory.
/// All checks belong into `work`: where the system refuses the folder the test is skipped, but its own lines still run.
inline void RunInSmallSharedMemory(const std::string &size, const std::function<bool()> &work) {
    constexpr int kRefused = 77;
    const int result = RunForked([&] { return !EnterSmallSharedMemory(size) ? kRefused : work() ? 0 : 1; });
    if (result == kRefused) GTEST_SKIP() << "this system lets nobody mount a file system in a namespace of its own";
    EXPECT_EQ(result, 0);
}

}    // namespace zck::test

/// In such a `work`: what must be true, told where it is not.
#define NEED(condition)                                                                  \
    do {                                                                                 \
        if (!(condition)) {                                                              \
            std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
            return false;                                                                \
        }                                                                                \
    } while (false)
