// Sound files as other programs read them: sample for sample what was written. A machine without the programs skips the test
// and says so.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <random>

#include "frames/audio/wav_file.h"
#include "frames/media/audio_props.h"
#include "platform/status.h"
#include "tests/support/scratch_folder.h"

namespace zck::test {
namespace {

struct Form {
    const char *said;
    Z_AUD_PROPS props;
    const char *soxName;    // what each program calls the samples; sox refuses 24 bits, whose header says 32
    const char *ffmpegName;
};

std::ostream &operator<<(std::ostream &out, const Form &form) { return out << form.said; }

constexpr Form kForms[] = {
    {"mono16", {1, 48000, 16, 0}, "-e signed -b 16", "s16le"},
    {"stereo16", {2, 44100, 16, 0}, "-e signed -b 16", "s16le"},
    {"six16", {6, 48000, 16, 0}, "-e signed -b 16", "s16le"},
    {"mono24", {1, 96000, 24, 0}, nullptr, "s24le"},
    {"eight24", {8, 48000, 24, 0}, nullptr, "s24le"},
    {"stereo32", {2, 48000, 32, 0}, "-e signed -b 32", "s32le"},
    {"mono8", {1, 8000, 8, 0}, "-e unsigned -b 8", "u8"},
    {"monoFloat", {1, 48000, -32, 0}, "-e floating-point -b 32", "f32le"},
    {"sixFloat", {6, 48000, -32, 0}, "-e floating-point -b 32", "f32le"},
};

bool Installed(const std::string &program) {
    const int status = std::system(("command -v " + program + " >/dev/null 2>&1").c_str());
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::vector<uint8_t> OutputOf(const std::string &command) {
    std::vector<uint8_t> bytes;
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return bytes;
    uint8_t part[4096];
    for (size_t n = 0; (n = std::fread(part, 1, sizeof part, pipe)) != 0;) bytes.insert(bytes.end(), part, part + n);
    EXPECT_EQ(0, pclose(pipe)) << command;
    return bytes;
}

class OtherPrograms : public testing::TestWithParam<Form> {
protected:
    // Written in two parts, so that the header was gone over.
    void SetUp() override {
        const Z_AUD_PROPS &props = GetParam().props;
        std::mt19937 random(1);
        m_sound.resize(static_cast<size_t>(AudioBytes(&props, 1000)));
        for (uint8_t &b : m_sound) b = static_cast<uint8_t>(random());
        for (size_t i = 0; props.nBitsPerSample < 0 && i < m_sound.size(); i += 4) {
            // With no more bits than sox keeps.
            const float value = static_cast<float>(static_cast<int32_t>(random()) / 256) / 8388608.0F;
            std::memcpy(&m_sound[i], &value, 4);
        }
        const auto half = static_cast<uint32_t>(AudioBytes(&props, 500));
        for (const uint32_t at : {0U, half})
            ASSERT_EQ(S_OK, WavSave(TextFromUtf8(m_path), at != 0, {props, m_sound.data() + at, half}));
    }

    ScratchFolder m_folder;
    std::string m_path = m_folder.Path("sound.wav");
    std::vector<uint8_t> m_sound;
};

TEST_P(OtherPrograms, Sox) {
    if (GetParam().soxName == nullptr) return;
    if (!Installed("sox")) GTEST_SKIP() << "sox is not installed: tools/install_deps check";
    EXPECT_EQ(m_sound, OutputOf("sox -V1 -D '" + m_path + "' -t raw " + GetParam().soxName + " -"));
}

TEST_P(OtherPrograms, FFmpeg) {
    if (!Installed("ffmpeg")) GTEST_SKIP() << "ffmpeg is not installed: tools/install_deps check";
    EXPECT_EQ(m_sound, OutputOf("ffmpeg -v error -i '" + m_path + "' -f " + GetParam().ffmpegName + " -"));
}

INSTANTIATE_TEST_SUITE_P(WavFile, OtherPrograms, testing::ValuesIn(kForms), [](const auto &info) { return info.param.said; });

}    // namespace
}    // namespace zck::test
