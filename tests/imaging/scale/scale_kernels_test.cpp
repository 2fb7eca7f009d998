#include "imaging/scale/scale_kernels.h"

#include <algorithm>
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

// Random places, close together or anywhere, weights with both signs, words up to the ends of their range as overshoot gives
// them. What lies behind the elements of the last output must not count.
struct RandomColumns {
    RandomColumns(std::mt19937 &random, int32_t channels, int32_t taps, int32_t count, bool close) {
        const auto n = static_cast<size_t>(std::max(count, 0));
        int32_t at = static_cast<int32_t>(random() % 5);
        for (size_t i = 0; i < n; ++i) {
            first.push_back(close ? at : static_cast<int32_t>(random() % 40));
            places.push_back(static_cast<uint32_t>(first[i] - first[i & ~size_t{3}]) * 0x02020202U + 0x03020100U);
            at += static_cast<int32_t>(random() % (i % 4 == 3 ? 9 : 3));
        }
        for (size_t i = 0; i < n * static_cast<size_t>(taps) + 2; ++i)
            weights.push_back(static_cast<int16_t>(static_cast<int32_t>(random() % 9000) - 2000));
        const int32_t last = n > 0 ? *std::max_element(first.begin(), first.end()) : 0;
        const int32_t slack = channels == 1 ? kColumnSlack : 0;
        for (int32_t i = 0; i < (last + taps) * channels + slack; ++i)
            src.push_back(static_cast<int16_t>(static_cast<int32_t>(random() % 24000) - 4000));
        table = {first.data(), weights.data(), close && channels == 1 ? places.data() : nullptr, taps, count};
    }

    std::vector<int32_t> first;
    std::vector<uint32_t> places;
    std::vector<int16_t> weights;
    std::vector<int16_t> src;
    ColumnTable table;
};

void CheckColumns(int32_t channels, int32_t taps, bool close) {
    const std::vector<K> tables = Levels();
    if (tables.size() < 2) GTEST_SKIP() << "this processor has no AVX2";
    const uint32_t seed = test::Seed();
    SCOPED_TRACE(testing::Message() << channels << " channels, " << taps << " taps, seed " << seed);
    std::mt19937 random(seed);
    for (int32_t count = -1; count < 36; ++count)
        for (int32_t round = 0; round < 20; ++round) {
            const RandomColumns columns(random, channels, taps, count, close);
            Bytes expected(columns.first.size() * static_cast<size_t>(channels) + 64, 0x5A);
            Bytes found = expected;
            const auto run = [&](const K &k, Bytes &out) {
                (channels == 1 ? k.columns1 : k.columns4)(out.data(), columns.src.data(), columns.table, count);
            };
            run(tables[0], expected);
            run(tables[1], found);
            ASSERT_EQ(expected, found) << count;
        }
}

TEST(ScaleKernels, Columns) {
    for (const int32_t channels : {1, 4})
        for (const int32_t taps : {2, 4, 6, 8, 14, 20})
            for (const bool close : {false, true}) CheckColumns(channels, taps, close);
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
