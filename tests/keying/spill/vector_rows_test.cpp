// The kernels against each other and against the witness: every byte, guard zones included, and walks over every mask byte
// with every value byte.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <vector>

#include "keying/spill/spill_plan.h"
#include "tests/keying/spill/witness.h"
#include "tests/support/kernel_check.h"

namespace zck {
namespace {

constexpr KernelFamily<SpillKernels> kFamily = {SpillKernelsInitRef, SpillKernelsInitAvx2};

constexpr int32_t kStrengths[][3] = {{0, 0, 0},
                                     {76, -64, -13},
                                     {-76, 64, 13},
                                     {1, -1, 1},
                                     {-3, 1, -1},
                                     {511, -20, 31},
                                     {-2000, 129, -700},
                                     {4095, 4096, -4096},
                                     {20000, -300, 77},
                                     {-40000, 9000, 32767},
                                     {INT32_MIN, 16384, -32768},
                                     {INT32_MAX, INT32_MIN, INT32_MAX},
                                     {300, 16383, INT32_MIN},
                                     {120, -16, 200}};
constexpr int32_t kColours[] = {0x0000FF00, 0x00FF0000, 0x000000FF, 0x00102030, 0x00FFFFFF};

SpillPlan PlanOf(int32_t value, const int32_t *strength, int32_t cancel) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.bColorCancel = cancel;
    key.arrKeys[0] = {value, 0x00282828, 0, 0, 0, strength[0], strength[1], strength[2], 1, 0};
    return SpillPlanMake(key);
}

// 256 masks by 256 values, as macro pixels of four like bytes. The masks come in runs of 256 and change from one to the next.
struct Walk {
    std::vector<uint8_t> pixels = std::vector<uint8_t>(4 * 65536);
    std::vector<uint8_t> mask = std::vector<uint8_t>(65536);

    explicit Walk(bool mixed) {
        for (size_t i = 0; i < 65536; ++i) {
            const size_t m = mixed ? i & 255 : i >> 8;
            const size_t v = mixed ? i >> 8 : i & 255;
            mask[i] = static_cast<uint8_t>(m);
            std::memset(&pixels[4 * i], static_cast<int>(v), 4);
        }
    }
};

TEST(SpillWalk, BlockPathOverEveryMaskAndValue) {
    const std::vector<SpillKernels> tables = test::TablesOf(kFamily);
    for (const int32_t colour : kColours) {
        for (const auto &strength : kStrengths) {
            const SpillPlan plan = PlanOf(colour, strength, 1);
            const SINGLE_KEY entry = {0, 0, 0, 0, 0, strength[0], strength[1], strength[2], 0, 0};
            for (int i = 0; i < 4; ++i) {
                const bool lumaFirst = (i & 1) != 0;
                const Walk start((i & 2) != 0);
                const SpillBlockKey key = SpillBlockKeyOf(plan, plan.entries[0], lumaFirst);
                for (size_t level = 0; level < tables.size(); ++level) {
                    Walk w = start;
                    tables[level].block(w.pixels.data(), w.mask.data(), 65536 / 8, &key);
                    for (size_t x = 0; x < 65536; ++x) {
                        const uint8_t v = start.pixels[4 * x];
                        const uint8_t luma = test::WitnessBlockLuma(v, w.mask[x], plan.colour.y, entry);
                        const uint8_t u = test::WitnessBlockChroma(v, w.mask[x], plan.colour.u, entry);
                        const uint8_t c = test::WitnessBlockChroma(v, w.mask[x], plan.colour.v, entry);
                        const std::array<uint8_t, 4> want =
                            lumaFirst ? std::array<uint8_t, 4>{luma, u, luma, c} : std::array<uint8_t, 4>{u, luma, c, luma};
                        ASSERT_EQ(std::memcmp(&w.pixels[4 * x], want.data(), 4), 0)
                            << "level " << level << ", colour " << colour << ", power " << strength[0] << ", mask "
                            << int{w.mask[x]} << ", value " << int{v};
                    }
                }
            }
        }
    }
}

TEST(SpillWalk, PerPixelPathOverEveryMaskAndValue) {
    const std::vector<SpillKernels> tables = test::TablesOf(kFamily);
    for (const int32_t colour : kColours) {
        for (const auto &strength : kStrengths) {
            const SpillPlan plan = PlanOf(colour, strength, 2);
            const SINGLE_KEY entry = {0, 0, 0, 0, 0, strength[0], strength[1], strength[2], 0, 0};
            for (const bool lumaFirst : {false, true}) {
                const Walk start(true);
                const SpillPixelKey key = SpillPixelKeyOf(plan, plan.entries[0], lumaFirst);
                for (size_t level = 0; level < tables.size(); ++level) {
                    Walk w = start;
                    tables[level].pixel(w.pixels.data(), w.mask.data(), 65536, &key);
                    for (size_t x = 0; x < 65536; ++x) {
                        std::array<uint8_t, 4> want;
                        std::memcpy(want.data(), &start.pixels[4 * x], 4);
                        uint8_t *y = want.data() + (lumaFirst ? 0 : 1);
                        uint8_t *c = want.data() + (lumaFirst ? 1 : 0);
                        test::WitnessPixel(y, c, y + 2, c + 2, w.mask[x], plan.colour.u, plan.colour.v, key.mode, entry);
                        ASSERT_EQ(std::memcmp(&w.pixels[4 * x], want.data(), 4), 0)
                            << "level " << level << ", colour " << colour << ", power " << strength[0] << ", mask "
                            << int{w.mask[x]} << ", value " << int{start.pixels[4 * x]};
                    }
                }
            }
        }
    }
}

class SpillVectors : public testing::Test {
protected:
    void SetUp() override {
        if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2: nothing to compare";
        m_ref = kFamily.Make(KernelLevel::Reference);
        m_avx2 = kFamily.Make(KernelLevel::Avx2);
    }

    SpillKernels m_ref = {};
    SpillKernels m_avx2 = {};
};

TEST_F(SpillVectors, EveryEntryIsFilledAndIsAnotherFunctionThanTheReference) { test::ExpectAllEntriesDiffer(m_ref, m_avx2); }

TEST_F(SpillVectors, ScaleOfAllWidths) {
    const auto half = [](int32_t width) { return int64_t{width / 2}; };
    test::CheckKernel("scale", m_ref, m_avx2, {test::Times(1), half, 301},
                      [](const SpillKernels &t, uint8_t *mask, const uint8_t *row, int32_t width) {
                          t.scale(mask, row, width);
                          if (width <= 0) return;
                          const std::vector<uint8_t> plain(row, row + width);
                          ASSERT_EQ(std::vector<uint8_t>(mask, mask + width / 2), test::WitnessScale(plain))
                              << "width " << width;
                      });
}

TEST_F(SpillVectors, ScaleOfWideOddRows) {
    std::mt19937 random(test::Seed());
    for (const int32_t width : {1919, 1921, 4095, 8193, 65537, 8388609, 9000001}) {
        test::Bytes row(static_cast<size_t>(width));
        test::FillBytes(row, test::Fill::Noise, random);
        test::Bytes one(static_cast<size_t>(width / 2 + 64), 0xA5);
        test::Bytes two = one;
        m_ref.scale(one.data() + 1, row.data(), width);
        m_avx2.scale(two.data() + 1, row.data(), width);
        ASSERT_TRUE(one == two) << "width " << width << ", " << test::Replay();
    }
}

// A key for each pair of calls; each block and each macro pixel has its mask byte.
struct Turns {
    int32_t calls = 0;
    SpillPlan plan = {};
    bool lumaFirst = false;
    void Next() {
        const auto turn = static_cast<size_t>(calls++ / 2);
        plan = PlanOf(kColours[turn % std::size(kColours)], kStrengths[turn * 5 % std::size(kStrengths)], 2);
        lumaFirst = turn % 2 != 0;
    }
};

TEST_F(SpillVectors, BlockRowsOfAllCounts) {
    Turns turns;
    test::CheckKernel("block", m_ref, m_avx2, {test::Times(8), test::Times(32), 41},
                      [&turns](const SpillKernels &t, uint8_t *pixels, const uint8_t *mask, int32_t blocks) {
                          turns.Next();
                          const SpillBlockKey key = SpillBlockKeyOf(turns.plan, turns.plan.entries[0], turns.lumaFirst);
                          t.block(pixels, mask, blocks, &key);
                      });
}

TEST_F(SpillVectors, PixelRowsOfAllCounts) {
    Turns turns;
    test::CheckKernel("pixel", m_ref, m_avx2, {test::Times(1), test::Times(4), 41},
                      [&turns](const SpillKernels &t, uint8_t *pixels, const uint8_t *mask, int32_t count) {
                          turns.Next();
                          const SpillPixelKey key = SpillPixelKeyOf(turns.plan, turns.plan.entries[0], turns.lumaFirst);
                          t.pixel(pixels, mask, count, &key);
                      });
}

}    // namespace
}    // namespace zck
