// Sound between frames: adding, mixing, copying.
#include <array>
#include <cmath>
#include <limits>
#include <thread>

#include "tests/frames/object/audio_fixture.h"

namespace zck::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct AddCase {
    const char *name;
    int32_t sourcePos, destPos, count;
    HRESULT status;
    Shorts samples;    // of 100, 200, 300, 400 with 1, 2 added
    int32_t sourceEnd, destEnd;
};

TEST_F(AudioTest, AddAndItsPositions) {
    const Shorts own = {100, 200, 300, 400};
    const AddCase cases[] = {
        {"all", 0, 0, -1, S_OK, {101, 202, 300, 400}, 2, -1},
        {"one", 0, 1, 1, S_OK, {100, 201, 300, 400}, 1, -1},
        {"cut at the end", 0, 3, -1, S_OK, {100, 200, 300, 401}, 1, -1},
        {"from the second", 1, 0, 9, S_OK, {102, 200, 300, 400}, 2, 1},
        {"none", 0, 0, 0, S_FALSE, own, 0, 0},
        {"behind the source", 2, 0, -1, S_FALSE, own, 2, 0},
        {"behind the end", 0, 4, -1, S_FALSE, own, 0, 4},
        {"what this operation gives back", -1, 0, -1, S_FALSE, own, -1, 0},
        {"of either", 0, -1, -1, S_FALSE, own, 0, -1},
        {"the last numbers", INT32_MAX, INT32_MAX, INT32_MAX, S_FALSE, own, INT32_MAX, INT32_MAX},
    };
    const auto source = Sound<int16_t>(kMono16, {1, 2});
    for (const AddCase &c : cases) {
        const auto frame = Sound(kMono16, own);
        int32_t sourcePos = c.sourcePos;
        int32_t destPos = c.destPos;
        EXPECT_EQ(c.status, frame->ZFAudioAdd(source.get(), &sourcePos, &destPos, c.count, 0, 0, 0)) << c.name;
        EXPECT_EQ(c.samples, SamplesOf<int16_t>(frame.get())) << c.name;
        EXPECT_EQ(c.sourceEnd, sourcePos) << c.name;
        EXPECT_EQ(c.destEnd, destPos) << c.name;
    }
}

TEST_F(AudioTest, AddTestsEachPositionAgainstTheOtherFrame) {
    // The source ends at its second sample, but -1 comes only where this frame ends.
    const auto shorter = Sound<int16_t>(kMono16, {1, 2});
    const auto longer = Sound<int16_t>(kMono16, {1, 2, 3, 4, 5, 6});
    const auto frame = Sound<int16_t>(kMono16, {0, 0, 0, 0});
    int32_t sourcePos = 0;
    int32_t destPos = 0;
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(shorter.get(), &sourcePos, &destPos, -1, 0, 0, 0));
    EXPECT_EQ(2, sourcePos);
    EXPECT_EQ(-1, destPos);
    sourcePos = destPos = 0;
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(longer.get(), &sourcePos, &destPos, -1, 0, 0, 0));
    EXPECT_EQ(-1, sourcePos);
    EXPECT_EQ(4, destPos);
}

TEST_F(AudioTest, AddSaturatesAndMakesFormsAgree) {
    const auto source = Sound<float>({1, 48000, -32, 0}, {0.5F, -1.0F, 0.25F});
    const auto frame = Sound<int16_t>(kStereo16, {20000, 1, -1000, 2, 0, 3});
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(source.get(), nullptr, nullptr, -1, 0, 0, 0));
    EXPECT_EQ((Shorts{32767, 1, -32768, 2, 8192, 3}), SamplesOf<int16_t>(frame.get()));
    const auto floats = Sound<float>({2, 48000, -32, 0}, {0.5F, 0.5F});
    ASSERT_EQ(S_OK, floats->ZFAudioAdd(Sound<int16_t>(kStereo16, {-16384, 32767}).get(), nullptr, nullptr, -1, 0, 0, 0));
    EXPECT_EQ((Floats{0.0F, 0.5F + 32767.0F / 32768}), SamplesOf<float>(floats.get()));
}

TEST_F(AudioTest, AddWithGainAndFade) {
    const auto source = Sound<int16_t>(kMono16, Shorts(4, 1024));
    const auto frame = Sound<int16_t>(kMono16, Shorts(4, 4096));
    // Constant: 0.5 of 1024 parts.
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(source.get(), nullptr, nullptr, -1, 20 * std::log10(0.5), 20 * std::log10(0.5), 0));
    EXPECT_EQ((Shorts(4, 4608)), SamplesOf<int16_t>(frame.get()));
    // From 1 to 0 in four steps; the frame rises from 1.25 by as much.
    const auto faded = Sound<int16_t>(kMono16, Shorts(4, 4096));
    ASSERT_EQ(S_OK, faded->ZFAudioAdd(source.get(), nullptr, nullptr, -1, 0, -kInfinity, 1));
    EXPECT_EQ((Shorts{1024 + 5120, 768 + 6144, 512 + 7168, 256 + 8192}), SamplesOf<int16_t>(faded.get()));
}

TEST_F(AudioTest, AddFromNothingMixesNothing) {
    const auto frame = Sound<int32_t>({1, 48000, 32, 0}, {16777217, 5});
    const auto source = Sound<int32_t>({1, 48000, 32, 0}, {1 << 30, 1 << 30});
    int32_t sourcePos = 0;
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(source.get(), &sourcePos, nullptr, 1, -kInfinity, 0, 1));
    // The one sample is written back all the same, through a float.
    EXPECT_EQ((Ints{16777216, 5}), SamplesOf<int32_t>(frame.get()));
    EXPECT_EQ(1, sourcePos);
}

TEST_F(AudioTest, FadeLeavesChannelsThatTheSourceLacks) {
    const auto frame = Sound<int16_t>(kStereo16, {1024, 1024, 1024, 1024});
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(Sound<int16_t>(kMono16, {0, 0}).get(), nullptr, nullptr, -1, 0, -kInfinity, 1));
    EXPECT_EQ((Shorts{1536, 1024, 2048, 1024}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, AddIntoAFrameWithoutSound) {
    const auto source = Sound<int16_t>({2, 48000, 16, 3}, {1, 2, 3, 4});
    const auto frame = Empty();
    int32_t destPos = 2;
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(source.get(), nullptr, &destPos, 1, 0, 0, 0));
    EXPECT_EQ((Shorts{0, 0, 0, 0, 1, 2}), SamplesOf<int16_t>(frame.get()));
    EXPECT_TRUE(SameRecord({2, 48000, 16, 3}, Record(frame)));
    EXPECT_EQ(2, Levels(frame).audOriginal.nValidChannels);
    EXPECT_EQ(-1, destPos);
    // A record alone is replaced, but its rate counts.
    Z_AUD_PROPS record = {1, 44100, -32, 0};
    const auto other = Empty();
    ASSERT_EQ(S_OK, other->ZFAudioSamplesSet(&record, 0));
    EXPECT_EQ(kVfwEInvalidMediaType, other->ZFAudioAdd(source.get(), nullptr, nullptr, -1, 0, 0, 0));
    record.nSamplesPerSec = 48000;
    ASSERT_EQ(S_OK, other->ZFAudioSamplesSet(&record, 0));
    EXPECT_EQ(S_OK, other->ZFAudioAdd(source.get(), nullptr, nullptr, -1, 0, 0, 0));
    EXPECT_EQ(16, Record(other).nBitsPerSample);
    int32_t farAway = INT32_MAX;
    EXPECT_EQ(E_OUTOFMEMORY, Empty()->ZFAudioAdd(source.get(), nullptr, &farAway, -1, 0, 0, 0));
}

TEST_F(AudioTest, AddMeasuresTheWholeFrame) {
    const auto frame = Sound<int16_t>(kMono16, {0, 0});
    const Z_AUDIO_LOUDNESS before = Levels(frame).audOriginal;
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(Sound<int16_t>(kMono16, {32767}).get(), nullptr, nullptr, -1, 0, 0, 0));
    EXPECT_EQ(0.0F, Levels(frame).audOutput.arrRMS[0]);
    EXPECT_EQ(before.arrRMS[0], Levels(frame).audOriginal.arrRMS[0]);
}

TEST_F(AudioTest, AddAnswersForBadArguments) {
    const auto frame = Sound<int16_t>(kMono16, {1});
    EXPECT_EQ(S_FALSE, frame->ZFAudioAdd(nullptr, nullptr, nullptr, -1, 0, 0, 0));
    EXPECT_EQ(S_FALSE, frame->ZFAudioAdd(Empty().get(), nullptr, nullptr, -1, 0, 0, 0));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioAdd(frame.get(), nullptr, nullptr, -1, kNaN, 0, 0));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioAdd(frame.get(), nullptr, nullptr, -1, 0, kNaN, 0));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioMix(frame.get(), kNaN, 0, 0, nullptr));
    EXPECT_EQ((Shorts{1}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, AFrameMayBeAddedToItself) {
    const auto frame = Sound<int16_t>(kMono16, {1, 2, 3});
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(frame.get(), nullptr, nullptr, -1, 0, 0, 0));
    EXPECT_EQ((Shorts{2, 4, 6}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, AddGoesOnAcrossBlocks) {
    // A ramp takes its values from the sample's place, however long the sound is.
    constexpr int32_t kCount = 5000;
    const auto frame = Sound<float>({1, 48000, -32, 0}, Floats(kCount));
    const auto source = Sound<float>({1, 48000, -32, 0}, Floats(kCount, 1.0F));
    ASSERT_EQ(S_OK, frame->ZFAudioAdd(source.get(), nullptr, nullptr, -1, 0, -kInfinity, 0));
    const Floats samples = SamplesOf<float>(frame.get());
    for (int32_t i = 0; i < kCount; ++i)
        ASSERT_EQ(static_cast<float>(1.0 + i * (-1.0 / kCount)), samples[static_cast<size_t>(i)]) << i;
}

TEST_F(AudioTest, MixOfSilence) {
    const auto source = Sound<int16_t>(kMono16, {1000, 2000});
    // Without sound the source's comes, with the gain.
    const auto empty = Empty();
    ASSERT_EQ(S_OK, empty->ZFAudioMix(source.get(), 20 * std::log10(0.5), 20 * std::log10(0.5), 0, nullptr));
    EXPECT_EQ((Shorts{500, 1000}), SamplesOf<int16_t>(empty.get()));
    EXPECT_EQ(kVfwEInvalidMediaType, Empty()->ZFAudioMix(Empty().get(), 0, 0, 0, nullptr));
    EXPECT_EQ(S_FALSE, source->ZFAudioMix(nullptr, 0, 0, 0, nullptr));
    // A source without sound: nothing, or a fade to what is left of 1.
    EXPECT_EQ(S_FALSE, source->ZFAudioMix(Empty().get(), -6, -6, 0, nullptr));
    ASSERT_EQ(S_OK, source->ZFAudioMix(Empty().get(), 20 * std::log10(0.75), 20 * std::log10(0.75), 1, nullptr));
    EXPECT_EQ((Shorts{250, 500}), SamplesOf<int16_t>(source.get()));
    ASSERT_EQ(S_OK, source->ZFAudioMix(Empty().get(), 6, 6, 1, nullptr));
    EXPECT_EQ((Shorts{0, 0}), SamplesOf<int16_t>(source.get()));
}

TEST_F(AudioTest, MixAddsFromTheStart) {
    const auto frame = Sound<int16_t>(kMono16, {10, 20, 30});
    const Bstr key(ZCK_TEXT("camera"));
    ASSERT_EQ(S_OK, frame->ZFAudioMix(Sound<int16_t>(kMono16, {1, 2}).get(), 0, 0, 0, key.get()));
    EXPECT_EQ((Shorts{11, 22, 30}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, CopyTo) {
    const auto frame = Sound<int16_t>({2, 48000, 16, 9}, {1, 10, 2, 20});
    const auto target = Sound<int16_t>({1, 8000, 16, 0}, {5});
    EXPECT_EQ(S_FALSE, frame->ZFAudioCopyTo(nullptr, nullptr));
    ASSERT_EQ(S_OK, frame->ZFAudioCopyTo(nullptr, target.get()));
    EXPECT_EQ((Shorts{1, 10, 2, 20}), SamplesOf<int16_t>(target.get()));
    EXPECT_TRUE(SameRecord({2, 48000, 16, 9}, Record(target)));
    const Bstr map(ZCK_TEXT("1,0,7"));
    ASSERT_EQ(S_OK, frame->ZFAudioCopyTo(map.get(), target.get()));
    EXPECT_EQ((Shorts{10, 1, 0, 20, 2, 0}), SamplesOf<int16_t>(target.get()));
    EXPECT_TRUE(SameRecord({3, 48000, 16, 9}, Record(target)));
    EXPECT_EQ(3, Levels(target).audOutput.nValidChannels);
    // To itself: with a map as to any other, without one nothing.
    ASSERT_EQ(S_OK, frame->ZFAudioCopyTo(nullptr, frame.get()));
    EXPECT_EQ((Shorts{1, 10, 2, 20}), SamplesOf<int16_t>(frame.get()));
    ASSERT_EQ(S_OK, frame->ZFAudioCopyTo(map.get(), frame.get()));
    EXPECT_EQ((Shorts{10, 1, 0, 20, 2, 0}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, CopyToOfNoSound) {
    const auto target = Sound<int16_t>(kMono16, {5});
    EXPECT_EQ(kVfwEInvalidMediaType, Empty()->ZFAudioCopyTo(nullptr, target.get()));
    const Bstr none(ZCK_TEXT("none"));
    EXPECT_EQ(E_INVALIDARG, target->ZFAudioCopyTo(none.get(), target.get()));
    EXPECT_EQ((Shorts{5}), SamplesOf<int16_t>(target.get()));
    Z_AUD_PROPS record = {4, 96000, 24, 0};
    const auto silent = Empty();
    ASSERT_EQ(S_OK, silent->ZFAudioSamplesSet(&record, 0));
    ASSERT_EQ(S_OK, silent->ZFAudioCopyTo(nullptr, target.get()));
    EXPECT_TRUE(SameRecord(record, Record(target)));
    EXPECT_TRUE(SamplesOf<uint8_t>(target.get()).empty());
}

// Each copies what it needs of the other before it takes its own lock.
TEST_F(AudioTest, FramesAddEachOtherOnTwoThreads) {
    const std::array pair = {Sound<int16_t>(kStereo16, Shorts(2000, 3)), Sound<int16_t>(kStereo16, Shorts(2000, 5))};
    const auto work = [&pair](size_t own) {
        const Bstr map(ZCK_TEXT("1,0"));
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(S_OK, pair[own]->ZFAudioAdd(pair[1 - own].get(), nullptr, nullptr, -1, -6, -6, 0));
            EXPECT_EQ(S_OK, pair[own]->ZFAudioMix(pair[1 - own].get(), -6, -6, 1, nullptr));
            EXPECT_EQ(S_OK, pair[own]->ZFAudioCopyTo(map.get(), pair[1 - own].get()));
        }
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    for (const auto &frame : pair) EXPECT_EQ(2000U, SamplesOf<int16_t>(frame.get()).size());
}

}    // namespace
}    // namespace zck::test
