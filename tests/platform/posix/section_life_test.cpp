// Sections between processes: who holds them, who dies, and what is left under their names.
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "platform/process.h"
#include "platform/section.h"
#include "platform/status.h"

namespace zck {
namespace {

uint64_t TestId(uint64_t n) { return 0xC0DF000000000000U + (static_cast<uint64_t>(CurrentProcessId()) << 16) + n; }

std::string GlobalName(uint64_t id) {
    char name[64];
    std::snprintf(name, sizeof(name), "zbuffer-g-%" PRIX64, id);
    return name;
}

std::string SessionName(uint64_t id) {
    char name[64];
    std::snprintf(name, sizeof(name), "zbuffer-%u-%" PRIX64, geteuid(), id);
    return name;
}

bool NameExists(const std::string &name) {
    struct stat info {};
    return stat(("/dev/shm/" + name).c_str(), &info) == 0;
}

/// A child process that does its work, says so and then sleeps until it is killed.
class Child {
public:
    explicit Child(const std::function<bool()> &work) {
        int ends[2];
        if (pipe(ends) != 0) return;
        m_pid = fork();
        if (m_pid == 0) {
            const char answer = work() ? 1 : 0;
            const bool told = write(ends[1], &answer, 1) == 1;
            while (told) pause();
            _exit(1);
        }
        char answer = 0;
        m_ok = m_pid > 0 && read(ends[0], &answer, 1) == 1 && answer == 1;
        close(ends[0]);
        close(ends[1]);
    }
    ~Child() { Kill(); }
    bool Ok() const { return m_ok; }
    void Kill() {
        if (m_pid <= 0) return;
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
        m_pid = 0;
    }

private:
    pid_t m_pid = 0;
    bool m_ok = false;
};

/// The exit status of `work` in a child process.
int RunInChild(const std::function<int()> &work) {
    const pid_t pid = fork();
    if (pid == 0) _exit(work());
    int status = -1;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(SectionLifeTest, GlobalNameComesFirst) {
    const uint64_t id = TestId(1);
    Section section;
    ASSERT_EQ(section.Create(id, 512), S_OK);
    EXPECT_TRUE(NameExists(GlobalName(id)));
    EXPECT_FALSE(NameExists(SessionName(id)));
    section.Close();
    EXPECT_FALSE(NameExists(GlobalName(id)));
}

TEST(SectionLifeTest, OpenFallsBackToTheSessionName) {
    const uint64_t id = TestId(2);
    Section made;
    ASSERT_EQ(made.Create(id, 512), S_OK);
    ASSERT_EQ(rename(("/dev/shm/" + GlobalName(id)).c_str(), ("/dev/shm/" + SessionName(id)).c_str()), 0);
    Section opened;
    EXPECT_EQ(opened.Open(id), S_OK);
    made.Close();
    EXPECT_TRUE(NameExists(SessionName(id)));
    opened.Close();
    EXPECT_FALSE(NameExists(SessionName(id)));
}

TEST(SectionLifeTest, ForeignThingUnderTheNameCountsAsTaken) {
    const uint64_t id = TestId(3);
    const std::string path = "/dev/shm/" + GlobalName(id);
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    Section section;
    const HRESULT created = section.Create(id, 512);
    const HRESULT opened = section.Open(id);
    rmdir(path.c_str());
    EXPECT_EQ(created, S_FALSE);
    EXPECT_EQ(opened, kErrorFileNotFound);
}

TEST(SectionLifeTest, SectionOfAnotherUserIsLeftAlone) {
    const uint64_t id = TestId(10);
    Section section;
    ASSERT_EQ(section.Create(id, 512), S_OK);
    const std::string path = "/dev/shm/" + GlobalName(id);
    if (chown(path.c_str(), 12345, 12345) != 0) GTEST_SKIP() << "only root can give a section to another user";
    Section other;
    EXPECT_EQ(other.Open(id), kErrorFileNotFound);
    EXPECT_EQ(other.Create(id, 512), S_FALSE);
    EXPECT_TRUE(NameExists(GlobalName(id)));
}

TEST(SectionLifeTest, OtherProcessReadsAndKeepsTheSection) {
    const uint64_t id = TestId(4);
    Section mine;
    ASSERT_EQ(mine.Create(id, 4096), S_OK);
    ASSERT_EQ(mine.Map(), S_OK);
    mine.View()[100] = 42;
    Section *held = nullptr;
    Child child([&] {
        held = new Section;
        if (held->Open(id) != S_OK || held->Map() != S_OK || held->View()[100] != 42) return false;
        held->View()[101] = 43;
        // Not this process's handle, but it must not be closed for the parent either.
        mine.Close();
        return true;
    });
    ASSERT_TRUE(child.Ok());
    EXPECT_EQ(mine.View()[101], 43);
    mine.Close();
    Section third;
    EXPECT_EQ(third.Open(id), S_OK) << "the child holds it";
    third.Close();
    child.Kill();
    EXPECT_EQ(third.Open(id), kErrorFileNotFound);
    EXPECT_FALSE(NameExists(GlobalName(id)));
}

TEST(SectionLifeTest, ChildThatClosesAnInheritedHandleLeavesTheParents) {
    const uint64_t id = TestId(5);
    Section mine;
    ASSERT_EQ(mine.Create(id, 512), S_OK);
    EXPECT_EQ(RunInChild([&] {
                  mine.Close();
                  return 0;
              }),
              0);
    Section other;
    EXPECT_EQ(other.Open(id), S_OK);
}

TEST(SectionLifeTest, SectionOfAKilledProcessCannotBeOpened) {
    const uint64_t id = TestId(6);
    Child child([&] { return (new Section)->Create(id, 512) == S_OK; });
    ASSERT_TRUE(child.Ok());
    Section section;
    ASSERT_EQ(section.Open(id), S_OK);
    section.Close();
    child.Kill();
    EXPECT_TRUE(NameExists(GlobalName(id))) << "nobody has looked yet";
    EXPECT_EQ(section.Open(id), kErrorFileNotFound);
    EXPECT_FALSE(NameExists(GlobalName(id)));
}

TEST(SectionLifeTest, NumberOfAKilledProcessIsFree) {
    const uint64_t id = TestId(7);
    Child child([&] { return (new Section)->Create(id, 512) == S_OK; });
    ASSERT_TRUE(child.Ok());
    child.Kill();
    Section section;
    EXPECT_EQ(section.Create(id, 1024), S_OK);
    ASSERT_EQ(section.Map(), S_OK);
    EXPECT_GE(section.Size(), 1024U);
}

TEST(SectionLifeTest, NewProcessSweepsWhatKilledOnesLeft) {
    const uint64_t id = TestId(8);
    Section mine;
    ASSERT_EQ(mine.Create(TestId(9), 512), S_OK);
    Child child([&] { return (new Section)->Create(id, 512) == S_OK; });
    ASSERT_TRUE(child.Ok());
    child.Kill();
    ASSERT_TRUE(NameExists(GlobalName(id)));
    // A program that starts anew, makes a section of its own number and ends: this one, with another test.
    EXPECT_EQ(RunInChild([] {
                  execl("/proc/self/exe", "test", "--gtest_filter=SectionTest.CloseIsSafeWhenClosed", nullptr);
                  return 99;
              }),
              0);
    EXPECT_FALSE(NameExists(GlobalName(id)));
    EXPECT_TRUE(NameExists(GlobalName(TestId(9)))) << "a living section was swept away";
}

constexpr int kNoNamespace = 77;

bool WriteFile(const char *path, const std::string &text) {
    const int fd = open(path, O_WRONLY);
    if (fd < 0) return false;
    const bool done = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(fd);
    return done;
}

/// Puts a shared-memory file system of its own, of 64 KiB, under this process. Root of a namespace where we are not root.
bool EnterSmallFileSystem() {
    const std::string users = "0 " + std::to_string(geteuid()) + " 1";
    const std::string groups = "0 " + std::to_string(getegid()) + " 1";
    const bool alone =
        unshare(CLONE_NEWNS) == 0 || (unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && WriteFile("/proc/self/setgroups", "deny") &&
                                      WriteFile("/proc/self/uid_map", users) && WriteFile("/proc/self/gid_map", groups));
    return alone && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("zbuffer", "/dev/shm", "tmpfs", 0, "size=64k") == 0;
}

int CountNames() {
    int count = 0;
    DIR *folder = opendir("/dev/shm");
    while (const dirent *entry = readdir(folder)) count += entry->d_name[0] != '.';
    closedir(folder);
    return count;
}

/// Runs in a child process; the number of the first check that failed.
int FillSmallFileSystem() {
    if (!EnterSmallFileSystem()) return kNoNamespace;
    Section first;
    Section second;
    if (first.Create(TestId(20), 32768) != S_OK || first.Map() != S_OK) return 1;
    if (second.Create(TestId(21), 65536) != kErrorDiskFull) return 2;
    if (second.IsOpen() || CountNames() != 1) return 3;
    if (second.Create(TestId(21), 32768) != S_OK || second.Map() != S_OK) return 4;
    // Every byte was reserved: writing all of them raises no signal.
    for (uint64_t i = 0; i < 32768; ++i) first.View()[i] = second.View()[i] = 1;
    return 0;
}

/// What a killed process left makes room when it is needed.
int ReclaimInSmallFileSystem() {
    if (!EnterSmallFileSystem()) return kNoNamespace;
    Section warm;
    if (warm.Create(TestId(22), 512) != S_OK) return 1;
    warm.Close();
    Child child([] { return (new Section)->Create(TestId(23), 49152) == S_OK; });
    if (!child.Ok()) return 2;
    child.Kill();
    if (CountNames() != 1) return 3;
    if (warm.Create(TestId(24), 49152) != S_OK) return 4;
    return CountNames() == 1 ? 0 : 5;
}

TEST(SectionLifeTest, FullFileSystemIsAStatusAndLeavesNothing) {
    const int result = RunInChild(FillSmallFileSystem);
    if (result == kNoNamespace) GTEST_SKIP() << "this system lets nobody mount a file system in a namespace of its own";
    EXPECT_EQ(result, 0);
}

TEST(SectionLifeTest, FullFileSystemIsSweptBeforeGivingUp) {
    const int result = RunInChild(ReclaimInSmallFileSystem);
    if (result == kNoNamespace) GTEST_SKIP() << "this system lets nobody mount a file system in a namespace of its own";
    EXPECT_EQ(result, 0);
}

TEST(SectionLifeTest, ManyProcessesFightForFewNumbers) {
    // Opening, creating, closing and sweeping meet in all orders; each success must be a section of the right size that stays
    // reachable while it is held.
    const uint64_t base = TestId(30);
    std::vector<pid_t> children;
    for (int i = 0; i < 4; ++i) {
        const pid_t pid = fork();
        if (pid == 0) {
            for (int round = 0; round < 1500; ++round) {
                const uint64_t id = base + static_cast<uint64_t>((round * 7 + i) % 3);
                Section section;
                HRESULT hr = (round + i) % 2 != 0 ? section.Create(id, 8192) : section.Open(id);
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
    for (const pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (uint64_t n = 0; n < 3; ++n) EXPECT_FALSE(NameExists(GlobalName(base + n)));
}

}    // namespace
}    // namespace zck
