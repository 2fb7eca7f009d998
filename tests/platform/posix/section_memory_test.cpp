// Sections where the folder of shared memory is small, as in containers: what lies in it, what lies outside, and what is left.
#include <dirent.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/process.h"
#include "platform/section.h"
#include "platform/status.h"
#include "tests/support/posix/small_shm.h"

namespace zck {
namespace {

using test::CountSegments;
using test::FillSharedMemory;
using test::ForkedChild;
using test::ReplaceFile;
using test::RunForked;
using test::RunInSmallSharedMemory;
using test::SharedMemoryLeft;
using test::WriteTo;

constexpr uint64_t kId = 0xC0DE5EC7;    // the folder is this test's own
constexpr uint64_t kPage = 4096;
constexpr uint64_t kMega = 1 << 20;
constexpr uint64_t k4kFrame = uint64_t{3840} * 2160 * 4;

std::string PathOf(uint64_t id) {
    char path[64];
    std::snprintf(path, sizeof(path), "/dev/shm/zbuffer-g-%" PRIX64, id);
    return path;
}

bool NameExists(uint64_t id) {
    struct stat info {};
    return stat(PathOf(id).c_str(), &info) == 0;
}

int CountNames() {
    int count = 0;
    DIR *folder = opendir("/dev/shm");
    while (const dirent *entry = readdir(folder)) count += std::strncmp(entry->d_name, "zbuffer-", 8) == 0;
    closedir(folder);
    return count;
}

bool Make(Section &section, uint64_t id, uint64_t bytes) {
    return section.Create(id, bytes) == S_OK && section.Map() == S_OK && section.Size() >= bytes;
}

bool Find(Section &section, uint64_t id) { return section.Open(id) == S_OK && section.Map() == S_OK; }

TEST(SectionMemoryTest, SixteenLargeFramesNeedOneOfSixteenMegabytes) {
    RunInSmallSharedMemory("16m", [] {
        std::vector<std::unique_ptr<Section>> sections;
        for (uint64_t i = 0; i < 16; ++i) {
            sections.push_back(std::make_unique<Section>());
            NEED(Make(*sections.back(), kId + i, k4kFrame));
            NEED(SharedMemoryLeft() == 16 * kMega - (i + 1) * kPage);
        }
        Section again;
        NEED(Find(again, kId + 3));
        NEED(again.Size() >= k4kFrame);
        NEED(again.View()[0] == 0 && again.View()[k4kFrame - 1] == 0);
        sections[3]->View()[k4kFrame - 1] = 7;
        NEED(again.View()[k4kFrame - 1] == 7);
        again.Close();
        sections.clear();
        NEED(SharedMemoryLeft() == 16 * kMega);
        NEED(CountSegments() == 0);
        return true;
    });
}

TEST(SectionMemoryTest, TheFolderIsUsedAsLongAsHalfOfItStaysFree) {
    RunInSmallSharedMemory("16m", [] {
        Section first;
        Section second;
        Section third;
        NEED(Make(first, kId, 4 * kMega));
        NEED(Make(second, kId + 1, 4 * kMega));
        NEED(CountSegments() == 0 && SharedMemoryLeft() == 8 * kMega);
        NEED(Make(third, kId + 2, 1));
        NEED(CountSegments() == 1 && SharedMemoryLeft() == 8 * kMega - kPage);
        second.Close();
        NEED(Make(second, kId + 1, 4 * kMega - kPage));
        NEED(CountSegments() == 1);
        return true;
    });
}

TEST(SectionMemoryTest, AnotherProcessKeepsASectionWhoseMakerWasKilled) {
    RunInSmallSharedMemory("1m", [] {
        ForkedChild maker([] {
            auto *section = new Section;
            if (!Make(*section, kId, kMega)) return false;
            section->View()[100] = 42;
            return true;
        });
        NEED(maker.Ok());
        Section mine;
        NEED(Find(mine, kId));
        maker.Kill();
        NEED(mine.View()[100] == 42);
        NEED(RunForked([] {
                 Section third;
                 return Find(third, kId) && third.View()[100] == 42 ? 0 : 1;
             }) == 0);
        mine.Close();
        NEED(mine.Open(kId) == kErrorFileNotFound);
        NEED(!NameExists(kId) && CountSegments() == 0);
        return true;
    });
}

TEST(SectionMemoryTest, AHandleThatIsNotMappedHoldsTheMemory) {
    RunInSmallSharedMemory("1m", [] {
        Section maker;
        Section opener;
        NEED(Make(maker, kId, kMega));
        maker.View()[5] = 5;
        NEED(opener.Open(kId) == S_OK && opener.View() == nullptr && opener.Size() == 0);
        maker.Close();
        NEED(opener.Map() == S_OK && opener.View()[5] == 5);
        return true;
    });
}

TEST(SectionMemoryTest, KilledProcessesLeaveANameAtMost) {
    RunInSmallSharedMemory("1m", [] {
        ForkedChild child([] { return Make(*new Section, kId, 8 * kMega); });
        NEED(child.Ok());
        NEED(CountSegments() == 1);
        child.Kill();
        NEED(CountSegments() == 0);
        Section section;
        NEED(section.Open(kId) == kErrorFileNotFound);
        NEED(!NameExists(kId));
        return true;
    });
}

// What a record says that leads to a segment by its key.
struct Record {
    char mark[8] = {'Z', 'B', 'U', 'F', 'F', 'E', 'R', '1'};
    uint64_t bytes = kMega;
    uint64_t space = 0;
    int32_t key = 0x5EC7;
    int32_t segment = -1;
};

/// As a process leaves them that is killed between making a segment and marking it for its end.
bool LeaveHalfASection(const Record &record, uint64_t segmentBytes) {
    const int segment = shmget(record.key, segmentBytes, IPC_CREAT | IPC_EXCL | 0600);
    return segment >= 0 && WriteTo(PathOf(kId).c_str(), {reinterpret_cast<const char *>(&record), sizeof(record)});
}

uint64_t OwnSpace() {
    struct stat info {};
    return stat("/proc/self/ns/ipc", &info) == 0 ? info.st_ino : 0;
}

TEST(SectionMemoryTest, ASegmentOfAProcessKilledInTheMiddleIsFreed) {
    RunInSmallSharedMemory("1m", [] {
        Record record;
        record.space = OwnSpace();
        NEED(LeaveHalfASection(record, kMega));
        NEED(CountSegments() == 1);
        Section section;
        NEED(section.Open(kId) == kErrorFileNotFound);
        NEED(!NameExists(kId) && CountSegments() == 0);
        return true;
    });
}

TEST(SectionMemoryTest, ASegmentThatIsNotTheRecordsIsLeftAlone) {
    RunInSmallSharedMemory("1m", [] {
        Record record;
        record.space = OwnSpace();
        Section section;
        NEED(LeaveHalfASection(record, 2 * kMega));
        NEED(section.Open(kId) == kErrorFileNotFound && !NameExists(kId));
        NEED(CountSegments() == 1);
        record.key = 0x5EC8;
        NEED(LeaveHalfASection(record, kMega));
        void *used = shmat(shmget(record.key, 0, 0), nullptr, 0);
        NEED(section.Open(kId) == kErrorFileNotFound && !NameExists(kId));
        NEED(CountSegments() == 2);
        shmdt(used);
        record.key = 0x5EC9;
        ++record.space;
        NEED(LeaveHalfASection(record, kMega));
        NEED(section.Open(kId) == kErrorFileNotFound && !NameExists(kId));
        NEED(CountSegments() == 3);
        return true;
    });
}

TEST(SectionMemoryTest, AChildThatClosesAnInheritedHandleLeavesTheParents) {
    RunInSmallSharedMemory("1m", [] {
        Section mine;
        NEED(Make(mine, kId, kMega));
        mine.View()[0] = 9;
        NEED(RunForked([&] {
                 mine.Close();
                 return 0;
             }) == 0);
        Section other;
        NEED(Find(other, kId) && other.View()[0] == 9);
        return true;
    });
}

TEST(SectionMemoryTest, AProcessOfAnotherNamespaceNeitherOpensNorSweepsIt) {
    RunInSmallSharedMemory("1m", [] {
        Section mine;
        NEED(Make(mine, kId, kMega));
        NEED(RunForked([] {
                 if (unshare(CLONE_NEWIPC) != 0) return 1;
                 // A segment of the same number and size, which is not the section's.
                 const int segment = shmget(IPC_PRIVATE, kMega, 0600);
                 if (segment < 0) return 2;
                 Section section;
                 if (section.Open(kId) != kErrorFileNotFound) return 3;
                 return section.Create(kId, kMega) == S_FALSE ? 0 : 4;
             }) == 0);
        Section other;
        NEED(Find(other, kId));
        return true;
    });
}

TEST(SectionMemoryTest, AFullFolderIsAStatusAndLeavesNothing) {
    RunInSmallSharedMemory("64k", [] {
        NEED(FillSharedMemory());
        Section section;
        NEED(section.Create(kId, 512) == kErrorDiskFull);
        NEED(section.Create(kId, kMega) == kErrorDiskFull);
        NEED(!section.IsOpen() && CountNames() == 0 && CountSegments() == 0);
        NEED(unlink("/dev/shm/filled") == 0);
        NEED(Make(section, kId, kMega));
        return true;
    });
}

TEST(SectionMemoryTest, WithoutSegmentsTheWholeFolderServes) {
    RunInSmallSharedMemory("64k", [] {
        NEED(WriteTo("/proc/sys/kernel/shmmni", "0"));
        Section first;
        Section second;
        NEED(Make(first, kId, 49152));
        NEED(second.Create(kId + 1, 32768) == kErrorDiskFull);
        NEED(!second.IsOpen() && CountNames() == 1);
        NEED(Make(second, kId + 1, 16384));
        // Every byte was reserved: writing all of them raises no signal.
        std::memset(first.View(), 1, 49152);
        std::memset(second.View(), 1, 16384);
        return true;
    });
}

TEST(SectionMemoryTest, AFullFolderIsSweptBeforeGivingUp) {
    RunInSmallSharedMemory("64k", [] {
        NEED(WriteTo("/proc/sys/kernel/shmmni", "0"));
        Section section;
        NEED(Make(section, kId, 512));    // the first one sweeps anyway
        section.Close();
        ForkedChild child([] { return Make(*new Section, kId + 1, 49152); });
        NEED(child.Ok());
        child.Kill();
        NEED(CountNames() == 1);
        NEED(Make(section, kId + 2, 49152));
        NEED(CountNames() == 1);
        return true;
    });
}

// The estimate leaves an eighth.
constexpr char kMachine[] = "MemTotal:  999999 kB\nMemAvailable:   16384 kB\nSwapFree:  0 kB\n";

TEST(SectionMemoryTest, MoreThanTheMachineHasLeftIsAStatus) {
    RunInSmallSharedMemory("64m", [] {
        NEED(ReplaceFile("/proc/meminfo", kMachine));
        Section section;
        NEED(section.Create(kId, 14 * kMega + 1) == kErrorDiskFull);
        NEED(CountNames() == 0);
        NEED(section.Create(kId, 14 * kMega) == S_OK);
        NEED(WriteTo("/proc/meminfo", "MemAvailable: 16384 kB\nSwapTotal: 1 kB\nSwapFree: 16384 kB\n"));
        NEED(section.Create(kId, 28 * kMega) == S_OK);
        NEED(section.Create(kId, 28 * kMega + 1) == kErrorDiskFull);
        return true;
    });
}

/// Control groups with files of our own.
bool ReplaceGroups(const char *groupOfProcess) {
    return ReplaceFile("/proc/self/cgroup", groupOfProcess) && mount("groups", "/sys/fs/cgroup", "tmpfs", 0, nullptr) == 0 &&
           mkdir("/sys/fs/cgroup/out", 0700) == 0 && mkdir("/sys/fs/cgroup/out/in", 0700) == 0 &&
           mkdir("/sys/fs/cgroup/memory", 0700) == 0 && mkdir("/sys/fs/cgroup/memory/own", 0700) == 0;
}

TEST(SectionMemoryTest, MoreThanAControlGroupHasLeftIsAStatus) {
    RunInSmallSharedMemory("64m", [] {
        NEED(ReplaceFile("/proc/meminfo", "MemAvailable: 65536 kB\nSwapFree: 8192 kB\n"));
        NEED(ReplaceGroups("3:cpu:/\n0::/out/in\n"));
        Section section;
        NEED(section.Create(kId, 32 * kMega) == S_OK);    // no limit is told
        section.Close();
        // 16 MB of 64 are free, 8 can be dropped, 8 swapped out: 32 in all. The group around has less.
        NEED(WriteTo("/sys/fs/cgroup/out/in/memory.max", "67108864\n"));
        NEED(WriteTo("/sys/fs/cgroup/out/in/memory.current", "50331648\n"));
        NEED(WriteTo("/sys/fs/cgroup/out/in/memory.stat", "anon 77\ninactive_file 4194304\nactive_file 4194304\n"));
        NEED(WriteTo("/sys/fs/cgroup/out/in/memory.swap.max", "max\n"));
        NEED(section.Create(kId, 28 * kMega) == S_OK);
        NEED(section.Create(kId, 28 * kMega + 1) == kErrorDiskFull);
        NEED(WriteTo("/sys/fs/cgroup/out/memory.max", "16777216\n"));
        NEED(WriteTo("/sys/fs/cgroup/out/memory.current", "0\n"));
        NEED(WriteTo("/sys/fs/cgroup/out/memory.swap.max", "0\n"));
        NEED(section.Create(kId, 14 * kMega) == S_OK);
        NEED(section.Create(kId, 14 * kMega + 1) == kErrorDiskFull);
        return true;
    });
}

TEST(SectionMemoryTest, MoreThanAnOldControlGroupHasLeftIsAStatus) {
    RunInSmallSharedMemory("64m", [] {
        NEED(ReplaceFile("/proc/meminfo", "MemAvailable: 65536 kB\nSwapFree: 0 kB\n"));
        NEED(ReplaceGroups("4:memory:/own\n1:name=systemd:/out\n0::/\n"));
        NEED(WriteTo("/sys/fs/cgroup/memory/memory.limit_in_bytes", "9223372036854771712\n"));
        NEED(WriteTo("/sys/fs/cgroup/memory/own/memory.limit_in_bytes", "16777216\n"));
        NEED(WriteTo("/sys/fs/cgroup/memory/own/memory.usage_in_bytes", "16777216\n"));
        NEED(WriteTo("/sys/fs/cgroup/memory/own/memory.stat", "inactive_file 1\ntotal_inactive_file 8388608\n"));
        Section section;
        NEED(section.Create(kId, 7 * kMega + 1) == kErrorDiskFull);
        NEED(section.Create(kId, 7 * kMega) == S_OK);
        return true;
    });
}

TEST(SectionMemoryTest, ManyProcessesFightForFewNumbers) {
    RunInSmallSharedMemory("64k", [] {
        Section low;
        NEED(Make(low, kId - 1, 32768));    // all others lie outside
        std::vector<pid_t> children;
        for (int i = 0; i < 4; ++i) {
            const pid_t pid = fork();
            if (pid == 0) {
                for (int round = 0; round < 1000; ++round) {
                    const uint64_t id = kId + static_cast<uint64_t>((round * 7 + i) % 3);
                    Section section;
                    const HRESULT hr = (round + i) % 2 != 0 ? section.Create(id, 8192) : section.Open(id);
                    if (hr == S_FALSE || hr == kErrorFileNotFound || hr == SystemErrorStatus(EAGAIN, E_FAIL)) continue;
                    if (hr != S_OK || section.Map() != S_OK || section.Size() < 8192) _exit(1);
                    section.View()[8191] = 1;
                    Section again;
                    if (again.Open(id) != S_OK) _exit(2);
                }
                _exit(0);
            }
            children.push_back(pid);
        }
        bool done = true;
        for (const pid_t pid : children) {
            int status = 0;
            waitpid(pid, &status, 0);
            done = done && status == 0;
        }
        NEED(done);
        NEED(CountNames() == 1 && CountSegments() == 0);
        return true;
    });
}

}    // namespace
}    // namespace zck
