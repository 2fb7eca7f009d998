#include "frames/audio/level_meter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace zck {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Levels {
    float rms = 99;
    float vu = 99;
    float peak = 99;
};

Levels Measure(IPPMeterBase &meter, const void *samples, size_t n, int32_t rate) {
    Levels levels;
    meter.Levels(samples, static_cast<int64_t>(n), rate, &levels.rms, &levels.vu, &levels.peak);
    return levels;
}

TEST(LevelMeter, ASineOfFullScaleIsZero) {
    std::vector<int16_t> integers(48000);
    std::vector<float> floats(48000);
    for (size_t i = 0; i < integers.size(); ++i) {
        const double sine = std::sin(2 * kPi * 1000 * static_cast<double>(i) / 48000);
        integers[i] = static_cast<int16_t>(std::lround(32767 * sine));
        floats[i] = static_cast<float>(sine);
    }
    IPPMeter16s meter16;
    IPPMeter32f meter32;
    EXPECT_NEAR(0.0, Measure(meter16, integers.data(), integers.size(), 48000).rms, 0.0005);
    EXPECT_NEAR(0.0, Measure(meter32, floats.data(), floats.size(), 48000).rms, 0.0005);
}

TEST(LevelMeter, SilenceAndNothing) {
    const std::vector<int16_t> silence(10);
    IPPMeter16s meter;
    const Levels levels = Measure(meter, silence.data(), 10, 48000);
    EXPECT_EQ(-kInfinity, levels.rms);
    EXPECT_EQ(-kInfinity, levels.vu);
    EXPECT_EQ(-kInfinity, levels.peak);
    EXPECT_EQ(99, Measure(meter, silence.data(), 0, 48000).rms);
    meter.Levels(silence.data(), 10, 48000, nullptr, nullptr, nullptr);
}

// The filter settles on a constant: its gain at 0 is 1, at every rate that sound has. One direct form of order 5 grows
// without bound here.
TEST(LevelMeter, TheFilterSettlesAtEveryRate) {
    for (const int32_t rate : {2, 8000, 11025, 44100, 48000, 96000, 192000}) {
        const std::vector<float> constant(static_cast<size_t>(rate) * 8 + 50, 0.5F);
        IPPMeter32f meter;
        Measure(meter, constant.data(), constant.size(), rate);
        const Levels settled = Measure(meter, constant.data(), constant.size(), rate);
        // Twice a quarter, and half of half.
        EXPECT_NEAR(10 * std::log10(0.5), settled.vu, 0.001) << rate;
        EXPECT_NEAR(10 * std::log10(0.25), settled.peak, 0.002) << rate;
    }
}

TEST(LevelMeter, PeaksOfFloatsAreHalfThoseOfIntegers) {
    const std::vector<int16_t> integers(400000, int16_t{16384});
    const std::vector<float> floats(400000, 0.5F);
    IPPMeter16s meter16;
    IPPMeter32f meter32;
    Measure(meter16, integers.data(), integers.size(), 48000);
    Measure(meter32, floats.data(), floats.size(), 48000);
    const float peak16 = Measure(meter16, integers.data(), integers.size(), 48000).peak;
    const float peak32 = Measure(meter32, floats.data(), floats.size(), 48000).peak;
    EXPECT_NEAR(10 * std::log10(0.5), peak16, 0.001);
    EXPECT_NEAR(peak16 - 3.0103, peak32, 0.001);
}

TEST(LevelMeter, CutOffIsThreeDecibelsDown) {
    // Half a second of time constant is 0.53 periods a second; here a rate of 100 makes it short.
    constexpr int32_t kRate = 100;
    const double frequency = 1.0 / (2.0 * kPi * 0.3);
    std::vector<float> sine(20000);
    for (size_t i = 0; i < sine.size(); ++i)
        sine[i] = static_cast<float>(std::sin(2 * kPi * frequency * static_cast<double>(i) / kRate));
    IPPMeter32f meter;
    Measure(meter, sine.data(), sine.size(), kRate);
    EXPECT_NEAR(-3.0103, Measure(meter, sine.data(), sine.size(), kRate).vu, 0.02);
}

TEST(LevelMeter, AWaveBelowZeroHasNoPeak) {
    const std::vector<float> low(400000, -0.5F);
    IPPMeter32f meter;
    EXPECT_EQ(-kInfinity, Measure(meter, low.data(), 1, 48000).peak);
    EXPECT_TRUE(std::isnan(Measure(meter, low.data(), low.size(), 1).peak));
}

TEST(LevelMeter, ShortBlocksHardlyMoveTheFilter) {
    const std::vector<int16_t> block(1920, int16_t{32767});
    IPPMeter16s meter;
    EXPECT_EQ(-kInfinity, Measure(meter, block.data(), block.size(), 48000).vu);
    const std::vector<float> floats(1920, 1.0F);
    IPPMeter32f meter32;
    EXPECT_LT(Measure(meter32, floats.data(), floats.size(), 48000).vu, -60.0F);
}

TEST(LevelMeter, StateRunsOnUntilTheRateChanges) {
    const std::vector<float> block(2000, 0.5F);
    const auto first = [&](IPPMeterBase &meter, int32_t rate) { return Measure(meter, block.data(), block.size(), rate).vu; };
    IPPMeter32f meter;
    const float fresh = first(meter, 8000);
    EXPECT_GT(first(meter, 8000), fresh);
    const float other = first(meter, 16000);
    IPPMeter32f again;
    EXPECT_EQ(first(again, 16000), other);
    meter.Reset();
    EXPECT_EQ(other, first(meter, 16000));
    // Above half the rate there is nothing to filter.
    EXPECT_NEAR(10 * std::log10(0.5), first(meter, 1), 0.0001);
}

TEST(LevelMeter, Gain) {
    std::vector<int16_t> samples = {1000, 1000, 1000, 1000};
    IPPMeter16s meter;
    meter.Gain(samples.data(), 4, nullptr, 0.5);
    double gain = 1.0;
    meter.Gain(samples.data(), 4, &gain, 0.0);
    EXPECT_EQ((std::vector<int16_t>{1000, 1000, 1000, 1000}), samples);
    meter.Gain(samples.data(), 4, &gain, -0.25);
    EXPECT_EQ((std::vector<int16_t>{1000, 750, 500, 250}), samples);
    EXPECT_EQ(0.0, gain);
    // 0.3 is 77 of 256 parts.
    gain = 0.3;
    samples = {1000, -1000, 0, 3};
    Levels levels;
    meter.GainAndLevels(samples.data(), 4, &gain, 0.0, 48000, &levels.rms, nullptr, nullptr);
    EXPECT_EQ((std::vector<int16_t>{301, -301, 0, 1}), samples);
    EXPECT_NEAR(10 * std::log10(2.0 * (301 * 301 * 2 + 1) / (4 * 32767.0 * 32767.0)), levels.rms, 0.0001);
}

TEST(LevelMeter, HoldersTakeTheMeterThatFits) {
    MeterHolder holder;
    std::vector<int16_t> integers(4, int16_t{32767});
    float rms = 0;
    ASSERT_TRUE(MeterChannel(holder, {1, 48000, 12, 0}, integers.data(), 4, &rms, nullptr, nullptr));
    EXPECT_FALSE(holder.bFloat);
    const IPPMeterBase *first = holder.meter.get();
    ASSERT_TRUE(MeterChannel(holder, {1, 48000, 16, 0}, integers.data(), 4, &rms, nullptr, nullptr));
    EXPECT_EQ(first, holder.meter.get());
    EXPECT_NEAR(3.0103, rms, 0.001);
    std::vector<float> floats(4, 1.0F);
    ASSERT_TRUE(MeterChannel(holder, {1, 48000, 24, 0}, floats.data(), 4, &rms, nullptr, nullptr));
    EXPECT_TRUE(holder.bFloat);
    EXPECT_NEAR(3.0103, rms, 0.001);
}

}    // namespace
}    // namespace zck
