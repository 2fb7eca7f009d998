// Sound files on a disk that is full and under a limit of the system: its error comes back, what was written stays.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <numeric>

#include "frames/audio/wav_file.h"
#include "platform/status.h"
#include "tests/support/posix/small_shm.h"
#include "tests/support/scratch_folder.h"

namespace zck::test {
namespace {

using Bytes = std::vector<uint8_t>;
constexpr Z_AUD_PROPS kMono = {1, 48000, 16, 0};
constexpr uint32_t kHeader = 44;
constexpr uint32_t kDisk = 65536;

Bytes Counting(size_t size) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), uint8_t{1});
    return bytes;
}

HRESULT Save(const std::string &path, Bytes sound, bool append) {
    return WavSave(TextFromUtf8(path), append, {kMono, sound.data(), static_cast<uint32_t>(sound.size())});
}

Bytes Content(const std::string &path) {
    std::string bytes;
    if (FAILED(FileRead(TextFromUtf8(path), 1 << 24, bytes))) return {};
    return {bytes.begin(), bytes.end()};
}

uint32_t NumberAt(const Bytes &bytes, size_t at) {
    return static_cast<uint32_t>(bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16) | uint32_t{bytes[at + 3]} << 24;
}

// The sizes are those of what is there.
bool IsWhole(const Bytes &file) {
    return file.size() > kHeader && NumberAt(file, 4) == file.size() - 8 && NumberAt(file, 40) == file.size() - kHeader;
}

bool HoldsStartOf(const Bytes &file, const Bytes &sound) {
    return file.size() <= kHeader + sound.size() && std::equal(file.begin() + kHeader, file.end(), sound.begin());
}

TEST(WavOnAFullDisk, ANewFileHasWhatCouldBeWritten) {
    RunInSmallSharedMemory("64k", [] {
        const std::string path = "/dev/shm/new.wav";
        const Bytes sound = Counting(2 * kDisk);
        NEED(Save(path, sound, false) == kErrorDiskFull);
        const Bytes file = Content(path);
        NEED(file.size() == kDisk);
        NEED(IsWhole(file) && HoldsStartOf(file, sound));
        return true;
    });
}

TEST(WavOnAFullDisk, AnAppendKeepsTheSoundBefore) {
    RunInSmallSharedMemory("64k", [] {
        const std::string path = "/dev/shm/old.wav";
        Bytes sound = Counting(20000);
        NEED(Save(path, sound, false) == S_OK);
        const Bytes more = Counting(2 * kDisk);
        NEED(Save(path, more, true) == kErrorDiskFull);
        const Bytes file = Content(path);
        sound.insert(sound.end(), more.begin(), more.end());
        NEED(file.size() == kDisk);
        NEED(IsWhole(file) && HoldsStartOf(file, sound));
        // A further one finds no room at all and changes nothing.
        NEED(Save(path, Bytes(2), true) == kErrorDiskFull);
        NEED(Content(path) == file);
        return true;
    });
}

TEST(WavOnAFullDisk, NoRoomForAHeader) {
    RunInSmallSharedMemory("64k", [] {
        NEED(FillSharedMemory());
        const std::string path = "/dev/shm/none.wav";
        NEED(Save(path, Counting(100), false) == kErrorDiskFull);
        NEED(Content(path).empty());
        NEED(Save(path, Counting(100), true) == kErrorDiskFull);
        return true;
    });
}

/// In a child: files end at so many bytes.
bool LimitFiles(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

TEST(WavUnderALimit, TheSystemsErrorComesBack) {
    const ScratchFolder folder;
    const std::string path = folder.Path("sound.wav");
    const Bytes sound = Counting(500);
    ASSERT_EQ(S_OK, Save(path, sound, false));
    const auto appends = [&] {
        NEED(LimitFiles(1000));
        NEED(Save(path, Counting(5000), true) == kErrorFileTooLarge);
        return true;
    };
    ASSERT_EQ(RunForked([&] { return appends() ? 0 : 1; }), 0);
    const Bytes file = Content(path);
    ASSERT_EQ(file.size(), 1000U);
    EXPECT_TRUE(IsWhole(file));
    Bytes whole = sound;
    const Bytes more = Counting(5000);
    whole.insert(whole.end(), more.begin(), more.end());
    EXPECT_TRUE(HoldsStartOf(file, whole));
    // The parent has no limit: the file goes on where it stopped.
    ASSERT_EQ(S_OK, Save(path, Bytes(6), true));
    EXPECT_EQ(Content(path).size(), 1006U);
    EXPECT_TRUE(IsWhole(Content(path)));
}

TEST(WavUnderALimit, APartOfAHeaderStays) {
    const ScratchFolder folder;
    const std::string path = folder.Path("sound.wav");
    const auto saves = [&] {
        NEED(LimitFiles(20));
        NEED(Save(path, Counting(5000), false) == kErrorFileTooLarge);
        return true;
    };
    ASSERT_EQ(RunForked([&] { return saves() ? 0 : 1; }), 0);
    const Bytes file = Content(path);
    ASSERT_EQ(file.size(), 20U);
    EXPECT_EQ(std::string(file.begin(), file.begin() + 4), "RIFF");
    // No sound file: the next one takes its place.
    ASSERT_EQ(S_OK, Save(path, Counting(10), true));
    EXPECT_TRUE(IsWhole(Content(path)));
}

}    // namespace
}    // namespace zck::test
