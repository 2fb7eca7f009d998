#include "frames/media/audio_props.h"

#include <gtest/gtest.h>

#include <limits>

namespace zck {
namespace {

Z_AUD_PROPS Sound(int32_t channels, int32_t rate, int32_t bits) { return Z_AUD_PROPS{channels, rate, bits, 0}; }

int64_t Bytes(const Z_AUD_PROPS &p, int64_t n) { return AudioBytes(&p, n); }
int64_t Samples(const Z_AUD_PROPS &p, int64_t n) { return AudioSamples(&p, n); }
bool Valid(const Z_AUD_PROPS &p, bool strict) { return AudioPropsValid(&p, strict); }

TEST(AudioPropsValid, StrictNeedsAllLooseNeedsAny) {
    EXPECT_FALSE(AudioPropsValid(nullptr, true));
    EXPECT_FALSE(AudioPropsValid(nullptr, false));
    EXPECT_TRUE(Valid(Sound(2, 48000, 16), true));
    EXPECT_TRUE(Valid(Sound(2, 48000, -32), true));
    EXPECT_FALSE(Valid(Sound(0, 48000, 16), true));
    EXPECT_FALSE(Valid(Sound(-1, 48000, 16), true));
    EXPECT_FALSE(Valid(Sound(2, 0, 16), true));
    EXPECT_FALSE(Valid(Sound(2, -1, 16), true));
    EXPECT_FALSE(Valid(Sound(2, 48000, 0), true));
    EXPECT_FALSE(Valid(Sound(0, 0, 0), false));
    EXPECT_TRUE(Valid(Sound(1, 0, 0), false));
    EXPECT_TRUE(Valid(Sound(0, 1, 0), false));
    EXPECT_TRUE(Valid(Sound(0, 0, -1), false));
    EXPECT_FALSE(Valid(Z_AUD_PROPS{0, 0, 0, 7}, false));
}

TEST(AudioBytes, WorkedNumbers) {
    EXPECT_EQ(Bytes(Sound(2, 48000, 16), 1920), 7680);
    EXPECT_EQ(Bytes(Sound(2, 48000, -32), 1920), 15360);
    EXPECT_EQ(Bytes(Sound(1, 48000, 20), 10), 30);
    EXPECT_EQ(Bytes(Sound(2, 48000, 0), 1920), 0);
    EXPECT_EQ(AudioBytes(nullptr, 1920), 0);
    EXPECT_EQ(Bytes(Sound(2, 48000, 16), -3), -12);
    EXPECT_EQ(Bytes(Sound(16, 48000, 32), 0x7FFFFFFF), int64_t{0x7FFFFFFF} * 64);
}

TEST(AudioSamples, DividesTowardZero) {
    EXPECT_EQ(Samples(Sound(2, 48000, 16), 7680), 1920);
    EXPECT_EQ(Samples(Sound(2, 48000, 16), 7683), 1920);
    EXPECT_EQ(Samples(Sound(2, 48000, 16), -7), -1);
    EXPECT_EQ(Samples(Sound(0, 48000, 16), 7680), 0);
    EXPECT_EQ(AudioSamples(nullptr, 7680), 0);
}

TEST(AudioSamples, IsTheInverse) {
    for (int32_t channels = 1; channels <= 32; ++channels)
        for (int32_t bits : {8, 16, 20, 24, 32, -32, -64, 1})
            for (int64_t n : {0, 1, 1601, 48000}) {
                const Z_AUD_PROPS p = Sound(channels, 48000, bits);
                ASSERT_EQ(Samples(p, Bytes(p, n)), n);
            }
}

TEST(AudioBytes, ExtremeWidths) {
    const int32_t least = std::numeric_limits<int32_t>::min();
    EXPECT_EQ(AudioSampleBytes(least), 0x10000000);
    EXPECT_EQ(Bytes(Sound(1, 1, least), 1), 0x10000000);
    EXPECT_EQ(Samples(Sound(1, 1, least), 0x10000000), 1);
    EXPECT_EQ(Bytes(Sound(0x7FFFFFFF, 1, 8), 0x7FFFFFFF), int64_t{0x7FFFFFFF} * 0x7FFFFFFF);
}

TEST(AudioSampleBytes, ThreeBytesWorkInFour) {
    EXPECT_EQ(AudioSampleBytes(24), 3);
    EXPECT_EQ(AudioWorkSampleBytes(24), 4);
    EXPECT_EQ(AudioWorkSampleBytes(-17), 4);
    EXPECT_EQ(AudioWorkSampleBytes(16), 2);
    EXPECT_EQ(AudioWorkSampleBytes(-32), 4);
    EXPECT_EQ(AudioWorkSampleBytes(0), 0);
}

}    // namespace
}    // namespace zck
