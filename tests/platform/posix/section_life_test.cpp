// Sections between processes: who holds them, who dies, and what is left under their names.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/process.h"
#include "platform/section.h"
#include "platform/status.h"
#include "tests/support/posix/forked.h"
#include "tests/support/posix/small_shm.h"

namespace zck {
namespace {

using test::ForkedChild;
using test::RunForked;

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
    ForkedChild child([&] {
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
    EXPECT_EQ(RunForked([&] {
                  mine.Close();
                  return 0;
              }),
              0);
    Section other;
    EXPECT_EQ(other.Open(id), S_OK);
}

TEST(SectionLifeTest, NumberOfAKilledProcessIsFree) {
    const uint64_t id = TestId(7);
    ForkedChild child([&] { return (new Section)->Create(id, 512) == S_OK; });
    ASSERT_TRUE(child.Ok());
    child.Kill();
    Section section;
    EXPECT_EQ(section.Create(id, 1024), S_OK);
    ASSERT_EQ(section.Map(), S_OK);
    EXPECT_GE(section.Size(), 1024U);
}

// The following have a folder of their own, where no other process sweeps.

TEST(SectionLifeTest, SectionOfAKilledProcessCannotBeOpened) {
    test::RunInSmallSharedMemory("1m", [] {
        const uint64_t id = TestId(6);
        ForkedChild child([&] { return (new Section)->Create(id, 512) == S_OK; });
        NEED(child.Ok());
        Section section;
        NEED(section.Open(id) == S_OK);
        section.Close();
        child.Kill();
        NEED(NameExists(GlobalName(id)));
        NEED(section.Open(id) == kErrorFileNotFound);
        NEED(!NameExists(GlobalName(id)));
        return true;
    });
}

TEST(SectionLifeTest, NewProcessSweepsWhatKilledOnesLeft) {
    test::RunInSmallSharedMemory("1m", [] {
        const uint64_t id = TestId(8);
        Section mine;
        NEED(mine.Create(TestId(9), 512) == S_OK);
        ForkedChild child([&] { return (new Section)->Create(id, 512) == S_OK; });
        NEED(child.Ok());
        child.Kill();
        NEED(NameExists(GlobalName(id)));
        // A program that starts anew, makes a section of its own number and ends: this one, with another test.
        NEED(RunForked([] {
                 execl("/proc/self/exe", "test", "--gtest_filter=SectionTest.CloseIsSafeWhenClosed", nullptr);
                 return 99;
             }) == 0);
        NEED(!NameExists(GlobalName(id)));
        NEED(NameExists(GlobalName(TestId(9))));
        return true;
    });
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
