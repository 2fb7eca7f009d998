#include "platform/posix/section_memory.h"

#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/posix/free_memory.h"

namespace zck {
namespace {

constexpr uint64_t kPage = 4096;
constexpr uint64_t kLargest = uint64_t{1} << 62;
/// Smaller sections are made without a look at what the system has left.
constexpr uint64_t kWorthALook = 1 << 20;
constexpr int kTries = 16;
constexpr int32_t kNone = -1;
constexpr uint64_t kMark = 0x315245464655425A;

/// The object holds this in place of the bytes. The sizes differ, since bytes come in whole pages.
struct Record {
    uint64_t mark = kMark;
    uint64_t bytes = 0;
    uint64_t space = 0;         // the namespace in which the numbers below mean something
    int32_t key = 0;            // of the segment until it has been marked for its end
    int32_t segment = kNone;    // known once it has been
};

uint64_t WholePages(uint64_t bytes) noexcept { return (bytes + kPage - 1) & ~(kPage - 1); }

/// A number of this process's namespace of System V objects, which is not that of all processes that share the folder.
uint64_t IpcSpace() noexcept {
    struct stat info {};
    return stat("/proc/self/ns/ipc", &info) == 0 ? info.st_ino : 0;
}

bool WriteRecord(int object, const Record &record) noexcept {
    const ssize_t done = pwrite(object, &record, sizeof(record), 0);
    if (done == static_cast<ssize_t>(sizeof(record))) return true;
    if (done >= 0) errno = ENOSPC;
    return false;
}

/// False where the object holds the bytes itself, or nothing yet.
bool ReadRecord(int object, Record &record) noexcept {
    struct stat info {};
    return fstat(object, &info) == 0 && info.st_size == sizeof(record) &&
           pread(object, &record, sizeof(record), 0) == static_cast<ssize_t>(sizeof(record)) && record.mark == kMark;
}

/// Names, and other programs, keep half of the folder.
bool BelongsInFolder(int object, uint64_t bytes) noexcept {
    struct statfs folder {};
    if (fstatfs(object, &folder) != 0 || folder.f_blocks == 0) return true;
    const auto block = static_cast<uint64_t>(folder.f_bsize);
    const uint64_t left = folder.f_bavail * block;
    return bytes <= left && left - bytes >= folder.f_blocks * block / 2;
}

/// An eighth is left for all else that a new section brings about.
bool SystemHas(uint64_t bytes) noexcept {
    const uint64_t left = FreeMemory();
    return bytes <= left - left / 8;
}

bool Allocate(int object, uint64_t bytes) noexcept {
    int error = 0;
    do {
        error = posix_fallocate(object, 0, static_cast<off_t>(bytes));
    } while (error == EINTR);
    errno = error;
    return error == 0;
}

/// Makes every page present, which a system without memory refuses here and not at a later write.
bool Populate(uint8_t *start, uint64_t bytes) noexcept {
    if (madvise(start, bytes, MADV_POPULATE_WRITE) == 0) return true;
    // Kernels before 5.14 do not know it.
    if (errno != EINVAL) return false;
    for (uint64_t at = 0; at < bytes; at += kPage) const_cast<volatile uint8_t *>(start)[at] = 0;
    return true;
}

/// A new segment under a key that the record tells before the segment is there. `kNone` with `errno` otherwise.
int MakeSegment(int object, Record &record) noexcept {
    for (int i = 0; i < kTries; ++i) {
        if (getrandom(&record.key, sizeof(record.key), 0) != sizeof(record.key)) return kNone;
        if (record.key == IPC_PRIVATE) continue;
        if (!WriteRecord(object, record)) return kNone;
        const int segment = shmget(record.key, record.bytes, IPC_CREAT | IPC_EXCL | S_IRUSR | S_IWUSR);
        if (segment >= 0 || errno != EEXIST) return segment;
    }
    return kNone;
}

bool Attach(int segment, uint64_t bytes, AttachedMemory &memory) noexcept {
    void *start = shmat(segment, nullptr, 0);
    if (start == reinterpret_cast<void *>(-1)) return false;
    memory = AttachedMemory(static_cast<uint8_t *>(start), WholePages(bytes));
    return true;
}

bool ReserveApart(int object, uint64_t bytes, AttachedMemory &memory) noexcept {
    Record record;
    record.bytes = bytes;
    record.space = IpcSpace();
    if (!Allocate(object, sizeof(record))) return false;
    const int segment = MakeSegment(object, record);
    if (segment == kNone) return false;
    AttachedMemory attached;
    const bool done = Attach(segment, bytes, attached);
    const int error = errno;
    shmctl(segment, IPC_RMID, nullptr);
    errno = error;
    record.segment = segment;
    if (!done || !WriteRecord(object, record) || !Populate(attached.Start(), attached.Bytes())) return false;
    memory = std::move(attached);
    return true;
}

/// The segment has the size that the record tells, and belongs to this user.
bool IsOfRecord(int segment, const Record &record, shmid_ds &info) noexcept {
    return shmctl(segment, IPC_STAT, &info) == 0 && info.shm_perm.uid == geteuid() && info.shm_segsz == record.bytes;
}

bool TakeRoom(int object, uint64_t bytes, AttachedMemory &memory) noexcept {
    if (bytes >= kWorthALook && !SystemHas(bytes)) return false;
    const bool inFolder = BelongsInFolder(object, bytes);
    if (inFolder && Allocate(object, bytes)) return true;
    if (ReserveApart(object, bytes, memory)) return true;
    // No segment is to be had. Whatever room the folder has serves then.
    return !inFolder && ftruncate(object, 0) == 0 && Allocate(object, bytes);
}

}    // namespace

AttachedMemory::~AttachedMemory() {
    const int error = errno;
    if (m_start != nullptr) munmap(m_start, m_bytes);
    errno = error;
}

bool ReserveMemory(int object, uint64_t bytes, AttachedMemory &memory) noexcept {
    if (bytes <= kLargest && TakeRoom(object, WholePages(bytes), memory)) return true;
    // The caller does not distinguish what was short.
    errno = ENOSPC;
    return false;
}

bool AttachMemory(int object, AttachedMemory &memory) noexcept {
    Record record;
    if (!ReadRecord(object, record)) return true;
    errno = EACCES;
    if (record.space != IpcSpace()) return false;
    shmid_ds info{};
    if (IsOfRecord(record.segment, record, info)) return Attach(record.segment, record.bytes, memory);
    errno = ENOENT;
    return false;
}

void FreeMemoryOfDead(int object) noexcept {
    Record record;
    if (!ReadRecord(object, record) || record.segment != kNone || record.space != IpcSpace()) return;
    shmid_ds info{};
    const int segment = shmget(record.key, 0, 0);
    if (segment >= 0 && IsOfRecord(segment, record, info) && info.shm_nattch == 0) shmctl(segment, IPC_RMID, nullptr);
}

}    // namespace zck
