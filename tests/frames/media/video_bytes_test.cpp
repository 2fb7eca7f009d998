// Bytes of a whole picture, bytes that an operation may touch, and the stride of an alpha plane.
#include <gtest/gtest.h>

#include <limits>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"

namespace zck {
namespace {

constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr eZFCC kUnknown = static_cast<eZFCC>(0x20202020);

Z_VID_PROPS Picture(eZFCC fcc, int32_t w, int32_t h, int32_t rowBytes) {
    Z_VID_PROPS p{};
    p.fccType = fcc;
    p.nWidth = w;
    p.nHeight = h;
    p.nRowBytes = rowBytes;
    return p;
}

int32_t Size(const Z_VID_PROPS &p) { return FrameBufferSize(&p); }

TEST(FrameBufferSize, WorkedNumbers) {
    EXPECT_EQ(FrameBufferSize(nullptr), 0);
    EXPECT_EQ(Size(Picture(eZFCC_I420, 720, 576, 720)), 622080);
    EXPECT_EQ(Size(Picture(eZFCC_RGB32, 1920, -1080, 7680)), 8294400);
    EXPECT_EQ(Size(Picture(eZFCC_v210, 1920, 1080, 5120)), 5529600);
    EXPECT_EQ(Size(Picture(eZFCC_RGB32, 10, 10, -40)), 400);
}

TEST(FrameBufferSize, PlanarPicturesCountOneAndAHalfPlanesWhateverTheSampling) {
    for (eZFCC fcc : {eZFCC_I420, eZFCC_YV12, eZFCC_NV12, kFccY422, kFccY444}) EXPECT_EQ(Size(Picture(fcc, 5, 3, 5)), 22);
}

TEST(FrameBufferSize, CompletesARecordOnACopy) {
    Z_VID_PROPS p{};
    p.eVideoFormat = eZVF_PAL;
    EXPECT_EQ(Size(p), 1440 * 576);
    p.nWidth = 720;
    EXPECT_EQ(p.nRowBytes, 0);
    EXPECT_EQ(Size(Picture(eZFCC_ARGB32, 3, 2, 0)), 24);
    // Planar rows of a custom size are the host's to give.
    EXPECT_EQ(Size(Picture(eZFCC_NV12, 500, 300, 0)), 0);
    // The first update of a standard size finds its format, the one in here fills the rows.
    Z_VID_PROPS planar = Picture(eZFCC_NV12, 720, 576, 0);
    planar.dblRate = 25;
    EXPECT_EQ(Size(planar), 0);
    VideoPropsUpdate(&planar, false);
    EXPECT_EQ(Size(planar), 622080);
    p = Z_VID_PROPS{};
    p.eVideoFormat = eZVF_Disabled;
    EXPECT_EQ(Size(p), 0);
}

TEST(FrameBufferSize, TwoGigabytesAndMoreAreRefused) {
    EXPECT_EQ(Size(Picture(eZFCC_RGB8, 1, 1, kMax)), kMax);
    EXPECT_EQ(Size(Picture(eZFCC_RGB8, 1, 2, 0x40000000)), 0);
    EXPECT_EQ(Size(Picture(eZFCC_RGB8, 1, 65536, 65536)), 0);    // would be 0 mod 2^32 by chance: refused for its size
    EXPECT_EQ(Size(Picture(eZFCC_ARGB32, 1, 65537, 65536)), 0);
    EXPECT_EQ(Size(Picture(eZFCC_NV12, 1, kMin, kMin)), 0);
    EXPECT_EQ(Size(Picture(eZFCC_RGB8, 1, kMin, kMin)), 0);
    EXPECT_EQ(Size(Picture(eZFCC_RGB8, 1, 1, kMin)), 0);
}

TEST(VideoBytesNeeded, TheLastRowEndsWithItsPixels) {
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_RGB32, 100, -3, 1000)), 2 * 1000 + 400);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_RGB24, 3, 2, 12)), 12 + 9);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_UYVY, 4, 1, 8)), 8);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_r210, 3, 2, 256)), 256 + 12);
    EXPECT_EQ(VideoBytesNeeded(Picture(kFccRgb565, 3, 2, 8)), 8 + 6);
}

TEST(VideoBytesNeeded, SharedGroupsCountWhole) {
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_UYVY, 5, 2, 12)), 12 + 12);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_v210, 6, 2, 128)), 128 + 16);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_v210, 7, 2, 128)), 128 + 32);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_v210, 1, 2, 128)), 128 + 16);
}

TEST(VideoBytesNeeded, NeverMoreThanAWholeBuffer) {
    for (eZFCC fcc :
         {eZFCC_r210, eZFCC_v210, eZFCC_I420, eZFCC_NV12, eZFCC_YUY2, eZFCC_HDYC, eZFCC_RGB24, eZFCC_ARGB32, eZFCC_RGB8})
        for (int32_t w = 1; w < 200; ++w) {
            const Z_VID_PROPS p = Picture(fcc, w, -3, RowBytes(fcc, w));
            ASSERT_LE(VideoBytesNeeded(p), FrameBufferSize(&p)) << static_cast<uint32_t>(fcc) << " " << w;
        }
}

TEST(VideoBytesNeeded, PlanarAndUnknownFormatsNeedAllOfIt) {
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_I420, 720, 576, 720)), 622080);
    EXPECT_EQ(VideoBytesNeeded(Picture(kUnknown, 10, 4, 100)), 400);
    // Where the size of the buffer is refused, the need still stands.
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_NV12, 1, 65536, 65536)), int64_t{65536} * 65536 * 3 / 2);
    EXPECT_GT(VideoBytesNeeded(Picture(eZFCC_NV12, 1, kMin, kMin)), int64_t{kMax});
}

TEST(VideoBytesNeeded, RowsCountAtLeastWhatTheWidthTakes) {
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_ARGB32, 10, 3, 4)), 120);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_ARGB32, 10, 3, -40)), 120);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_ARGB32, 10, 3, 0)), 120);
}

TEST(VideoBytesNeeded, NoPictureNeedsNothing) {
    EXPECT_EQ(VideoBytesNeeded(Z_VID_PROPS{}), 0);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_ARGB32, 0, 1, 4)), 0);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_ARGB32, -5, 1, 4)), 0);
    EXPECT_EQ(VideoBytesNeeded(Picture(eZFCC_ARGB32, 5, 0, 20)), 0);
}

TEST(AlphaStride, IsTheRowInPixels) {
    EXPECT_EQ(AlphaStride(Picture(eZFCC_RGB32, 1920, 1, 7680)), 1920);
    EXPECT_EQ(AlphaStride(Picture(eZFCC_RGB24, 3, 1, 12)), 4);
    EXPECT_EQ(AlphaStride(Picture(eZFCC_UYVY, 720, 1, 1440)), 720);
    EXPECT_EQ(AlphaStride(Picture(eZFCC_v210, 1920, 1, 5120)), 1920);
    EXPECT_EQ(AlphaStride(Picture(eZFCC_r210, 65, 1, 512)), 128);
    EXPECT_EQ(AlphaStride(Picture(eZFCC_NV12, 720, 1, 768)), 768);
    EXPECT_EQ(AlphaStride(Picture(eZFCC_Default, 720, 1, 768)), 0);
    EXPECT_EQ(AlphaStride(Picture(kUnknown, 720, 1, 768)), 0);
    EXPECT_EQ(AlphaStride(Picture(eZFCC_RGB8, 1, 1, kMax)), kMax);
}

}    // namespace
}    // namespace zck
