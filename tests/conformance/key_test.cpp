// Key records: defaults, the operator's view of a raw key, the part of an entry.
#include "keying/key/key.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace conformance {
namespace {

TEST(KeyRecord, Defaults) {
    const CK_ADJUST a = zck::AdjustDefaults();
    const double want[16] = {0, 0.1, 0, 0.25, 0.4, 0.9, 0, 0.05, 1.0, 0.3, -0.25, -0.05, -0.05, 0.66, 0.66, 0.66};
    double got[16];
    std::memcpy(got, &a, sizeof got);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(got[i], want[i]) << i;
}

TEST(KeyRecord, EnumerationsAndSizes) {
    EXPECT_EQ(eCKT_Alpha, 0);
    EXPECT_EQ(eCKT_None, 1);
    EXPECT_EQ(eCKT_RGB, 2);
    EXPECT_EQ(eCKT_HLS, 3);
    EXPECT_EQ(eCKT_YUV, 4);
    EXPECT_EQ(eCKT_Auto, 5);
    EXPECT_EQ(eCKA_KeyType, 0);
    EXPECT_EQ(eCKA_ExcludePower, 7);
    EXPECT_EQ(eCKA_Power_R_H_Y, 9);
    EXPECT_EQ(eCKA_Colors_Range, 12);
    EXPECT_EQ(eCKA_Colors_Alpha, 16);
    EXPECT_EQ(sizeof(CHROMA_KEY_RAW), 8U + 16 * 40 + 6 * 4);
    EXPECT_EQ(sizeof(CK_ADJUST), 16U * 8);
}

CK_ADJUST Model(const CHROMA_KEY_RAW &raw, int32_t index) {
    CK_ADJUST a = {};
    const SINGLE_KEY &key = raw.arrKeys[index < 1 ? 0 : index];
    const double r = key.nCancelRange / 255.0;
    if (r <= 0) {
        a.colAdjust = {1.0, 0.3, -0.25, -0.05, -0.05};
    } else {
        a.dblColors = r;
        a.colAdjust = {1.0, key.nCancelPower / 255.0 / r, key.nCancelChroma / 255.0 / r, key.nCancelLuma / 255.0 / r,
                       key.nCancelAlpha / 255.0 / r};
    }
    a.dblTransparent = key.nSmoothRange / 255.0;
    a.dblSmooth = raw.nEdgesSmooth / 10.0;
    a.dblMinTransparent = raw.nMinTransparent / 255.0;
    a.dblMaxTransparent = raw.nMaxTransparent / 255.0;
    return a;
}

TEST(KeyRecord, AdjustFromRandomRawKeys) {
    std::mt19937 random(5);
    for (int i = 0; i < 5000; ++i) {
        CHROMA_KEY_RAW raw = {};
        auto *words = reinterpret_cast<int32_t *>(&raw);
        for (size_t w = 0; w < sizeof raw / 4; ++w) words[w] = static_cast<int32_t>(random() % 700) - 200;
        if (i % 10 == 0)
            for (SINGLE_KEY &key : raw.arrKeys) key.nCancelRange = 0;
        for (const int32_t index : {-1, 0, 1, 7, 15}) {
            const CK_ADJUST got = zck::AdjustFromRaw(raw, index), want = Model(raw, index);
            ASSERT_EQ(std::memcmp(&got, &want, sizeof got), 0) << index;
        }
    }
    const CHROMA_KEY_RAW zero = {};
    const CK_ADJUST a = zck::AdjustFromRaw(zero, -1);
    EXPECT_EQ(a.dblPower, 0);
    EXPECT_EQ(a.dblExclTransparent, 0);
    EXPECT_EQ(a.rangeAdjust.dblRangeR_H_Y, 0);
    EXPECT_EQ(a.colAdjust.dblCancelPower, 0.3);
}

TEST(KeyRecord, PartsOfAnEntry) {
    for (const int32_t delta : {0, 1, -1, 0x00101010, static_cast<int32_t>(0xFF000000)})
        for (const int32_t alpha : {0, 254, 255, 256, -1})
            for (const int32_t reverse : {-1, 0, 1, 5})
                for (int cancel = 0; cancel < 5; ++cancel) {
                    SINGLE_KEY k = {};
                    k.nDelta = delta;
                    k.nAlpha = alpha;
                    k.nReverseKey = reverse;
                    k.nCancelRange = 7;    // has no say
                    (cancel == 1   ? k.nCancelPower
                     : cancel == 2 ? k.nCancelChroma
                     : cancel == 3 ? k.nCancelLuma
                     : cancel == 4 ? k.nCancelAlpha
                                   : k.nCancelRange) = -3;
                    EXPECT_EQ(zck::IsAlphaKey(k), delta != 0 && alpha != 255 && reverse <= 0);
                    EXPECT_EQ(zck::IsReverseKey(k), delta != 0 && alpha != 255 && reverse > 0);
                    EXPECT_EQ(zck::IsSpillKey(k), delta != 0 && reverse <= 0 && cancel != 0);
                }
    CHROMA_KEY_RAW raw = {};
    for (const int32_t used : {INT32_MIN, -1, 0, 1, 15, 16, 17, 20, INT32_MAX}) {
        raw.nKeysUsed = used;
        EXPECT_EQ(zck::KeysUsed(raw), used < 0 ? 0 : used > 16 ? 16 : used);
        EXPECT_EQ(raw.nKeysUsed, used);
    }
}

}    // namespace
}    // namespace conformance
