// Conversions with known turns: what a target leaves open, line counts, stereo, the choice of the engine, the wide view, and
// statuses.
#include "tests/conformance/driver_fixture.h"

namespace conformance {
namespace {

constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr HRESULT kNoRoute = static_cast<HRESULT>(0x80040201);

Z_VID_PROPS Scanned(Z_VID_PROPS p, eZInterlace scan) {
    p.eInterlace = scan;
    return p;
}

TEST_F(Driver, TargetsThatLeaveSomethingOpen) {
    Dice dice(100603);
    for (const eZFCC from : {eZFCC_UYVY, eZFCC_RGB32, eZFCC_RGB24, eZFCC_I420})
        for (int32_t round = 0; round < 150; ++round) {
            const ComPtr<IZFrame> frame = Filled(dice, AnyRecord(dice, from));
            constexpr eZFCC kTo[] = {eZFCC_Default, eZFCC_UYVY, eZFCC_ARGB32, eZFCC_I420, eZFCC_RGB24};
            Z_VID_PROPS target = AnyRecord(dice, kTo[dice(0, 4)]);
            if (dice(0, 1) != 0) target.nRowBytes = 0;
            if (dice(0, 2) == 0) target.nWidth = 0;
            if (dice(0, 2) == 0) target.nHeight = 0;
            if (dice(0, 3) == 0) target.nAspectX = 0;
            ASSERT_NO_FATAL_FAILURE(Check(frame, target));
        }
}

TEST_F(Driver, TargetsNamedByAStandard) {
    Dice dice(100604);
    for (const eZVideoFormat format : {eZVF_NTSC, eZVF_PAL, eZVF_HD720_50p, eZVF_Disabled})
        for (const eZFCC fcc : {eZFCC_Default, eZFCC_ARGB32}) {
            Z_VID_PROPS target = {};
            target.eVideoFormat = format;
            target.fccType = fcc;
            ConvertWishes wishes;
            wishes.quality = "1";
            ASSERT_NO_FATAL_FAILURE(Check(Filled(dice, Picture(eZFCC_UYVY, 36, 20)), {}, target, wishes));
        }
}

TEST_F(Driver, LineCounts) {
    Dice dice(100605);
    const auto of = [](eZFCC fcc, int32_t rows, double rate, eZInterlace scan) {
        Z_VID_PROPS p = Picture(fcc, 720, rows);
        p.dblRate = rate;
        p.eInterlace = scan;
        p.nAspectX = 4, p.nAspectY = 3;
        return p;
    };
    const auto check = [&](eZFCC from, eZFCC to, int32_t rows, int32_t toRows, double rate, eZInterlace scan,
                           eZInterlace toScan) {
        ConvertWishes wishes;
        if (dice(0, 1) != 0) wishes.scale = "none";
        Check(Make(of(from, rows, rate, scan)), of(to, toRows, rate, toScan), wishes);
    };
    constexpr double kNtsc = 29.970029970029973;
    for (const eZInterlace scan : {eZI_Progressive, eZI_Field2First})
        for (const eZFCC from : {eZFCC_UYVY, eZFCC_RGB32})
            for (const int32_t up : {1, -1})
                for (const int32_t upTo : {1, -1})
                    for (const eZFCC to : {eZFCC_YUY2, eZFCC_RGB24}) {
                        if ((from == eZFCC_UYVY && up < 0) || (to == eZFCC_YUY2 && upTo < 0)) continue;
                        ASSERT_NO_FATAL_FAILURE(check(from, to, 480 * up, 486 * upTo, kNtsc, scan, scan));
                        ASSERT_NO_FATAL_FAILURE(check(from, to, 486 * up, 480 * upTo, kNtsc, scan, scan));
                        ASSERT_NO_FATAL_FAILURE(check(from, to, 576 * up, 608 * upTo, 25, scan, eZI_Field1First));
                        ASSERT_NO_FATAL_FAILURE(check(from, to, 608 * up, 576 * upTo, 25, eZI_Field1First, scan));
                    }
    for (const auto &[from, to] : {std::pair{eZFCC_I420, eZFCC_UYVY}, std::pair{eZFCC_UYVY, eZFCC_I420}})
        for (const int32_t rows : {480, 486})
            ASSERT_NO_FATAL_FAILURE(check(from, to, rows, 966 - rows, kNtsc, eZI_Progressive, eZI_Progressive));
    // A field of 480 lines meets a whole picture of 486.
    ASSERT_NO_FATAL_FAILURE(check(eZFCC_UYVY, eZFCC_UYVY, 960, 486, kNtsc, eZI_Field1First, eZI_Progressive));
    // A size in between that is no standard is fitted to one all the same.
    ASSERT_NO_FATAL_FAILURE(check(eZFCC_UYVY, eZFCC_UYVY, 525, 486, kNtsc, eZI_Progressive, eZI_Progressive));
    ASSERT_NO_FATAL_FAILURE(check(eZFCC_UYVY, eZFCC_UYVY, 526, 486, kNtsc, eZI_Progressive, eZI_Progressive));
}

// Records that have the size and rate of an interlaced standard and say nothing about fields.
TEST_F(Driver, StandardsThatAreOnlyFound) {
    for (const int32_t rows : {576, 486})
        for (const int32_t width : {720, 360})
            for (const eZInterlace scan : {eZI_Default, eZI_Field2First})
                for (const eZInterlace toScan : {eZI_Default, eZI_Progressive, eZI_Field1First, eZI_Field2First}) {
                    Z_VID_PROPS source = Scanned(Picture(eZFCC_UYVY, 720, rows), scan);
                    Z_VID_PROPS target = Scanned(Picture(eZFCC_YUY2, width, 576), toScan);
                    source.dblRate = target.dblRate = rows == 576 ? 25.0 : 29.97;
                    ConvertWishes wishes;
                    wishes.quality = "1";
                    ASSERT_NO_FATAL_FAILURE(Check(Make(source), {}, target, wishes));
                }
}

TEST_F(Driver, StereoPictures) {
    Dice dice(100606);
    constexpr eZ3DFormat kLayouts[] = {eZ3D_None,           eZ3D_SideBySide,       eZ3D_TopAndBottom,
                                       eZ3D_FullSideBySide, eZ3D_FullTopAndBottom, eZ3D_Auto};
    constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_YVYU, eZFCC_RGB24, eZFCC_ARGB32, eZFCC_I420};
    for (int32_t round = 0; round < 600; ++round) {
        Z_VID_PROPS source = AnyRecord(dice, kFormats[dice(0, 4)]), target = AnyRecord(dice, kFormats[dice(0, 4)]);
        // Halves of whole pixels, in rows without padding.
        for (Z_VID_PROPS *p : {&source, &target}) {
            p->nWidth = (p->nWidth + 7) / 8 * 8;
            p->nRowBytes = static_cast<int32_t>(Row(p->fccType, p->nWidth));
            p->e3DFormat = kLayouts[dice(0, 5)];
        }
        ConvertWishes wishes;
        if (dice(0, 1) != 0) wishes.quality = std::to_string(dice(0, 18));
        const ComPtr<IZFrame> frame = Make(source, static_cast<uint32_t>(round));
        Check(frame, target, wishes);
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
}

// Pictures of nearly one width keep their pixels when nothing else is asked for.
TEST_F(Driver, WidePicturesKeepTheirPixels) {
    Dice dice(100607);
    constexpr int32_t kWidths[] = {1099, 1100, 1279, 1280, 1398, 1424, 1440, 1900, 1918, 1920, 1922, 2048, 3840};
    constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_RGB32};
    for (int32_t round = 0; round < 150; ++round) {
        Z_VID_PROPS source = AnyRecord(dice, kFormats[dice(0, 2)]), target = AnyRecord(dice, kFormats[dice(0, 2)]);
        for (Z_VID_PROPS *p : {&source, &target}) {
            p->nWidth = kWidths[dice(0, 12)];
            p->nHeight = p->nHeight < 0 ? -dice(2, 10) : dice(2, 10);
            p->nRowBytes = static_cast<int32_t>(Row(p->fccType, p->nWidth));
            p->nAspectX = static_cast<int16_t>(p->nWidth), p->nAspectY = static_cast<int16_t>(std::abs(p->nHeight));
            if (dice(0, 3) != 0) p->eScaleType = eZST_Default;
        }
        Check(Make(source, static_cast<uint32_t>(round)), target);
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
}

TEST_F(Driver, EveryQuality) {
    Dice dice(100608);
    for (const int32_t rows : {11, 20, 39})
        for (const eZInterlace scan : {eZI_Progressive, eZI_Field1First, eZI_Field2First})
            for (const eZInterlace toScan : {eZI_Progressive, eZI_Field1First})
                for (const std::string quality :
                     {"-1", "0",  "1",  "2",  "3",  "4",  "5",  "6",          "7",           "8",  "9",
                      "10", "12", "15", "16", "18", "19", "26", "2000000000", "99999999999", "abc"}) {
                    if (quality == "99999999999") continue;
                    const eZFCC from = dice(0, 1) != 0 ? eZFCC_UYVY : eZFCC_NV12,
                                to = dice(0, 1) != 0 ? eZFCC_RGB32 : eZFCC_YUY2;
                    ConvertWishes wishes;
                    wishes.quality = quality;
                    Z_VID_PROPS target = Scanned(Picture(to, 22, rows), toScan);
                    if (dice(0, 1) != 0) target.dblRate = 50;
                    ASSERT_NO_FATAL_FAILURE(Check(Make(Scanned(Picture(from, 26, 20), scan)), target, wishes));
                }
}

TEST_F(Driver, TwoPicturesAreWoven) {
    Dice dice(100609);
    for (const eZFCC fcc : FrameFormats())
        for (const eZInterlace scan : {eZI_Progressive, eZI_Field1First})
            for (const eZInterlace toScan : {eZI_Progressive, eZI_Field1First, eZI_Field2First, eZI_Default})
                for (const int32_t height : {8, -8, 9, -9, 1}) {
                    if (height < 0 && !Rgb(fcc)) continue;
                    const Z_VID_PROPS p = Scanned(Picture(fcc, 12, height), scan);
                    ASSERT_NO_FATAL_FAILURE(Check(Make(p, 1), Make(p, 2), Scanned(p, toScan), {}));
                    ASSERT_NO_FATAL_FAILURE(Check(Make(p, 1), Make(p, 2), Scanned(Picture(eZFCC_YUY2, 16, 10), toScan), {}));
                    // The second does not count when it is another picture.
                    Z_VID_PROPS other = p;
                    other.dblRate = 50;
                    ASSERT_NO_FATAL_FAILURE(Check(Make(p, 1), Make(other, 2), Scanned(p, toScan), {}));
                }
}

TEST_F(Driver, RecordsThatStateMoreThanThePixels) {
    for (const bool same : {true, false})
        for (const char *mirror : {"", "vert"}) {
            const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
            Z_AV_PROPS props = Props(frame);
            props.vidProps.nHeight = 9;
            ASSERT_EQ(frame->FrameAVPropsSet(&props), S_OK);
            ConvertWishes wishes;
            wishes.mirror = mirror;
            ASSERT_NO_FATAL_FAILURE(Check(frame, same ? props.vidProps : Picture(eZFCC_RGB32, 16, 9), wishes));
            // As the second source, even where it would not be looked at.
            ComPtr<IZFrame> out;
            Z_VID_PROPS target = Picture(eZFCC_RGB32, 16, 9);
            EXPECT_EQ(m_factory->FramesConvert(Make(Picture(eZFCC_UYVY, 8, 8)).get(), frame.get(), &target, out.Put(), nullptr),
                      kBadMedia);
        }
}

// What is left of a rectangle when its sides have moved to even columns and rows can be nothing.
TEST_F(Driver, PartsOfNothing) {
    const ComPtr<IZFrame> frame = Make(Scanned(Picture(eZFCC_UYVY, 16, 8), eZI_Field1First));
    const Z_VID_PROPS target = Picture(eZFCC_RGB32, 8, 8);
    for (const char *crop : {"3,0,12,0", "0,3,0,4"}) {
        ConvertWishes wishes;
        wishes.crop = crop;
        Conversion seen;
        ASSERT_NO_FATAL_FAILURE(Check(frame, {}, target, wishes, &seen));
        EXPECT_EQ(seen.hr, E_UNEXPECTED);
        ASSERT_NO_FATAL_FAILURE(Check(frame, frame, target, wishes, &seen));
        EXPECT_EQ(seen.hr, E_UNEXPECTED);
        wishes.rotate = "left";
        ASSERT_NO_FATAL_FAILURE(Check(frame, {}, target, wishes, &seen));
        EXPECT_EQ(seen.hr, kBadMedia);
    }
    tagRECT rect = {0, 3, 16, 4};
    ComPtr<IZFrame> part;
    ASSERT_EQ(frame->FrameCut(0, &rect, part.Put()), S_OK);
    ASSERT_NO_FATAL_FAILURE(Check(part, target));
}

TEST_F(Driver, Statuses) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
    Z_VID_PROPS target = Picture(eZFCC_RGB32, 8, 8);
    ComPtr<IZFrame> out;
    EXPECT_EQ(frame->FrameConvert(nullptr, out.Put(), nullptr), E_POINTER);
    EXPECT_EQ(frame->FrameConvert(&target, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_factory->FramesConvert(frame.get(), nullptr, nullptr, out.Put(), nullptr), E_POINTER);
    EXPECT_EQ(m_factory->FramesConvert(frame.get(), nullptr, &target, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_factory->FramesConvert(nullptr, nullptr, &target, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_factory->FramesConvert(nullptr, nullptr, &target, out.Put(), nullptr), E_INVALIDARG);
    IZFrame *stale = frame.get();
    EXPECT_EQ(m_factory->FramesConvert(nullptr, nullptr, &target, &stale, nullptr), E_INVALIDARG);
    EXPECT_EQ(stale, nullptr);

    const auto convert = [&](const Z_VID_PROPS &t) {
        Z_VID_PROPS given = t;
        return frame->FrameConvert(&given, out.Put(), nullptr);
    };
    EXPECT_EQ(convert(Picture(eZFCC_v210, 8, 8)), kNoRoute);    // no stage scales it
    EXPECT_EQ(convert(Picture(eZFCC_r210, 16, 8)), kNoRoute);
    EXPECT_EQ(convert(Picture(Fcc(0x41424344), 16, 8)), kBadMedia);    // no row bytes
    Z_VID_PROPS odd = Picture(Fcc(0x41424344), 16, 8);
    odd.nRowBytes = 64;
    EXPECT_EQ(convert(odd), kNoRoute);
    EXPECT_FALSE(out);
    odd = Picture(eZFCC_I420, 16, 8);
    odd.nRowBytes = 15;
    EXPECT_EQ(convert(odd), kBadMedia);
    odd = Picture(eZFCC_UYVY, 16, 8);
    odd.nRowBytes = 1;
    ASSERT_EQ(convert(odd), S_OK);
    EXPECT_EQ(Props(out).vidProps.nRowBytes, 32);
    EXPECT_EQ(convert(Picture(eZFCC_ARGB32, 40000, 40000)), kBadMedia);
    EXPECT_EQ(convert(Picture(eZFCC_ARGB32, INT32_MAX, INT32_MIN)), kBadMedia);
    Z_VID_PROPS rgb = Picture(eZFCC_RGB32, 16, 8), ten = Picture(eZFCC_v210, 16, 8);
    EXPECT_EQ(Make(rgb)->FrameConvert(&ten, out.Put(), nullptr), E_FAIL);

    // A frame of no factory, without pixels, without a description.
    Bytes block(256);
    ComPtr<IZFrame_I> bare;
    ASSERT_EQ(m_factory->FrameAlloc(0, 0, nullptr, bare.Put()), S_OK);
    EXPECT_EQ(bare->FrameConvert(&rgb, out.Put(), nullptr), kBadMedia);
    Z_AV_PROPS props = {};
    props.vidProps = Picture(eZFCC_UYVY, 16, 8);
    ASSERT_EQ(bare->FrameAVPropsSet(&props), S_OK);
    EXPECT_EQ(bare->FrameConvert(&rgb, out.Put(), nullptr), kBadMedia);
    Z_VID_PROPS own = props.vidProps;
    EXPECT_EQ(bare->FrameConvert(&own, out.Put(), nullptr), S_OK);    // a clone touches no pixels
}

TEST_F(Driver, WhatComesAlong) {
    for (const bool clone : {true, false}) {
        const Z_VID_PROPS p = Picture(eZFCC_UYVY, 16, 8);
        const ComPtr<IZFrame> frame = MakeRich(p);
        Z_VID_PROPS target = clone ? p : Picture(eZFCC_RGB24, 24, 10);
        ComPtr<IZFrame> out;
        ASSERT_EQ(frame->FrameConvert(&target, out.Put(), nullptr), S_OK);
        EXPECT_EQ(Video(out).data() == Video(frame).data(), clone);
        EXPECT_EQ(Audio(out).bytes(), Audio(frame).bytes());
        EXPECT_EQ(Time(out).rtEndTime, 800000);
        EXPECT_EQ(Time(out).eFFlags, eZFF_Net_Break_BI);
        const Z_AV_PROPS seen = Props(out);
        EXPECT_EQ(seen.audProps.nSamplesPerSec, 48000);
        EXPECT_EQ(seen.bLocked, 3);
        const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(out.get());
        int32_t size = 0;
        int64_t at = 0;
        EXPECT_EQ(wide->ZFDataGet(TextOf("C608").get(), &size, &at), S_OK);
        EXPECT_EQ(size, 6);
        ComPtr<IUnknown> object;
        EXPECT_EQ(wide->ZFObjectGet(TextOf("thing").get(), object.Put(), 0), S_OK);
    }
}

TEST_F(Driver, WideViewConverts) {
    const ComPtr<IZFrame> frame = MakeRich(Picture(eZFCC_UYVY, 26, 14));
    const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(frame.get());
    Z_AV_PROPS target = {};
    target.vidProps = Picture(eZFCC_ARGB32, 20, -10);
    const Still source = StillOf(frame);
    const auto compare = [&](HRESULT hr, const ComPtr<IZFFrame> &out) {
        Compare(FramesConvertModel(&source, nullptr, target.vidProps, {}), hr, QueryFor<IZFrame>(out.get()));
    };
    EXPECT_EQ(wide->ZFConvert(&target, nullptr, nullptr, nullptr, 0), E_INVALIDARG);
    ComPtr<IZFFrame> out;
    IZFFrame *holder = nullptr;
    EXPECT_EQ(wide->ZFConvert(nullptr, &holder, nullptr, nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(holder, nullptr);
    int32_t samples = 77;
    HRESULT hr = wide->ZFConvert(&target, &holder, &samples, TextOf("field=1").get(), 0);
    out.Attach(holder);
    compare(hr, out);
    EXPECT_EQ(samples, 77);

    // The frame in the holder says what is wanted, and is replaced.
    holder = out.get();
    holder->AddRef();
    hr = wide->ZFConvert(nullptr, &holder, nullptr, nullptr, 0);
    ComPtr<IZFFrame> next;
    next.Attach(holder);
    EXPECT_NE(next.get(), out.get());
    compare(hr, next);

    target.audProps = {2, 44100, 16, 0};
    holder = nullptr;
    EXPECT_EQ(wide->ZFConvert(&target, &holder, nullptr, nullptr, 0), kBadMedia);
    EXPECT_EQ(holder, nullptr);
}

struct ResizeCase {
    eZFCC fcc;
    int32_t width, height;
    const char *scale;
};

TEST_F(Driver, WideViewResizes) {
    Z_VID_PROPS p = Picture(eZFCC_UYVY, 32, 18);
    p.nAspectX = 16, p.nAspectY = 9;
    for (const ResizeCase &c : {ResizeCase{eZFCC_Default, 20, 10, ""},
                                {eZFCC_RGB32, 21, -11, ""},
                                {eZFCC_RGB32, 30, 30, "fit_ar"},
                                {eZFCC_RGB24, 40, -10, "FIT_AR"},
                                {eZFCC_YUY2, 20, 20, "letter-box"},
                                {eZFCC_YUY2, 20, 20, "nothing"},
                                {eZFCC_I420, 20, 20, "crop"},
                                {eZFCC_Default, 0, 0, ""},
                                {eZFCC_RGB32, 0, 20, ""},
                                {eZFCC_HDYC, 32, 18, ""}}) {
        const ComPtr<IZFrame> frame = MakeRich(p);
        const Still source = StillOf(frame);
        SCOPED_TRACE(testing::Message() << c.width << " x " << c.height << " " << c.scale);
        Z_VID_PROPS t = p;
        int32_t w = c.width, h = c.height;
        const bool fit = std::string(c.scale) == "fit_ar" || std::string(c.scale) == "FIT_AR";
        if (fit) {
            w = static_cast<int32_t>(std::min(std::abs(c.height) * (16.0 / 9.0), static_cast<double>(c.width)));
            h = static_cast<int32_t>(std::min(c.width / (16.0 / 9.0), static_cast<double>(std::abs(c.height))));
            if (c.height < 0) h = -h;
        }
        if (c.fcc != eZFCC_Default) t.fccType = c.fcc;
        t.nWidth = w;
        t.nHeight = h;
        int32_t a = w, b = std::abs(h);
        while (b != 0) a %= b, std::swap(a, b);
        t.nAspectX = static_cast<int16_t>(w / std::max(a, 1));
        t.nAspectY = static_cast<int16_t>(std::abs(h) / std::max(a, 1));
        t.nRowBytes = static_cast<int32_t>((Row(t.fccType, w) + 15) / 16 * 16);
        ConvertWishes wishes;
        if (!fit) wishes.scale = c.scale;
        t.eScaleType = eZST_None;
        ComPtr<IZFFrame> out;
        const std::string text = std::string("scale_type='") + c.scale + "'";
        const HRESULT hr =
            QueryFor<IZFFrame>(frame.get())->ZFResize(c.fcc, c.width, c.height, 0, out.Put(), TextOf(text.c_str()).get(), 0);
        ASSERT_NO_FATAL_FAILURE(Compare(FramesConvertModel(&source, nullptr, t, wishes), hr, QueryFor<IZFrame>(out.get())));
        EXPECT_EQ(Time(out).eFFlags, (eZFF_Net_Break_BI & ~0x31) | 1);
        EXPECT_EQ(Time(frame).eFFlags, eZFF_Net_Break_BI);
    }
}

TEST_F(Driver, WideViewResizesAField) {
    for (const eZInterlace scan : {eZI_Field1First, eZI_Field2First})
        for (const int32_t field : {1, 2}) {
            const ComPtr<IZFrame> frame = Make(Scanned(Picture(eZFCC_UYVY, 32, 18), scan));
            ComPtr<IZFrame> cut;
            ASSERT_EQ(frame->FrameCut(field, nullptr, cut.Put()), S_OK);
            const Still source = StillOf(cut);
            Z_VID_PROPS t = source.props;
            t.nWidth = 20, t.nHeight = 12, t.nAspectX = 5, t.nAspectY = 3, t.nRowBytes = 48, t.eScaleType = eZST_None;
            ComPtr<IZFFrame> out;
            const HRESULT hr = QueryFor<IZFFrame>(frame.get())->ZFResize(eZFCC_Default, 20, 12, field, out.Put(), nullptr, 0);
            ASSERT_NO_FATAL_FAILURE(Compare(FramesConvertModel(&source, nullptr, t, {}), hr, QueryFor<IZFrame>(out.get())));
        }
}

TEST_F(Driver, WideViewResizeFails) {
    const ComPtr<IZFrame> frame = MakeRich(Picture(eZFCC_UYVY, 16, 8));
    const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(frame.get());
    EXPECT_EQ(wide->ZFResize(eZFCC_Default, 8, 8, 0, nullptr, nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(Time(frame).eFFlags, eZFF_Net_Break_BI);
    ComPtr<IZFFrame> out;
    EXPECT_EQ(wide->ZFResize(eZFCC_v210, 8, 8, 0, out.Put(), nullptr, 0), kNoRoute);
    EXPECT_FALSE(out);
    // The failed call leaves its mark.
    EXPECT_EQ(Time(frame).eFFlags, (eZFF_Net_Break_BI & ~0x31) | 1);
}

TEST_F(Driver, TransitionsAreNotMadeHere) {
    const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(Make(Picture(eZFCC_UYVY, 16, 8)).get());
    IZFFrame *holder = wide.get();
    EXPECT_EQ(wide->ZFTransition(nullptr, &holder, 0.5, 0, nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(wide->ZFTransition(wide.get(), &holder, 0.5, 0, nullptr, 0), E_NOINTERFACE);
    EXPECT_EQ(wide->ZFTransition(wide.get(), nullptr, 0.5, 0, nullptr, 0), E_NOINTERFACE);
    EXPECT_EQ(holder, wide.get());
}

}    // namespace
}    // namespace conformance
