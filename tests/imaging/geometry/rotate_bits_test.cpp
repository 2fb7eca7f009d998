#include "imaging/geometry/rotate_bits.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/processor.h"
#include "platform/status.h"
#include "tests/imaging/geometry/picture.h"

namespace zck {
namespace {

using test::Bytes;
using test::Picture;

HRESULT Rotated(const Picture &a, Picture &b, bool left, bool interlaced) {
    RotateScratch scratch;
    return RotateBits(&scratch, a.memory.data(), a.Size(), b.memory.data(), b.Size(), &a.props, &b.props, left, interlaced);
}

// The pixel of the source that a turn puts at row r, column c of a target of w by h pixels of the source's exchanged size.
struct Place {
    int32_t x;
    int32_t y;
};
Place PlaceOf(bool left, int32_t r, int32_t c, int32_t sourceWidth, int32_t sourceRows) {
    return left ? Place{sourceWidth - 1 - r, c} : Place{r, sourceRows - 1 - c};
}

TEST(RotateBits, AQuarterTurnOfRgbIsAnExactPermutation) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32})
        for (const int32_t sign : {1, -1})
            for (const bool left : {false, true}) {
                const Picture a(fcc, 75, sign * 34, 5, 4);
                Picture b(fcc, 34, sign * 75, 6, 8);
                const Picture before = b;
                ASSERT_EQ(Rotated(a, b, left, false), S_OK);
                const size_t pixel = fcc == eZFCC_RGB24 ? 3 : 4;
                for (int32_t r = 0; r < 75; ++r) {
                    for (int32_t c = 0; c < 34; ++c) {
                        const Place p = PlaceOf(left, r, c, 75, 34);
                        ASSERT_EQ(std::memcmp(b.Row(r) + pixel * static_cast<size_t>(c),
                                              a.Row(p.y) + pixel * static_cast<size_t>(p.x), pixel),
                                  0)
                            << "rows count in memory, whatever the sign is";
                    }
                    ASSERT_EQ(std::memcmp(b.Row(r) + 34 * pixel, before.Row(r) + 34 * pixel,
                                          static_cast<size_t>(b.props.nRowBytes) - 34 * pixel),
                              0);
                }
            }
}

// Two rows of one colour and so on: what a turn does to fields is seen by hand.
TEST(RotateBits, FieldsTurnIntoTheRowsOfTheirOwnParity) {
    for (const bool left : {false, true}) {
        const Picture a(eZFCC_ARGB32, 6, -8, 5);
        Picture b(eZFCC_ARGB32, 8, -6, 6);
        ASSERT_EQ(Rotated(a, b, left, true), S_OK);
        // Each field on its own: 6 by 4, made 3 by 8 and turned.
        for (int32_t parity = 0; parity < 2; ++parity) {
            Picture field(eZFCC_ARGB32, 6, -4, 1), turned(eZFCC_ARGB32, 8, -3, 2);
            for (int32_t y = 0; y < 4; ++y) std::memcpy(field.Row(y), a.Row(2 * y + parity), 24);
            ASSERT_EQ(Rotated(field, turned, left, false), S_OK);
            for (int32_t y = 0; y < 3; ++y) ASSERT_EQ(std::memcmp(b.Row(2 * y + parity), turned.Row(y), 32), 0);
        }
    }
}

TEST(RotateBits, OddRowsAreInNoField) {
    const Picture a(eZFCC_ARGB32, 5, -7, 5);
    Picture b(eZFCC_ARGB32, 7, -5, 6);
    const Picture before = b;
    ASSERT_EQ(Rotated(a, b, true, true), S_OK);
    EXPECT_EQ(std::memcmp(b.Row(4), before.Row(4), 28), 0);
    const Picture c(eZFCC_UYVY, 5, 7, 5);
    Picture d(eZFCC_UYVY, 7, 5, 6);
    const Picture was = d;
    ASSERT_EQ(Rotated(c, d, true, true), S_OK);
    EXPECT_EQ(std::memcmp(d.Row(4), was.Row(4), static_cast<size_t>(d.props.nRowBytes)), 0);
}

TEST(RotateBits, LumaOf422TurnsExactlyAndChromaIsResized) {
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU})
        for (const bool left : {false, true}) {
            Picture a(fcc, 20, 12, 5);
            const size_t y0 = fcc == eZFCC_UYVY || fcc == eZFCC_HDYC ? 1 : 0;
            const size_t cb = fcc == eZFCC_YVYU ? 3 : 1 - y0, cr = fcc == eZFCC_YVYU ? 1 : 3 - y0;
            for (int32_t y = 0; y < 12; ++y)
                for (size_t g = 0; g < 10; ++g) {
                    a.Row(y)[4 * g + cb] = 40;
                    a.Row(y)[4 * g + cr] = 200;
                }
            Picture b(fcc, 12, 20, 6);
            ASSERT_EQ(Rotated(a, b, left, false), S_OK);
            for (int32_t r = 0; r < 20; ++r) {
                for (int32_t c = 0; c < 12; ++c) {
                    const Place p = PlaceOf(left, r, c, 20, 12);
                    ASSERT_EQ(b.Row(r)[2 * static_cast<size_t>(c) + y0], a.Row(p.y)[2 * static_cast<size_t>(p.x) + y0]);
                }
                for (size_t g = 0; g < 6; ++g) {
                    ASSERT_EQ(b.Row(r)[4 * g + cb], 40) << "Cb stays Cb";
                    ASSERT_EQ(b.Row(r)[4 * g + cr], 200);
                }
            }
        }
}

// Chroma is doubled along the row and halved down: the mean of two rows, and between two samples three to one.
TEST(RotateBits, ChromaIsDoubledAlongAndHalvedDown) {
    Picture a(eZFCC_UYVY, 4, 2, 5);
    const uint8_t cb[2][2] = {{10, 50}, {30, 90}};
    for (int32_t y = 0; y < 2; ++y)
        for (size_t g = 0; g < 2; ++g) a.Row(y)[4 * g] = cb[y][g];
    Picture b(eZFCC_UYVY, 2, 4, 6);
    ASSERT_EQ(Rotated(a, b, true, false), S_OK);
    // The column means are 20 and 70; from four places across, turned left, the right one comes first.
    const int32_t expected[4] = {70, 58, 33, 20};
    for (int32_t r = 0; r < 4; ++r) EXPECT_EQ(b.Row(r)[0], expected[r]) << "57.5 and 32.5 round up";
}

TEST(RotateBits, OtherSizesAreResizedFirst) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_ARGB32})
        for (const bool left : {false, true}) {
            const Picture a(fcc, 24, -10, 3);
            Picture b(fcc, 15, -40, 4), sized(fcc, 40, -15, 5), turned(fcc, 15, -40, 6);
            ASSERT_EQ(Rotated(a, b, left, false), S_OK);
            // Bytes of a row are planes that lie side by side.
            const int32_t pixel = fcc == eZFCC_RGB24 ? 3 : 4;
            for (int32_t c = 0; c < pixel; ++c) {
                Bytes plane, made(40 * 15);
                for (int32_t y = 0; y < 10; ++y)
                    for (int32_t x = 0; x < 24; ++x) plane.push_back(a.Row(y)[x * pixel + c]);
                Resizer r;
                ASSERT_EQ(ResizeImage(&r, {{24, 10}, {40, 15}, 1, kResizeLinear}, plane.data(), 24, made.data(), 40), 0);
                for (int32_t y = 0; y < 15; ++y)
                    for (int32_t x = 0; x < 40; ++x) sized.Row(y)[x * pixel + c] = made[static_cast<size_t>(40 * y + x)];
            }
            ASSERT_EQ(Rotated(sized, turned, left, false), S_OK);
            for (int32_t y = 0; y < 40; ++y)
                ASSERT_EQ(std::memcmp(b.Row(y), turned.Row(y), static_cast<size_t>(15 * pixel)), 0);
        }
}

TEST(RotateBits, ScratchHoldsNothingFromTheCallBefore) {
    RotateScratch scratch;
    const auto run = [&](RotateScratch *s, uint32_t seed) {
        const Picture a(eZFCC_YUY2, 15, 9, seed);
        Picture b(eZFCC_YUY2, 9, 15, 6);
        EXPECT_EQ(RotateBits(s, a.memory.data(), a.Size(), b.memory.data(), b.Size(), &a.props, &b.props, true, true), S_OK);
        return b.memory;
    };
    run(&scratch, 1);
    RotateScratch fresh;
    EXPECT_EQ(run(&scratch, 2), run(&fresh, 2));
}

TEST(RotateBits, Statuses) {
    RotateScratch s;
    const Picture a(eZFCC_ARGB32, 4, -4, 1);
    Picture b(eZFCC_ARGB32, 4, -4, 2);
    const uint8_t *const src = a.memory.data();
    uint8_t *const dst = b.memory.data();
    EXPECT_EQ(RotateBits(&s, nullptr, 64, dst, 64, &a.props, &b.props, true, false), E_INVALIDARG);
    EXPECT_EQ(RotateBits(&s, src, 64, nullptr, 64, &a.props, &b.props, true, false), E_INVALIDARG);
    EXPECT_EQ(RotateBits(&s, src, 64, dst, 64, nullptr, &b.props, true, false), E_INVALIDARG);
    EXPECT_EQ(RotateBits(&s, src, 64, dst, 64, &a.props, nullptr, true, false), E_INVALIDARG);
    EXPECT_EQ(RotateBits(&s, src, 63, dst, 64, &a.props, &b.props, true, false), kVfwEInvalidMediaType);
    EXPECT_EQ(RotateBits(&s, src, 64, dst, 63, &a.props, &b.props, true, false), kVfwEInvalidMediaType);
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_NV12, eZFCC_v210, eZFCC_r210, eZFCC_RGB8, eZFCC_UYVY, eZFCC_RGB24}) {
        Z_VID_PROPS p = b.props;
        p.fccType = fcc;
        p.nRowBytes = 16;
        EXPECT_EQ(RotateBits(&s, src, 64, dst, 64, &a.props, &p, true, false), E_INVALIDARG) << std::hex << fcc;
    }
    Z_VID_PROPS none = a.props;
    none.nWidth = 0;
    EXPECT_EQ(RotateBits(&s, src, 64, dst, 64, &none, &b.props, true, false), E_INVALIDARG);
}

}    // namespace
}    // namespace zck
