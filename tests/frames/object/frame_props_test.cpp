// The checked form of setting the description.
#include <cstring>

#include "frames/media/pixel_format.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

class CheckedProps : public FrameTest {
protected:
    HRESULT Set(const ComPtr<IZFrame_I> &frame, const Z_VID_PROPS &video) {
        Z_AV_PROPS props = {};
        props.vidProps = video;
        return As<IZFFrame>(frame)->ZFAVPropsSet(&props, nullptr);
    }

    static Z_VID_PROPS Video(const ComPtr<IZFrame_I> &frame) { return PropsOf(frame).vidProps; }
};

struct FitCase {
    const char *name;
    eZFCC fcc;
    int32_t width, height, row;    // asked
    eZFCC fccSet;
    int32_t widthSet, heightSet;    // of a UYVY frame of 64 x 48
};

TEST_F(CheckedProps, NothingLargerThanTheBuffer) {
    const FitCase cases[] = {
        {"the same", eZFCC_UYVY, 64, 48, 128, eZFCC_UYVY, 64, 48},
        {"larger", eZFCC_UYVY, 1000, 1000, 2000, eZFCC_UYVY, 64, 48},
        {"smaller", eZFCC_UYVY, 20, 10, 40, eZFCC_UYVY, 20, 10},
        {"relabelled", eZFCC_YUY2, 64, 48, 128, eZFCC_YUY2, 64, 48},
        {"no other width of a pixel", eZFCC_ARGB32, 64, 48, 256, eZFCC_UYVY, 64, 48},
        {"planes need more than there is", eZFCC_NV12, 64, 48, 128, eZFCC_UYVY, 64, 48},
        {"a negative height outside the RGB family", eZFCC_UYVY, 64, -40, 128, eZFCC_UYVY, 64, 40},
        {"the lowest height", eZFCC_UYVY, 64, INT32_MIN, 128, eZFCC_UYVY, 64, 48},
    };
    for (const FitCase &c : cases) {
        const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
        Z_VID_PROPS asked = {};
        asked.fccType = c.fcc;
        asked.nWidth = c.width;
        asked.nHeight = c.height;
        asked.nRowBytes = c.row;
        EXPECT_EQ(S_OK, Set(frame, asked)) << c.name;
        const Z_VID_PROPS set = Video(frame);
        EXPECT_EQ(c.fccSet, set.fccType) << c.name;
        EXPECT_EQ(c.widthSet, set.nWidth) << c.name;
        EXPECT_EQ(c.heightSet, set.nHeight) << c.name;
        // Rows lie where they lay.
        EXPECT_EQ(128, set.nRowBytes) << c.name;
        EXPECT_EQ(Pattern(64 * 48 * 2), VideoOf(frame).Copy()) << c.name;
    }
}

TEST_F(CheckedProps, GapsAreFilledFromTheFrame) {
    Z_VID_PROPS own = Record(eZFCC_HDYC, 64, 48);
    own.nAspectX = 4;
    own.nAspectY = 3;
    own.dblRate = 25.0;
    own.eScaleType = eZST_Crop;
    const auto frame = Frame(own);
    // A standard format without a pixel format: the frame's own stays.
    Z_VID_PROPS asked = {};
    asked.eVideoFormat = eZVF_HD1080_25p;
    EXPECT_EQ(S_OK, Set(frame, asked));
    const Z_VID_PROPS set = Video(frame);
    EXPECT_EQ(eZFCC_HDYC, set.fccType);
    EXPECT_EQ(64, set.nWidth);
    EXPECT_EQ(48, set.nHeight);
    EXPECT_EQ(eZST_Crop, set.eScaleType);
    EXPECT_EQ(16, set.nAspectX);
    EXPECT_EQ(eZVF_HD1080_25p, set.eVideoFormat);
    // A record that is not valid changes nothing.
    EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFAVPropsSet(nullptr, nullptr));
    const Z_VID_PROPS still = Video(frame);
    EXPECT_EQ(0, std::memcmp(&set, &still, sizeof(set)));
}

TEST_F(CheckedProps, FramesWithoutARecordTakeWhatTheirPixelsHold) {
    ComPtr<IZFrame_I> frame;
    ASSERT_EQ(S_OK, m_factory->FrameAlloc(64 * 48 * 2, 0, nullptr, frame.Put()));
    EXPECT_EQ(kVfwEInvalidMediaType, Set(frame, Record(eZFCC_UYVY, 64, 49)));
    EXPECT_EQ(S_OK, Set(frame, Record(eZFCC_UYVY, 64, 48)));
    EXPECT_EQ(64, Video(frame).nWidth);
    ASSERT_EQ(S_OK, m_factory->FrameAlloc(0, 0, nullptr, frame.Put()));
    EXPECT_EQ(kVfwEInvalidMediaType, Set(frame, Record(eZFCC_UYVY, 64, 48)));
}

TEST_F(CheckedProps, AnotherSignTurnsThePicture) {
    const auto frame = Frame(Record(eZFCC_RGB24, 5, -6));
    const Z_VID_PROPS own = Video(frame);
    const std::vector<uint8_t> before = VideoOf(frame).Copy();
    Z_VID_PROPS asked = own;
    asked.nHeight = 6;
    EXPECT_EQ(S_OK, Set(frame, asked));
    EXPECT_EQ(6, Video(frame).nHeight);
    for (int32_t y = 0; y < 6; ++y) {
        EXPECT_EQ(0, std::memcmp(before.data() + y * 16, VideoOf(frame).data() + (5 - y) * 16, 15)) << y;
        // The byte behind the row is nobody's pixel.
        EXPECT_EQ(before[static_cast<size_t>(y) * 16 + 15], VideoOf(frame).data()[y * 16 + 15]) << y;
    }
    EXPECT_EQ(S_OK, Set(frame, own));
    EXPECT_EQ(before, VideoOf(frame).Copy());
    // A frame that states more than it holds is not turned.
    Z_AV_PROPS more = PropsOf(frame);
    more.vidProps.nHeight = -7;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&more));
    EXPECT_EQ(kVfwEInvalidMediaType, Set(frame, asked));
    EXPECT_EQ(before, VideoOf(frame).Copy());
}

struct FieldCase {
    const char *name;
    eZFCC fcc;
    int32_t height;
    eZInterlace order;
    eZInterlace asked;
    int32_t kept;    // 0: even rows in memory
};

TEST_F(CheckedProps, OneFieldIsMadeFromTheOther) {
    const FieldCase cases[] = {
        {"upper first, field 1", eZFCC_UYVY, 8, eZI_Field1First, eZI_DeinterlaceF1, 0},
        {"upper first, field 2", eZFCC_UYVY, 8, eZI_Field1First, eZI_DeinterlaceF2, 1},
        {"lower first, field 1", eZFCC_UYVY, 8, eZI_Field2First, eZI_DeinterlaceF1, 1},
        {"lower first, field 2", eZFCC_UYVY, 9, eZI_Field2First, eZI_DeinterlaceF2, 0},
        {"top-down RGB, field 1", eZFCC_ARGB32, -8, eZI_Field1First, eZI_DeinterlaceF1, 1},
        {"bottom-up RGB, field 1", eZFCC_ARGB32, 8, eZI_Field1First, eZI_DeinterlaceF1, 0},
    };
    for (const FieldCase &c : cases) {
        Z_VID_PROPS own = Record(c.fcc, 10, c.height);
        own.eInterlace = c.order;
        const auto frame = Frame(own);
        const std::vector<uint8_t> before = VideoOf(frame).Copy();
        Z_VID_PROPS asked = own;
        asked.eInterlace = c.asked;
        EXPECT_EQ(S_OK, Set(frame, asked)) << c.name;
        EXPECT_EQ(eZI_Progressive, Video(frame).eInterlace) << c.name;
        std::vector<uint8_t> expected = before;
        const int32_t step = own.nRowBytes;
        const int32_t rows = std::abs(c.height);
        int32_t made = 0;
        for (int32_t y = 1 + c.kept; y + 1 < rows && made < rows / 2 - 1; y += 2, ++made) {
            for (int32_t x = 0; x < step; ++x) {
                const int32_t sum =
                    before[static_cast<size_t>((y - 1) * step + x)] + before[static_cast<size_t>((y + 1) * step + x)];
                expected[static_cast<size_t>(y * step + x)] = static_cast<uint8_t>(sum / 2 + (sum % 4 == 3 ? 1 : 0));
            }
        }
        EXPECT_EQ(rows / 2 - 1, made) << c.name;
        EXPECT_EQ(expected, VideoOf(frame).Copy()) << c.name;
    }
}

TEST_F(CheckedProps, OneFieldOfPlanesIsMadeFromTheOther) {
    constexpr int32_t kWidth = 10;
    constexpr int32_t kHeight = 8;
    for (const eZFCC fcc : {eZFCC_NV12, eZFCC_YV12, eZFCC_I420, kFccY422}) {
        Z_VID_PROPS own = {};
        own.fccType = fcc;
        own.nWidth = kWidth;
        own.nHeight = kHeight;
        own.nRowBytes = kWidth;
        own.eInterlace = eZI_Field1First;
        const auto frame = Frame(own);
        std::vector<uint8_t> expected = VideoOf(frame).Copy();
        for (size_t y = 1; y + 1 < kHeight; y += 2) {
            for (size_t x = 0; x < kWidth; ++x) {
                const int32_t sum = expected[(y - 1) * kWidth + x] + expected[(y + 1) * kWidth + x];
                expected[y * kWidth + x] = static_cast<uint8_t>(sum / 2 + (sum % 4 == 3 ? 1 : 0));
            }
        }
        Z_VID_PROPS asked = own;
        asked.eInterlace = eZI_DeinterlaceF1;
        EXPECT_EQ(S_OK, Set(frame, asked)) << fcc;
        EXPECT_EQ(expected, VideoOf(frame).Copy()) << fcc;
    }
}

TEST_F(CheckedProps, ProgressivePicturesKeepBothFields) {
    const auto frame = Frame(Record(eZFCC_UYVY, 10, 8));
    Z_VID_PROPS asked = Video(frame);
    asked.eInterlace = eZI_DeinterlaceF1;
    EXPECT_EQ(S_OK, Set(frame, asked));
    EXPECT_EQ(Pattern(160), VideoOf(frame).Copy());
}

TEST_F(CheckedProps, DeinterlacingNeedsThePixels) {
    Z_VID_PROPS own = Record(eZFCC_UYVY, 10, 8);
    own.eInterlace = eZI_Field1First;
    const auto frame = Frame(own);
    Z_AV_PROPS more = PropsOf(frame);
    more.vidProps.nHeight = 9;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&more));
    more.vidProps.eInterlace = eZI_DeinterlaceF1;
    EXPECT_EQ(kVfwEInvalidMediaType, As<IZFFrame>(frame)->ZFAVPropsSet(&more, nullptr));
    EXPECT_EQ(Pattern(160), VideoOf(frame).Copy());
}

}    // namespace
}    // namespace zck::test
