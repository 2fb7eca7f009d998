// The kernels against each other and against the witness: every byte, guard zones included, and walks over every mask byte
// with every value byte.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "keying/spill/spill_plan.h"
#include "tests/keying/spill/witness.h"

namespace zck {
namespace {

constexpr size_t kGuard = 64;
constexpr uint8_t kGuardByte = 0xA5;

SpillKernels Filled(void (*init)(SpillKernels *)) {
    SpillKernels table = {};
    init(&table);
    return table;
}

// Asked of the compiler's run time, so that no mask of our own hides a processor's level.
bool Avx2Here() { return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0; }

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

std::vector<SpillKernels> Tables() {
    std::vector<SpillKernels> tables = {Filled(SpillKernelsInitRef)};
    if (Avx2Here()) tables.push_back(Filled(SpillKernelsInitAvx2));
    return tables;
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
    const std::vector<SpillKernels> tables = Tables();
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
    const std::vector<SpillKernels> tables = Tables();
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
        if (!Avx2Here()) GTEST_SKIP() << "this processor has no AVX2: nothing to compare";
        m_seed = std::random_device{}();
        m_random.seed(m_seed);
        std::printf("seed %u\n", m_seed);
    }

    // Runs of 0 and of 255 are what the vector path treats apart.
    void FillMask(std::vector<uint8_t> *row) {
        for (size_t i = 0; i < row->size();) {
            const uint32_t kind = static_cast<uint32_t>(m_random()) % 4;
            for (size_t n = m_random() % 20 + 1; n > 0 && i < row->size(); --n, ++i) {
                (*row)[i] = kind == 0 ? uint8_t{0} : kind == 1 ? uint8_t{255} : static_cast<uint8_t>(m_random());
            }
        }
    }

    struct Buffer {
        std::vector<uint8_t> bytes;
        size_t begin;
        uint8_t *Data() { return bytes.data() + begin; }
    };

    // Bytes at a misalignment between guard zones; no room at all behind a source, for memory checkers.
    Buffer Make(size_t size, size_t misalignment, size_t guard) {
        Buffer b = {std::vector<uint8_t>(kGuard + misalignment + size + guard, kGuardByte), kGuard + misalignment};
        for (size_t i = 0; i < size; ++i) b.bytes[b.begin + i] = static_cast<uint8_t>(m_random());
        return b;
    }

    static bool GuardsHold(const Buffer &b, size_t size) {
        for (size_t i = 0; i < b.bytes.size(); ++i) {
            if ((i < b.begin || i >= b.begin + size) && b.bytes[i] != kGuardByte) return false;
        }
        return true;
    }

    std::mt19937 m_random;
    uint32_t m_seed = 0;
    const SpillKernels m_ref = Filled(SpillKernelsInitRef);
    const SpillKernels m_avx2 = Filled(SpillKernelsInitAvx2);
};

TEST_F(SpillVectors, EveryEntryIsFilledAndIsAnotherFunctionThanTheReference) {
    constexpr size_t kEntries = sizeof(SpillKernels) / sizeof(void *);
    std::array<void *, kEntries> ref = {};
    std::array<void *, kEntries> avx2 = {};
    std::memcpy(ref.data(), &m_ref, sizeof m_ref);
    std::memcpy(avx2.data(), &m_avx2, sizeof m_avx2);
    for (size_t i = 0; i < kEntries; ++i) {
        EXPECT_NE(ref[i], nullptr) << i;
        EXPECT_NE(avx2[i], nullptr) << i;
        EXPECT_NE(ref[i], avx2[i]) << i;
    }
}

TEST_F(SpillVectors, ScaleOfAllWidths) {
    for (int32_t width = 0; width <= 300; ++width) {
        for (size_t mis = 0; mis < 32; ++mis) {
            Buffer row = Make(static_cast<size_t>(width), mis * 7 % 32, 0);
            if (mis % 4 == 1) std::memset(row.Data(), 255, static_cast<size_t>(width));
            const auto half = static_cast<size_t>(width / 2);
            Buffer one = Make(half, mis, kGuard);
            Buffer two = one;
            m_ref.scale(one.Data(), row.Data(), width);
            m_avx2.scale(two.Data(), row.Data(), width);
            ASSERT_EQ(one.bytes, two.bytes) << "width " << width << ", seed " << m_seed;
            ASSERT_TRUE(GuardsHold(one, half));
            const std::vector<uint8_t> plain(row.Data(), row.Data() + width);
            ASSERT_EQ(std::vector<uint8_t>(one.Data(), one.Data() + half), test::WitnessScale(plain)) << "width " << width;
        }
    }
}

TEST_F(SpillVectors, ScaleOfWideOddRows) {
    for (const int32_t width : {1919, 1921, 4095, 8193, 65537, 8388609, 9000001}) {
        Buffer row = Make(static_cast<size_t>(width), 3, 0);
        const auto half = static_cast<size_t>(width / 2);
        Buffer one = Make(half, 1, kGuard);
        Buffer two = one;
        m_ref.scale(one.Data(), row.Data(), width);
        m_avx2.scale(two.Data(), row.Data(), width);
        ASSERT_TRUE(one.bytes == two.bytes) << "width " << width << ", seed " << m_seed;
    }
}

TEST_F(SpillVectors, BlockAndPixelRowsOfAllCounts) {
    for (int32_t count = -1; count <= 40; ++count) {
        for (size_t mis = 0; mis < 32; ++mis) {
            const auto &strength = kStrengths[(static_cast<size_t>(count + 1) * 5 + mis) % std::size(kStrengths)];
            const int32_t colour = kColours[mis % std::size(kColours)];
            const SpillPlan plan = PlanOf(colour, strength, 2);
            const bool lumaFirst = mis % 2 != 0;
            const SpillBlockKey block = SpillBlockKeyOf(plan, plan.entries[0], lumaFirst);
            const SpillPixelKey pixel = SpillPixelKeyOf(plan, plan.entries[0], lumaFirst);
            const auto pixels = static_cast<size_t>(std::max(count, 0));

            std::vector<uint8_t> mask(8 * pixels);
            FillMask(&mask);
            Buffer one = Make(32 * pixels, mis, kGuard);
            Buffer two = one;
            m_ref.block(one.Data(), mask.data(), count, &block);
            m_avx2.block(two.Data(), mask.data(), count, &block);
            ASSERT_EQ(one.bytes, two.bytes) << "blocks " << count << ", seed " << m_seed;
            ASSERT_TRUE(GuardsHold(one, 32 * pixels));

            std::vector<uint8_t> few(mask.begin(), mask.begin() + count * (count > 0));
            one = Make(4 * pixels, mis, kGuard);
            two = one;
            m_ref.pixel(one.Data(), few.data(), count, &pixel);
            m_avx2.pixel(two.Data(), few.data(), count, &pixel);
            ASSERT_EQ(one.bytes, two.bytes) << "count " << count << ", seed " << m_seed;
            ASSERT_TRUE(GuardsHold(one, 4 * pixels));
        }
    }
}

}    // namespace
}    // namespace zck
