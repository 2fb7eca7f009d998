#include <cstring>

#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

tagRECT Rect(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    tagRECT rect = {};
    rect.left = left;
    rect.top = top;
    rect.right = right;
    rect.bottom = bottom;
    return rect;
}

class FrameCuts : public FrameTest {
protected:
    ComPtr<IZFrame_I> Cut(IZFrame *frame, int32_t field, const tagRECT *rect) {
        tagRECT copy = rect != nullptr ? *rect : tagRECT{};
        ComPtr<IZFrame> cut;
        EXPECT_EQ(S_OK, frame->FrameCut(field, rect != nullptr ? &copy : nullptr, cut.Put()));
        return As<IZFrame_I>(cut);
    }

    int32_t OffsetOf(const ComPtr<IZFrame_I> &frame) {
        int32_t offset = -1;
        EXPECT_EQ(S_OK, frame->FrameVideoOffsetGet(&offset));
        return offset;
    }
};

TEST_F(FrameCuts, NothingToCutIsAReferenceClone) {
    const auto frame = SoundFrame(Record(eZFCC_ARGB32, 40, -30));
    const tagRECT empty = Rect(5, 5, 5, 20);
    for (const tagRECT *rect : {static_cast<const tagRECT *>(nullptr), &empty}) {
        const auto cut = Cut(frame.get(), 0, rect);
        const Z_AV_PROPS a = PropsOf(frame);
        const Z_AV_PROPS b = PropsOf(cut);
        EXPECT_EQ(0, std::memcmp(&a, &b, sizeof(a)));
        EXPECT_EQ(VideoOf(frame).address, VideoOf(cut).address);
        EXPECT_EQ(VideoOf(frame).size, VideoOf(cut).size);
        EXPECT_EQ(400, AudioOf(cut).size);
        EXPECT_EQ(0, OffsetOf(cut));
    }
}

TEST_F(FrameCuts, RectangleMovesTheStart) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 40, -30));
    const tagRECT rect = Rect(3, 4, 13, 20);
    const auto cut = Cut(frame.get(), 0, &rect);
    const int32_t offset = 4 * 160 + 3 * 4;
    EXPECT_EQ(VideoOf(frame).address + offset, VideoOf(cut).address);
    EXPECT_EQ(VideoOf(frame).size - offset, VideoOf(cut).size);
    EXPECT_EQ(offset, OffsetOf(cut));
    const Z_VID_PROPS props = PropsOf(cut).vidProps;
    EXPECT_EQ(10, props.nWidth);
    EXPECT_EQ(-16, props.nHeight);
    EXPECT_EQ(160, props.nRowBytes);
    EXPECT_EQ(eZVF_Custom, props.eVideoFormat);
    // The cut ends early in its last row, and still holds its pixels.
    EXPECT_LE(VideoBytesNeeded(props), VideoOf(cut).size);
}

TEST_F(FrameCuts, CutsOfCutsAddUp) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 40, -30));
    const tagRECT rect = Rect(3, 4, 33, 28);
    const auto once = Cut(frame.get(), 0, &rect);
    const auto twice = Cut(once.get(), 0, &rect);
    EXPECT_EQ(VideoOf(frame).address + 2 * (4 * 160 + 3 * 4), VideoOf(twice).address);
    EXPECT_EQ(27, PropsOf(twice).vidProps.nWidth);
    EXPECT_EQ(-20, PropsOf(twice).vidProps.nHeight);
    // A plain clone of a cut starts where the cut does.
    EXPECT_EQ(VideoOf(twice).address, VideoOf(Clone(twice.get(), eZFC_Reference)).address);
}

TEST_F(FrameCuts, FieldsOfNtscStartWithTheLowerRow) {
    Z_VID_PROPS ntsc = VideoPropsFromFormat(eZVF_NTSC, eZFCC_UYVY);
    const auto frame = Frame(ntsc);
    const auto first = Cut(frame.get(), 1, nullptr);
    const auto second = Cut(frame.get(), 2, nullptr);
    EXPECT_EQ(VideoOf(frame).address + 1440, VideoOf(first).address);
    EXPECT_EQ(VideoOf(frame).address, VideoOf(second).address);
    EXPECT_EQ(243, PropsOf(first).vidProps.nHeight);
    EXPECT_EQ(2880, PropsOf(first).vidProps.nRowBytes);
    EXPECT_LE(VideoBytesNeeded(PropsOf(first).vidProps), VideoOf(first).size);
}

TEST_F(FrameCuts, PlanarPicturesStayWhole) {
    Z_VID_PROPS planar = {};
    planar.eVideoFormat = eZVF_PAL;
    planar.fccType = eZFCC_I420;
    const auto frame = Frame(planar);
    const tagRECT rect = Rect(10, 10, 50, 50);
    const auto cut = Cut(frame.get(), 0, &rect);
    EXPECT_EQ(VideoOf(frame).address, VideoOf(cut).address);
    EXPECT_EQ(PropsOf(frame).vidProps.nWidth, PropsOf(cut).vidProps.nWidth);
    EXPECT_EQ(eZVF_PAL, PropsOf(cut).vidProps.eVideoFormat);
    // The second field of a planar picture states more than there is: no pixel work takes it.
    const auto field = Cut(frame.get(), 2, nullptr);
    ComPtr<IZFrame> converted;
    EXPECT_EQ(kVfwEInvalidMediaType, field->FrameClone(converted.Put(), eZFC_Video, eZFCC_UYVY));
    EXPECT_FALSE(converted);
}

TEST_F(FrameCuts, EmptyResultsSucceed) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 40, -30));
    const tagRECT outside = Rect(100, 0, 200, 30);
    const auto cut = Cut(frame.get(), 0, &outside);
    EXPECT_EQ(0, PropsOf(cut).vidProps.nWidth);
    EXPECT_EQ(160, OffsetOf(cut));
}

TEST_F(FrameCuts, OffsetsPastThePixelsLeaveNone) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 40, -30));
    Z_AV_PROPS props = PropsOf(frame);
    props.vidProps.nHeight = -100000;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    const tagRECT deep = Rect(0, 99990, 40, 99999);
    const auto cut = Cut(frame.get(), 0, &deep);
    EXPECT_EQ(0, VideoOf(cut).size);
    EXPECT_EQ(0, VideoOf(cut).address);
    // A start before the pixels is not taken.
    props.vidProps.nHeight = -30;
    props.vidProps.nRowBytes = -160;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    const tagRECT low = Rect(0, 10, 40, 20);
    EXPECT_EQ(0, OffsetOf(Cut(frame.get(), 0, &low)));
}

TEST_F(FrameCuts, TessiluCutsTheSame) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 40, -30));
    tagRECT rect = Rect(3, 4, 13, 20);
    ComPtr<IZFFrame> cut;
    ASSERT_EQ(S_OK, As<IZFFrame>(frame)->ZFCut(0, &rect, cut.Put()));
    EXPECT_EQ(VideoOf(frame).address + 4 * 160 + 3 * 4, VideoOf(As<IZFrame>(cut)).address);
}

TEST_F(FrameCuts, CopiesOfCutsHoldTheirPart) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 40, -30));
    const tagRECT rect = Rect(3, 4, 13, 20);
    const auto cut = Cut(frame.get(), 0, &rect);
    const auto copy = Clone(cut.get(), eZFC_Full);
    EXPECT_EQ(VideoOf(cut).Copy(), VideoOf(copy).Copy());
    EXPECT_EQ(0, OffsetOf(As<IZFrame_I>(copy)));
}

}    // namespace
}    // namespace zck::test
