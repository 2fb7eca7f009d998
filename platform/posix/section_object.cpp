#include "platform/posix/section_object.h"

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

namespace zck {
namespace {

/// Where the C library keeps the objects; read by the sweep only.
constexpr char kFolder[] = "/dev/shm";
constexpr char kGlobalPrefix[] = "/zbuffer-g-";
constexpr uint32_t kSweepIntervalMs = 30000;
/// A new object that a sweep takes away before it is locked is made again, so often.
constexpr int kTries = 16;

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

/// Closes; the failure with this `errno`.
int Failed(int fd, int error) noexcept {
    close(fd);
    errno = error;
    return -1;
}

/// Opens an object of this user, whether dead or alive.
int OpenAny(const char *name) noexcept {
    const int fd = shm_open(name, O_RDWR, 0);
    if (fd < 0) return -1;
    struct stat info {};
    if (fstat(fd, &info) == 0 && info.st_uid == geteuid() && S_ISREG(info.st_mode)) return fd;
    return Failed(fd, EACCES);
}

void RemoveIfUnheld(int fd, const char *name) noexcept {
    if (!Lock(fd, LOCK_EX | LOCK_NB) || !HasName(fd)) return;
    FreeMemoryOfDead(fd);
    shm_unlink(name);
}

void RemoveIfDead(const char *name) noexcept {
    const int fd = OpenAny(name);
    if (fd < 0) return;
    RemoveIfUnheld(fd, name);
    close(fd);
}

int MakeNew(const char *name) noexcept { return shm_open(name, O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR); }

}    // namespace

ObjectName::ObjectName(uint64_t id, bool session) noexcept {
    if (session) {
        std::snprintf(text, sizeof(text), "/zbuffer-%u-%" PRIX64, static_cast<unsigned>(geteuid()), id);
    } else {
        std::snprintf(text, sizeof(text), "%s%" PRIX64, kGlobalPrefix, id);
    }
}

int CreateObject(const ObjectName &name, uint64_t bytes, AttachedMemory &memory) noexcept {
    for (int i = 0; i < kTries; ++i) {
        int fd = MakeNew(name.text);
        if (fd < 0 && errno == EEXIST) {
            RemoveIfDead(name.text);
            fd = MakeNew(name.text);
        }
        if (fd < 0) return -1;
        AttachedMemory made;
        // Exclusive while it grows, so that nobody opens half a section.
        if (!Lock(fd, LOCK_EX) || (HasName(fd) && !ReserveMemory(fd, bytes, made))) {
            const int error = errno;
            if (HasName(fd)) shm_unlink(name.text);
            return Failed(fd, error);
        }
        // The change of lock is no single step: one who looks for dead objects can come in between.
        if (Lock(fd, LOCK_SH) && HasName(fd)) {
            memory = std::move(made);
            return fd;
        }
        close(fd);
    }
    errno = EAGAIN;
    return -1;
}

int OpenObject(const ObjectName &name, AttachedMemory &memory) noexcept {
    const int fd = OpenAny(name.text);
    if (fd < 0) return -1;
    RemoveIfUnheld(fd, name.text);
    if (!Lock(fd, LOCK_SH) || !HasName(fd)) return Failed(fd, ENOENT);
    if (AttachMemory(fd, memory)) return fd;
    const int error = errno;
    // The last holder let go in the meantime, and left the name to this handle's lock.
    if (error == ENOENT) RemoveIfUnheld(fd, name.text);
    return Failed(fd, error);
}

void RemoveIfLast(int object, const ObjectName &name) noexcept { RemoveIfUnheld(object, name.text); }

void SweepObjects() noexcept {
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir(kFolder), closedir);
    if (folder == nullptr) return;
    const ObjectName session(0, true);
    const size_t sessionLength = std::strlen(session.text) - 1;
    while (const dirent *entry = readdir(folder.get())) {
        char name[sizeof(entry->d_name) + 1] = "/";
        std::strcat(name, entry->d_name);
        const bool ours = std::strncmp(name, kGlobalPrefix, sizeof(kGlobalPrefix) - 1) == 0 ||
                          std::strncmp(name, session.text, sessionLength) == 0;
        if (ours) RemoveIfDead(name);
    }
}

void SweepObjectsAtTimes() noexcept {
    static std::atomic<uint32_t> next{0};
    const uint32_t now = TimerMs() | 1;    // 0 says that there was no sweep yet
    uint32_t due = next.load();
    if (due != 0 && static_cast<int32_t>(now - due) < 0) return;
    if (next.compare_exchange_strong(due, (now + kSweepIntervalMs) | 1)) SweepObjects();
}

}    // namespace zck
