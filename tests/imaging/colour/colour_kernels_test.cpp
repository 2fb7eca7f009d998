// The BT.709 pair and 10-bit packing: against their formulas over all arguments, and vector against reference.
#include "imaging/colour/colour_kernels.h"

#include "tests/support/kernel_check.h"

namespace zck {
namespace {

using test::Bytes;
using test::CheckKernel;
using test::Times;
using K = ColourKernels;

std::vector<K> Levels() { return test::TablesOf<K>({ColourKernelsInitRef, ColourKernelsInitAvx2}); }

TEST(ColourKernels, VectorsGiveTheBytesOfTheReference) {
    if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2";
    const std::vector<K> tables = Levels();
    const K &ref = tables[0];
    const K &vec = tables[1];
    test::ExpectAllEntriesDiffer(ref, vec);
    CheckKernel("decode709", ref, vec, {Times(4), Times(8), 36},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.decode709(d, s, n); });
    CheckKernel("encode709", ref, vec, {Times(16), Times(8), 20},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.encode709(d, s, n); });
    CheckKernel("pack_uyvy", ref, vec, {Times(12), Times(16), 12},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.pack_uyvy(d, s, n); });
    CheckKernel("pack_yuy2", ref, vec, {Times(12), Times(16), 12},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.pack_yuy2(d, s, n); });
    CheckKernel("unpack_uyvy", ref, vec, {Times(16), Times(12), 12},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.unpack_uyvy(d, s, n); });
}

// Before anything else: a limit at the first call must not stay.
const K &FirstTable() {
    KernelLevelLimit(KernelLevel::Reference);
    const K &table = ColourKernelsGet();
    KernelLevelLimit(kKernelLevelHighest);
    return table;
}
const K &kFirstTable = FirstTable();

TEST(ColourKernels, TheTableFollowsTheLevel) {
    const std::vector<K> tables = Levels();
    EXPECT_EQ(kFirstTable.decode709, tables.front().decode709);
    EXPECT_EQ(ColourKernelsGet().decode709, tables.back().decode709);
    KernelLevelLimit(KernelLevel::Reference);
    EXPECT_EQ(ColourKernelsGet().decode709, tables.front().decode709);
    KernelLevelLimit(kKernelLevelHighest);
}

TEST(ColourKernels, DecoderOverAllTriples) {
    Bytes src(128 * 4), dst(128 * 8);
    for (const K &k : Levels())
        for (int32_t uv = 0; uv < 65536; ++uv) {
            for (size_t i = 0; i < 128; ++i) {
                src[4 * i] = static_cast<uint8_t>(uv >> 8);
                src[4 * i + 1] = static_cast<uint8_t>(2 * i);
                src[4 * i + 2] = static_cast<uint8_t>(uv);
                src[4 * i + 3] = static_cast<uint8_t>(2 * i + 1);
            }
            k.decode709(dst.data(), src.data(), 128);
            const int32_t u = (uv >> 8) - 128, v = (uv & 255) - 128;
            int32_t wrong = 0;
            for (int32_t y = 0; y < 256; ++y) {
                const uint8_t *p = &dst[4 * static_cast<size_t>(y)];
                const int32_t luma = 298 * (y - 16);
                wrong += p[0] != std::clamp((luma + 542 * u) >> 8, 0, 255);
                wrong += p[1] != std::clamp((luma - 55 * u - 137 * v) >> 8, 0, 255);
                wrong += p[2] != std::clamp((luma + 459 * v) >> 8, 0, 255);
                wrong += p[3] != 255;
            }
            ASSERT_EQ(wrong, 0) << u << " " << v;
        }
}

TEST(ColourKernels, DecoderClampBeforeOrAfterTheShiftIsOne) {
    for (int32_t sum = -200000; sum < 200000; ++sum) ASSERT_EQ(std::clamp(sum, 0, 65535) >> 8, std::clamp(sum >> 8, 0, 255));
}

TEST(ColourKernels, EncoderOverAllColours) {
    // 256 blocks of one red and green: each blue four times.
    Bytes src(256 * 16, 77), dst(256 * 8);
    for (const K &k : Levels())
        for (int32_t rg = 0; rg < 65536; ++rg) {
            const int32_t r = rg >> 8, g = rg & 255;
            for (size_t i = 0; i < 1024; ++i) {
                src[4 * i] = static_cast<uint8_t>(i / 4);
                src[4 * i + 1] = static_cast<uint8_t>(g);
                src[4 * i + 2] = static_cast<uint8_t>(r);
            }
            k.encode709(dst.data(), src.data(), 256);
            int32_t wrong = 0;
            for (int32_t b = 0; b < 256; ++b) {
                const int32_t cb = (2 * (112 * b - 87 * g - 26 * r + 32895)) >> 9;
                const int32_t y = (16 * b + 157 * g + 49 * r + 4080) >> 8;
                const int32_t cr = (2 * (-10 * b - 102 * g + 112 * r + 32895)) >> 9;
                for (size_t pair = 0; pair < 2; ++pair) {
                    const uint8_t *p = &dst[8 * static_cast<size_t>(b) + 4 * pair];
                    wrong += p[0] != cb || p[1] != y || p[2] != cr || p[3] != y;
                }
            }
            ASSERT_EQ(wrong, 0) << "red " << r << " green " << g;
        }
}

TEST(ColourKernels, EncoderWorkedValues) {
    const Bytes white(16, 255);
    const Bytes pair = {255, 0, 0, 9, 0, 0, 255, 9, 0, 255, 0, 9, 0, 0, 0, 9};
    for (const K &k : Levels()) {
        Bytes dst(8);
        k.encode709(dst.data(), white.data(), 1);
        // Not scaled to 235.
        EXPECT_EQ(dst, (Bytes{127, 237, 128, 237, 127, 237, 128, 237}));
        k.encode709(dst.data(), pair.data(), 1);
        // Blue 16 * 255 + 4080 = 8160, red 16575, green 44115, black 4080; the chroma of each pair from the sum.
        EXPECT_EQ(dst, (Bytes{171, 31, 179, 64, 85, 172, 77, 15}));
    }
}

TEST(ColourKernels, EncoderRestDiffersFromTheBlockByOneAtMost) {
    int32_t differ = 0;
    std::mt19937 random(5);
    for (int32_t round = 0; round < 200000; ++round) {
        uint8_t px[16] = {};
        for (int i = 0; i < 8; ++i) px[i] = static_cast<uint8_t>(random() >> 8);
        uint8_t block[8], rest[4];
        Levels()[0].encode709(block, px, 1);
        Encode709Rest(rest, px, px + 4);
        for (int i = 0; i < 4; ++i) {
            ASSERT_LE(std::abs(block[i] - rest[i]), 1);
            differ += block[i] != rest[i];
        }
        ASSERT_EQ(rest[1], ((16 * px[0] + 157 * px[1] + 49 * px[2]) >> 8) + 16);
        ASSERT_EQ(rest[0],
                  std::clamp(((112 * (px[0] + px[4]) - 87 * (px[1] + px[5]) - 26 * (px[2] + px[6])) >> 9) + 128, 0, 255));
        ASSERT_EQ(rest[2],
                  std::clamp(((-10 * (px[0] + px[4]) - 102 * (px[1] + px[5]) + 112 * (px[2] + px[6])) >> 9) + 128, 0, 255));
    }
    EXPECT_GT(differ, 1000);
}

TEST(ColourKernels, TenBitBlocks) {
    // Components 0 to 11 of a block in the order of UYVY, each its own value.
    const Bytes uyvy = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xFE, 0xDC, 0xBA, 0x98};
    Bytes yuy2(12);
    for (size_t i = 0; i < 12; ++i) yuy2[i] = uyvy[i ^ 1];
    const auto word = [](uint32_t a, uint32_t b, uint32_t c) { return a << 2 | b << 12 | c << 22; };
    const uint32_t words[] = {word(0x01, 0x23, 0x45), word(0x67, 0x89, 0xAB), word(0xCD, 0xEF, 0xFE), word(0xDC, 0xBA, 0x98)};
    Bytes expected;
    for (const uint32_t w : words)
        for (int i = 0; i < 4; ++i) expected.push_back(static_cast<uint8_t>(w >> (8 * i)));
    for (const K &k : Levels()) {
        Bytes packed(16);
        k.pack_uyvy(packed.data(), uyvy.data(), 1);
        EXPECT_EQ(packed, expected);
        k.pack_yuy2(packed.data(), yuy2.data(), 1);
        EXPECT_EQ(packed, expected);
        // The low bits and the unused top bits are dropped.
        for (size_t i = 0; i < 16; i += 4) {
            packed[i] |= 3;
            packed[i + 1] |= 0x0C;
            packed[i + 2] |= 0x30;
            packed[i + 3] |= 0xC0;
        }
        Bytes back(12);
        k.unpack_uyvy(back.data(), packed.data(), 1);
        EXPECT_EQ(back, uyvy);
    }
}

}    // namespace
}    // namespace zck
