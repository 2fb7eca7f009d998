// The parts that frames make their sound with, beyond what frames ask of them: stores of channels, sound that is gathered, and
// meters that run on.
#include <numbers>

#include "frames/audio/audio_buffer.h"
#include "frames/audio/channels_buffer.h"
#include "frames/audio/level_meter.h"
#include "tests/conformance/audio_fixture.h"

namespace conformance {
namespace {

constexpr int32_t kGoodBits[] = {9, 12, 16, 17, 20, 24, 25, 32, -25, -32};
constexpr HRESULT kNotSupported = static_cast<HRESULT>(0x80070032);

zck::WorkForm FormOf(Work work) { return work == Work::Short ? zck::WorkForm::Int16 : zck::WorkForm::Float32; }

Bytes ChannelOf(zck::ZChannelsBuffer &store, size_t c) {
    const uint8_t *at = store.Channel(static_cast<int32_t>(c));
    return at == nullptr ? Bytes() : Bytes(at, at + store.BytesOf(static_cast<int32_t>(c)));
}

void Compare(const Channels &want, zck::ZChannelsBuffer &got, const std::string &said) {
    ASSERT_EQ(got.Count(), static_cast<int32_t>(want.of.size())) << said;
    for (size_t c = 0; c < want.of.size(); ++c) {
        const Bytes bytes = ChannelOf(got, c);
        ASSERT_EQ(bytes.size(), want.of[c].size()) << said << " channel " << c;
        ASSERT_LT(FirstDifference(want.of[c], bytes, want.work == Work::Real), 0) << said << " channel " << c;
    }
}

// Every stored form into every form of work, through maps, and down to any count.
TEST(SoundParts, SplitAndMixDown) {
    Dice dice(1);
    const char *maps[] = {"", "", "0", "1,0", "0,0,7", "9,8,7,6,5,4,3,2,1,0,-1", "-", "1.5 1-0", "2,x,3"};
    for (int round = 0; round < 3000; ++round) {
        const Z_AUD_PROPS p = {dice(1, 13), 48000, kGoodBits[dice(0, 9)], 0};
        const Bytes sound = NoiseFor(dice, p, SoundBytes(p, dice(0, 40)) + dice(0, 4));
        const std::string map = maps[dice(0, 8)];
        const int32_t bits = dice(0, 1) != 0 ? -1 : kGoodBits[dice(0, 9)];
        Channels want;
        zck::ZChannelsBuffer got;
        ASSERT_EQ(want.Split(p, sound, map, bits == -1 ? 0 : bits), S_OK);
        const std::string said =
            Words(p) + " " + std::to_string(sound.size()) + " bytes map " + map + " to " + std::to_string(bits);
        ASSERT_EQ(got.FromInterleaved(&p, static_cast<int64_t>(sound.size()), sound.data(),
                                      zck::ViewOf(TextOf(map.c_str()).get()), bits),
                  S_OK)
            << said;
        Compare(want, got, said);
        const int32_t target = dice(-1, 15);
        ASSERT_EQ(got.MixDown(target, want.work == Work::Real), want.MixDown(target)) << said << " mixed to " << target;
        Compare(want, got, said + " mixed to " + std::to_string(target));
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TEST(SoundParts, WhatCannotBeSplit) {
    zck::ZChannelsBuffer store;
    const uint8_t sound[64] = {};
    const auto split = [&](Z_AUD_PROPS p, int64_t bytes, const char *map, int32_t bits) {
        return store.FromInterleaved(&p, bytes, sound, zck::ViewOf(TextOf(map).get()), bits);
    };
    EXPECT_EQ(store.FromInterleaved(nullptr, 0, nullptr, {}, -1), kBadSound);
    EXPECT_EQ(split({0, 48000, 16, 0}, 64, "", -1), kBadSound);
    EXPECT_EQ(split({2, 48000, 8, 0}, 64, "", -1), kBadSound);
    EXPECT_EQ(split({2, 48000, 16, 0}, 64, "", 8), kBadSound);
    EXPECT_EQ(split({2, 48000, 16, 0}, 64, "", 0), kBadSound);
    EXPECT_EQ(split({2, 48000, 16, 0}, -1, "", -1), E_INVALIDARG);
    EXPECT_EQ(split({2, 48000, 16, 0}, 64, "x", -1), E_INVALIDARG);
    ASSERT_EQ(split({2, 48000, 24, 0}, 8, "", -1), S_OK);
    EXPECT_EQ(store.Bytes(), 5U);
    // Silence of the size where there is no sound.
    const Z_AUD_PROPS p = {3, 48000, 24, 0};
    ASSERT_EQ(store.FromInterleaved(&p, 90, nullptr, {}, 16), S_OK);
    EXPECT_EQ(store.Count(), 3);
    EXPECT_EQ(ChannelOf(store, 2), Bytes(20));
}

TEST(SoundParts, StoresGrowAndShrink) {
    zck::ZChannelsBuffer store;
    EXPECT_EQ(store.Bytes(), 0U);
    ASSERT_GE(store.Reserve(6, 2, true), S_OK);
    std::fill_n(store.Channel(1), 6, uint8_t{9});
    ASSERT_GE(store.Resize(9, 3, true), S_OK);
    EXPECT_EQ(ChannelOf(store, 1), (Bytes{9, 9, 9, 9, 9, 9, 0, 0, 0}));
    EXPECT_EQ(ChannelOf(store, 2), Bytes(9));
    EXPECT_EQ(store.Pointers(2, 1, -1)[0], store.Channel(1) + 2);
    EXPECT_EQ(store.Pointers(0, 1, 2)[1], store.Channel(2));
    // One that is not there is stood in for, and forgets what is written.
    std::fill_n(store.Channel(7), 9, uint8_t{1});
    EXPECT_EQ(Bytes(store.Channel(-1), store.Channel(-1) + 9), Bytes(9));
    ASSERT_GE(store.SetCount(1000), S_OK);
    EXPECT_EQ(store.Count(), 128);
    ASSERT_GE(store.SetCount(1), S_OK);
    ASSERT_GE(store.Reserve(4, -1, true), S_OK);
    EXPECT_EQ(ChannelOf(store, 0), Bytes(4));
}

// Sound long enough for the filter to answer, in blocks of any length and with gains.
TEST(SoundParts, MetersRunOn) {
    for (uint32_t round = 0; round < 40; ++round) {
        Dice dice(round);
        const bool real = dice(0, 1) != 0;
        int32_t rate = dice(0, 1) != 0 ? 8000 : dice(1, 20);
        zck::IPPMeter16s shorts;
        zck::IPPMeter32f reals;
        zck::IPPMeterBase &meter = real ? static_cast<zck::IPPMeterBase &>(reals) : shorts;
        Meter model;
        const int32_t amplitude = dice(1, 32000), lift = dice(0, 1) != 0 ? 0 : dice(-700, 700);
        double phase = 0;
        for (int block = 0; block < 6; ++block) {
            if (dice(0, 9) == 0) rate += 1;
            const int32_t n = dice(0, 12000);
            Channels channels;
            channels.work = real ? Work::Real : Work::Short;
            channels.of.assign(1, Bytes(static_cast<size_t>(n * Channels::Unit(channels.work))));
            for (int32_t i = 0; i < n; ++i) {
                const double x = std::floor(amplitude * std::sin(phase += 0.5 / rate) + lift);
                channels.Put(0, i, real ? x / 32768.0 : x);
            }
            Bytes samples = channels.of[0];
            float want[3] = {7, 7, 7}, got[3] = {7, 7, 7};
            if (dice(0, 4) == 0) {
                model = {};
                meter.Reset();
            }
            const bool ramp = dice(0, 1) != 0, gained = dice(0, 1) != 0;
            double gain = dice(0, 4) == 0 ? 1.0 : dice(-300, 300) / 100.0;
            const double step = ramp && n > 0 ? dice(-100, 100) / 100.0 / n : 0, start = gain;
            if (gained) LevelGain(channels, 0, n, gain, step);
            model.Measure(channels, 0, n, rate, &want[0], &want[1], &want[2]);
            meter.GainAndLevels(samples.data(), n, gained ? &gain : nullptr, step, rate, &got[0], &got[1], &got[2]);
            const std::string said = "round " + std::to_string(round) + " block " + std::to_string(block) +
                                     (real ? " real " : " short ") + std::to_string(n) + " at " + std::to_string(rate);
            ASSERT_LT(FirstDifference(channels.of[0], samples, real), 0) << said;
            ASSERT_DOUBLE_EQ(gain, gained && n > 0 ? start + step * n : start) << said;
            for (int i = 0; i < 3; ++i)
                ASSERT_TRUE(LevelsAgree(want[i], got[i], i > 0))
                    << said << " level " << i << ": " << want[i] << " is " << got[i];
        }
    }
}

// A full-scale sine reads 0 dB, and the peak of real numbers half the power of that of integers.
TEST(SoundParts, WhatMetersRead) {
    std::vector<int16_t> shorts(80000);
    std::vector<float> reals(shorts.size());
    for (size_t i = 0; i < shorts.size(); ++i) {
        const double x = std::sin(2 * std::numbers::pi * static_cast<double>(i) / 800.0);
        shorts[i] = static_cast<int16_t>(std::nearbyint(x * 32767));
        reals[i] = static_cast<float>(x);
    }
    float rms = 1, vu = 1, peak = 1, peakOfReals = 1;
    zck::IPPMeter16s().Levels(shorts.data(), 80000, 8000, &rms, nullptr, nullptr);
    EXPECT_NEAR(rms, 0, 0.001);
    zck::IPPMeter32f().Levels(reals.data(), 80000, 8000, &rms, nullptr, nullptr);
    EXPECT_NEAR(rms, 0, 0.001);
    // The filter answers a step with more than the step.
    std::fill(shorts.begin(), shorts.end(), int16_t{16384});
    std::fill(reals.begin(), reals.end(), 0.5F);
    zck::IPPMeter16s().Levels(shorts.data(), 80000, 8000, nullptr, &vu, &peak);
    zck::IPPMeter32f().Levels(reals.data(), 80000, 8000, nullptr, &vu, &peakOfReals);
    EXPECT_NEAR(peak - peakOfReals, 3.01, 0.01);
}

class Gathered : public testing::Test {
protected:
    int64_t Add(zck::ZAudioBuffer2 &buffer, const Z_AUD_PROPS &p, const Bytes &sound, bool fresh = true, bool mix = true) {
        return buffer.Add(&p, sound.data(), static_cast<int64_t>(sound.size()), fresh, mix);
    }
    // The samples of a sine in the stored form of real numbers.
    static Bytes Sine(int32_t rate, int64_t samples, double hertz) {
        Bytes sound(static_cast<size_t>(4 * samples));
        for (int64_t i = 0; i < samples; ++i)
            Store(&sound[static_cast<size_t>(4 * i)], -32, Work::Real,
                  std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate));
        return sound;
    }
    Dice m_dice{1};
};

TEST_F(Gathered, TheFirstSoundGivesTheFormat) {
    zck::ZAudioBuffer2 buffer;
    const Z_AUD_PROPS p = {2, 48000, 16, 0}, poor = {2, 0, 16, 0};
    const Bytes sound = m_dice.Noise(43);
    EXPECT_EQ(buffer.Add(nullptr, nullptr, 0, true, true), E_INVALIDARG);
    EXPECT_EQ(Add(buffer, poor, sound), E_INVALIDARG);
    const Z_AUD_PROPS other = {1, 48000, 24, 0};
    EXPECT_EQ(Add(buffer, other, {}, false), 0);
    EXPECT_EQ(buffer.Format().nChannels, 1);
    EXPECT_EQ(Add(buffer, p, sound), 10);    // of what is empty the format may change
    EXPECT_EQ(buffer.Format().nChannels, 2);
    EXPECT_EQ(Add(buffer, p, sound, false), 20);
    // What is behind the last sample is silent.
    Bytes got(100, 0xAA), want(100);
    for (size_t i = 0; i < 80; ++i) want[i] = sound[i % 40];
    EXPECT_EQ(buffer.Get(nullptr, got.data(), 25), S_OK);
    EXPECT_EQ(got, want);
    // As many as are asked for, and nothing behind them.
    std::fill(got.begin(), got.end(), uint8_t{0xAA});
    std::fill(want.begin() + 12, want.end(), uint8_t{0xAA});
    EXPECT_EQ(buffer.Get(nullptr, got.data(), 3), S_OK);
    EXPECT_EQ(got, want);
    zck::ZAudioBuffer2 negative({-1, 48000, 16, 0});
    EXPECT_EQ(Add(negative, p, sound), kNotSupported);
}

// Into another form at the same rate: every sample waits for the sixteen behind it.
TEST_F(Gathered, OtherRatesAreResampled) {
    for (const auto &[in, out] :
         std::vector<std::pair<int32_t, int32_t>>{{48000, 44100}, {44100, 48000}, {8000, 48000}, {48000, 8000}, {7, 5}}) {
        zck::ZAudioBuffer2 buffer;
        const Z_AUD_PROPS from = {1, in, -32, 0}, to = {1, out, -32, 0};
        const double hertz = std::min(in, out) / 20.0;
        const Bytes sound = Sine(in, 6000, hertz);
        ASSERT_EQ(Add(buffer, to, {}), 0);
        // Blocks of any size are one stream.
        int64_t total = 0;
        for (int64_t at = 0; at < 6000;) {
            const int64_t n = std::min<int64_t>(m_dice(0, 700), 6000 - at);
            total = Add(buffer, from, Bytes(sound.begin() + 4 * at, sound.begin() + 4 * (at + n)), false);
            at += n;
            int64_t made = 0;
            while (made * in / out + 16 < at) ++made;
            ASSERT_EQ(total, made) << in << " to " << out << " after " << at;
        }
        ASSERT_EQ(buffer.Samples(), total);
        Channels got;
        got.work = Work::Real;
        got.of.assign(1, Bytes(buffer.Channels().Channel(0), buffer.Channels().Channel(0) + 4 * total));
        for (int64_t j = 0; j < total; ++j) {
            const double at = static_cast<double>(j) * in / out;
            if (at < 16) continue;    // silence stands before the first
            ASSERT_NEAR(got.Get(0, j), 0.98 * std::sin(2 * std::numbers::pi * hertz * at / in), 0.01)
                << in << " to " << out << " at " << j;
        }
    }
}

// More channels than the buffer has are mixed down or left out.
TEST_F(Gathered, OtherCountsAndFormsJoin) {
    for (const bool mix : {false, true}) {
        zck::ZAudioBuffer2 buffer;
        const Z_AUD_PROPS to = {2, 48000, 16, 0}, from = {4, 48000, 24, 0};
        Bytes sound(static_cast<size_t>(SoundBytes(from, 2000)));
        for (size_t i = 0; i < sound.size() / 3; ++i)
            Store(&sound[3 * i], 24, Work::Real, static_cast<double>(i % 4 + 1) / 64.0);
        ASSERT_EQ(Add(buffer, to, {}), 0);
        const int64_t total = Add(buffer, from, sound, false, mix);
        ASSERT_EQ(total, 2000 - 16);
        for (size_t c = 0; c < 2; ++c) {
            const Bytes channel = ChannelOf(buffer.Channels(), c);
            const double whole = (static_cast<double>(c + 1) + (mix ? 3 + 4 : 0)) / 64.0 * 32768 * 0.98;
            EXPECT_NEAR(Stored(&channel[1000], 16) * 32768, whole, whole / 100) << mix << c;
        }
        buffer.Clear();
        EXPECT_EQ(buffer.Samples(), 0);
        EXPECT_EQ(buffer.Channels().Count(), 0);
    }
}

// Mixing with every gain and ramp, over all and over a part of the channels.
TEST_F(Gathered, MixesLikeTheModel) {
    const double gains[] = {1, 1, 0.5, 2, 0, -1, 40, 0.001, kInfinity};
    for (uint32_t round = 0; round < 2000; ++round) {
        m_dice = Dice(round);
        const Z_AUD_PROPS p = {m_dice(1, 5), 48000, kGoodBits[m_dice(0, 9)], 0};
        const Z_AUD_PROPS q = {m_dice(1, 5), m_dice(0, 20) == 0 ? 44100 : 48000, kGoodBits[m_dice(0, 9)], 0};
        Channels own, theirs;
        own.Split(p, NoiseFor(m_dice, p, SoundBytes(p, m_dice(1, 40))), "", 0);
        theirs.Split(q, NoiseFor(m_dice, q, SoundBytes(q, m_dice(1, 40))), "", 0);
        zck::ZAudioBuffer2 a(p), b(q);
        const auto put = [](const Channels &from, zck::ZAudioBuffer2 &to) {
            ASSERT_GE(
                to.Channels().Reserve(static_cast<uint32_t>(from.of[0].size()), static_cast<int32_t>(from.of.size()), true),
                S_OK);
            to.Channels().SetForm(FormOf(from.work));
            for (size_t c = 0; c < from.of.size(); ++c)
                std::copy(from.of[c].begin(), from.of[c].end(), to.Channels().Channel(static_cast<int32_t>(c)));
        };
        put(own, a);
        put(theirs, b);
        const double g = gains[m_dice(0, 8)], h = gains[m_dice(0, 8)];
        const double gs = m_dice(0, 1) != 0 ? 0 : m_dice(-200, 200) / 1000.0,
                     hs = m_dice(0, 1) != 0 ? 0 : m_dice(-200, 200) / 1000.0;
        zck::ZAudioBuffer2::MixPart part;
        part.samples = m_dice(0, 2) == 0 ? m_dice(0, 50) : 0;
        part.channels = m_dice(0, 2) == 0 ? m_dice(0, 6) : 0;
        part.destFirst = m_dice(0, 3) == 0 ? m_dice(0, 4) : 0;
        part.sourceFirst = m_dice(0, 3) == 0 ? m_dice(0, 4) : 0;
        ASSERT_GE(a.Mix(&b, {g, gs}, {h, hs}, part), S_OK) << round;
        int64_t n = std::min(own.Samples(0), theirs.Samples(0));
        if (part.samples > 0) n = std::min(n, part.samples);
        const Channels before = theirs;
        if (p.nSamplesPerSec == q.nSamplesPerSec && g > 0) {
            const bool reals = own.work == Work::Real;
            for (size_t c = 0; part.channels == 0 || c < static_cast<size_t>(part.channels); ++c) {
                const size_t dest = c + static_cast<size_t>(part.destFirst), source = c + static_cast<size_t>(part.sourceFirst);
                if (dest >= own.of.size() || source >= theirs.of.size()) break;
                Channels same;
                same.work = own.work;
                same.of.assign(1, Bytes(static_cast<size_t>(n * Channels::Unit(own.work))));
                for (int64_t i = 0; i < n; ++i) {
                    const double x = theirs.Get(source, i);
                    if (theirs.work == own.work)
                        same.Put(0, i, x);
                    else
                        same.Put(0, i, reals ? x / 32768.0 : static_cast<double>(ToNearest(x * 32768.0, -32768, 32767)));
                }
                MixGain(same, 0, n, g, gs);
                MixGain(own, dest, n, h, hs);
                for (int64_t i = 0; i < n; ++i) {
                    const double sum = own.Get(dest, i) + same.Get(0, i);
                    own.Put(dest, i, reals ? sum : std::clamp(sum, -32768.0, 32767.0));
                }
            }
        }
        Compare(own, a.Channels(), "round " + std::to_string(round));
        Compare(before, b.Channels(), "source of round " + std::to_string(round));
        ASSERT_FALSE(HasFailure()) << round;
    }
}

// What was gathered comes out in any form, and silence where more is asked for.
TEST_F(Gathered, GivesEveryForm) {
    for (uint32_t round = 0; round < 2000; ++round) {
        m_dice = Dice(round);
        const Z_AUD_PROPS p = {m_dice(1, 5), 48000, kGoodBits[m_dice(0, 9)], 0};
        const Z_AUD_PROPS form = {p.nChannels, 48000, kGoodBits[m_dice(0, 9)], 0};
        const Bytes sound = NoiseFor(m_dice, p, SoundBytes(p, m_dice(1, 20)));
        const int64_t all = SoundSamples(p, static_cast<int64_t>(sound.size())), asked = m_dice(0, 2) == 0 ? -1 : m_dice(0, 25);
        Channels model;
        ASSERT_EQ(model.Split(p, sound, "", 0), S_OK);
        const int64_t n = asked < 0 ? all : asked;
        Bytes want(static_cast<size_t>(SoundBytes(form, n)));
        model.Join(form, 0, n, want);
        zck::ZAudioBuffer2 buffer;
        ASSERT_EQ(Add(buffer, p, sound), all);
        Bytes got(want.size() + 8, 0xAA);
        want.insert(want.end(), 8, 0xAA);
        ASSERT_EQ(buffer.Get(m_dice(0, 1) != 0 || form.nBitsPerSample != p.nBitsPerSample ? &form : nullptr, got.data(), asked),
                  S_OK);
        ASSERT_LT(FirstDifference(want, got, form.nBitsPerSample < 0), 0) << Words(p) << " as " << Words(form) << " " << asked;
    }
}

TEST_F(Gathered, WhatIsEmptyTakesTheSourceAsItIs) {
    const Z_AUD_PROPS p = {2, 48000, 16, 0};
    const Bytes sound = m_dice.Noise(40);
    zck::ZAudioBuffer2 source, copy, scaled, negative({-1, 48000, 16, 0});
    ASSERT_EQ(Add(source, p, sound), 10);
    EXPECT_GE(copy.Mix(&source, {1, 0}, {1, 0}, {}), S_OK);
    EXPECT_EQ(copy.Samples(), 10);
    EXPECT_GE(scaled.Mix(&source, {0.5, 0}, {1, 0}, {}), S_OK);    // the format, and no samples
    EXPECT_EQ(scaled.Samples(), 0);
    EXPECT_EQ(scaled.Format().nChannels, 2);
    EXPECT_GE(copy.Mix(nullptr, {1, 0}, {1, 0}, {}), S_OK);
    EXPECT_GE(negative.Mix(&source, {1, 0}, {1, 0}, {}), S_OK);
    EXPECT_EQ(negative.Samples(), 0);
}

}    // namespace
}    // namespace conformance
