#include "imaging/scale/scale_kernels.h"

#include <cstring>

#include "tests/support/kernel_check.h"

namespace zck {
namespace {

using test::Bytes;
using test::CheckKernel;
using test::Times;
using K = ScaleKernels;

std::vector<K> Levels() { return test::TablesOf<K>({ScaleKernelsInitRef, ScaleKernelsInitAvx2}); }

constexpr int32_t kMostTaps = 12;

struct TapRows {
    const uint8_t *rows[20];
    TapRows(const uint8_t *s, int32_t taps, int64_t bytes) : rows{} {
        for (int32_t t = 0; t < taps; ++t) rows[t] = bytes > 0 ? s + t * bytes : s;
    }
};

TEST(ScaleKernels, VectorsGiveTheBytesOfTheReference) {
    if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2";
    const std::vector<K> tables = Levels();
    const K &ref = tables[0];
    const K &vec = tables[1];
    test::ExpectAllEntriesDiffer(ref, vec);
    static constexpr uint8_t kWeights[kMostTaps] = {60, 40, 30, 30, 25, 20, 15, 10, 10, 8, 4, 3};
    static constexpr uint8_t kThree[3] = {100, 90, 65};
    CheckKernel("blend2", ref, vec, {Times(32), Times(16), 6}, [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
        k.blend2(d, s, n > 0 ? s + 16 * n : s, kThree + 1, n);
    });
    CheckKernel("blend3", ref, vec, {Times(48), Times(16), 6}, [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
        k.blend3(d, TapRows(s, 3, 16 * n).rows, kThree, n);
    });
    for (const int32_t taps : {4, 5, 12})
        CheckKernel("blend_many", ref, vec, {Times(16 * taps), Times(16), 6},
                    [taps](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
                        k.blend_many(d, TapRows(s, taps, 16 * n).rows, kWeights, taps, n);
                    });
    static constexpr int16_t kSigned[6] = {-900, 3000, 13000, 1500, -700, 484};
    for (const int32_t taps : {1, 2, 3, 4, 6})
        CheckKernel("mix_rows", ref, vec, {Times(taps), Times(2), 67},
                    [taps](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
                        std::vector<int16_t> out(static_cast<size_t>(std::max(n, 0)));
                        k.mix_rows(out.data(), TapRows(s, taps, n).rows, kSigned, taps, n);
                        if (n > 0) std::memcpy(d, out.data(), 2 * out.size());
                    });
}

// All values of a word, at every place of a vector.
TEST(ScaleKernels, NarrowOverEveryWord) {
    for (const K &k : Levels())
        for (int32_t shift = 0; shift < 17; ++shift) {
            std::vector<int16_t> words(static_cast<size_t>(65536 + shift));
            for (int32_t i = 0; i < 65536; ++i) words[static_cast<size_t>(i + shift)] = static_cast<int16_t>(i - 32768);
            Bytes out(words.size() + 1, 0xA5);
            k.narrow(out.data(), words.data(), static_cast<int32_t>(words.size()));
            for (size_t i = 0; i < words.size(); ++i) {
                const int32_t v = (words[i] + 32) / 64 - ((words[i] + 32) % 64 < 0 ? 1 : 0);
                ASSERT_EQ(out[i], std::clamp(v, 0, 255)) << words[i];
            }
            ASSERT_EQ(out.back(), 0xA5);
        }
}

// Random places, weights with both signs, words up to the ends of their range as overshoot gives them.
void CheckColumns(int32_t channels, int32_t taps) {
    const std::vector<K> tables = Levels();
    if (tables.size() < 2) GTEST_SKIP() << "this processor has no AVX2";
    const uint32_t seed = test::Seed();
    SCOPED_TRACE(testing::Message() << channels << " channels, " << taps << " taps, seed " << seed);
    std::mt19937 random(seed);
    for (int32_t count = -1; count < 36; ++count)
        for (int32_t round = 0; round < 20; ++round) {
            const int32_t pixels = taps + static_cast<int32_t>(random() % 40);
            // Exactly what the entry may read.
            std::vector<int16_t> src(static_cast<size_t>(pixels * channels));
            for (int16_t &v : src) v = static_cast<int16_t>(static_cast<int32_t>(random() % 24000) - 4000);
            const auto n = static_cast<size_t>(std::max(count, 0));
            std::vector<int32_t> first(n);
            std::vector<int16_t> weights(n * static_cast<size_t>(taps));
            for (int32_t &f : first) f = static_cast<int32_t>(random() % static_cast<uint32_t>(pixels - taps + 1));
            for (int16_t &w : weights) w = static_cast<int16_t>(static_cast<int32_t>(random() % 9000) - 2000);
            Bytes expected(n * static_cast<size_t>(channels) + 64, 0x5A);
            Bytes found = expected;
            const auto run = [&](const K &k, Bytes &out) {
                (channels == 1 ? k.columns1 : k.columns4)(out.data(), src.data(), first.data(), weights.data(), taps, count);
            };
            run(tables[0], expected);
            run(tables[1], found);
            ASSERT_EQ(expected, found) << count;
        }
}

TEST(ScaleKernels, Columns) {
    for (const int32_t channels : {1, 4})
        for (const int32_t taps : {4, 8, 12, 20}) CheckColumns(channels, taps);
}

TEST(ScaleKernels, TheTableFollowsTheLevel) {
    const std::vector<K> tables = Levels();
    KernelLevelLimit(KernelLevel::Reference);
    EXPECT_EQ(ScaleKernelsGet().columns1, tables[0].columns1);
    KernelLevelLimit(kKernelLevelHighest);
    EXPECT_EQ(ScaleKernelsGet().columns1, tables.back().columns1);
}

}    // namespace
}    // namespace zck
