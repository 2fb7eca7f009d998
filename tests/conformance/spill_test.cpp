// The anti-spill against whole-frame passes: both paths, both modes, key types, formats, several entries, widths between
// blocks.
#include "keying/spill/spill.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "keying/pipeline/pipeline.h"
#include "platform/processor.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/media_model.h"
#include "tests/conformance/spill_model.h"

namespace conformance {
namespace {

constexpr size_t kGuard = 96;

int32_t Colour(int32_t a, int32_t b, int32_t c, int32_t d = 0) { return a | b << 8 | c << 16 | d << 24; }

int32_t AnyStrength(Dice &dice) {
    const int32_t kinds[] = {0, dice(-64, 64), dice(-300, 300), dice(-3000, 3000), dice(-40000, 40000), dice(-1, 1)};
    return kinds[dice(0, 5)];
}

SINGLE_KEY AnyEntry(Dice &dice) {
    SINGLE_KEY k = {};
    k.nValue = Colour(dice(0, 255), dice(0, 255), dice(0, 255), dice(0, 127));
    k.nDelta = dice(0, 9) == 0 ? 0 : Colour(dice(0, 60), dice(0, 60), dice(0, 60), dice(0, 3) == 0 ? dice(0, 127) : 0);
    k.nAlpha = dice(0, 2) == 0 ? 255 : 0;
    k.nCancelRange = dice(-30, 120);
    k.nCancelPower = AnyStrength(dice);
    k.nCancelChroma = AnyStrength(dice);
    k.nCancelLuma = AnyStrength(dice);
    k.nCancelAlpha = dice(0, 2) == 0 ? dice(-5, 5) : 0;
    k.nReverseKey = dice(0, 7) == 0 ? 1 : dice(-1, 0);
    return k;
}

CHROMA_KEY_RAW AnyKey(Dice &dice) {
    CHROMA_KEY_RAW key = {};
    key.eType = static_cast<eCK_Type>(dice(2, 4));
    key.nKeysUsed = dice(0, 4) == 0 ? 20 : dice(1, 4);
    for (SINGLE_KEY &k : key.arrKeys) k = AnyEntry(dice);
    if (key.nKeysUsed == 20)
        for (int32_t i = 3; i < 15; ++i) key.arrKeys[i].nDelta = 0;    // the last one still counts
    const int32_t paths[] = {1, 2, 2, -1, 3, 0};
    key.bColorCancel = paths[dice(0, 5)];
    key.nInverseKey = dice(0, 3);
    return key;
}

// A key space with pixels at the keys' colours, near them, and anywhere.
Bytes SpaceNear(Dice &dice, const CHROMA_KEY_RAW &key, size_t pixels) {
    Bytes space = dice.Noise(pixels * 4);
    for (size_t i = 0; i < pixels; ++i) {
        if (dice(0, 3) == 0) continue;
        const int32_t value = key.arrKeys[dice(0, 2)].nValue, reach = dice(0, 1) != 0 ? 90 : 12;
        for (int c = 0; c < 3; ++c) {
            const int from = key.eType == eCKT_RGB ? 2 - c : c;
            const int32_t centre = static_cast<int32_t>(static_cast<uint32_t>(value) >> (8 * from) & 255);
            space[i * 4 + static_cast<size_t>(c)] = static_cast<uint8_t>(std::clamp(centre + dice(-reach, reach), 0, 255));
        }
    }
    return space;
}

std::string Text(const CHROMA_KEY_RAW &key) {
    std::string s = "type " + std::to_string(key.eType) + " used " + std::to_string(key.nKeysUsed) + " cancel " +
                    std::to_string(key.bColorCancel) + " inverse " + std::to_string(key.nInverseKey);
    for (int32_t i = 0; i < std::min(key.nKeysUsed, 16); ++i) {
        const SINGLE_KEY &k = key.arrKeys[i];
        s += "\n " + std::to_string(k.nValue) + " delta " + std::to_string(k.nDelta) + " reverse " +
             std::to_string(k.nReverseKey) + " range " + std::to_string(k.nCancelRange) + " strengths " +
             std::to_string(k.nCancelPower) + " " + std::to_string(k.nCancelChroma) + " " + std::to_string(k.nCancelLuma) +
             " " + std::to_string(k.nCancelAlpha);
    }
    return s;
}

size_t SizeOf(const Z_VID_PROPS &p) { return static_cast<size_t>(p.nRowBytes) * static_cast<size_t>(std::abs(p.nHeight)); }

// How many bytes the model changed.
size_t Compare(const Z_VID_PROPS &p, const CHROMA_KEY_RAW &key, Dice &dice) {
    const int64_t stride = StrideOf(p);
    const Bytes space = SpaceNear(dice, key, static_cast<size_t>(stride * std::abs(p.nHeight)));
    const Bytes before = dice.Noise(SizeOf(p) + 2 * kGuard);
    Bytes want(before.begin() + kGuard, before.end() - kGuard);
    const Bytes picture = want;
    const HRESULT should = SpillModel(want, p, key, space);
    size_t changed = 0;
    for (size_t i = 0; i < want.size(); ++i) changed += want[i] != picture[i] ? 1 : 0;
    for (const zck::KernelLevel level : {zck::KernelLevel::Reference, zck::KernelLevel::Avx2}) {
        zck::KernelLevelLimit(level);
        Bytes all = before;
        const zck::SpillImage image = {all.data() + kGuard, static_cast<int64_t>(want.size()),  &p,        stride, space.data(),
                                       stride * 4,          static_cast<int64_t>(space.size()), stride * 4};
        const std::string text = Words(p) + "\n" + Text(key) + (level == zck::KernelLevel::Avx2 ? "\nvector" : "\nreference");
        EXPECT_EQ(zck::SpillCancel(image, zck::SpillPlanMake(key)), should) << text;
        for (size_t i = 0; i < all.size(); ++i) {
            const bool inside = i >= kGuard && i < kGuard + want.size();
            if (all[i] == (inside ? want[i - kGuard] : before[i])) continue;
            const int64_t at = static_cast<int64_t>(i) - static_cast<int64_t>(kGuard);
            ADD_FAILURE() << "at " << at << " (row " << at / p.nRowBytes << ", byte " << at % p.nRowBytes
                          << "): " << static_cast<int>(all[i]) << " instead of "
                          << static_cast<int>(inside ? want[i - kGuard] : before[i]) << ", was " << static_cast<int>(before[i])
                          << "\n"
                          << text;
            return changed;
        }
    }
    return changed;
}

Z_VID_PROPS AnyPicture(Dice &dice, eZFCC fcc, int32_t most) {
    Z_VID_PROPS p = Picture(fcc, dice(2, most), dice(1, 8));
    if (Rgb(fcc) && dice(0, 1) != 0) p.nHeight = -p.nHeight;
    if (dice(0, 2) == 0) p.nRowBytes += dice(0, 9) * 12;
    if (dice(0, 3) == 0) p.nWidth = static_cast<int32_t>(StrideOf(p));    // rows end to end
    if (dice(0, 4) == 0) p.nRowBytes += dice(1, 3);                       // rows that are no whole pixels
    return p;
}

// 10-bit rows are changed as if they were bytes: they are packed and not RGB.
constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_HDYC,  eZFCC_YUY2,  eZFCC_YVYU,
                              eZFCC_v210, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32};

TEST(SpillPasses, AgreeWithTheModel) {
    const uint32_t seed = 93001;
    Dice dice(seed);
    size_t changed = 0;
    for (int round = 0; round < 260; ++round)
        for (const eZFCC fcc : kFormats) {
            changed += Compare(AnyPicture(dice, fcc, 75), AnyKey(dice), dice);
            ASSERT_FALSE(HasFailure()) << "seed " << seed << " round " << round;
        }
    EXPECT_GT(changed, size_t{300000});
}

TEST(SpillPasses, EveryWidthAcrossTheBlocks) {
    const uint32_t seed = 93002;
    Dice dice(seed);
    for (int32_t w = 2; w < 70; ++w)
        for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_YUY2, eZFCC_RGB32})
            for (const int32_t path : {1, 2})
                for (const int32_t padding : {0, 64}) {
                    Z_VID_PROPS p = Picture(fcc, w, 5);
                    if (padding == 0 && w % 2 == 0) p.nRowBytes = w * Bits(fcc) / 8;
                    p.nRowBytes += padding;
                    CHROMA_KEY_RAW key = AnyKey(dice);
                    key.bColorCancel = path;
                    key.nKeysUsed = 2;    // the second finds in the rest of a row what the first left there
                    for (int i = 0; i < 2; ++i) {
                        key.arrKeys[i].nDelta = Colour(20, 25, 30);
                        key.arrKeys[i].nReverseKey = 0;
                        key.arrKeys[i].nCancelPower = 200 - 350 * i;
                        key.arrKeys[i].nCancelLuma = -30;
                    }
                    Compare(p, key, dice);
                    ASSERT_FALSE(HasFailure()) << "seed " << seed;
                }
}

TEST(SpillPasses, WideRows) {
    const uint32_t seed = 93003;
    Dice dice(seed);
    for (const eZFCC fcc : kFormats)
        for (const int32_t w : {720, 1001, 1924}) {
            Z_VID_PROPS p = Picture(fcc, w, 4);
            Compare(p, AnyKey(dice), dice);
            ASSERT_FALSE(HasFailure()) << "seed " << seed;
        }
}

TEST(SpillPasses, StrengthsAtTheEndsOfTheirRange) {
    const uint32_t seed = 93004;
    Dice dice(seed);
    const int32_t ends[] = {INT32_MIN, INT32_MIN + 1, -131072, -32769, -32768, -1, 1, 32767, 32768, 65535, 131071, INT32_MAX};
    for (int round = 0; round < 300; ++round) {
        CHROMA_KEY_RAW key = AnyKey(dice);
        key.bColorCancel = round % 2 + 1;
        key.arrKeys[0].nDelta = Colour(30, 30, 30);
        key.arrKeys[0].nReverseKey = INT32_MIN;
        key.arrKeys[0].nCancelPower = ends[dice(0, 11)];
        key.arrKeys[0].nCancelChroma = ends[dice(0, 11)];
        key.arrKeys[0].nCancelLuma = ends[dice(0, 11)];
        key.arrKeys[0].nCancelRange = dice(0, 1) != 0 ? ends[dice(0, 11)] : 20;
        const eZFCC fcc = kFormats[dice(0, 7)];
        Compare(Picture(fcc, 40, 3), key, dice);
        ASSERT_FALSE(HasFailure()) << "seed " << seed << " round " << round;
    }
}

TEST(SpillPasses, AWorkedMeasure) {
    Bytes space(32), alpha(8, 9);
    const uint8_t green[8] = {139, 141, 150, 160, 100, 61, 40, 255};
    for (size_t i = 0; i < 8; ++i) space[i * 4] = 100, space[i * 4 + 1] = green[i], space[i * 4 + 2] = 100;
    DistanceModel(alpha, space, Colour(100, 100, 100), Colour(40, 40, 40), 20, 8, 1, 8);
    EXPECT_EQ(alpha, (Bytes{0, 51, 172, 255, 0, 0, 255, 255}));
}

TEST(SpillPasses, ColoursOfTheKey) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.arrKeys[0].nValue = 0x0010C820;
    EXPECT_EQ(SpillRgb(key), 0x10C820U);
    for (uint32_t n = 0; n < 200000; ++n) {
        key.eType = static_cast<eCK_Type>(2 + n % 3);
        key.arrKeys[0].nValue = static_cast<int32_t>(n * 2654435761U);
        const zck::SpillColour c = zck::SpillColourOf(key);
        const uint32_t rgb = SpillRgb(key);
        const Yuv yuv = SpillYuv(rgb);
        ASSERT_EQ(uint32_t{c.rgb.b[0]} | uint32_t{c.rgb.b[1]} << 8 | uint32_t{c.rgb.b[2]} << 16, rgb) << n;
        ASSERT_EQ(c.y, yuv.y) << n;
        ASSERT_EQ(c.u, yuv.cb) << n;
        ASSERT_EQ(c.v, yuv.cr) << n;
    }
}

TEST(SpillPasses, NothingToDo) {
    Dice dice(93005);
    const Z_VID_PROPS p = Picture(eZFCC_RGB32, 40, 3);
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.bColorCancel = 1;
    key.nKeysUsed = 2;
    key.arrKeys[0] = {0x00FF00, 0x202020, 0, 0, 20, 0, 0, 0, 0, 0};    // no strength
    key.arrKeys[1] = {0x00FF00, 0x202020, 0, 0, 20, 9, 9, 9, 9, 1};    // a reverse key
    EXPECT_EQ(Compare(p, key, dice), 0U);
    key.bColorCancel = 2;
    EXPECT_EQ(Compare(p, key, dice), 0U);
    key.arrKeys[0].nCancelAlpha = 1;
    EXPECT_GT(Compare(p, key, dice), 0U);    // no arithmetic of its own, and yet not the same picture
    key.arrKeys[0].nDelta = 0;
    EXPECT_EQ(Compare(p, key, dice), 0U);
    key.arrKeys[0].nDelta = 0x202020;
    key.nKeysUsed = 0;
    EXPECT_EQ(Compare(p, key, dice), 0U);
    key.nKeysUsed = 1;
    key.bColorCancel = 0;
    EXPECT_EQ(Compare(p, key, dice), 0U);
}

TEST(SpillPasses, PicturesThatCannotBeChanged) {
    Dice dice(93006);
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.bColorCancel = 1;
    key.nKeysUsed = 1;
    key.arrKeys[0] = {0x00FF00, 0x202020, 0, 0, 20, 100, 9, 9, 9, 0};
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_YV12, eZFCC_NV12, eZFCC_RGB8, eZFCC_r210, Fcc(0xE436EB7B), Fcc(0xE436EB7C)})
        for (const int32_t path : {1, 2}) {
            key.bColorCancel = path;
            EXPECT_EQ(Compare(Picture(fcc, 40, 4), key, dice), 0U) << std::hex << fcc;
        }
    // One column has no mask.
    for (const eZFCC fcc : kFormats) {
        Z_VID_PROPS p = Picture(fcc, 1, 4);
        EXPECT_EQ(Compare(p, key, dice), 0U) << std::hex << fcc;
    }
}

// Through the whole pipeline: entries that cut nothing out, so that the alpha plane is all opaque.
TEST(SpillInThePipeline, CallersFormats) {
    const uint32_t seed = 93007;
    Dice dice(seed);
    for (int round = 0; round < 120; ++round)
        for (const eZFCC fcc : kFormats) {
            if (fcc == eZFCC_YVYU) continue;    // nobody brings it into the key's space
            Z_VID_PROPS p = AnyPicture(dice, fcc, 60);
            CHROMA_KEY_RAW key = AnyKey(dice);
            key.eType = eCKT_RGB;
            key.nMaxTransparent = 255;
            key.nInverseKey &= 2;
            for (SINGLE_KEY &k : key.arrKeys) k.nAlpha = 255;
            const int32_t height = std::abs(p.nHeight);
            const int64_t stride = StrideOf(p);
            Bytes pixels = dice.Noise(SizeOf(p));
            // What the keys are measured on: the caller's pixels, or a conversion of them, rows without padding.
            Bytes space = pixels;
            if (fcc != eZFCC_RGB32 && fcc != eZFCC_ARGB32) {
                Z_VID_PROPS to = p;
                to.fccType = eZFCC_RGB32;
                to.nRowBytes = static_cast<int32_t>(stride * 4);
                if (!Rgb(fcc)) to.nHeight = -height;
                space.assign(static_cast<size_t>(stride * 4 * height), 0);
                ASSERT_EQ(ConvertModel(pixels, space, p, to).hr, S_OK);
            }
            Bytes want = pixels;
            bool any = false;
            for (int32_t i = 0; i < std::min(key.nKeysUsed, 16); ++i) {
                const SINGLE_KEY &k = key.arrKeys[i];
                any = any || (k.nDelta != 0 && k.nReverseKey <= 0 &&
                              (k.nCancelPower | k.nCancelChroma | k.nCancelLuma | k.nCancelAlpha) != 0);
            }
            const bool runs = any && key.bColorCancel != 0;
            if (runs) {
                ASSERT_EQ(SpillModel(want, p, key, space), S_OK);
            }
            Bytes alpha(static_cast<size_t>(stride * height), 0x33);
            const HRESULT hr = zck::CK_GetAlphaKeyEx3(pixels.data(), alpha.data(), &p, &key, false);
            ASSERT_EQ(hr, runs ? S_OK : S_FALSE) << Words(p) << "\n" << Text(key);
            if (runs && fcc == eZFCC_ARGB32)    // the merge of the alpha leaves a gap of eight
                for (int32_t y = 0; y < height; ++y)
                    for (int32_t x = 0; x < p.nWidth; ++x)
                        want[static_cast<size_t>(int64_t{y} * p.nRowBytes + x * 4 + 3)] = 255;
            for (size_t i = 0; i < want.size(); ++i)
                ASSERT_EQ(static_cast<int>(pixels[i]), static_cast<int>(want[i]))
                    << "at " << i << " " << Words(p) << "\n"
                    << Text(key) << "\nseed " << seed << " round " << round;
        }
}

}    // namespace
}    // namespace conformance
