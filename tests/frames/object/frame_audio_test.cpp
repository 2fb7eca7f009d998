// The frame's own sound: setting it, its channels, gain, levels.
#include <cmath>
#include <cstring>
#include <limits>

#include "tests/frames/object/audio_fixture.h"

namespace zck::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr HRESULT kVfwEEnumOutOfSync = static_cast<HRESULT>(0x80040203);

Bytes ChannelOf(const ComPtr<IZFFrame> &frame, int32_t index, int64_t grow = 0) {
    Bytes bytes;
    EXPECT_EQ(S_OK, frame->ZFAudioChannelGet(index, grow, &bytes.size, &bytes.address));
    return bytes;
}

TEST_F(AudioTest, SettingMeasuresAndClearsTheLevels) {
    const auto frame = Empty();
    Z_AV_PROPS props = {};
    props.ancData.eFlags = eZAF_AL_Valid;
    props.ancData.audOutput.arrEBUMode_M[3] = 7.0F;
    ASSERT_EQ(S_OK, As<IZFrame_I>(frame)->FrameAVPropsSet(&props));
    const Shorts samples = {32767, -32767, 0, 0};
    Z_AUD_PROPS record = kStereo16;
    ASSERT_EQ(S_OK, frame->ZFAudioSet(&record, 8, AddressIn(samples.data())));
    EXPECT_EQ(samples, SamplesOf<int16_t>(frame.get()));
    const Z_ANC_DATA levels = Levels(frame);
    EXPECT_EQ(eZAF_None, levels.eFlags);
    EXPECT_EQ(0.0F, levels.audOutput.arrEBUMode_M[3]);
    EXPECT_EQ(2, levels.audOutput.nValidChannels);
    // One of two samples at full scale: the mean square is a half, and twice that is 0 dB.
    EXPECT_EQ(0.0F, levels.audOutput.arrRMS[0]);
    EXPECT_EQ(0.0F, levels.audOutput.arrRMS[1]);
    EXPECT_EQ(0, std::memcmp(&levels.audOutput, &levels.audOriginal, sizeof(levels.audOutput)));
}

TEST_F(AudioTest, SettingWithoutDataIsSilentAndNotMeasured) {
    const auto frame = Sound<int16_t>(kStereo16, {1, 2, 3, 4});
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioSet(nullptr, -1, 0));
    EXPECT_EQ((Shorts{1, 2, 3, 4}), SamplesOf<int16_t>(frame.get()));
    // A record that is not valid leaves the old one.
    Z_AUD_PROPS poor = {2, 0, 16, 0};
    EXPECT_EQ(S_OK, frame->ZFAudioSet(&poor, 4, 0));
    EXPECT_TRUE(SameRecord(kStereo16, Record(frame)));
    EXPECT_EQ((Shorts{0, 0}), SamplesOf<int16_t>(frame.get()));
    EXPECT_EQ(0, Levels(frame).audOutput.nValidChannels);
    EXPECT_EQ(S_OK, frame->ZFAudioSet(nullptr, 0, 0));
    EXPECT_TRUE(SamplesOf<uint8_t>(frame.get()).empty());
}

TEST_F(AudioTest, BytesOfTheFrameItselfMayBeSet) {
    const auto frame = Sound<int16_t>(kMono16, {1, 2, 3, 4, 5, 6});
    int32_t size = 0;
    int64_t address = 0;
    ASSERT_EQ(S_OK, frame->ZFAudioGetBytes(&size, &address));
    EXPECT_EQ(S_OK, frame->ZFAudioSet(nullptr, 6, address + 4));
    EXPECT_EQ((Shorts{3, 4, 5}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, SilenceIsMinusInfinity) {
    const auto frame = Sound<int16_t>(kMono16, Shorts(100));
    EXPECT_EQ(-kInfinity, Levels(frame).audOutput.arrRMS[0]);
    EXPECT_EQ(-kInfinity, Levels(frame).audOutput.arrVUMeter[0]);
    EXPECT_EQ(-kInfinity, Levels(frame).audOutput.arrVUPeaks[0]);
}

TEST_F(AudioTest, SamplesSet) {
    const auto frame = Empty();
    Z_AUD_PROPS record = {2, 48000, 24, 3};
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioSamplesSet(nullptr, 1));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioSamplesSet(&record, -1));
    EXPECT_EQ(S_OK, frame->ZFAudioSamplesSet(&record, 10));
    EXPECT_EQ(std::vector<uint8_t>(60), SamplesOf<uint8_t>(frame.get()));
    EXPECT_TRUE(SameRecord(record, Record(frame)));
    // What no block can hold changes nothing.
    for (Z_AUD_PROPS huge : {Z_AUD_PROPS{2000000000, 1, 32, 0}, Z_AUD_PROPS{INT32_MAX, 1, INT32_MIN, 0}}) {
        EXPECT_EQ(E_OUTOFMEMORY, frame->ZFAudioSamplesSet(&huge, INT32_MAX));
        EXPECT_TRUE(SameRecord(record, Record(frame)));
        EXPECT_EQ(60u, SamplesOf<uint8_t>(frame.get()).size());
    }
    EXPECT_EQ(S_OK, frame->ZFAudioSamplesSet(&record, 0));
    EXPECT_TRUE(SamplesOf<uint8_t>(frame.get()).empty());
}

TEST_F(AudioTest, BitsWithoutAWorkingFormAreCarriedNotSplit) {
    for (const int32_t bits : {1, 8, 33, 64, -1, -16, -24, -33, -64, INT32_MIN}) {
        const Z_AUD_PROPS record = {1, 48000, bits, 0};
        const std::vector<uint8_t> bytes = Pattern(64);
        const auto frame = Sound(record, bytes);
        EXPECT_EQ(bytes, SamplesOf<uint8_t>(frame.get())) << bits;
        EXPECT_EQ(0, Levels(frame).audOutput.nValidChannels) << bits;
        EXPECT_EQ(0.0F, Levels(frame).audOutput.arrRMS[0]) << bits;
        const HRESULT split = bits == INT32_MIN ? S_FALSE : kVfwEInvalidMediaType;
        EXPECT_EQ(split, Gain(frame, {}, 6.0, 6.0)) << bits;
        EXPECT_EQ(kVfwEInvalidMediaType, RecordSet(frame, {1, 48000, 16, 0}, {})) << bits;
        EXPECT_EQ(kVfwEInvalidMediaType, frame->ZFAudioChannelGet(0, 0, nullptr, nullptr)) << bits;
        const auto other = Sound<int16_t>(kMono16, {1, 2});
        EXPECT_EQ(split, other->ZFAudioAdd(frame.get(), nullptr, nullptr, -1, 0, 0, 0)) << bits;
        EXPECT_EQ(bytes, SamplesOf<uint8_t>(frame.get())) << bits;
        EXPECT_TRUE(SameRecord(record, Record(frame))) << bits;
    }
}

TEST_F(AudioTest, ChannelsAreGivenGrownAndCommitted) {
    const auto frame = Sound<int16_t>(kStereo16, {1, 10, 2, 20, 3, 30});
    Bytes left = ChannelOf(frame, 0);
    ASSERT_EQ(6, left.size);
    EXPECT_EQ(2, reinterpret_cast<int16_t *>(left.data())[1]);
    EXPECT_EQ(30, reinterpret_cast<int16_t *>(ChannelOf(frame, 1).data())[2]);
    reinterpret_cast<int16_t *>(left.data())[1] = 77;
    const Bytes third = ChannelOf(frame, 2, 1);
    reinterpret_cast<int16_t *>(third.data())[0] = 5;
    EXPECT_EQ(S_OK, frame->ZFAudioChannelsCommit());
    EXPECT_EQ((Shorts{1, 10, 5, 77, 20, 0, 3, 30, 0}), SamplesOf<int16_t>(frame.get()));
    EXPECT_EQ(3, Record(frame).nChannels);
    EXPECT_EQ(3, Levels(frame).audOutput.nValidChannels);
    EXPECT_EQ(3, Levels(frame).audOriginal.nValidChannels);
    // The store stays filled.
    EXPECT_EQ(5, reinterpret_cast<int16_t *>(ChannelOf(frame, 2).data())[0]);
}

TEST_F(AudioTest, AChannelThatIsNotThereIsStoodInFor) {
    const auto frame = Sound<int16_t>(kStereo16, {1, 10, 2, 20});
    for (const int32_t index : {2, -1, INT32_MAX, INT32_MIN}) {
        Bytes spare = ChannelOf(frame, index);
        ASSERT_EQ(4, spare.size);
        EXPECT_EQ(std::vector<uint8_t>(4), spare.Copy());
        spare.data()[0] = 9;
    }
    EXPECT_EQ(std::vector<uint8_t>(4), ChannelOf(frame, -5, 1).Copy());
    EXPECT_EQ(S_OK, frame->ZFAudioChannelsCommit());
    EXPECT_EQ((Shorts{1, 10, 2, 20}), SamplesOf<int16_t>(frame.get()));
    // 128 is all there can be.
    EXPECT_EQ(std::vector<uint8_t>(4), ChannelOf(frame, INT32_MAX, 1).Copy());
    EXPECT_EQ(S_OK, frame->ZFAudioChannelsCommit());
    EXPECT_EQ(128, Record(frame).nChannels);
    EXPECT_EQ(32, Levels(frame).audOutput.nValidChannels);
}

TEST_F(AudioTest, ChannelsNeedSound) {
    const auto frame = Empty();
    int32_t size = -1;
    int64_t address = -1;
    EXPECT_EQ(kErrorEmpty, frame->ZFAudioChannelGet(0, 1, &size, &address));
    EXPECT_EQ(0, size);
    EXPECT_EQ(0, address);
    EXPECT_EQ(kVfwEInvalidMediaType, frame->ZFAudioChannelsCommit());
    EXPECT_EQ(S_FALSE, Sound<int16_t>(kMono16, {1})->ZFAudioChannelsCommit());
}

TEST_F(AudioTest, CommitWantsTheRecordThatWasSplit) {
    const auto frame = Sound<int16_t>(kStereo16, {1, 10, 2, 20});
    ChannelOf(frame, 0);
    Z_AV_PROPS props = Props(frame);
    props.audProps.nChannels = 1;
    ASSERT_EQ(S_OK, As<IZFrame_I>(frame)->FrameAVPropsSet(&props));
    EXPECT_EQ(kVfwEEnumOutOfSync, frame->ZFAudioChannelsCommit());
    props.audProps.nBitsPerSample = 8;
    ASSERT_EQ(S_OK, As<IZFrame_I>(frame)->FrameAVPropsSet(&props));
    EXPECT_EQ(kVfwEInvalidMediaType, frame->ZFAudioChannelsCommit());
    // As long, but of another form: two channels of two samples of 4 bytes would be needed.
    props.audProps = {1, 48000, 32, 0};
    ASSERT_EQ(S_OK, As<IZFrame_I>(frame)->FrameAVPropsSet(&props));
    EXPECT_EQ(kVfwEEnumOutOfSync, frame->ZFAudioChannelsCommit());
    EXPECT_EQ((Shorts{1, 10, 2, 20}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, CommitOf24BitAndOfAPartOfASample) {
    std::vector<uint8_t> bytes = {1, 2, 3, 4, 5, 6, 7, 8};
    const auto frame = Sound(Z_AUD_PROPS{2, 48000, 24, 0}, bytes);
    // Half of 8 bytes at 4 for 3.
    const Bytes channel = ChannelOf(frame, 0);
    ASSERT_EQ(5, channel.size);
    EXPECT_EQ(static_cast<float>(0x030201) / 8388608.0F, *reinterpret_cast<float *>(channel.data()));
    EXPECT_EQ(0, channel.data()[4]);
    EXPECT_EQ(S_OK, frame->ZFAudioChannelsCommit());
    EXPECT_EQ((std::vector<uint8_t>{1, 2, 3, 4, 5, 6}), SamplesOf<uint8_t>(frame.get()));
}

TEST_F(AudioTest, OtherSoundEmptiesTheChannels) {
    const auto frame = Sound<int16_t>(kMono16, {1, 2});
    ChannelOf(frame, 0);
    const Shorts other = {7, 8};
    ASSERT_EQ(S_OK, frame->ZFAudioSet(nullptr, 4, AddressIn(other.data())));
    EXPECT_EQ(S_FALSE, frame->ZFAudioChannelsCommit());
    EXPECT_EQ(7, *reinterpret_cast<int16_t *>(ChannelOf(frame, 0).data()));
    ASSERT_EQ(S_OK, As<IZFrame_I>(frame)->FrameAudioReset(4, AddressIn(other.data())));
    EXPECT_EQ(S_FALSE, frame->ZFAudioChannelsCommit());
}

TEST_F(AudioTest, ACommitAfterAGainWritesTheOlderSamplesBack) {
    const auto frame = Sound<int16_t>(kMono16, {1000, 2000});
    ChannelOf(frame, 0);
    ASSERT_EQ(S_OK, Gain(frame, {}, -kInfinity, -kInfinity));
    EXPECT_EQ((Shorts{0, 0}), SamplesOf<int16_t>(frame.get()));
    ASSERT_EQ(S_OK, frame->ZFAudioChannelsCommit());
    EXPECT_EQ((Shorts{1000, 2000}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, ConstantGainOfIntegers) {
    const auto frame = Sound<int16_t>(kMono16, {1000, -1000, 32767, 1, 3, -32768});
    // 6 dB is a factor of 1.99526, of 256 parts: 511.
    ASSERT_EQ(S_OK, Gain(frame, {}, 6.0, 6.0));
    EXPECT_EQ((Shorts{1996, -1996, 32767, 2, 6, -32768}), SamplesOf<int16_t>(frame.get()));
    // Halves go to the even neighbour: 128 of 256.
    const auto halves = Sound<int16_t>(kMono16, {1, 3, 5, -1, -3});
    ASSERT_EQ(S_OK, Gain(halves, {}, 20 * std::log10(0.5), 20 * std::log10(0.5)));
    EXPECT_EQ((Shorts{0, 2, 2, 0, -2}), SamplesOf<int16_t>(halves.get()));
}

TEST_F(AudioTest, GainEndsAtItsFactor) {
    const auto frame = Sound<int16_t>(kMono16, {1, -2, 1000});
    ASSERT_EQ(S_OK, Gain(frame, {}, kInfinity, kInfinity));
    // 32767 of 256 parts.
    EXPECT_EQ((Shorts{128, -256, 32767}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, RampsOfIntegersAndFloats) {
    const auto frame = Sound<int16_t>(kMono16, Shorts(4, 1000));
    ASSERT_EQ(S_OK, Gain(frame, {}, 0.0, -kInfinity));
    EXPECT_EQ((Shorts{1000, 750, 500, 250}), SamplesOf<int16_t>(frame.get()));
    const auto floats = Sound<float>({1, 48000, -32, 0}, Floats(4, 0.5F));
    ASSERT_EQ(S_OK, Gain(floats, {}, -kInfinity, 0.0));
    EXPECT_EQ((Floats{0.0F, 0.125F, 0.25F, 0.375F}), SamplesOf<float>(floats.get()));
}

TEST_F(AudioTest, GainOfMappedChannels) {
    const auto frame = Sound<int16_t>(kStereo16, {1000, 1000, 2000, 2000});
    const Z_AUDIO_LOUDNESS before = Levels(frame).audOutput;
    const double half = 20 * std::log10(0.5);
    // The same channel twice, a channel that is not there.
    ASSERT_EQ(S_OK, Gain(frame, ZCK_TEXT("1,1,9,-1"), half, half));
    EXPECT_EQ((Shorts{1000, 500, 2000, 1000}), SamplesOf<int16_t>(frame.get()));
    const Z_ANC_DATA after = Levels(frame);
    EXPECT_EQ(before.arrRMS[0], after.audOutput.arrRMS[0]);
    EXPECT_NEAR(before.arrRMS[1] - 6.0206, after.audOutput.arrRMS[1], 0.001);
    EXPECT_EQ(before.arrRMS[1], after.audOriginal.arrRMS[1]);
    // A text without a number chooses no channel.
    ASSERT_EQ(S_OK, Gain(frame, ZCK_TEXT("all"), half, half));
    EXPECT_EQ((Shorts{1000, 500, 2000, 1000}), SamplesOf<int16_t>(frame.get()));
}

TEST_F(AudioTest, MappedGainOfWhatWasNotMeasuredDividesTheLevels) {
    const auto frame = Empty();
    Z_AUD_PROPS record = kStereo16;
    ASSERT_EQ(S_OK, frame->ZFAudioSamplesSet(&record, 2));
    int32_t size = 0;
    int64_t address = 0;
    ASSERT_EQ(S_OK, frame->ZFAudioGetBytes(&size, &address));
    std::fill_n(At<int16_t>(address), 4, int16_t{1000});
    ASSERT_EQ(S_OK, Gain(frame, ZCK_TEXT("1"), 6.0, 6.0));
    const Z_ANC_DATA levels = Levels(frame);
    EXPECT_EQ(0.0F, levels.audOutput.arrRMS[0]);
    EXPECT_LT(levels.audOutput.arrRMS[1], -20.0F);
    EXPECT_LT(levels.audOriginal.arrRMS[0], -20.0F);
    EXPECT_EQ(0.0F, levels.audOriginal.arrRMS[1]);
    EXPECT_EQ(2, levels.audOutput.nValidChannels);
    EXPECT_EQ(2, levels.audOriginal.nValidChannels);
}

TEST_F(AudioTest, NoGainMeasuresOnce) {
    const auto frame = Empty();
    Z_AUD_PROPS record = kMono16;
    EXPECT_EQ(S_FALSE, Gain(frame, {}, 0.0, 0.0));
    ASSERT_EQ(S_OK, frame->ZFAudioSamplesSet(&record, 2));
    EXPECT_EQ(S_OK, Gain(frame, {}, 0.0, 0.0));
    EXPECT_EQ(1, Levels(frame).audOutput.nValidChannels);
    EXPECT_EQ(-kInfinity, Levels(frame).audOriginal.arrRMS[0]);
    // Measured is what is not all zero, be it the host's flag alone.
    Z_AV_PROPS props = Props(frame);
    props.ancData = {};
    props.ancData.eFlags = eZAF_AL_Valid;
    ASSERT_EQ(S_OK, As<IZFrame_I>(frame)->FrameAVPropsSet(&props));
    EXPECT_EQ(S_OK, Gain(frame, {}, 0.0, 0.0));
    EXPECT_EQ(0, Levels(frame).audOutput.nValidChannels);
}

TEST_F(AudioTest, GainRefusesNotANumberAndWantsAWholeSample) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto frame = Sound<int16_t>(kMono16, {1000});
    EXPECT_EQ(E_INVALIDARG, Gain(frame, {}, nan, 0.0));
    EXPECT_EQ(E_INVALIDARG, Gain(frame, {}, 0.0, nan));
    EXPECT_EQ((Shorts{1000}), SamplesOf<int16_t>(frame.get()));
    const auto part = Sound<uint8_t>(kStereo16, {1, 2, 3});
    EXPECT_EQ(S_FALSE, Gain(part, {}, 6.0, 6.0));
}

TEST_F(AudioTest, GainRoundsAllOf32BitIntegersTo24) {
    const auto frame = Sound<int32_t>({2, 48000, 32, 0}, {2147483647, 16777217, INT32_MIN, 5});
    ASSERT_EQ(S_OK, Gain(frame, ZCK_TEXT("7"), 6.0, 6.0));
    EXPECT_EQ((Ints{2147483647, 16777216, INT32_MIN, 5}), SamplesOf<int32_t>(frame.get()));
}

TEST_F(AudioTest, GainLeavesWhatIsBehindTheLastSample) {
    const auto frame = Sound<uint8_t>(kStereo16, {0, 4, 0, 4, 77, 78, 79});
    ASSERT_EQ(S_OK, Gain(frame, {}, -kInfinity, -kInfinity));
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 0, 0, 77, 78, 79}), SamplesOf<uint8_t>(frame.get()));
}

TEST_F(AudioTest, MoreChannelsThanTheLevelsHave) {
    for (const int32_t channels : {32, 33, 128, 200}) {
        const Shorts samples(static_cast<size_t>(channels) * 2, int16_t{1000});
        const auto frame = Sound(Z_AUD_PROPS{channels, 48000, 16, 0}, samples);
        EXPECT_EQ(32, Levels(frame).audOutput.nValidChannels);
        EXPECT_EQ(0.0F, Levels(frame).audOutput.arrEBUMode_M[0]);
        ASSERT_EQ(S_OK, Gain(frame, {}, -kInfinity, -kInfinity));
        // Channels that are not split stay.
        Shorts expected = samples;
        for (size_t i = 0; i < expected.size(); ++i) {
            if (i % static_cast<size_t>(channels) < 128) expected[i] = 0;
        }
        EXPECT_EQ(expected, SamplesOf<int16_t>(frame.get())) << channels;
    }
    const auto absurd = Sound<int16_t>({2000000000, 48000, 16, 0}, {1, 2, 3, 4});
    EXPECT_EQ(S_FALSE, Gain(absurd, {}, 6.0, 6.0));
    EXPECT_EQ(0, Levels(absurd).audOutput.nValidChannels);
}

TEST_F(AudioTest, OneFilterGoesThroughAllChannels) {
    Floats samples(4000);
    for (size_t i = 0; i < samples.size(); i += 2) samples[i] = 0.5F;
    const auto frame = Sound(Z_AUD_PROPS{2, 8000, -32, 0}, samples);
    const Z_AUDIO_LOUDNESS levels = Levels(frame).audOutput;
    // The silent channel comes second and still hears the first.
    EXPECT_EQ(-kInfinity, levels.arrRMS[1]);
    EXPECT_GT(levels.arrVUMeter[1], levels.arrVUMeter[0]);
}

TEST_F(AudioTest, FactoryFramesAreMeasured) {
    Z_AV_PROPS props = {};
    props.vidProps = test::Record(eZFCC_UYVY, 64, 48);
    props.audProps = kMono16;
    const Shorts samples = {32767, 0};
    ComPtr<IZFFrame> frame;
    ASSERT_EQ(S_OK, As<IZFFactory>(m_factory)->ZFFrameCreate(&props, 0, 4, AddressIn(samples.data()), frame.Put()));
    EXPECT_EQ(samples, SamplesOf<int16_t>(frame.get()));
    EXPECT_EQ(1, Levels(frame).audOutput.nValidChannels);
}

}    // namespace
}    // namespace zck::test
