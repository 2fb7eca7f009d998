#include "imaging/colour/row_order.h"

#include <gtest/gtest.h>

#include <limits>

#include "frames/media/video_props.h"
#include "imaging/colour/image_desc.h"

namespace zck {
namespace {

Z_VID_PROPS Record(eZFCC fcc, int32_t width, int32_t height, int32_t rowBytes = 0) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = width;
    p.nHeight = height;
    p.nRowBytes = rowBytes;
    return p;
}

TEST(RowOrder, BottomUpImagesAreEnteredAtTheirLastRow) {
    uint8_t memory[64] = {};
    for (const eZFCC fcc : {eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24, eZFCC_RGB8}) {
        uint8_t *p = memory;
        Z_VID_PROPS props = Record(fcc, 1, 5, 8);
        EXPECT_EQ(NormaliseRowOrder(&p, &props, nullptr), S_OK);
        EXPECT_EQ(p - memory, 32);
        EXPECT_EQ(props.nRowBytes, -8);
        EXPECT_EQ(props.nHeight, 5);
    }
}

TEST(RowOrder, OthersStay) {
    const uint8_t memory[64] = {};
    const Z_VID_PROPS records[] = {Record(eZFCC_RGB32, 1, -5, 8), Record(eZFCC_UYVY, 2, 5, 8), Record(eZFCC_v210, 6, 5, 128),
                                   Record(eZFCC_UYVY, 2, -5, 8)};
    for (Z_VID_PROPS props : records) {
        const uint8_t *p = memory;
        const int32_t step = props.nRowBytes;
        EXPECT_EQ(NormaliseRowOrder(&p, &props, nullptr), S_OK);
        EXPECT_EQ(p, memory);
        EXPECT_EQ(props.nRowBytes, step);
    }
}

TEST(RowOrder, MissingRowBytesAreFilledIn) {
    uint8_t memory[64] = {};
    uint8_t *p = memory;
    Z_VID_PROPS props = Record(eZFCC_RGB24, 3, 2);
    EXPECT_EQ(NormaliseRowOrder(&p, &props, nullptr), S_OK);
    EXPECT_EQ(p - memory, 12);
    EXPECT_EQ(props.nRowBytes, -12);
    props = Record(eZFCC_I420, 4, 4);
    EXPECT_EQ(NormaliseRowOrder(&p, &props, nullptr), E_UNEXPECTED);
    props = Record(eZFCC_Default, 4, 4);
    EXPECT_EQ(NormaliseRowOrder(&p, &props, nullptr), E_UNEXPECTED);
    EXPECT_EQ(p - memory, 12);
}

TEST(RowOrder, TheSizeIsThatOfTheSmallestImage) {
    uint8_t memory[4] = {};
    uint8_t *p = memory;
    ROI size = {0, 0};
    Z_VID_PROPS first = Record(eZFCC_UYVY, 20, 9);
    EXPECT_EQ(NormaliseRowOrder(&p, &first, &size), S_OK);
    EXPECT_EQ(size.width, 20);
    EXPECT_EQ(size.height, 9);
    Z_VID_PROPS second = Record(eZFCC_RGB32, 10, -30);
    EXPECT_EQ(NormaliseRowOrder(&p, &second, &size), S_OK);
    EXPECT_EQ(size.width, 10);
    EXPECT_EQ(size.height, 9);
    Z_VID_PROPS huge = Record(eZFCC_UYVY, 4, std::numeric_limits<int32_t>::min());
    size = {0, 0};
    EXPECT_EQ(NormaliseRowOrder(&p, &huge, &size), S_OK);
    EXPECT_EQ(size.height, std::numeric_limits<int32_t>::max());
    // Below 1 a size says nothing yet, and each of its two numbers for itself.
    size = {-7, 5};
    EXPECT_EQ(NormaliseRowOrder(&p, &first, &size), S_OK);
    EXPECT_EQ(size.width, 20);
    EXPECT_EQ(size.height, 5);
    size = {30, -2};
    EXPECT_EQ(NormaliseRowOrder(&p, &first, &size), S_OK);
    EXPECT_EQ(size.width, 20);
    EXPECT_EQ(size.height, 9);
}

TEST(RowOrder, OneLineStaysOneLine) {
    uint8_t memory[4] = {};
    for (const int32_t height : {1, -1}) {
        uint8_t *p = memory;
        Z_VID_PROPS props = VideoPropsFromFormat(eZVF_HD720_50p, eZFCC_RGB32);
        props.nHeight = height;
        EXPECT_EQ(NormaliseRowOrder(&p, &props, nullptr), S_OK);
        EXPECT_EQ(props.nHeight, height);
        EXPECT_EQ(p, memory);
        // Without row bytes it describes no buffer: the height asks for a sign only.
        props = VideoPropsFromFormat(eZVF_HD720_50p, eZFCC_RGB32);
        props.nHeight = height;
        props.nRowBytes = 0;
        int64_t offset = 0;
        EXPECT_EQ(NormaliseRecord(&props, &offset, nullptr), S_OK);
        EXPECT_EQ(props.nHeight, height * 720);
        EXPECT_EQ(offset, height == 1 ? 1280 * 4 * 719 : 0);
    }
}

TEST(RowOrder, MissingArguments) {
    uint8_t memory[4] = {};
    uint8_t *p = memory;
    uint8_t *none = nullptr;
    const uint8_t *constNone = nullptr;
    Z_VID_PROPS props = Record(eZFCC_UYVY, 2, 1);
    EXPECT_EQ(NormaliseRowOrder(static_cast<uint8_t **>(nullptr), &props, nullptr), E_POINTER);
    EXPECT_EQ(NormaliseRowOrder(&none, &props, nullptr), E_POINTER);
    EXPECT_EQ(NormaliseRowOrder(&constNone, &props, nullptr), E_POINTER);
    EXPECT_EQ(props.nRowBytes, 0);
    EXPECT_EQ(NormaliseRowOrder(&p, nullptr, nullptr), E_POINTER);
}

TEST(RowOrder, AbsurdRecordsDoNotOverflow) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    int64_t offset = 0;
    Z_VID_PROPS props = Record(eZFCC_RGB32, kMost, kMost, kMost);
    EXPECT_EQ(NormaliseRecord(&props, &offset, nullptr), S_OK);
    EXPECT_EQ(offset, int64_t{kMost} * (int64_t{kMost} - 1));
    props = Record(eZFCC_RGB32, 1, 3, std::numeric_limits<int32_t>::min());
    props.eVideoFormat = eZVF_Disabled;
    EXPECT_EQ(NormaliseRecord(&props, &offset, nullptr), S_OK);
    EXPECT_EQ(offset, int64_t{1} << 32);
    EXPECT_EQ(props.nRowBytes, std::numeric_limits<int32_t>::min());
}

TEST(ImgDesc, IsOfSixteenBytes) { EXPECT_EQ(sizeof(ImgDesc), 16U); }

}    // namespace
}    // namespace zck
