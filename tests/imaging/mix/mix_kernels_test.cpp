// Each vector row against its reference, and each reference against its formula over all values.
#include "imaging/mix/mix_kernels.h"

#include "imaging/primitives/row_kernels.h"
#include "tests/support/kernel_check.h"

namespace zck {
namespace {

using test::CheckKernel;
using test::KernelShape;
using test::Sources;
using test::Times;
using K = MixKernels;

constexpr int32_t kFactors[] = {0, 1, 2, 3, 64, 127, 128, 129, 200, 254, 255, 256};

class MixRows : public testing::Test {
protected:
    void SetUp() override {
        if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2";
        ref = kFamily.Make(KernelLevel::Reference);
        vec = kFamily.Make(KernelLevel::Avx2);
    }

    static constexpr KernelFamily<K> kFamily = {MixKernelsInitRef, MixKernelsInitAvx2};
    K ref = {};
    K vec = {};
};

TEST_F(MixRows, EveryEntryHasTwoDifferentFunctions) { test::ExpectAllEntriesDiffer(ref, vec); }

TEST_F(MixRows, TheTableFollowsTheLevel) {
    EXPECT_EQ(MixKernelsGet().blend, vec.blend);
    KernelLevelLimit(KernelLevel::Reference);
    EXPECT_EQ(MixKernelsGet().blend, ref.blend);
    KernelLevelLimit(kKernelLevelHighest);
    EXPECT_EQ(MixKernelsGet().blend, vec.blend);
}

TEST_F(MixRows, ConstantMixes) {
    for (const int32_t q : {0, 1, 37, 64, 127, 128})
        CheckKernel("constant", ref, vec, {Times(1), Times(1), 100},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.constant(d, s, q, n); });
    for (const int32_t a : kFactors)
        CheckKernel("blend", ref, vec, {Times(1), Times(1), 68},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.blend(d, s, a, n); });
}

TEST_F(MixRows, WeightedMixes) {
    KernelShape shape = {Times(1), Times(1), 100};
    shape.others = {Times(1)};
    CheckKernel("weighted", ref, vec, shape, [](const K &k, uint8_t *d, const Sources &s, int32_t n) {
        test::Bytes weights(s[1], s[1] + std::max(n, 0));
        for (uint8_t &w : weights) w = static_cast<uint8_t>(w % 129);
        k.weighted(d, s[0], weights.data(), n);
    });
}

TEST_F(MixRows, Weights) {
    for (const int32_t a : {0, 1, 64, 127, 128}) {
        CheckKernel("weights2", ref, vec, {Times(4), Times(2), 36},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.weights2(d, s, a, n); });
        CheckKernel("weights3", ref, vec, {Times(4), Times(3), 36},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.weights3(d, s, a, n); });
        CheckKernel("weights4", ref, vec, {Times(4), Times(4), 36},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.weights4(d, s, a, n); });
    }
}

TEST_F(MixRows, OverScaled) {
    for (const int32_t value : {0, 1, 77, 128, 254, 255})
        CheckKernel("over_scaled", ref, vec, {Times(4), Times(4), 36},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
                        k.over_scaled(d, s, static_cast<uint8_t>(value), 8, n);
                    });
    for (const int32_t value : {0, 1, 77, 127})
        CheckKernel("over_scaled", ref, vec, {Times(4), Times(4), 36},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
                        k.over_scaled(d, s, static_cast<uint8_t>(value), 7, n);
                    });
}

TEST_F(MixRows, MixesByMask) {
    KernelShape shape = {Times(2), Times(2), 36};
    shape.others = {Times(1)};
    KernelShape four = {Times(4), Times(4), 36};
    four.others = {Times(1)};
    for (const int32_t a : kFactors) {
        SCOPED_TRACE(a);
        CheckKernel("premultiplied_uyvy", ref, vec, shape,
                    [=](const K &k, uint8_t *d, const Sources &s, int32_t n) { k.premultiplied_uyvy(d, s[0], s[1], a, n); });
        CheckKernel("premultiplied_yuy2", ref, vec, shape,
                    [=](const K &k, uint8_t *d, const Sources &s, int32_t n) { k.premultiplied_yuy2(d, s[0], s[1], a, n); });
        CheckKernel("masked_uyvy", ref, vec, shape,
                    [=](const K &k, uint8_t *d, const Sources &s, int32_t n) { k.masked_uyvy(d, s[0], s[1], a, n); });
        CheckKernel("masked_yuy2", ref, vec, shape,
                    [=](const K &k, uint8_t *d, const Sources &s, int32_t n) { k.masked_yuy2(d, s[0], s[1], a, n); });
        CheckKernel("masked4", ref, vec, four,
                    [=](const K &k, uint8_t *d, const Sources &s, int32_t n) { k.masked4(d, s[0], s[1], a, n); });
    }
}

// Where a step rounds, noise is not enough: all bytes of the target and the overlay, for each factor.
class AllBytes : public MixRows {
protected:
    AllBytes() : over(65536), under(65536) {
        for (size_t i = 0; i < 65536; ++i) {
            over[i] = static_cast<uint8_t>(i);
            under[i] = static_cast<uint8_t>(i >> 8);
        }
    }
    template <class Call>
    void Same(const Call &call) {
        test::Bytes one = under;
        test::Bytes two = under;
        call(ref, one.data());
        call(vec, two.data());
        ASSERT_EQ(one, two);
    }

    test::Bytes over;
    test::Bytes under;
};

TEST_F(AllBytes, ConstantAndBlend) {
    for (int32_t q = 0; q <= 128; ++q) Same([&](const K &k, uint8_t *d) { k.constant(d, over.data(), q, 65536); });
    for (int32_t a = 0; a <= 256; ++a) Same([&](const K &k, uint8_t *d) { k.blend(d, over.data(), a, 65536); });
}

TEST_F(AllBytes, Masks) {
    for (int32_t mask = 0; mask < 256; ++mask)
        for (const int32_t a : kFactors) {
            const test::Bytes row(32768, static_cast<uint8_t>(mask));
            Same([&](const K &k, uint8_t *d) { k.premultiplied_uyvy(d, over.data(), row.data(), a, 32768); });
            Same([&](const K &k, uint8_t *d) { k.masked_yuy2(d, over.data(), row.data(), a, 32768); });
            Same([&](const K &k, uint8_t *d) { k.masked4(d, over.data(), row.data(), a, 16384); });
        }
}

// Half of both, each rounded to the nearest with ties to even, then added: 1 gives 0, 3 gives 2.
TEST(MixReference, AConstantMixRoundsTiesToEven) {
    K k = {};
    MixKernelsInitRef(&k);
    uint8_t d[] = {1, 3, 5, 255, 0, 1, 254};
    const uint8_t s[] = {1, 1, 5, 255, 3, 3, 255};
    k.constant(d, s, 64, 7);
    EXPECT_EQ(test::Bytes(d, d + 7), (test::Bytes{0, 2, 4, 255, 2, 2, 255}));
}

TEST(MixReference, WeightsOf422NeverReachTheWhole) {
    K k = {};
    MixKernelsInitRef(&k);
    const uint8_t bgra[] = {1, 2, 3, 255};
    uint8_t q[4] = {};
    k.weights2(q, bgra, 128, 1);
    EXPECT_EQ(q[0], 127);
    k.weights3(q, bgra, 128, 1);
    EXPECT_EQ(q[2], 128);
}

// An opaque pixel in the tail counts as 256 and replaces the target; in a block it leaves nothing of it either.
TEST(MixReference, OpaquePixelsReplaceTheTarget) {
    K k = {};
    MixKernelsInitRef(&k);
    test::Bytes d(20, 200);
    const test::Bytes s(20, 90);
    const test::Bytes mask(10, 255);
    k.premultiplied_uyvy(d.data(), s.data(), mask.data(), 256, 10);
    EXPECT_EQ(d, s);
}

// An empty pixel is black, neutral and transparent. Blocks leave one unit of rounding, the tail none.
TEST(MixReference, EmptyPixelsLeaveTheTarget) {
    K k = {};
    MixKernelsInitRef(&k);
    for (int32_t value = 0; value < 256; ++value) {
        test::Bytes d(20, static_cast<uint8_t>(value));
        test::Bytes s(20, 128);
        for (size_t i = 1; i < s.size(); i += 2) s[i] = 16;
        const test::Bytes mask(10, 0);
        k.premultiplied_uyvy(d.data(), s.data(), mask.data(), 256, 10);
        for (size_t i = 0; i < 20; ++i) EXPECT_NEAR(d[i], value, i < 16 ? 1 : 0) << i;
    }
}

TEST(MixReference, AnOddLastPixelStaysOrGoesByItsOwnMask) {
    K k = {};
    MixKernelsInitRef(&k);
    const test::Bytes s(6, 40);
    const uint8_t mask[] = {255, 0, 128};
    test::Bytes d(6, 200);
    k.premultiplied_yuy2(d.data(), s.data(), mask, 256, 3);
    EXPECT_EQ(d[4], 200);
    EXPECT_EQ(d[5], 200);
    d.assign(6, 200);
    k.masked_yuy2(d.data(), s.data(), mask, 256, 3);
    // The chroma bytes of the first pair follow their own pixels too.
    EXPECT_EQ(d, (test::Bytes{40, 40, 200, 200, 120, 120}));
}

// At 255 the blocks take the mask as it is, the tail multiplies it.
TEST(MixReference, TheTailMultipliesTheMaskByAlmostOne) {
    K k = {};
    MixKernelsInitRef(&k);
    test::Bytes d(18, 0);
    const test::Bytes s(18, 255);
    const test::Bytes mask(9, 255);
    k.masked_uyvy(d.data(), s.data(), mask.data(), 255, 9);
    EXPECT_EQ(d[0], 255);
    EXPECT_EQ(d[16], 254);
}

TEST(MixReference, AMaskDarkensAtOpacityZero) {
    K k = {};
    MixKernelsInitRef(&k);
    test::Bytes d(4, 100);
    const test::Bytes s(4, 255);
    const uint8_t mask[] = {128};
    k.masked4(d.data(), s.data(), mask, 0, 1);
    EXPECT_EQ(d, test::Bytes(4, (127 * 100 + 255) >> 8));
}

// The offsets of chroma cancel out in a blend.
TEST(MixReference, ABlendIsTheSameAroundAnyOffset) {
    K k = {};
    MixKernelsInitRef(&k);
    for (int32_t a = 0; a <= 256; ++a)
        for (int32_t o = 0; o < 256; o += 5)
            for (int32_t t = 0; t < 256; ++t) {
                auto d = static_cast<uint8_t>(t);
                const auto s = static_cast<uint8_t>(o);
                k.blend(&d, &s, a, 1);
                ASSERT_EQ(d, (((o - 128) * a + (t - 128) * (256 - a)) >> 8) + 128);
            }
}

}    // namespace
}    // namespace zck
