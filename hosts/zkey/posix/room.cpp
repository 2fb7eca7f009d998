#include "hosts/zkey/room.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace zkey {
namespace {

// Where the library keeps the names of its frames, and their pixels as far as there is room.
constexpr char kFolder[] = "/dev/shm";
constexpr char kMoreRoom[] = "mount -o remount,size=1G /dev/shm, or --shm-size=1g where the container is started";
constexpr uint64_t kMega = 1 << 20;

std::string Megabytes(uint64_t bytes) { return std::to_string(bytes / kMega); }

/// 0, or why the smallest file cannot be made in the folder.
int ErrorOfNewFile() {
    const int fd = open(kFolder, O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (fd < 0) return errno;
    const int error = posix_fallocate(fd, 0, 1);
    close(fd);
    return error;
}

std::string LeftInFolder() {
    struct statvfs info {};
    if (statvfs(kFolder, &info) != 0 || info.f_blocks == 0) return {};
    return Megabytes(info.f_bavail * info.f_frsize) + " of " + Megabytes(info.f_blocks * info.f_frsize) + " MB are free there";
}

/// What the machine has left; a container can have less.
std::string LeftOnMachine() {
    std::FILE *file = std::fopen("/proc/meminfo", "re");
    if (file == nullptr) return {};
    char line[128];
    uint64_t kilobytes = 0;
    while (std::fgets(line, sizeof line, file) != nullptr) {
        if (std::sscanf(line, "MemAvailable: %" SCNu64, &kilobytes) == 1) break;
    }
    std::fclose(file);
    return kilobytes == 0 ? "" : ", the machine has " + Megabytes(kilobytes * 1024) + " MB of memory left";
}

}    // namespace

std::string WhyNoRoom(int64_t bytes) {
    const std::string folder = kFolder;
    const int error = ErrorOfNewFile();
    if (error == EMFILE) {
        rlimit limit{};
        getrlimit(RLIMIT_NOFILE, &limit);
        return "the limit of " + std::to_string(limit.rlim_cur) + " open files is reached; raise it with ulimit -n";
    }
    const std::string left = LeftInFolder();
    if (error == ENOSPC) return folder + " is full (" + left + "); remove files there, or give it more room: " + kMoreRoom;
    if (error != 0 && error != EOPNOTSUPP) return folder + " cannot be used: " + std::strerror(error);
    const std::string needed = Megabytes(static_cast<uint64_t>(bytes) + kMega - 1);
    return "a frame needs " + needed + " MB, and neither the memory left to this program nor " + folder + " has them (" + left +
           LeftOnMachine() + "); end other programs, or give " + folder + " more room: " + kMoreRoom;
}

}    // namespace zkey
