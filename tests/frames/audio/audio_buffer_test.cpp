#include "frames/audio/audio_buffer.h"

#include <gtest/gtest.h>

#include "platform/status.h"

namespace zck {
namespace {

using Shorts = std::vector<int16_t>;
constexpr Z_AUD_PROPS kStereo = {2, 48000, 16, 0};
constexpr Z_AUD_PROPS kMono = {1, 48000, 16, 0};

int64_t Add(ZAudioBuffer2 &buffer, const Z_AUD_PROPS &props, const Shorts &samples, bool newFormat = false,
            bool mixDown = false) {
    return buffer.Add(&props, samples.data(), static_cast<int64_t>(samples.size() * 2), newFormat, mixDown);
}

Shorts All(ZAudioBuffer2 &buffer, int64_t samples = -1, size_t values = 0) {
    Shorts out(values != 0 ? values : static_cast<size_t>(buffer.Samples() * buffer.Format().nChannels), int16_t{-9});
    EXPECT_EQ(S_OK, buffer.Get(nullptr, out.data(), samples));
    return out;
}

TEST(AudioBuffer, GathersBlocks) {
    ZAudioBuffer2 buffer;
    EXPECT_EQ(1, Add(buffer, kStereo, {1, 10}));
    EXPECT_EQ(3, Add(buffer, kStereo, {2, 20, 3, 30}));
    EXPECT_EQ((Shorts{1, 10, 2, 20, 3, 30}), All(buffer));
    // Less than there is, and more.
    EXPECT_EQ((Shorts{1, 10, -9, -9}), All(buffer, 1, 4));
    EXPECT_EQ((Shorts{1, 10, 2, 20, 3, 30, 0, 0, -9}), All(buffer, 4, 9));
    buffer.Clear();
    EXPECT_EQ(0, buffer.Samples());
    EXPECT_EQ(2, buffer.Format().nChannels);
}

TEST(AudioBuffer, TakesAFormat) {
    ZAudioBuffer2 buffer(kStereo);
    EXPECT_EQ(2, Add(buffer, kMono, {5, 6}, true));
    EXPECT_EQ(1, buffer.Format().nChannels);
    // Not while there are samples.
    EXPECT_GE(Add(buffer, kStereo, {5, 6}, true), 2);
    EXPECT_EQ(1, buffer.Format().nChannels);
}

TEST(AudioBuffer, Refuses) {
    ZAudioBuffer2 none({-1, 48000, 16, 0});
    EXPECT_EQ(kErrorNotSupported, Add(none, kMono, {1}));
    ZAudioBuffer2 buffer;
    EXPECT_EQ(E_INVALIDARG, Add(buffer, {0, 48000, 16, 0}, {1}));
    EXPECT_EQ(E_INVALIDARG, buffer.Add(nullptr, nullptr, 0, true, true));
    EXPECT_EQ(E_INVALIDARG, buffer.Add(&kMono, nullptr, 4, true, true));
    EXPECT_EQ(kVfwEInvalidMediaType, Add(buffer, {1, 48000, 8, 0}, {1}));
    EXPECT_EQ(0, buffer.Format().nChannels);
    EXPECT_EQ(kVfwEInvalidMediaType, buffer.Get(nullptr, &none, 1));
    EXPECT_EQ(S_FALSE, none.Mix(&buffer, {}, {}, {}));
    EXPECT_EQ(S_FALSE, buffer.Mix(nullptr, {}, {}, {}));
}

TEST(AudioBuffer, OtherRatesAreResampled) {
    ZAudioBuffer2 buffer(kMono);
    // 17 samples before the first comes: 16 behind its position are needed.
    EXPECT_EQ(0, Add(buffer, {1, 24000, 16, 0}, Shorts(16, 1000)));
    EXPECT_EQ(2, Add(buffer, {1, 24000, 16, 0}, Shorts(1, 1000)));
    EXPECT_EQ(2002, Add(buffer, {1, 24000, 16, 0}, Shorts(1000, 1000)));
    const Shorts samples = All(buffer);
    // The gain is 0.98.
    for (size_t i = 100; i < samples.size(); ++i) ASSERT_NEAR(980, samples[i], 2) << i;
    // A change of the rate starts again.
    EXPECT_EQ(2002, Add(buffer, {1, 12000, 16, 0}, Shorts(16, 1000)));
    EXPECT_EQ(2006, Add(buffer, {1, 12000, 16, 0}, Shorts(1, 1000)));
    EXPECT_EQ(E_OUTOFMEMORY, Add(buffer, {1, 1, 16, 0}, Shorts(30000, 1000)));
}

TEST(AudioBuffer, SurplusChannels) {
    for (const bool mixes : {false, true}) {
        ZAudioBuffer2 buffer(kMono);
        EXPECT_EQ(384, Add(
                           buffer, kStereo,
                           [] {
                               Shorts samples(800, int16_t{1000});
                               return samples;
                           }(),
                           false, mixes));
        EXPECT_NEAR(mixes ? 1960 : 980, All(buffer)[200], 3);
    }
    // Channels that the block lacks are silent and as long.
    ZAudioBuffer2 buffer(kStereo);
    EXPECT_EQ(384, Add(buffer, kMono, Shorts(400, 1000)));
    EXPECT_NEAR(980, All(buffer)[400], 2);
    EXPECT_EQ(0, All(buffer)[401]);
}

TEST(AudioBuffer, MixIntoAnEmptyBuffer) {
    ZAudioBuffer2 source;
    Add(source, kStereo, {1, 2});
    ZAudioBuffer2 copy;
    EXPECT_EQ(S_OK, copy.Mix(&source, {}, {}, {}));
    EXPECT_EQ((Shorts{1, 2}), All(copy));
    // At another gain only the record comes.
    ZAudioBuffer2 quiet;
    EXPECT_EQ(S_OK, quiet.Mix(&source, {0.5, 0.0}, {}, {}));
    EXPECT_EQ(0, quiet.Samples());
    EXPECT_EQ(2, quiet.Format().nChannels);
}

TEST(AudioBuffer, MixesParts) {
    ZAudioBuffer2 source;
    Add(source, kStereo, {1, 2, 3, 4});
    ZAudioBuffer2 buffer;
    Add(buffer, {3, 48000, 16, 0}, {100, 200, 300, 100, 200, 300});
    EXPECT_EQ(S_OK, buffer.Mix(&source, {}, {}, {1, 0, 1, 0}));
    EXPECT_EQ((Shorts{100, 201, 302, 100, 200, 300}), All(buffer));
    EXPECT_EQ(S_OK, buffer.Mix(&source, {}, {}, {0, 1, 0, 1}));
    EXPECT_EQ((Shorts{102, 201, 302, 104, 200, 300}), All(buffer));
    // Channels that one of both lacks, and places before the first.
    EXPECT_EQ(S_OK, buffer.Mix(&source, {}, {}, {0, 0, 3, 0}));
    EXPECT_EQ(S_OK, buffer.Mix(&source, {}, {}, {0, INT32_MAX, INT32_MAX, INT32_MAX}));
    EXPECT_EQ(S_OK, buffer.Mix(&source, {}, {}, {0, 1, INT32_MIN, INT32_MIN}));
    EXPECT_EQ((Shorts{102, 201, 302, 104, 200, 300}), All(buffer));
    EXPECT_EQ((Shorts{1, 2, 3, 4}), All(source));
}

TEST(AudioBuffer, MixWithGains) {
    ZAudioBuffer2 source;
    Add(source, kMono, {1024, 1024});
    ZAudioBuffer2 buffer;
    Add(buffer, kMono, {1000, 1000});
    EXPECT_EQ(S_FALSE, buffer.Mix(&source, {0.0, 1.0}, {}, {}));
    EXPECT_EQ(S_FALSE, buffer.Mix(&source, {-1.0, 0.0}, {}, {}));
    EXPECT_EQ(S_OK, buffer.Mix(&source, {0.5, 0.0}, {0.25, 0.0}, {}));
    EXPECT_EQ((Shorts{762, 762}), All(buffer));
    // A step of the destination of -1 or below becomes the source's, turned.
    ZAudioBuffer2 other;
    Add(other, kMono, {1000, 1000});
    EXPECT_EQ(S_OK, other.Mix(&source, {1.0, -0.5}, {1.0, -2.0}, {}));
    EXPECT_EQ((Shorts{2024, 2012}), All(other));
    ZAudioBuffer2 slower;
    Add(slower, {1, 44100, 16, 0}, {1, 1});
    EXPECT_EQ(S_FALSE, slower.Mix(&source, {}, {}, {}));
    EXPECT_EQ((Shorts{1, 1}), All(slower));
}

}    // namespace
}    // namespace zck
