// Single cases of frames over frames: statuses, sound, places in fractions, frames of others.
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/process.h"
#include "tests/conformance/foreign_frame.h"
#include "tests/conformance/mix_fixture.h"

namespace conformance {
namespace {

constexpr eZFCC kMixable[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32};

using MixCase = Mix;

TEST_F(MixCase, WhatIsNoFrame) {
    const ComPtr<IZFrame> target = Any(eZFCC_UYVY), over = Any(eZFCC_UYVY);
    EXPECT_EQ(Overlay(target, nullptr), E_NOINTERFACE);
    ForeignFrame nothing(over, Answers::Nothing);
    EXPECT_EQ(Overlay(target, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing.m_refs, 1U);
    const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(target.get());
    EXPECT_EQ(wide->ZFOverlay(nullptr, nullptr, 0, 0, 1.0, nullptr, 0, 0), E_INVALIDARG);
    EXPECT_EQ(wide->ZFOverlayRect(QueryFor<IZFFrame>(over.get()).get(), nullptr, nullptr, 0, 1.0, nullptr, 0), E_INVALIDARG);
    PrintRect rect = {};
    EXPECT_EQ(wide->ZFOverlayRect(nullptr, nullptr, &rect, 0, 1.0, nullptr, 0), E_INVALIDARG);
}

TEST_F(MixCase, WithoutPictures) {
    const ComPtr<IZFrame> frame = Any(eZFCC_RGB32), other = Any(eZFCC_ARGB32), none = WithoutPicture(frame);
    EXPECT_EQ(Overlay(none, other.get()), kNoPictureModel);
    EXPECT_EQ(Overlay(none, nullptr), E_NOINTERFACE);
    const Bytes before = Video(frame).bytes();
    EXPECT_EQ(Overlay(frame, none.get()), kNoPictureModel);
    EXPECT_EQ(Wide(none, other), S_OK);
    EXPECT_EQ(Wide(frame, none), S_OK);
    EXPECT_EQ(Video(frame).bytes(), before);
}

TEST_F(MixCase, RecordsThatSayNothing) {
    for (const bool wide : {false, true})
        for (const bool isTarget : {true, false}) {
            const ComPtr<IZFrame> target = Any(eZFCC_UYVY), over = Any(eZFCC_UYVY);
            const auto check = [&](Z_VID_PROPS p, HRESULT want) {
                Describe(isTarget ? target : over, p);
                const Bytes before = Video(target).bytes();
                EXPECT_EQ(wide ? Wide(target, over) : Overlay(target, over.get()), want) << Words(p) << wide << isTarget;
                EXPECT_EQ(Video(target).bytes(), before);
            };
            const Z_VID_PROPS good = Picture(eZFCC_UYVY, 8, 4);
            const HRESULT invalid = wide ? S_OK : kBadRecordModel;
            check({}, invalid);
            for (int32_t i = 0; i < 4; ++i) {
                Z_VID_PROPS p = good;
                (i == 0 ? p.nWidth : i == 1 ? p.nHeight : p.nRowBytes) = 0;
                if (i == 3) p = good, p.fccType = eZFCC_Default;
                check(p, invalid);
            }
            Z_VID_PROPS p = good;
            p.nRowBytes = -16;
            check(p, kBadRecordModel);
            p = good;
            p.nHeight = 5;
            check(p, kBadMediaModel);
            p = good;
            p.nRowBytes = 17;
            check(p, kBadMediaModel);
            p = {};
            p.eVideoFormat = eZVF_NTSC;
            p.fccType = eZFCC_UYVY;
            check(p, kBadMediaModel);
            p.eVideoFormat = eZVF_Disabled;
            check(p, kBadRecordModel);
            // Records come before places.
            Describe(target, good);
            Describe(over, good);
            p = good;
            p.nHeight = 5;
            Describe(isTarget ? target : over, p);
            EXPECT_EQ(wide ? Wide(target, over, nullptr, {}, 100) : Overlay(target, over.get(), 100), kBadMediaModel);
        }
}

TEST_F(MixCase, AStandardFormatIsCompleted) {
    Z_VID_PROPS p = {};
    p.eVideoFormat = eZVF_NTSC;
    p.fccType = eZFCC_YUY2;
    ComPtr<IZFrame> target;
    ASSERT_EQ(m_factory->FrameCreateFromProps(&p, 0, target.Put(), nullptr), S_OK);
    Dice dice(550101);
    Refill(target, dice.Noise(static_cast<size_t>(Video(target).size)));
    p = {};
    p.eVideoFormat = eZVF_NTSC;
    p.fccType = eZFCC_YUY2;
    Describe(target, p);
    const ComPtr<IZFrame> over = Any(eZFCC_ARGB32, 21, 9);
    Lay(target, over, 101, 203, 0.7);
    LayWide(target, over, {}, {301, 3, 0.7, 0, nullptr});
}

TEST_F(MixCase, OutsideThereIsNothingToDo) {
    for (const eZFCC to : kMixable)
        for (const eZFCC from : kMixable)
            for (const auto &[x, y] : {std::pair{8, 0}, std::pair{-8, 0}, std::pair{0, 4}, std::pair{0, -4},
                                       std::pair{INT32_MAX, INT32_MIN}, std::pair{INT32_MIN, INT32_MAX}}) {
                const ComPtr<IZFrame> target = Any(to), over = Any(from);
                Laid seen;
                Lay(target, over, x, y, 1.0, &seen);
                EXPECT_EQ(seen.hr, S_FALSE);
                LayWide(target, over, {}, {x, y, 1.0, 0, nullptr}, &seen);
                EXPECT_EQ(seen.hr, S_OK);
                EXPECT_EQ(Objects(over), 0);
                ASSERT_FALSE(HasFailure());
            }
    // Whatever the formats are.
    EXPECT_EQ(Overlay(Any(eZFCC_RGB8), Any(eZFCC_RGB8).get(), 8), S_FALSE);
    EXPECT_EQ(Overlay(Any(eZFCC_v210), Any(eZFCC_v210).get(), -8), S_FALSE);
    EXPECT_EQ(Overlay(Any(eZFCC_YVYU), Any(eZFCC_ARGB32).get(), 0, 4), S_FALSE);
}

TEST_F(MixCase, FormatsThatCannotBeMixed) {
    const auto status = [this](eZFCC over, eZFCC target) {
        const ComPtr<IZFrame> under = Any(target, 12, 4), laid = Any(over, 12, 4);
        const Bytes before = Video(under).bytes();
        const HRESULT hr = Overlay(under, laid.get());
        EXPECT_EQ(Video(under).bytes(), before) << std::hex << over << " " << target;
        return hr;
    };
    EXPECT_EQ(status(eZFCC_RGB8, eZFCC_RGB8), kCannotMixModel);
    EXPECT_EQ(status(eZFCC_v210, eZFCC_v210), kCannotMixModel);
    EXPECT_EQ(status(eZFCC_r210, eZFCC_r210), kCannotMixModel);
    EXPECT_EQ(status(eZFCC_UYVY, eZFCC_v210), kCannotMixModel);
    EXPECT_EQ(status(eZFCC_I420, eZFCC_I420), kCannotMixModel);
    EXPECT_EQ(status(eZFCC_UYVY, eZFCC_NV12), kCannotMixModel);
    EXPECT_EQ(status(eZFCC_RGB32, eZFCC_v210), E_FAIL);
    EXPECT_EQ(status(eZFCC_ARGB32, eZFCC_v210), E_FAIL);
    EXPECT_EQ(status(eZFCC_RGB24, eZFCC_r210), kNoRouteModel);
    EXPECT_EQ(status(eZFCC_RGB8, eZFCC_UYVY), kNoRouteModel);
    EXPECT_EQ(status(eZFCC_v210, eZFCC_YVYU), kNoRouteModel);
    for (const eZFCC to : {eZFCC_YVYU, eZFCC_I420, eZFCC_YV12, eZFCC_NV12, eZFCC_RGB8, eZFCC_r210})
        EXPECT_EQ(status(eZFCC_ARGB32, to), kNoRouteModel) << std::hex << to;

    const auto wide = [this](eZFCC over, eZFCC target) {
        const ComPtr<IZFrame> under = Any(target, 12, 4), laid = Any(over, 12, 4);
        const Bytes before = Video(under).bytes();
        const HRESULT hr = Wide(under, laid);
        EXPECT_EQ(Video(under).bytes(), before) << std::hex << over << " " << target;
        return hr;
    };
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_YVYU, eZFCC_v210, eZFCC_I420, eZFCC_RGB8, eZFCC_r210})
        EXPECT_EQ(wide(fcc, fcc), E_INVALIDARG) << std::hex << fcc;
    EXPECT_EQ(wide(eZFCC_ARGB32, eZFCC_RGB24), E_INVALIDARG);
    EXPECT_EQ(wide(eZFCC_UYVY, eZFCC_v210), E_INVALIDARG);
    EXPECT_EQ(wide(eZFCC_RGB32, eZFCC_v210), E_FAIL);
    EXPECT_EQ(wide(eZFCC_RGB8, eZFCC_UYVY), kNoRouteModel);
}

TEST_F(MixCase, MasksThatCannotBeUsed) {
    const ComPtr<IZFrame> target = Any(eZFCC_UYVY), over = Any(eZFCC_YUY2);
    const Bytes before = Video(target).bytes();
    const ComPtr<IZFrame> none = WithoutPicture(Any(eZFCC_ARGB32));
    EXPECT_EQ(Wide(target, over, nullptr, none), kNoPictureModel);
    EXPECT_EQ(Wide(target, over, nullptr, Any(eZFCC_v210)), E_INVALIDARG);
    EXPECT_EQ(Wide(target, over, nullptr, Any(eZFCC_r210)), E_INVALIDARG);
    const ComPtr<IZFrame> small = Any(eZFCC_ARGB32);
    Describe(small, Picture(eZFCC_ARGB32, 8, 5));
    EXPECT_EQ(Wide(target, over, nullptr, small), kBadMediaModel);
    EXPECT_EQ(Video(target).bytes(), before);
    // An overlay with its own alpha in the mix does not look at it.
    EXPECT_EQ(Wide(Any(eZFCC_ARGB32), Any(eZFCC_ARGB32), nullptr, none), S_OK);
    EXPECT_EQ(Wide(Any(eZFCC_RGB32), Any(eZFCC_ARGB32), nullptr, small), S_OK);
}

TEST_F(MixCase, AStoredMaskNeedsNoPicture) {
    Dice dice(550102);
    const ComPtr<IZFrame> target = Any(eZFCC_UYVY, 11, 6), over = Any(eZFCC_YUY2, 11, 6);
    const ComPtr<IZFrame> frame = WithoutPicture(Any(eZFCC_UYVY));
    Z_VID_PROPS p = Picture(eZFCC_RGB8, 10, 6);
    p.nRowBytes = 16;
    Store(frame, kMask, Filled(dice, p));
    LayWide(target, over, frame, {});
}

TEST_F(MixCase, AStoredMaskOfAnotherSizeIsScaledWhereThereIsNoPicture) {
    Dice dice(550103);
    const ComPtr<IZFrame> frame = WithoutPicture(Any(eZFCC_UYVY));
    Store(frame, kMask, Filled(dice, Picture(eZFCC_RGB8, 8, 4)));
    Laid seen;
    LayWide(Any(eZFCC_RGB32, 24, 12), Any(eZFCC_RGB32, 16, 8), frame, {}, &seen);
    EXPECT_FALSE(seen.mask);
}

TEST_F(MixCase, TheWideOneCanBeToldToLeaveThePicture) {
    const ComPtr<IZFrame> target = Any(eZFCC_UYVY), over = Any(eZFCC_UYVY);
    const Bytes before = Video(target).bytes();
    EXPECT_EQ(Wide(target, over, "video=false"), S_OK);
    EXPECT_EQ(Wide(target, over, "video=false async=true"), S_OK);
    EXPECT_EQ(Video(target).bytes(), before);
    EXPECT_EQ(Wide(target, over, "video=true"), S_OK);
    EXPECT_NE(Video(target).bytes(), before);
    // The other one reads no options.
    const Bytes again = Video(over).bytes();
    Refill(target, before);
    EXPECT_EQ(target->FrameOverlay(over.get(), 0, 0, 1.0, TextOf("video=false").get()), S_OK);
    EXPECT_EQ(Video(target).bytes(), again);
}

TEST_F(MixCase, RateAndTimeComeFromTheOverlayWhereThereIsNone) {
    for (const int32_t x : {0, 100}) {
        const ComPtr<IZFrame> over = Any(eZFCC_UYVY);
        Z_VID_PROPS p = Picture(eZFCC_UYVY, 8, 4);
        Z_TIME time = {};
        time.rtStartTime = 5;
        time.tcFrame.nExtraCounter = 9;
        ASSERT_EQ(over->FrameTimeSet(&time), S_OK);
        p.dblRate = 25;
        Describe(over, p);
        const ComPtr<IZFrame> target = Any(eZFCC_UYVY), narrow = Any(eZFCC_UYVY), named = Any(eZFCC_UYVY);
        p.dblRate = 0;
        Describe(target, p);
        Describe(narrow, p);
        ASSERT_EQ(Wide(target, over, nullptr, {}, x), S_OK);
        EXPECT_EQ(Props(target).vidProps.dblRate, 25);
        EXPECT_EQ(Time(target).rtStartTime, 5);
        EXPECT_EQ(Time(target).tcFrame.nExtraCounter, 9);
        Overlay(narrow, over.get(), x);
        EXPECT_EQ(Props(narrow).vidProps.dblRate, 0);
        EXPECT_EQ(Time(narrow).rtStartTime, 0);
        Z_TIME own = {};
        own.tcFrame.nFrames = 1;
        ASSERT_EQ(named->FrameTimeSet(&own), S_OK);
        ASSERT_EQ(Wide(named, over, nullptr, {}, x), S_OK);
        EXPECT_EQ(Props(named).vidProps.dblRate, 10);
        EXPECT_EQ(Time(named).rtStartTime, 0);
        EXPECT_EQ(Time(named).tcFrame.nFrames, 1);
    }
}

TEST_F(MixCase, HalfAGroupIsNothing) {
    for (const eZFCC to : kMixable) {
        const ComPtr<IZFrame> target = Any(to), over = Any(eZFCC_UYVY, 1, 4);
        const Bytes before = Video(target).bytes();
        EXPECT_EQ(Overlay(target, over.get()), S_FALSE);
        EXPECT_EQ(Wide(target, over), S_OK);
        EXPECT_EQ(Wide(target, over, nullptr, Any(eZFCC_ARGB32)), S_OK);
        EXPECT_EQ(Video(target).bytes(), before);
    }
}

TEST_F(MixCase, PlacesInFractionsAndOnAGrid) {
    const double kInf = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();
    const struct {
        PrintRect rect;
        int32_t x, y;
    } kCases[] = {
        {{0.5, 0.25, 0, 0, 1}, 10, 3},      // of 21 x 12: 10.5 and 3
        {{-0.1, -0.2, 0, 0, 1}, -2, -2},    // -2.1 and -2.4, toward zero
        {{3.9, -1.9, 5, 5, 0}, 3, -1},
        {{3.9, -1.9, 5, 5, -7}, 3, -1},
        {{0, 0, 0, 0, 2}, 1, 0},      // 0.07 of both sides
        {{20, 10, 0, 0, 2}, 9, 8},    // 1.47 + 20 * 0.55 * 10.32 / 14; 0.84 + 10 * 10.32 / 14
        {{2, 1, 0, 0, 3}, 5, 4},      // 1.47 + 2 * 0.55 * 3.44; 0.84 + 3.44
        {{kNaN, kInf, 0, 0, 0}, 0, INT32_MAX},
        {{-kInf, 1e300, 0, 0, 1}, INT32_MIN, INT32_MAX},
    };
    for (const auto &one : kCases) {
        const ComPtr<IZFrame> target = Any(eZFCC_RGB32, 21, -12), twin = Of(Props(target).vidProps, Video(target).bytes());
        const ComPtr<IZFrame> over = Any(eZFCC_RGB32, 4, 4);
        PrintRect rect = one.rect;
        ASSERT_EQ(QueryFor<IZFFrame>(target.get())
                      ->ZFOverlayRect(QueryFor<IZFFrame>(over.get()).get(), nullptr, &rect, 0, 1.0, nullptr, 0),
                  S_OK);
        LayWide(twin, over, {}, {one.x, one.y, 1.0, 0, nullptr});
        EXPECT_EQ(Video(target).bytes(), Video(twin).bytes()) << one.x << "," << one.y;
        EXPECT_EQ(std::memcmp(&rect, &one.rect, sizeof rect), 0);
    }
}

TEST_F(MixCase, APlaceComesWithMaskAndField) {
    const ComPtr<IZFrame> target = Any(eZFCC_YUY2, 20, 12), twin = Of(Props(target).vidProps, Video(target).bytes());
    const ComPtr<IZFrame> over = Any(eZFCC_YUY2, 10, 6), mask = Any(eZFCC_ARGB32, 10, 6);
    PrintRect rect = {0.25, 0.5, 0, 0, 1};
    ASSERT_EQ(QueryFor<IZFFrame>(target.get())
                  ->ZFOverlayRect(QueryFor<IZFFrame>(over.get()).get(), QueryFor<IZFFrame>(mask.get()).get(), &rect, 0x2000,
                                  0.6, nullptr, 0),
              S_OK);
    LayWide(twin, over, mask, {5, 6, 0.6, 0x2000, nullptr});
    EXPECT_EQ(Video(target).bytes(), Video(twin).bytes());
}

TEST_F(MixCase, SoundIsMixedByTheVisiblePart) {
    const Z_VID_PROPS shape = Picture(eZFCC_UYVY, 8, 4);
    // What is mixed: -1000 nothing, 1000 the computed gain of `part` of the frame.
    const struct {
        int32_t x, y;
        double opacity;
        const char *props;
        int32_t flags;
        double gain, part;
        int32_t symmetric;
    } kCases[] = {
        {0, 0, 1.0, nullptr, 0, 1000, 1.0, 1},
        {4, 2, 0.5, nullptr, 0, 1000, 0.25 * 0.5, 1},
        {-3, 1, 7.0, "symmetric_gain=false", 0, 1000, 5.0 * 3 / 32, 0},
        {0, 0, 1.0, "audio=false", 0, -1000, 0, 1},
        {0, 0, 1.0, nullptr, 0x2000, -1000, 0, 1},
        {0, 0, 1.0, "audio=true", 0x2000, 1000, 1.0, 1},
        {0, 0, 1.0, nullptr, 0x1000, 1000, 1.0, 1},
        {2, 0, 1.0, "audio_gain=-6", 0, -6, 0, 1},
        {2, 0, 1.0, "audio_gain=-1.5 video=false", 0, -1.5, 0, 1},
        {2, 0, 1.0, "audio_gain=abc", 0, 1000, 0.75, 1},
        {8, 0, 1.0, nullptr, 0, -1000, 0, 1},
        {8, 0, 1.0, "audio_gain=-3", 0, -3, 0, 1},
        {0, 0, 0.0, nullptr, 0, 1000, 0.0, 1},
        {0, 0, 1.0, "async=true audio_gain=-2", 0, -2, 0, 1},
    };
    for (const auto &one : kCases) {
        const ComPtr<IZFrame> target = MakeRich(shape), twin = MakeRich(shape), over = MakeRich(shape);
        const Seen sound = Audio(over);
        ASSERT_EQ(sound.size, 400);
        for (int32_t i = 0; i < sound.size; ++i) sound.data()[i] = static_cast<uint8_t>(i * 13 % 251);
        const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(target.get()), other = QueryFor<IZFFrame>(twin.get()),
                               laid = QueryFor<IZFFrame>(over.get());
        ASSERT_EQ(wide->ZFOverlay(laid.get(), nullptr, one.x, one.y, one.opacity,
                                  one.props != nullptr ? TextOf(one.props).get() : nullptr, 0, one.flags),
                  S_OK);
        const double gain = one.gain == 1000 ? 20 * std::log10(one.part) : one.gain;
        if (one.gain != -1000) other->ZFAudioMix(laid.get(), gain, gain, one.symmetric, nullptr);
        ASSERT_EQ(wide->ZFAsyncWait(), S_OK);
        EXPECT_EQ(Audio(target).bytes(), Audio(twin).bytes())
            << one.x << "," << one.y << " " << (one.props != nullptr ? one.props : "") << std::hex << one.flags;
    }
}

TEST_F(MixCase, WithoutSoundOnBothSidesNoneIsMixed) {
    const Z_VID_PROPS shape = Picture(eZFCC_UYVY, 8, 4);
    const ComPtr<IZFrame> silent = Make(shape), loud = MakeRich(shape), other = MakeRich(shape);
    const Bytes before = Audio(loud).bytes();
    EXPECT_EQ(Wide(silent, loud), S_OK);
    EXPECT_EQ(Audio(silent).size, 0);
    EXPECT_EQ(Wide(loud, silent), S_OK);
    EXPECT_EQ(Audio(loud).bytes(), before);
    EXPECT_EQ(Wide(loud, other), S_OK);
    EXPECT_NE(Audio(loud).bytes(), before);
}

TEST_F(MixCase, AnOverlayOfAnotherMaker) {
    const ComPtr<IZFrame> target = Any(eZFCC_UYVY), over = Any(eZFCC_UYVY);
    ForeignFrame foreign(over, Answers::FrameI);
    const Bytes want = Video(over).bytes();
    ASSERT_EQ(Overlay(target, &foreign), S_OK);
    EXPECT_EQ(Video(target).bytes(), want);
    EXPECT_EQ(foreign.m_refs, 1U);
}

TEST_F(MixCase, AnOverlayOfAnotherProcess) {
    const ComPtr<IZFrame> target = Any(eZFCC_UYVY), over = MakeRich(Picture(eZFCC_UYVY, 8, 4));
    ForeignFrame foreign(over, Answers::FrameI);
    foreign.m_process = zck::CurrentProcessId() + 1;
    ASSERT_EQ(Overlay(target, &foreign), S_OK);
    EXPECT_EQ(Video(target).bytes(), Video(over).bytes());
    EXPECT_EQ(foreign.m_refs, 1U);
    foreign.m_section = 0x7654321;
    const Bytes before = Video(target).bytes();
    EXPECT_LT(Overlay(target, &foreign), 0);
    EXPECT_EQ(Video(target).bytes(), before);
}

}    // namespace
}    // namespace conformance
