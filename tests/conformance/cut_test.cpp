// Parts of a picture without a copy: fields, rectangles, both, again and again.
#include <cmath>
#include <numeric>
#include <random>

#include "tests/conformance/frame_fixture.h"

namespace conformance {
namespace {

int64_t Magnitude(int64_t v) { return v < 0 ? -v : v; }

struct CutRecord {
    Z_VID_PROPS props;
    int64_t offset;
};

int16_t Short(int64_t v) { return static_cast<int16_t>(v); }

void NarrowToField(CutRecord &cut, int32_t field) {
    Z_VID_PROPS &p = cut.props;
    int32_t index = field - 1;
    if (index <= 1) {
        if (OrderSign(&p) < 0) index = 1 - index;
        if (Rgb(p.fccType) && p.nHeight > 0) index = 1 - index;
    }
    if (index >= 1) cut.offset += p.nRowBytes;
    p.nRowBytes *= 2;
    p.nHeight /= 2;
    p.eInterlace = eZI_Progressive;
    p.eVideoFormat = eZVF_Custom;
}

void NarrowToRect(CutRecord &cut, const tagRECT &rect) {
    Z_VID_PROPS &p = cut.props;
    if (!Valid(&p) || Planar(p.fccType)) return;
    const int64_t w = p.nWidth, h = Magnitude(p.nHeight);
    const auto within = [](int64_t v, int64_t most) { return v < 0 ? 0 : v > most ? most : v; };
    int64_t right = within(rect.right, w), left = std::min(within(rect.left, w), right);
    int64_t bottom = within(rect.bottom, h), top = std::min(within(rect.top, h), bottom);
    if (!Rgb(p.fccType)) {
        left = (left + 1) / 2 * 2;
        right = right / 2 * 2;
    }
    if (OrderSign(&p) != 0) {
        top = (top + 1) / 2 * 2;
        bottom = bottom / 2 * 2;
    }
    left = std::min(left, right);
    top = std::min(top, bottom);
    const int64_t firstRow = Rgb(p.fccType) && p.nHeight > 0 ? std::max<int64_t>(0, h - 1 - bottom) : top;
    cut.offset += firstRow * p.nRowBytes + left * Bits(p.fccType) / 8;
    const double pixelAspect = w < 1 ? 1.0 : Aspect(&p) * static_cast<double>(h) / static_cast<double>(w);
    int64_t newW = right - left;
    if (!Rgb(p.fccType)) newW = newW / 2 * 2;
    const int64_t newH = bottom - top;
    int64_t x = static_cast<int64_t>(std::round(pixelAspect * static_cast<double>(newW))), y = newH;
    if (x <= 0 || y <= 0) x = y = 0;
    if (x != 0) {
        const int64_t common = std::gcd(x, y);
        x /= common;
        y /= common;
        while (x > 32767 || y > 32767) {
            x = std::max<int64_t>(1, x >> 1);
            y = std::max<int64_t>(1, y >> 1);
        }
    }
    p.nAspectX = Short(x);
    p.nAspectY = Short(y);
    p.nWidth = static_cast<int32_t>(newW);
    p.nHeight = static_cast<int32_t>(p.nHeight < 0 ? -newH : newH);
    p.eVideoFormat = eZVF_Custom;
}

bool Empty(const tagRECT *r) { return r == nullptr || r->right <= r->left || r->bottom <= r->top; }

CutRecord CutModel(const Z_VID_PROPS &p, int32_t field, const tagRECT *rect) {
    CutRecord cut = {p, 0};
    if (field > 0) NarrowToField(cut, field);
    if (!Empty(rect)) NarrowToRect(cut, *rect);
    return cut;
}

class Cuts : public Frames {
protected:
    static ComPtr<IZFrame> Cut(const ComPtr<IZFrame> &frame, int32_t field, const tagRECT *rect) {
        ComPtr<IZFrame> cut;
        tagRECT copy = rect != nullptr ? *rect : tagRECT{};
        EXPECT_EQ(frame->FrameCut(field, rect != nullptr ? &copy : nullptr, cut.Put()), S_OK);
        return cut;
    }

    static void Check(const ComPtr<IZFrame> &frame, int32_t field, const tagRECT *rect) {
        const CutRecord want = CutModel(Props(frame).vidProps, field, rect);
        const ComPtr<IZFrame> cut = Cut(frame, field, rect);
        ASSERT_TRUE(cut);
        std::string text = Words(Props(frame).vidProps) + " field " + std::to_string(field);
        if (rect != nullptr)
            text += " rect " + std::to_string(rect->left) + "," + std::to_string(rect->top) + "," +
                    std::to_string(rect->right) + "," + std::to_string(rect->bottom);
        ASSERT_EQ(Words(Props(cut).vidProps), Words(want.props)) << text;
        int32_t offset = -1;
        ASSERT_EQ(QueryFor<IZFrame_I>(cut.get())->FrameVideoOffsetGet(&offset), S_OK);
        const Seen own = Video(frame), seen = Video(cut);
        const int64_t left = std::max<int64_t>(0, own.size - want.offset);
        // Offsets count from the start of the section, so that those of cuts of cuts add up. Without pixels there is nothing to
        // be at an offset of.
        int32_t before = 0;
        ASSERT_EQ(QueryFor<IZFrame_I>(frame.get())->FrameVideoOffsetGet(&before), S_OK);
        ASSERT_EQ(offset, own.size > 0 ? std::min<int64_t>(before + want.offset, INT32_MAX) : 0) << text;
        ASSERT_EQ(seen.size, left) << text;
        ASSERT_EQ(seen.address, left > 0 ? own.address + want.offset : 0) << text;
    }
};

TEST_F(Cuts, NothingAskedIsAReferenceWithTheSameRecord) {
    const ComPtr<IZFrame> frame = MakeRich(Picture(eZFCC_UYVY, 16, 8));
    const tagRECT none = {5, 5, 5, 7}, turned = {8, 8, 2, 2};
    for (const tagRECT *rect : {static_cast<const tagRECT *>(nullptr), &none, &turned})
        for (const int32_t field : {-1, 0}) {
            const ComPtr<IZFrame> cut = Cut(frame, field, rect);
            EXPECT_EQ(Video(cut).address, Video(frame).address);
            EXPECT_EQ(Video(cut).size, Video(frame).size);
            EXPECT_EQ(Words(Props(cut).vidProps), Words(Props(frame).vidProps));
            EXPECT_EQ(Audio(cut).bytes(), Audio(frame).bytes());
            EXPECT_EQ(Props(cut).bLocked, 3);
            EXPECT_EQ(Time(cut).rtEndTime, 800000);
        }
}

TEST_F(Cuts, FieldsOfAnNtscPicture) {
    Z_VID_PROPS p = Picture(eZFCC_UYVY, 720, 486);
    p.eVideoFormat = eZVF_NTSC;
    p.eInterlace = eZI_Default;    // the format's own: field 2 first
    const ComPtr<IZFrame> frame = Make(p);
    EXPECT_EQ(Video(Cut(frame, 1, nullptr)).address, Video(frame).address + 1440);
    EXPECT_EQ(Video(Cut(frame, 2, nullptr)).address, Video(frame).address);
    const Z_VID_PROPS field = Props(Cut(frame, 1, nullptr)).vidProps;
    EXPECT_EQ(field.nHeight, 243);
    EXPECT_EQ(field.nRowBytes, 2880);
    EXPECT_EQ(field.eInterlace, eZI_Progressive);
    EXPECT_EQ(field.eVideoFormat, eZVF_Custom);
}

TEST_F(Cuts, PlanarPicturesIgnoreTheRectangle) {
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_YV12, eZFCC_NV12}) {
        const ComPtr<IZFrame> frame = Make(Picture(fcc, 16, 8));
        const tagRECT rect = {2, 2, 6, 6};
        const ComPtr<IZFrame> cut = Cut(frame, 0, &rect);
        EXPECT_EQ(Words(Props(cut).vidProps), Words(Props(frame).vidProps));
        EXPECT_EQ(Video(cut).address, Video(frame).address);
    }
}

TEST_F(Cuts, OffsetsAddUp) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_RGB32, 40, -30));
    const tagRECT outer = {4, 5, 36, 25}, inner = {3, 2, 10, 9};
    const ComPtr<IZFrame> first = Cut(frame, 0, &outer), second = Cut(first, 0, &inner);
    EXPECT_EQ(Video(second).address, Video(frame).address + (5 + 2) * 160 + (4 + 3) * 4);
    int32_t offset = 0;
    EXPECT_EQ(QueryFor<IZFrame_I>(second.get())->FrameVideoOffsetGet(&offset), S_OK);
    EXPECT_EQ(offset, (5 + 2) * 160 + (4 + 3) * 4);
    // Its pixels can be taken, although its last row ends early.
    ComPtr<IZFrame> converted;
    ASSERT_EQ(second->FrameClone(converted.Put(), eZFC_Full, eZFCC_RGB24), S_OK);
    EXPECT_EQ(Video(converted).data()[0], Video(second).data()[0]);
    EXPECT_EQ(Props(converted).vidProps.nRowBytes, 24);
    EXPECT_EQ(Video(converted).size, 7 * 24);
}

TEST_F(Cuts, TheLastRowsOfABottomUpPicture) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_RGB32, 10, 8));
    const tagRECT lower = {0, 4, 10, 8};    // first stored rows: 8 - 1 - 8 is below 0
    EXPECT_EQ(Video(Cut(frame, 0, &lower)).address, Video(frame).address);
    const tagRECT upper = {0, 0, 10, 4};    // one row less than one would say
    EXPECT_EQ(Video(Cut(frame, 0, &upper)).address, Video(frame).address + 3 * 40);
}

TEST_F(Cuts, RandomCutsAgreeWithTheModel) {
    const uint32_t seed = 4711;
    std::mt19937 random(seed);
    const auto upTo = [&](int32_t n) { return static_cast<int32_t>(random() % static_cast<uint32_t>(n)); };
    const eZFCC codes[] = {eZFCC_UYVY,  eZFCC_YUY2, eZFCC_HDYC, eZFCC_v210, eZFCC_RGB32, eZFCC_ARGB32,
                           eZFCC_RGB24, eZFCC_RGB8, eZFCC_r210, eZFCC_I420, eZFCC_NV12,  Fcc(0xE436EB7B)};
    for (int i = 0; i < 4000; ++i) {
        const eZFCC fcc = codes[random() % std::size(codes)];
        const int32_t w = 1 + upTo(40), h = 1 + upTo(24);
        Z_VID_PROPS p = Picture(fcc, w, Rgb(fcc) && upTo(2) == 0 ? -h : h);
        p.nRowBytes += upTo(3) == 0 ? 4 * upTo(9) : 0;
        const eZInterlace orders[] = {eZI_Progressive, eZI_Default, eZI_Field1First, eZI_Field2First, eZI_Inverse};
        p.eInterlace = orders[random() % 5];
        if (upTo(4) == 0) p.nAspectX = 16, p.nAspectY = 9;
        if (upTo(6) == 0) p.eVideoFormat = upTo(2) == 0 ? eZVF_NTSC : eZVF_HD1080_50i;
        ComPtr<IZFrame> frame = Make(Picture(fcc, w, p.nHeight));
        // The raw record, so that odd standard formats stand beside odd sizes.
        Z_AV_PROPS props = {};
        props.vidProps = p;
        ASSERT_EQ(frame->FrameAVPropsSet(&props), S_OK);
        for (int deep = 0; deep < 2; ++deep) {
            const int32_t field = upTo(6) - 1;
            tagRECT rect = {upTo(60) - 10, upTo(40) - 8, upTo(60) - 5, upTo(40) - 5};
            if (upTo(3) == 0) rect = {upTo(w + 1), upTo(h + 1), w, h};
            const tagRECT *given = upTo(6) == 0 ? nullptr : &rect;
            ASSERT_NO_FATAL_FAILURE(Check(frame, field, given)) << "seed " << seed << " round " << i;
            frame = Cut(frame, field, given);
        }
    }
}

TEST_F(Cuts, WideAspectsShrinkIntoTheirFields) {
    Bytes block(64);
    Z_VID_PROPS p = Picture(eZFCC_RGB32, 40000, -39989);
    const ComPtr<IZFrame> frame = Wrap(p, block.data(), 64);
    const tagRECT rect = {0, 0, 39999, 39983};
    Check(frame, 0, &rect);
    const tagRECT outside = {50000, 50000, 60000, 60000};
    Check(frame, 0, &outside);
    EXPECT_EQ(Props(Cut(frame, 0, &outside)).vidProps.nWidth, 0);
    EXPECT_EQ(Video(Cut(frame, 0, &outside)).address, 0);
    const tagRECT huge = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    Check(frame, 0, &huge);
}

TEST_F(Cuts, AnEmptyColumnAtAnOddEdge) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 721, 4));
    const tagRECT rect = {721, 0, 800, 4};
    const Z_VID_PROPS cut = Props(Cut(frame, 0, &rect)).vidProps;
    EXPECT_EQ(cut.nWidth, 0);
    Check(frame, 0, &rect);
    const tagRECT whole = {0, 0, 721, 4};
    EXPECT_EQ(Props(Cut(frame, 0, &whole)).vidProps.nWidth, 720);
}

TEST_F(Cuts, AFieldOfAPlanarPictureCannotBeRead) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_NV12, 16, 8));
    const ComPtr<IZFrame> second = Cut(frame, 2, nullptr);
    EXPECT_EQ(Props(second).vidProps.nHeight, 4);
    EXPECT_EQ(Props(second).vidProps.nRowBytes, 32);
    EXPECT_EQ(Video(second).address, Video(frame).address + 16);
    EXPECT_EQ(Video(second).size, 192 - 16);
    ComPtr<IZFrame> out;
    EXPECT_EQ(second->FrameClone(out.Put(), eZFC_Full, eZFCC_UYVY), static_cast<HRESULT>(0x80040248));
}

TEST_F(Cuts, TheWideViewCutsTheSame) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
    tagRECT rect = {2, 2, 9, 7};
    ComPtr<IZFFrame> wide;
    ASSERT_EQ(QueryFor<IZFFrame>(frame.get())->ZFCut(1, &rect, wide.Put()), S_OK);
    const ComPtr<IZFrame> cut = Cut(frame, 1, &rect);
    EXPECT_EQ(Video(wide).address, Video(cut).address);
    EXPECT_EQ(Words(Props(wide).vidProps), Words(Props(cut).vidProps));
}

}    // namespace
}    // namespace conformance
