// The program where the folder of shared memory is small or full, memory is short, or few files may be open.
#include "tests/support/posix/small_shm.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <string_view>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/room.h"
#include "hosts/zkey/system.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/scene_input.h"

namespace {

using namespace zkey;
using zck::test::FillSharedMemory;
using zck::test::ReplaceFile;
using zck::test::RunForked;
using zck::test::RunInSmallSharedMemory;
using zck::test::WriteTo;

bool Has(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

/// Some frames of a green picture with a grey band, as raw pixels.
std::string Clip(const Scratch &scratch, int width, int height, int frames) {
    std::vector<uint8_t> bytes(static_cast<size_t>(4 * width * height * frames));
    uint8_t *pixel = bytes.data();
    for (int y = 0; y < height * frames; ++y) {
        for (int x = 0; x < width; ++x, pixel += 4) {
            const bool band = x / 100 % 3 == 1;
            pixel[0] = static_cast<uint8_t>(band ? 128 : 40 + (x + y) % 50);
            pixel[1] = band ? 128 : 190;
            pixel[2] = band ? 128 : 30;
        }
    }
    return "key " + scratch.Write("in.raw", bytes) + " -q -c green --raw RGB32:" + Size(width, height);
}

TEST(SmallSharedMemory, LargeClipsAreKeyedWithSixteenMegabytes) {
    for (const auto &[width, height] : {std::pair(1920, 1080), std::pair(3840, 2160)}) {
        const Scratch scratch;
        const std::string clip = Clip(scratch, width, height, width > 2000 ? 1 : 2);
        ASSERT_EQ(RunProgram(scratch, clip + " -o " + scratch.Path("expected.raw")).status, kExitDone);
        RunInSmallSharedMemory("16m", [&] {
            const Outcome run = RunProgram(scratch, clip + " -o " + scratch.Path("out.raw"));
            NEED(run.status == kExitDone && run.error.empty());
            NEED(scratch.Read("out.raw") == scratch.Read("expected.raw"));
            NEED(scratch.Read("out.raw").size() == scratch.Read("in.raw").size());
            return true;
        });
    }
}

TEST(SmallSharedMemory, AFullFolderIsNamed) {
    const Scratch scratch;
    const std::string clip = Clip(scratch, 64, 64, 2);
    RunInSmallSharedMemory("16m", [&] {
        NEED(FillSharedMemory());
        const Outcome run = RunProgram(scratch, clip + " -o " + scratch.Path("out.raw"));
        NEED(run.status == kExitFailed);
        NEED(Has(run.error, "zkey: cannot create a frame: out of memory: /dev/shm is full (0 of 16 MB are free there)"));
        NEED(Has(run.error, "mount -o remount,size=1G /dev/shm"));
        return true;
    });
}

TEST(SmallSharedMemory, ShortMemoryIsNamed) {
    const Scratch scratch;
    const std::string clip = Clip(scratch, 1920, 1080, 1);
    RunInSmallSharedMemory("16m", [&] {
        NEED(ReplaceFile("/proc/meminfo", "MemAvailable: 5000 kB\nSwapFree: 0 kB\n"));
        const Outcome run = RunProgram(scratch, clip + " -o " + scratch.Path("out.raw"));
        NEED(run.status == kExitFailed);
        NEED(Has(run.error,
                 "out of memory: a frame needs 8 MB, and neither the memory left to this program nor /dev/shm has them"));
        NEED(Has(run.error, "(15 of 16 MB are free there, the machine has 4 MB of memory left)"));
        return true;
    });
}

// The frame that comes in has room, the larger one that goes out has none.
TEST(SmallSharedMemory, WhatIsShortIsNamedWhileKeyingToo) {
    const Scratch scratch;
    const std::string in = scratch.Write("in.raw", std::vector<uint8_t>(size_t{1760} * 1760 * 2, 120));
    for (const char *prop : {"true", "false"}) {
        RunInSmallSharedMemory("16m", [&] {
            NEED(WriteTo("/proc/sys/kernel/shmmni", "0"));
            const Outcome run = RunProgram(scratch, "key " + in + " -q -c green --raw UYVY:1760x1760 -o " +
                                                        scratch.Path("out.raw") + " --prop output.thread=" + prop);
            NEED(run.status == kExitFailed);
            // The keyer's own thread may just have filled the folder in vain when the cause is looked for.
            const bool filled = std::string_view(prop) == "true" && Has(run.error, "out of memory: /dev/shm is full");
            NEED(Has(run.error, "zkey: cannot key the frame: out of memory: a frame needs 12 MB") || filled);
            return true;
        });
    }
}

TEST(OpenFiles, TheLimitIsRaisedToWhatTheSystemAllows) {
    EXPECT_EQ(RunForked([] {
                  rlimit limit{};
                  getrlimit(RLIMIT_NOFILE, &limit);
                  if (limit.rlim_max <= 100) return 1;
                  limit.rlim_cur = 100;
                  if (setrlimit(RLIMIT_NOFILE, &limit) != 0) return 2;
                  SystemStart();
                  rlimit raised{};
                  getrlimit(RLIMIT_NOFILE, &raised);
                  return raised.rlim_cur == limit.rlim_max && raised.rlim_max == limit.rlim_max ? 0 : 3;
              }),
              0);
}

TEST(OpenFiles, TheLimitIsNamedWhenItIsReached) {
    EXPECT_EQ(RunForked([] {
                  const rlimit few{3, 3};
                  if (setrlimit(RLIMIT_NOFILE, &few) != 0) return 1;
                  return WhyNoRoom(1) == "the limit of 3 open files is reached; raise it with ulimit -n" ? 0 : 2;
              }),
              0);
}

}    // namespace
