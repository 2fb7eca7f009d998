// Vector versions of the loops over samples give the reference's bytes and touch nothing else.
#include "frames/audio/sample_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "frames/audio/sample_form.h"
#include "platform/processor.h"

namespace zck {
namespace {

constexpr uint32_t kSeed = 20240817;
constexpr size_t kGuard = 64;
constexpr int64_t kCounts[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 47, 48, 49, 63, 64, 65, 67, 131};

struct Tables {
    SampleKernels ref{};
    SampleKernels avx2{};
    Tables() {
        SampleKernelsInitRef(&ref);
        avx2 = ref;
        SampleKernelsInitAvx2(&avx2);
    }
};

class SampleKernelsCheck : public ::testing::Test {
protected:
    void SetUp() override {
        if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2";
        std::printf("seed %u\n", kSeed);
    }
    Tables m_tables;
    std::mt19937 m_random{kSeed};
};

// Floats that are hard: ties, limits, not-a-number, far outside.
float Hard(std::mt19937 &random) {
    const auto r = random();
    constexpr float kHard[] = {0.0F,
                               -0.0F,
                               1.0F,
                               -1.0F,
                               0.99999994F,
                               2.0F,
                               -3.0F,
                               1e30F,
                               -1e30F,
                               1e-40F,
                               0.5F / 32768,
                               1.5F / 32768,
                               -2.5F / 32768,
                               0.5F / 8388608,
                               1.5F / 8388608,
                               32767.5F / 32768,
                               std::numeric_limits<float>::infinity(),
                               -std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN(),
                               0.49999997F / 32768};
    if (r % 4 == 0) return kHard[r / 4 % (sizeof(kHard) / sizeof(kHard[0]))];
    return static_cast<float>(static_cast<int32_t>(random())) * 0x1p-31F;
}

std::vector<uint8_t> Noise(std::mt19937 &random, size_t size, bool floats) {
    std::vector<uint8_t> bytes(size);
    for (uint8_t &byte : bytes) byte = static_cast<uint8_t>(random());
    if (floats) {
        for (size_t i = 0; i + 4 <= size; i += 4) {
            const float value = Hard(random);
            std::memcpy(&bytes[i], &value, 4);
        }
    }
    return bytes;
}

TEST_F(SampleKernelsCheck, SplitAndJoinOfEveryForm) {
    int different = 0;
    for (int stored = 0; stored < kStoredForms; ++stored) {
        for (int work = 0; work < kWorkForms; ++work) {
            const int32_t width = StoredBytes(static_cast<StoredForm>(stored));
            const int32_t workWidth = WorkBytes(static_cast<WorkForm>(work));
            different += m_tables.ref.split[stored][work] != m_tables.avx2.split[stored][work];
            different += m_tables.ref.join[stored][work] != m_tables.avx2.join[stored][work];
            for (const int32_t channels : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 15, 16, 17, 24, 128}) {
                for (const int64_t samples : kCounts) {
                    // One more sample in the block's stride than is split, and an odd address.
                    for (const int32_t extra : {0, 1}) {
                        const int64_t stride = int64_t{width} * (channels + extra);
                        const size_t size = static_cast<size_t>(stride * samples);
                        const size_t offset = static_cast<size_t>(extra) * 3;
                        std::vector<uint8_t> block = Noise(m_random, size, stored == static_cast<int>(StoredForm::Float32));
                        // In a block of its own, so that a reader past the end is seen by the sanitizer.
                        std::vector<uint8_t> shifted(offset + size);
                        std::copy(block.begin(), block.end(), shifted.begin() + static_cast<ptrdiff_t>(offset));
                        const size_t perChannel = static_cast<size_t>(samples * workWidth) + kGuard;
                        std::vector<uint8_t> a(perChannel * static_cast<size_t>(channels), 0xA5);
                        std::vector<uint8_t> b = a;
                        void *at[128];
                        void *bt[128];
                        for (int32_t c = 0; c < channels; ++c) {
                            at[c] = a.data() + perChannel * static_cast<size_t>(c);
                            bt[c] = b.data() + perChannel * static_cast<size_t>(c);
                        }
                        m_tables.ref.split[stored][work](at, channels, shifted.data() + offset, stride, samples);
                        m_tables.avx2.split[stored][work](bt, channels, shifted.data() + offset, stride, samples);
                        ASSERT_EQ(a, b) << "split " << stored << work << " channels " << channels << " samples " << samples;

                        std::vector<uint8_t> joinedA(offset + size + kGuard, 0x5A);
                        std::vector<uint8_t> joinedB = joinedA;
                        const bool floats = work == static_cast<int>(WorkForm::Float32);
                        for (int32_t c = 0; c < channels; ++c) {
                            const std::vector<uint8_t> noise = Noise(m_random, perChannel - kGuard, floats);
                            if (!noise.empty()) std::memcpy(at[c], noise.data(), noise.size());
                        }
                        m_tables.ref.join[stored][work](joinedA.data() + offset, stride, at, channels, samples);
                        m_tables.avx2.join[stored][work](joinedB.data() + offset, stride, at, channels, samples);
                        ASSERT_EQ(joinedA, joinedB)
                            << "join " << stored << work << " channels " << channels << " samples " << samples;
                    }
                }
            }
        }
    }
    EXPECT_GT(different, 0);
}

TEST_F(SampleKernelsCheck, GainAndAdd) {
    EXPECT_NE(m_tables.ref.gain16, m_tables.avx2.gain16);
    EXPECT_NE(m_tables.ref.gain32, m_tables.avx2.gain32);
    EXPECT_NE(m_tables.ref.add16, m_tables.avx2.add16);
    EXPECT_NE(m_tables.ref.add32, m_tables.avx2.add32);
    for (const int64_t count : kCounts) {
        for (const size_t shift : {0u, 1u, 3u}) {
            const size_t size = static_cast<size_t>(count) * 4 + kGuard;
            const auto from = [&](const std::vector<uint8_t> &bytes) { return bytes.data() + shift * 4; };
            std::vector<uint8_t> a = Noise(m_random, size + shift * 4, false);
            std::vector<uint8_t> b = a;
            const std::vector<uint8_t> other = Noise(m_random, size + shift * 4, false);
            const auto at = [&](std::vector<uint8_t> &bytes) { return reinterpret_cast<int16_t *>(bytes.data() + shift * 4); };
            const auto ft = [&](std::vector<uint8_t> &bytes) { return reinterpret_cast<float *>(bytes.data() + shift * 4); };
            for (const int32_t bits : {8, 10}) {
                for (const int32_t factor : {0, 1, -1, 77, 511, 32767, -32768}) {
                    m_tables.ref.gain16(at(a), count, static_cast<int16_t>(factor), bits);
                    m_tables.avx2.gain16(at(b), count, static_cast<int16_t>(factor), bits);
                    ASSERT_EQ(a, b) << count << " factor " << factor << " shift " << bits;
                    b = a = Noise(m_random, a.size(), false);
                }
            }
            m_tables.ref.add16(at(a), reinterpret_cast<const int16_t *>(from(other)), count);
            m_tables.avx2.add16(at(b), reinterpret_cast<const int16_t *>(from(other)), count);
            ASSERT_EQ(a, b) << count;
            b = a = Noise(m_random, a.size(), true);
            m_tables.ref.gain32(ft(a), count, 1.7F);
            m_tables.avx2.gain32(ft(b), count, 1.7F);
            m_tables.ref.add32(ft(a), reinterpret_cast<const float *>(from(other)), count);
            m_tables.avx2.add32(ft(b), reinterpret_cast<const float *>(from(other)), count);
            ASSERT_EQ(a, b) << count;
        }
    }
}

TEST_F(SampleKernelsCheck, GainOverEverySampleAndManyFactors) {
    std::vector<int16_t> all(65536);
    for (size_t i = 0; i < all.size(); ++i) all[i] = static_cast<int16_t>(i);
    for (int32_t factor = -32768; factor < 32768; factor += 331) {
        for (const int32_t shift : {8, 10}) {
            std::vector<int16_t> a = all;
            std::vector<int16_t> b = all;
            m_tables.ref.gain16(a.data(), 65536, static_cast<int16_t>(factor), shift);
            m_tables.avx2.gain16(b.data(), 65536, static_cast<int16_t>(factor), shift);
            ASSERT_EQ(a, b) << factor;
        }
    }
}

TEST(SampleKernels, TheTableFollowsTheProcessor) {
    SampleKernels ref = {};
    SampleKernelsInitRef(&ref);
    EXPECT_EQ(CpuHasAvx2(), ref.gain16 != SampleKernelsGet().gain16);
    EXPECT_EQ(ref.split[1][0], SampleKernelsGet().split[1][0]);
}

// Worked by hand: ties go to the even neighbour.
TEST(SampleKernels, GainRoundsTiesToEven) {
    SampleKernels ref = {};
    SampleKernelsInitRef(&ref);
    int16_t samples[] = {1, 3, 5, -1, -3, 32767, -32768};
    ref.gain16(samples, 7, 128, 8);
    const int16_t expected[] = {0, 2, 2, 0, -2, 16384, -16384};
    EXPECT_EQ(0, std::memcmp(expected, samples, sizeof(samples)));
}

}    // namespace
}    // namespace zck
