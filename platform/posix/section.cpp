// Sections are objects of POSIX shared memory, "/zbuffer-g-<ID>" (global) and "/zbuffer-<user>-<ID>" (session), for the same
// user only.
//
// The system keeps such an object until its name is removed, so the life of a section is told by a lock: every open handle
// holds a shared flock on the object, which the kernel drops when the process dies. An object whose exclusive lock can be had
// has no handle anywhere and is dead: the last one to close removes its name, one who meets a dead object on the way to open
// or create it does, and a sweep removes those that killed processes left behind. Who gets the exclusive lock always removes
// the name before letting go of it, and who waited for a lock looks afterwards whether the name is still there.
//
// Handles are not meant to pass through fork: a child that closes an inherited one leaves the parent's alone, but one that
// keeps it keeps the section.
#include "platform/section.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/clock.h"
#include "platform/process.h"
#include "platform/status.h"

namespace zck {
namespace {

/// Where the C library keeps the objects; read by the sweep only.
constexpr char kFolder[] = "/dev/shm";
constexpr char kGlobalPrefix[] = "/zbuffer-g-";
constexpr uint32_t kSweepIntervalMs = 30000;
/// A new object that a sweep takes away before it is locked is made again, so often.
constexpr int kTries = 16;

struct Name {
    char text[64];
};

Name NameOf(uint64_t id, bool session) noexcept {
    Name name;
    if (session) {
        std::snprintf(name.text, sizeof(name.text), "/zbuffer-%u-%" PRIX64, static_cast<unsigned>(geteuid()), id);
    } else {
        std::snprintf(name.text, sizeof(name.text), "%s%" PRIX64, kGlobalPrefix, id);
    }
    return name;
}

/// Closes without touching `errno`, which tells why.
void CloseQuietly(int fd) noexcept {
    const int error = errno;
    close(fd);
    errno = error;
}

bool Lock(int fd, int operation) noexcept {
    int result = 0;
    do {
        result = flock(fd, operation);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool HasName(int fd) noexcept {
    struct stat info {};
    return fstat(fd, &info) == 0 && info.st_nlink != 0;
}

/// Removes the name if nobody holds the object. The handle's own lock is lost when somebody does.
void RemoveIfLast(int fd, const char *name) noexcept {
    if (Lock(fd, LOCK_EX | LOCK_NB) && HasName(fd)) shm_unlink(name);
}

/// Opens an object of this user; -1 with `errno` otherwise.
int OpenObject(const char *name) noexcept {
    const int fd = shm_open(name, O_RDWR, 0);
    if (fd < 0) return -1;
    struct stat info {};
    if (fstat(fd, &info) == 0 && info.st_uid == geteuid()) return fd;
    close(fd);
    errno = EACCES;
    return -1;
}

/// Removes a dead object of that name.
void RemoveIfDead(const char *name) noexcept {
    const int fd = OpenObject(name);
    if (fd < 0) return;
    RemoveIfLast(fd, name);
    close(fd);
}

/// Removes all dead sections of this user.
void Sweep() noexcept {
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir(kFolder), closedir);
    if (folder == nullptr) return;
    const Name session = NameOf(0, true);
    const size_t sessionLength = std::strlen(session.text) - 1;
    while (const dirent *entry = readdir(folder.get())) {
        char name[sizeof(entry->d_name) + 1] = "/";
        std::strcat(name, entry->d_name);
        const bool ours = std::strncmp(name, kGlobalPrefix, sizeof(kGlobalPrefix) - 1) == 0 ||
                          std::strncmp(name, session.text, sessionLength) == 0;
        if (ours) RemoveIfDead(name);
    }
}

/// At the first section of a process and then now and again.
void SweepAtTimes() noexcept {
    static std::atomic<uint32_t> next{0};
    const uint32_t now = TimerMs() | 1;    // 0 says that there was no sweep yet
    uint32_t due = next.load();
    if (due != 0 && static_cast<int32_t>(now - due) < 0) return;
    if (next.compare_exchange_strong(due, (now + kSweepIntervalMs) | 1)) Sweep();
}

/// Takes all the room that the object will need.
bool Reserve(int fd, uint64_t bytes) noexcept {
    if (bytes > static_cast<uint64_t>(INT64_MAX)) {
        errno = ENOSPC;
        return false;
    }
    int error = 0;
    do {
        error = posix_fallocate(fd, 0, static_cast<off_t>(bytes));
    } while (error == EINTR);
    // Too large for any file and too large for this system's memory are the same to the caller.
    errno = error == EFBIG ? ENOSPC : error;
    return error == 0;
}

/// A new object under a shared lock, or -1 with `errno`: `EEXIST` when there is a living one.
int CreateObject(const char *name, uint64_t bytes) noexcept {
    for (int i = 0; i < kTries; ++i) {
        int fd = shm_open(name, O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
        if (fd < 0 && errno == EEXIST) {
            RemoveIfDead(name);
            fd = shm_open(name, O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
        }
        if (fd < 0) return -1;
        // Exclusive while it grows, so that nobody opens half a section.
        if (!Lock(fd, LOCK_EX) || (HasName(fd) && !Reserve(fd, bytes))) {
            const int error = errno;
            if (HasName(fd)) shm_unlink(name);
            close(fd);
            errno = error;
            return -1;
        }
        // The change of lock is no single step: one who looks for dead objects can come in between.
        if (Lock(fd, LOCK_SH) && HasName(fd)) return fd;
        close(fd);
    }
    errno = EAGAIN;
    return -1;
}

/// An existing object under a shared lock, or -1 with `errno`: `ENOENT` when no process holds one.
int OpenLiving(const char *name) noexcept {
    const int fd = OpenObject(name);
    if (fd < 0) return -1;
    RemoveIfLast(fd, name);
    if (Lock(fd, LOCK_SH) && HasName(fd)) return fd;
    close(fd);
    errno = ENOENT;
    return -1;
}

}    // namespace

HRESULT Section::Create(uint64_t id, uint64_t bytes) noexcept {
    Close();
    if (bytes == 0) return E_INVALIDARG;
    SweepAtTimes();
    for (const bool session : {false, true}) {
        const Name name = NameOf(id, session);
        int fd = CreateObject(name.text, bytes);
        if (fd < 0 && errno == ENOSPC) {
            Sweep();
            fd = CreateObject(name.text, bytes);
        }
        if (fd < 0 && errno == EEXIST) return S_FALSE;
        if (fd < 0) continue;
        m_handle = fd;
        m_session = session;
        m_process = CurrentProcessId();
        m_id = id;
        return S_OK;
    }
    return LastSystemError(E_UNEXPECTED);
}

HRESULT Section::Open(uint64_t id) noexcept {
    Close();
    for (const bool session : {false, true}) {
        const int fd = OpenLiving(NameOf(id, session).text);
        if (fd < 0) continue;
        m_handle = fd;
        m_session = session;
        m_process = CurrentProcessId();
        m_id = id;
        return S_OK;
    }
    return LastSystemError(E_UNEXPECTED);
}

HRESULT Section::Map() noexcept {
    if (!IsOpen()) return E_UNEXPECTED;
    if (m_view != nullptr) return S_OK;
    const int fd = static_cast<int>(m_handle);
    struct stat info {};
    if (fstat(fd, &info) != 0) return LastSystemError(E_UNEXPECTED);
    const auto size = static_cast<size_t>(info.st_size);
    void *view = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (view == MAP_FAILED) return LastSystemError(E_UNEXPECTED);
    m_view = static_cast<uint8_t *>(view);
    m_size = size;
    return S_OK;
}

void Section::Close() noexcept {
    if (m_view != nullptr) munmap(std::exchange(m_view, nullptr), static_cast<size_t>(m_size));
    if (IsOpen()) {
        const int fd = static_cast<int>(std::exchange(m_handle, kClosed));
        // After a fork the lock is one with the parent's, and to change it would take it from the parent.
        if (m_process == CurrentProcessId()) RemoveIfLast(fd, NameOf(m_id, m_session).text);
        CloseQuietly(fd);
    }
    m_size = 0;
    m_id = 0;
}

}    // namespace zck
