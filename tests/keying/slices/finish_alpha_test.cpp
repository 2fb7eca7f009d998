#include "keying/slices/finish_alpha.h"

#include <gtest/gtest.h>

#include "keying/slices/slices.h"
#include "platform/status.h"
#include "tests/keying/slices/slices_frame.h"

namespace zck {
namespace {

using test::Frame;
using test::GreenKey;
using test::Props;

TEST(FinishAlpha, MergesThePlane) {
    Frame frame(Props(27, 3, eZFCC_RGB32));
    CHROMA_KEY_RAW key = GreenKey();
    EXPECT_EQ(S_OK, FinishAlpha(frame.pixels.Data(), frame.alpha.Data(), &frame.props, &key));
    for (int32_t x = 0; x < 27; ++x) EXPECT_EQ(x >= 16 && x < 24 ? frame.Old(x, 1, 3) : 0x55, frame.Byte(x, 1, 3));
}

TEST(FinishAlpha, EndsEarlyWithoutInterior) {
    for (const auto &[w, h] : {std::pair{2, 9}, {9, 2}}) {
        Frame frame(Props(w, h));
        CHROMA_KEY_RAW key = GreenKey();
        key.nEdgesSmooth = 1;
        key.nInverseKey = 1;
        EXPECT_EQ(StatusOf(0xFFFFFFFA), FinishAlpha(frame.pixels.Data(), frame.alpha.Data(), &frame.props, &key));
        EXPECT_EQ(frame.before, frame.pixels.Bytes());
        EXPECT_EQ(0x55, frame.Alpha(0, 0));
    }
}

TEST(FinishAlpha, SmoothingNeverGrowsAndKeepsTheBorder) {
    // One opaque dot of 3 by 3 in the middle: eroded to a point, boxed, then bound by the plane.
    Frame frame(Props(32, 16), 0);
    for (int32_t y = 6; y < 9; ++y) {
        for (int32_t x = 10; x < 13; ++x) frame.alpha.Data()[y * 32 + x] = 255;
    }
    for (int32_t x = 0; x < 32; ++x) frame.alpha.Data()[x] = 77;
    CHROMA_KEY_RAW key = GreenKey();
    key.nEdgesSmooth = 2;
    EXPECT_EQ(S_OK, FinishAlpha(frame.pixels.Data(), frame.alpha.Data(), &frame.props, &key));
    // The point of 255 becomes a box of ((255 + 5) * 455) >> 12 = 28, and the Gauss filter makes that of it.
    EXPECT_EQ(28, frame.Alpha(11, 7));
    EXPECT_EQ((28 * 12 + 7 + 1) >> 4, frame.Alpha(10, 7));
    EXPECT_EQ((28 * 9 + 7 + 1) >> 4, frame.Alpha(10, 6));
    EXPECT_EQ((28 + 7 + 1) >> 4, frame.Alpha(9, 5));
    EXPECT_EQ(0, frame.Alpha(8, 7));
    EXPECT_EQ(77, frame.Alpha(5, 0));
    EXPECT_EQ((77 * 4 + 7 + 1) >> 4, frame.Alpha(5, 1));
}

TEST(FinishAlpha, TreatsFieldsApartByTheKey) {
    // Lines of 0 and 255 in turn: smoothed together they blend, apart they stay.
    Frame frame(Props(16, 12), 0);
    for (int32_t y = 0; y < 12; y += 2) std::fill_n(frame.alpha.Data() + 16 * y, 16, uint8_t{255});
    const auto stripes = frame.alpha.Bytes();
    CHROMA_KEY_RAW key = GreenKey();
    key.nEdgesSmooth = 1;
    key.nInterlacedVideo = 1;
    EXPECT_EQ(S_OK, FinishAlpha(frame.pixels.Data(), frame.alpha.Data(), &frame.props, &key));
    EXPECT_EQ(stripes, frame.alpha.Bytes());
    key.nInterlacedVideo = 0;
    EXPECT_EQ(S_OK, FinishAlpha(frame.pixels.Data(), frame.alpha.Data(), &frame.props, &key));
    EXPECT_NE(stripes, frame.alpha.Bytes());
}

TEST(FinishAlpha, ReturnsTheFirstFailureOfTwoFields) {
    Frame frame(Props(16, 5));
    CHROMA_KEY_RAW key = GreenKey();
    key.nEdgesSmooth = 1;
    key.nInterlacedVideo = 1;
    EXPECT_EQ(StatusOf(0xFFFFFFFA), FinishAlpha(frame.pixels.Data(), frame.alpha.Data(), &frame.props, &key));
    EXPECT_EQ(frame.before, frame.pixels.Bytes());
}

}    // namespace
}    // namespace zck
