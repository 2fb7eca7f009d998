// Mixes by alpha and by mask, as they are called with whole images.
#include "imaging/mix/mix_alpha.h"

#include "imaging/colour/convert.h"
#include "imaging/mix/mix_kernels.h"
#include "platform/status.h"
#include "tests/imaging/mix/canvas.h"

namespace zck::test {
namespace {

HRESULT Masked(Canvas &target, const Canvas &over, const Bytes *mask, double opacity, bool bField = false) {
    const MixMask plane = {mask != nullptr ? mask->data() : nullptr, (over.props.nWidth + 7) & ~7};
    return MixImage_Mask8(target.Target(), over.Overlay(), bField, mask != nullptr ? &plane : nullptr, opacity);
}

Bytes MaskOf(const Canvas &over, uint32_t seed = 9) {
    Canvas plane(eZFCC_RGB8, (over.props.nWidth + 7) & ~7, static_cast<int32_t>(over.Rows()), seed);
    return plane.memory;
}

const MixKernels &Reference() {
    static const MixKernels table = [] {
        MixKernels k = {};
        MixKernelsInitRef(&k);
        return k;
    }();
    return table;
}

TEST(MixImagePargb, ChecksItsArguments) {
    Canvas target(eZFCC_RGB32, 8, -4);
    const Canvas over(eZFCC_ARGB32, 8, -4, 2);
    EXPECT_EQ(E_POINTER, MixImage_PARGB({target.props, nullptr, 0}, over.Overlay(), 1));
    EXPECT_EQ(E_POINTER, MixImage_PARGB(target.Target(), {over.props, nullptr, 0}, 1));
    EXPECT_EQ(E_INVALIDARG, MixImage_PARGB(target.Target(), Canvas(eZFCC_RGB24, 8, -4).Overlay(), 1));
    Canvas rgb24(eZFCC_RGB24, 8, -4);
    const Bytes before = rgb24.memory;
    EXPECT_EQ(E_FAIL, MixImage_PARGB(rgb24.Target(), over.Overlay(), 1));
    EXPECT_EQ(rgb24.memory, before);
}

TEST(MixImagePargb, MixesTheCommonSize) {
    Canvas target(eZFCC_ARGB32, 8, -4);
    const Canvas before = target;
    ASSERT_EQ(S_OK, MixImage_PARGB(target.Target(), Canvas(eZFCC_ARGB32, 5, -9, 2).Overlay(), 1));
    EXPECT_NE(target.Pixel(4, 3), Canvas(before).Pixel(4, 3));
    EXPECT_EQ(target.Pixel(5, 3), Canvas(before).Pixel(5, 3));
}

// Conversion, alpha and mix of whole pictures, row by row with the reference.
TEST(MixImagePargb, Over422ItConvertsAndGoesByTheAlpha) {
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2})
        for (const double opacity : {1.0, 0.5, 0.0}) {
            Canvas target(fcc, 30, 3);
            Canvas expected = target;
            Canvas over(eZFCC_ARGB32, 30, -3, 2);
            Canvas converted(fcc, 30, 3);
            ASSERT_EQ(S_OK, ConvertSameGeometry(over.memory.data(), converted.memory.data(), &over.props, &converted.props));
            const auto a = static_cast<int32_t>(opacity * 256);
            for (int64_t y = 0; y < 3; ++y) {
                Bytes alpha;
                for (int64_t x = 0; x < 30; ++x) alpha.push_back(over.At(x, y)[3]);
                const auto mixed = fcc == eZFCC_YUY2 ? Reference().premultiplied_yuy2 : Reference().premultiplied_uyvy;
                mixed(expected.At(0, y), converted.At(0, y), alpha.data(), a, 30);
            }
            ASSERT_EQ(S_OK, MixImage_PARGB(target.Target(), over.Overlay(), opacity));
            EXPECT_EQ(target.memory, expected.memory) << fcc << ", " << opacity;
        }
}

TEST(MixImagePargb, AnOddLastPixelOf422Stays) {
    Canvas target(eZFCC_UYVY, 9, 2);
    const Canvas before = target;
    ASSERT_EQ(S_OK, MixImage_PARGB(target.Target(), Canvas(eZFCC_ARGB32, 9, -2, 2).Overlay(), 1));
    EXPECT_EQ(target.Pixel(8, 0), Canvas(before).Pixel(8, 0));
}

TEST(MixImageMask8, ChecksItsArguments) {
    Canvas target(eZFCC_RGB32, 8, -4);
    const Canvas over(eZFCC_RGB32, 8, -4, 2);
    EXPECT_EQ(E_POINTER, MixImage_Mask8({target.props, nullptr, 0}, over.Overlay(), false, nullptr, 1));
    EXPECT_EQ(E_POINTER, MixImage_Mask8(target.Target(), {over.props, nullptr, 0}, false, nullptr, 1));
    EXPECT_EQ(E_INVALIDARG, Masked(target, Canvas(eZFCC_UYVY, 8, 4), nullptr, 1));
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_YVYU, eZFCC_v210, eZFCC_I420, eZFCC_RGB8}) {
        Canvas same(fcc, 48, IsRgbFormat(fcc) ? -4 : 4);
        EXPECT_EQ(E_INVALIDARG, Masked(same, same, nullptr, 1)) << fcc;
    }
}

TEST(MixImageMask8, BelowOpacityOneOnlyTheFirstHalfOfAnRgb32RowIsMixed) {
    Canvas target(eZFCC_RGB32, 10, -3);
    Canvas before = target;
    Canvas over(eZFCC_RGB32, 10, -3, 2);
    ASSERT_EQ(S_OK, Masked(target, over, nullptr, 0.25));
    for (int64_t i = 0; i < 40; ++i) {
        const int32_t mixed = (over.At(0, 1)[i] * 64 + before.At(0, 1)[i] * 192) >> 8;
        EXPECT_EQ(target.At(0, 1)[i], i < 20 ? mixed : before.At(0, 1)[i]) << i;
    }
    ASSERT_EQ(S_OK, Masked(target, over, nullptr, 1));
    EXPECT_EQ(target.memory, over.memory);
}

TEST(MixImageMask8, Rgb32CountsAsMultipliedByTheMask) {
    Canvas target(eZFCC_ARGB32, 10, -3);
    Canvas before = target;
    Canvas over(eZFCC_RGB32, 10, -3, 2);
    const Bytes mask = MaskOf(over);
    ASSERT_EQ(S_OK, Masked(target, over, &mask, 0.5));
    for (int64_t y = 0; y < 3; ++y)
        for (int64_t i = 0; i < 40; ++i) {
            const int32_t k = mask[static_cast<size_t>(y * 16 + i / 4)];
            ASSERT_EQ(target.At(0, y)[i], std::min(255, (over.At(0, y)[i] * 128 + (255 - k) * before.At(0, y)[i] + 255) >> 8));
        }
}

TEST(MixImageMask8, A422OverlayHasThreeMixes) {
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_YUY2}) {
        const bool yuy2 = fcc == eZFCC_YUY2;
        const Canvas under(fcc, 22, 2);
        Canvas over(fcc, 22, 2, 2);
        const Bytes mask = MaskOf(over);
        Canvas target = under, expected = under;
        ASSERT_EQ(S_OK, Masked(target, over, &mask, 0.7));
        for (int64_t y = 0; y < 2; ++y)
            (yuy2 ? Reference().masked_yuy2 : Reference().masked_uyvy)(expected.At(0, y), over.At(0, y),
                                                                       &mask[24 * static_cast<size_t>(y)], 179, 22);
        EXPECT_EQ(target.memory, expected.memory);
        target = expected = under;
        ASSERT_EQ(S_OK, Masked(target, over, &mask, 0.7, true));
        for (int64_t y = 0; y < 2; ++y)
            (yuy2 ? Reference().premultiplied_yuy2 : Reference().premultiplied_uyvy)(
                expected.At(0, y), over.At(0, y), &mask[24 * static_cast<size_t>(y)], 179, 22);
        EXPECT_EQ(target.memory, expected.memory);
        target = expected = under;
        ASSERT_EQ(S_OK, Masked(target, over, nullptr, 0.7));
        for (int64_t y = 0; y < 2; ++y) Reference().blend(expected.At(0, y), over.At(0, y), 179, 44);
        EXPECT_EQ(target.memory, expected.memory);
        ASSERT_EQ(S_OK, Masked(target, over, nullptr, 1));
        EXPECT_EQ(target.memory, over.memory);
    }
}

TEST(MixImageMask8, Argb32GoesByItsAlphaAndNotByAMask) {
    const Canvas under(eZFCC_RGB32, 10, -3);
    const Canvas over(eZFCC_ARGB32, 10, -3, 2);
    const Bytes mask = MaskOf(over);
    Canvas one = under, two = under, three = under;
    ASSERT_EQ(S_OK, Masked(one, over, &mask, 0.5));
    ASSERT_EQ(S_OK, Masked(two, over, nullptr, 0.5));
    ASSERT_EQ(S_OK, MixImage_PARGB(three.Target(), over.Overlay(), 0.5));
    EXPECT_EQ(one.memory, two.memory);
    EXPECT_EQ(one.memory, three.memory);
}

// Rows of the mask go with the rows of the overlay's memory, whatever order the pictures have.
TEST(MixImageMask8, TheMaskGoesWithTheOverlaysMemory) {
    const Canvas under(eZFCC_RGB32, 10, -4), over(eZFCC_RGB32, 10, -4, 2);
    const Bytes mask = MaskOf(over);
    Canvas expected = under;
    ASSERT_EQ(S_OK, Masked(expected, over, &mask, 1));
    const MixMask turned = {&mask[3 * 16], -16};
    Canvas target = TurnedOver(under);
    ASSERT_EQ(S_OK, MixImage_Mask8(target.Target(), TurnedOver(over).Overlay(), false, &turned, 1));
    EXPECT_EQ(TurnedOver(target).memory, expected.memory);
}

}    // namespace
}    // namespace zck::test
