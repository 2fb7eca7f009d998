// Another record of the frame's sound: labels, maps, mixing down, other bits.
#include "tests/frames/object/audio_fixture.h"

namespace zck::test {
namespace {

struct RecordCase {
    const char *name;
    Z_AUD_PROPS asked;
    TextView map;
    Z_AUD_PROPS set;    // of a stereo frame of 16 bits
    Shorts samples;     // of 1, 10, 2, 20
};

TEST_F(AudioTest, RecordsAndMaps) {
    const Shorts own = {1, 10, 2, 20};
    const RecordCase cases[] = {
        {"nothing", {}, {}, {2, 48000, 16, 0}, own},
        {"another rate is a label", {2, 44100, 16, 7}, {}, {2, 44100, 16, 7}, own},
        {"floats of as many channels are one too", {2, 44100, -32, 7}, {}, {2, 44100, 16, 7}, own},
        {"a negative count drops the sound", {-1, 0, 0, 0}, {}, {2, 48000, 16, 0}, {}},
        {"the channels change places", {}, ZCK_TEXT("1,0"), {2, 48000, 16, 0}, {10, 1, 20, 2}},
        {"two copies of the left one", {}, ZCK_TEXT("0,0"), {2, 48000, 16, 0}, {1, 1, 2, 2}},
        {"a channel that is not there is silent", {}, ZCK_TEXT("5"), {1, 48000, 16, 0}, {0, 0}},
        {"negative too", {}, ZCK_TEXT("0;-1"), {2, 48000, 16, 0}, {1, 0, 2, 0}},
        {"numbers end at the first foreign sign",
         {},
         ZCK_TEXT("1.5 1-0, - +1"),
         {4, 48000, 16, 0},
         {10, 10, 1, 10, 20, 20, 2, 20}},
        {"a map without a number", {}, ZCK_TEXT("left"), {2, 48000, 16, 0}, own},
        {"a poor record with a map is the frame's", {9, 0, 0, 0}, ZCK_TEXT("1"), {1, 48000, 16, 0}, {10, 20}},
        {"mono", {1, 48000, 16, 0}, {}, {1, 48000, 16, 0}, {11, 22}},
        {"three channels", {3, 48000, 16, 0}, {}, {3, 48000, 16, 0}, {1, 10, 0, 2, 20, 0}},
        {"a map and a record", {1, 48000, 16, 0}, ZCK_TEXT("0 1 1"), {1, 48000, 16, 0}, {21, 42}},
    };
    for (const RecordCase &c : cases) {
        const auto frame = Sound(kStereo16, own);
        EXPECT_EQ(S_OK, RecordSet(frame, c.asked, c.map)) << c.name;
        EXPECT_TRUE(SameRecord(c.set, Record(frame))) << c.name;
        EXPECT_EQ(c.samples, SamplesOf<int16_t>(frame.get())) << c.name;
    }
}

TEST_F(AudioTest, FloatsComeWithAMap) {
    const auto frame = Sound<int16_t>(kStereo16, {16384, -32768, 0, 1});
    ASSERT_EQ(S_OK, RecordSet(frame, {2, 48000, -32, 0}, ZCK_TEXT("0,1")));
    EXPECT_EQ((Floats{0.5F, -1.0F, 0.0F, 1.0F / 32768}), SamplesOf<float>(frame.get()));
    EXPECT_EQ(-32, Record(frame).nBitsPerSample);
    ASSERT_EQ(S_OK, RecordSet(frame, {2, 48000, 32, 0}, {}));
    EXPECT_EQ((Ints{0x40000000, INT32_MIN, 0, 65536}), SamplesOf<int32_t>(frame.get()));
    ASSERT_EQ(S_OK, RecordSet(frame, {2, 48000, 24, 0}, {}));
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 0x40, 0, 0, 0x80, 0, 0, 0, 0, 1, 0}), SamplesOf<uint8_t>(frame.get()));
    ASSERT_EQ(S_OK, RecordSet(frame, {2, 48000, 16, 0}, {}));
    EXPECT_EQ((Shorts{16384, -32768, 0, 1}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, BitsAreCutOffOnTheWayTo16) {
    const auto wide = Sound<int32_t>({1, 48000, 32, 0}, {0x12345678, -1, -65536});
    ASSERT_EQ(S_OK, RecordSet(wide, kMono16, {}));
    EXPECT_EQ((Shorts{0x1234, -1, -1}), SamplesOf<int16_t>(wide.get()));
    const auto floats = Sound<float>({1, 48000, -32, 0}, {1.0F, -1.5F, 0.5F / 32768, 1.5F / 32768, 2.5F / 32768});
    ASSERT_EQ(S_OK, RecordSet(floats, kMono16, {}));
    EXPECT_EQ((Shorts{32767, -32768, 0, 2, 2}), SamplesOf<int16_t>(floats.get()));
}

TEST_F(AudioTest, SixChannelsIntoTwo) {
    // Channel 2 and 3 go into both, 4 into the first, 5 into the second; sums saturate.
    const auto frame = Sound<int16_t>({6, 48000, 16, 0}, {1, 2, 10, 20, 100, 1000, 32000, 0, 700, 60, 8, 32767});
    ASSERT_EQ(S_OK, RecordSet(frame, kStereo16, {}));
    EXPECT_EQ((Shorts{131, 1032, 32767, 32767}), SamplesOf<int16_t>(frame.get()));
    EXPECT_EQ(2, Levels(frame).audOutput.nValidChannels);
}

TEST_F(AudioTest, ConversionsMeasureAndKeepWhatTheHostSet) {
    const auto frame = Sound<int16_t>(kStereo16, {100, 200, 300, 400});
    Z_AV_PROPS props = Props(frame);
    props.ancData.audOutput.arrPeaks_TPL[1] = 5.0F;
    props.ancData.audOutput.nValidTracks = 4;
    props.ancData.audOutput.arrRMS[31] = 9.0F;
    ASSERT_EQ(S_OK, As<IZFrame_I>(frame)->FrameAVPropsSet(&props));
    ASSERT_EQ(S_OK, RecordSet(frame, kMono16, {}));
    const Z_ANC_DATA levels = Levels(frame);
    EXPECT_EQ(1, levels.audOutput.nValidChannels);
    EXPECT_EQ(5.0F, levels.audOutput.arrPeaks_TPL[1]);
    EXPECT_EQ(4, levels.audOriginal.nValidTracks);
    EXPECT_EQ(0.0F, levels.audOutput.arrRMS[1]);
    EXPECT_EQ(0.0F, levels.audOutput.arrRMS[31]);
}

TEST_F(AudioTest, WhatCannotBeConvertedKeepsItsSamples) {
    const auto frame = Sound<int16_t>(kStereo16, {1, 2, 3, 4});
    for (const int32_t bits : {8, 33, -16, -1, INT32_MIN}) {
        EXPECT_EQ(kVfwEInvalidMediaType, RecordSet(frame, {1, 96000, bits, 3}, {})) << bits;
        EXPECT_EQ((Shorts{1, 2, 3, 4}), SamplesOf<int16_t>(frame.get())) << bits;
        // Rate and split bits are labels, and have been set by then.
        EXPECT_TRUE(SameRecord({2, 96000, 16, 3}, Record(frame))) << bits;
    }
    EXPECT_EQ(E_OUTOFMEMORY, RecordSet(frame, {2000000000, 48000, 16, 0}, {}));
    EXPECT_EQ(E_INVALIDARG, RecordSet(frame, {1, 48000, 16, 0}, ZCK_TEXT("none")));
    EXPECT_EQ((Shorts{1, 2, 3, 4}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, AFrameWithoutSoundTakesTheRecord) {
    const auto frame = Empty();
    EXPECT_EQ(S_OK, RecordSet(frame, {6, 96000, 8, 1}, {}));
    EXPECT_TRUE(SameRecord({6, 96000, 8, 1}, Record(frame)));
    // A map alone makes a record of what is there.
    EXPECT_EQ(S_OK, RecordSet(frame, {}, ZCK_TEXT("1,2")));
    EXPECT_TRUE(SameRecord({2, 96000, 8, 1}, Record(frame)));
}

TEST_F(AudioTest, TheStoreHoldsTheResult) {
    const auto frame = Sound<int16_t>(kStereo16, {1, 10, 2, 20});
    ASSERT_EQ(S_OK, RecordSet(frame, {}, ZCK_TEXT("1,0")));
    EXPECT_EQ(S_OK, frame->ZFAudioChannelsCommit());
    EXPECT_EQ((Shorts{10, 1, 20, 2}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, ChannelsThatAConversionAddedAreSilent) {
    const auto frame = Sound<int16_t>(kStereo16, {1, 10, 2, 20});
    ASSERT_EQ(S_OK, RecordSet(frame, {4, 48000, 16, 0}, {}));
    EXPECT_EQ(0x80040203U, static_cast<uint32_t>(frame->ZFAudioChannelsCommit()));    // as yet they have no length
    int32_t size = 0;
    int64_t address = 0;
    ASSERT_EQ(S_OK, frame->ZFAudioChannelGet(3, 0, &size, &address));
    ASSERT_EQ(4, size);
    At<int16_t>(address)[1] = 5;
    EXPECT_EQ(S_OK, frame->ZFAudioChannelsCommit());
    EXPECT_EQ((Shorts{1, 10, 0, 0, 2, 20, 0, 5}), SamplesOf<int16_t>(frame.get()));
}

}    // namespace
}    // namespace zck::test
