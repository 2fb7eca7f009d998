#include "imaging/geometry/mirror_bits.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/status.h"
#include "tests/imaging/geometry/picture.h"

namespace zck {
namespace {

using test::Bytes;
using test::Picture;

HRESULT Mirrored(Picture &p, int32_t index) { return MirrorBits(p.memory.data(), p.Size(), &p.props, index); }

Bytes Pixel(const Picture &p, int32_t x, int32_t y, int32_t bytes) {
    const uint8_t *const at = p.Row(y) + x * bytes;
    return {at, at + bytes};
}

TEST(MirrorBits, RgbPixelsAroundEitherAxis) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32})
        for (const int32_t height : {7, -6})
            for (const int32_t index : {1, 2, 3}) {
                const Picture before(fcc, 33, height, 5, 3);
                Picture p = before;
                ASSERT_EQ(Mirrored(p, index), S_OK);
                const int32_t rows = std::abs(height), bytes = fcc == eZFCC_RGB24 ? 3 : 4;
                for (int32_t y = 0; y < rows; ++y) {
                    const int32_t fromY = index == 1 ? y : rows - 1 - y;
                    for (int32_t x = 0; x < 33; ++x)
                        ASSERT_EQ(Pixel(p, x, y, bytes), Pixel(before, index == 2 ? x : 32 - x, fromY, bytes));
                    const Bytes padding(p.Row(y) + 33 * bytes, p.Row(y) + p.props.nRowBytes);
                    ASSERT_EQ(padding, Bytes(before.Row(y) + 33 * bytes, before.Row(y) + p.props.nRowBytes));
                }
            }
}

TEST(MirrorBits, ChromaStaysWithItsPairs) {
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2}) {
        const Picture before(fcc, 8, 2, 1);
        Picture p = before;
        ASSERT_EQ(Mirrored(p, kMirrorHorz), S_OK);
        const bool lumaFirst = fcc == eZFCC_YUY2;
        for (int32_t g = 0; g < 4; ++g) {
            const uint8_t *const a = p.Row(1) + 4 * g;
            const uint8_t *const b = before.Row(1) + 4 * (3 - g);
            const Bytes expected = lumaFirst ? Bytes({b[2], b[1], b[0], b[3]}) : Bytes({b[0], b[3], b[2], b[1]});
            ASSERT_EQ(Bytes(a, a + 4), expected);
        }
    }
}

// The swap is that of UYVY; YVYU has luma there.
TEST(MirrorBits, YvyuComesOutWithExchangedChroma) {
    const Picture before(eZFCC_YVYU, 8, 1, 1);
    Picture p = before;
    ASSERT_EQ(Mirrored(p, kMirrorHorz), S_OK);
    for (int32_t g = 0; g < 4; ++g) {
        const uint8_t *const a = p.Row(0) + 4 * g;
        const uint8_t *const b = before.Row(0) + 4 * (3 - g);
        EXPECT_EQ(Bytes(a, a + 4), Bytes({b[0], b[3], b[2], b[1]})) << "luma as it stood, chroma exchanged";
    }
}

TEST(MirrorBits, AnOddWidthOf422ExchangesChromaOfWholeGroups) {
    Picture p(eZFCC_UYVY, 3, 1, 1);
    p.memory = {10, 11, 12, 13, 20, 21, 22, 23};
    ASSERT_EQ(Mirrored(p, kMirrorHorz), S_OK);
    EXPECT_EQ(Bytes(p.memory.begin(), p.memory.begin() + 6), Bytes({12, 21, 20, 13, 10, 11}));
}

TEST(MirrorBits, InterlacedPicturesMoveUpUnderAVerticalMirror) {
    for (const int32_t index : {1, 2, 3}) {
        Picture p(eZFCC_UYVY, 8, 6, 1, 4);
        Picture progressive = p;
        p.props.eInterlace = eZI_Field1First;
        ASSERT_EQ(Mirrored(p, index), S_OK);
        ASSERT_EQ(Mirrored(progressive, index), S_OK);
        const size_t row = static_cast<size_t>(p.props.nRowBytes);
        for (int32_t y = 0; y < 6; ++y)
            EXPECT_EQ(std::memcmp(p.Row(y), progressive.Row(index == 1 ? y : std::min(y + 1, 5)), row), 0)
                << "with its padding, row " << y;
    }
}

TEST(MirrorBits, TheMoveEndsWithTheMemory) {
    Picture p(eZFCC_UYVY, 8, 4, 1, 4);
    p.props.eInterlace = eZI_Field2First;
    p.memory.resize(p.memory.size() - 4);
    EXPECT_EQ(Mirrored(p, kMirrorVert), S_OK) << "a cut picture: the last row has no padding";
}

// Row padding and what is behind the rows included; more rows than a band has.
TEST(MirrorBits, ACopyHasTheBytesThatMirroringInPlaceGives) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU})
        for (const int32_t width : {1, 2, 7, 34})
            for (const int32_t height : {1, 16, 37, -18})
                for (const int32_t padding : {0, 5})
                    for (const eZInterlace scan : {eZI_Progressive, eZI_Field1First})
                        for (const int32_t more : {-padding, 0, 11})
                            for (const int32_t index : {1, 2, 3}) {
                                Picture p(fcc, width, height, 3, padding);
                                p.props.eInterlace = scan;
                                p.memory.resize(p.memory.size() + static_cast<size_t>(more), 77);
                                Bytes copy(p.memory.size(), 99);
                                const Bytes before = p.memory;
                                ASSERT_EQ(MirrorBitsCopy(before.data(), copy.data(), p.Size(), &p.props, index), S_OK);
                                ASSERT_EQ(Mirrored(p, index), S_OK);
                                ASSERT_EQ(copy, p.memory) << fcc << " " << width << "x" << height << " index " << index;
                            }
}

TEST(MirrorBits, Statuses) {
    Picture p(eZFCC_UYVY, 8, 4, 1);
    const Bytes before = p.memory;
    EXPECT_EQ(MirrorBits(nullptr, 64, &p.props, 1), E_POINTER);
    EXPECT_EQ(MirrorBits(p.memory.data(), 64, nullptr, 1), E_POINTER);
    for (const int32_t index : {0, 4, -1}) EXPECT_EQ(Mirrored(p, index), E_INVALIDARG);
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_YV12, eZFCC_NV12, eZFCC_v210, eZFCC_r210, eZFCC_RGB8}) {
        p.props.fccType = fcc;
        EXPECT_EQ(Mirrored(p, 1), E_NOTIMPL);
    }
    p.props.fccType = eZFCC_UYVY;
    EXPECT_EQ(MirrorBits(p.memory.data(), p.Size() - 1, &p.props, 1), kVfwEInvalidMediaType);
    p.props.nWidth = 0;
    EXPECT_EQ(Mirrored(p, 1), StatusOf(0x80040200));
    EXPECT_EQ(p.memory, before);
    Bytes copy(before.size());
    EXPECT_EQ(MirrorBitsCopy(before.data(), copy.data(), p.Size(), &p.props, 1), StatusOf(0x80040200));
    EXPECT_EQ(MirrorBitsCopy(before.data(), nullptr, p.Size(), &p.props, 1), E_POINTER);
    EXPECT_EQ(MirrorBitsCopy(nullptr, copy.data(), p.Size(), &p.props, 1), E_POINTER);
    p.props.nWidth = 8;
    EXPECT_EQ(MirrorBitsCopy(before.data(), copy.data(), p.Size() - 1, &p.props, 1), kVfwEInvalidMediaType);
}

}    // namespace
}    // namespace zck
