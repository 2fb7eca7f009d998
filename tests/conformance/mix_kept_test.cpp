// What frames keep of being laid over others, memory that both share, and work on other threads.
#include <algorithm>
#include <thread>

#include "tests/conformance/mix_fixture.h"

namespace conformance {
namespace {

constexpr eZFCC kMixable[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32};

using MixKept = Mix;

TEST_F(MixKept, KeptPicturesAreUsedThoughThePixelsChanged) {
    Dice dice(550103);
    for (const eZFCC to : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2}) {
        const ComPtr<IZFrame> target = Any(to, 13, 7), over = Filled(dice, Picture(eZFCC_ARGB32, 9, 5));
        Laid seen;
        LayWide(target, over, {}, {1, 1, 1.0, 0, nullptr}, &seen);
        EXPECT_TRUE(seen.converted && seen.mask);
        const Bytes first = Video(target).bytes();
        Refill(over, dice.Noise(static_cast<size_t>(Video(over).size)));
        LayWide(target, over, {}, {1, 1, 1.0, 0, nullptr}, &seen);
        EXPECT_FALSE(seen.converted || seen.mask);
        // Another format, another picture; the mask stays.
        LayWide(Any(to == eZFCC_YUY2 ? eZFCC_UYVY : eZFCC_YUY2, 13, 7), over, {}, {1, 1, 1.0, 0, nullptr}, &seen);
        EXPECT_TRUE(seen.converted && !seen.mask);
        EXPECT_EQ(Objects(over), 2);
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(MixKept, PicturesOfOneFamilyAreNotKept) {
    for (const auto &[from, to] : {std::pair{eZFCC_UYVY, eZFCC_HDYC}, std::pair{eZFCC_RGB32, eZFCC_ARGB32},
                                   std::pair{eZFCC_ARGB32, eZFCC_RGB32}, std::pair{eZFCC_YUY2, eZFCC_YUY2}}) {
        const ComPtr<IZFrame> target = Any(to), over = Any(from);
        LayWide(target, over, {}, {});
        EXPECT_EQ(Objects(over), 0);
        EXPECT_EQ(Objects(target), 0);
        // One that a host attached stays, and is not looked at.
        const ComPtr<IZFrame> attached = Any(to);
        Store(over, kConverted, attached);
        LayWide(target, over, {}, {});
        ComPtr<IUnknown> object;
        ASSERT_EQ(QueryFor<IZFFrame>(over.get())->ZFObjectGet(TextOf(kConverted).get(), object.Put(), 0), S_OK);
        EXPECT_EQ(QueryFor<IZFrame>(object.get()).get(), attached.get());
    }
}

TEST_F(MixKept, AHostsPictureIsUsedWhenItFits) {
    Dice dice(550104);
    const Z_VID_PROPS shape = Picture(eZFCC_RGB32, 8, -4);
    const ComPtr<IZFrame> target = Any(eZFCC_UYVY);
    const Z_VID_PROPS wanted = ConvertedRecordModel(shape, Props(target).vidProps, eZFCC_UYVY);
    const auto lay = [&](const Z_VID_PROPS &p, bool used) {
        const ComPtr<IZFrame> over = Filled(dice, shape), attached = Filled(dice, p);
        SCOPED_TRACE(Words(p));
        Store(over, kConverted, attached);
        Laid seen;
        LayWide(target, over, {}, {}, &seen);
        EXPECT_EQ(!seen.converted, used);
    };
    lay(wanted, true);
    Z_VID_PROPS p = wanted;
    p.nRowBytes += 4;
    lay(p, false);
    p = wanted;
    p.fccType = eZFCC_HDYC;
    lay(p, false);
    p = wanted;
    p.dblRate += 0.02;
    lay(p, false);
    p = wanted;
    p.eInterlace = eZI_Field1First;
    lay(p, false);
    lay(Picture(eZFCC_UYVY, 8, 5), false);
}

TEST_F(MixKept, EachMatrixHasItsOwnPicture) {
    Bytes green;
    for (int32_t i = 0; i < 32; ++i) green.insert(green.end(), {0, 255, 0, 255});
    const ComPtr<IZFrame> over = Of(Picture(eZFCC_RGB32, 8, 4), green), hd = Any(eZFCC_HDYC), sd = Any(eZFCC_UYVY);
    LayWide(hd, over, {}, {});
    EXPECT_EQ(Video(hd).data()[1], 172);
    LayWide(sd, over, {}, {});
    EXPECT_EQ(Video(sd).data()[1], 145);
}

TEST_F(MixKept, WhatIsNoPictureIsReplaced) {
    Dice dice(550105);
    const ComPtr<IZFrame> target = Any(eZFCC_UYVY);
    for (int32_t i = 0; i < 3; ++i) {
        const ComPtr<IZFrame> over = Filled(dice, Picture(eZFCC_ARGB32, 8, -4)),
                              twin = Of(Props(over).vidProps, Video(over).bytes());
        const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(over.get());
        // No frame, a frame without pixels, and one that states more than it has.
        for (const char *name : {kConverted, kMask}) {
            const bool mask = name == kMask;
            Z_VID_PROPS p = mask ? Picture(eZFCC_RGB8, 8, 4)
                                 : ConvertedRecordModel(Props(over).vidProps, Props(target).vidProps, eZFCC_UYVY);
            ComPtr<IZFrame> frame = Make(p);
            if (i == 1) frame = WithoutPicture(frame);
            if (i == 2) {
                Z_VID_PROPS less = p;
                less.nHeight = 3;
                frame = Make(less);
                Describe(frame, p);
            }
            IUnknown *object = frame.get();
            const ComPtr<IUnknown> plain = PlainObject();
            if (i == 0) object = plain.get();
            ASSERT_EQ(wide->ZFObjectSet(TextOf(name).get(), object), S_OK);
        }
        const ComPtr<IZFrame> other = Of(Props(target).vidProps, Video(target).bytes());
        ASSERT_EQ(Wide(other, over), S_OK) << i;
        LayWide(target, twin, {}, {});
        EXPECT_EQ(Video(other).bytes(), Video(target).bytes()) << i;
        for (const char *name : {kConverted, kMask}) {
            const std::unique_ptr<Still> kept = Stored(over, name), want = Stored(twin, name);
            ASSERT_TRUE(kept && want) << name << i;
            EXPECT_EQ(kept->memory, want->memory) << name << i;
        }
    }
}

TEST_F(MixKept, AMaskOfAnotherSizeIsMadeAnewForEachSize) {
    Dice dice(550106);
    const ComPtr<IZFrame> mask = Filled(dice, Picture(eZFCC_ARGB32, 16, 8)), target = Any(eZFCC_RGB32, 20, 12);
    const ComPtr<IZFrame> large = Any(eZFCC_RGB32, 19, 11), same = Any(eZFCC_RGB32, 16, 8), small = Any(eZFCC_RGB32, 5, 3);
    for (const ComPtr<IZFrame> &over : {large, small, same, large, same}) {
        Laid seen;
        LayWide(target, over, mask, {}, &seen);
        EXPECT_TRUE(seen.mask);
        ASSERT_FALSE(HasFailure());
    }
}

// Pictures of any format in one block.
TEST_F(MixKept, OneMemory) {
    Dice dice(550107);
    Bytes block(6000);
    int32_t mixed = 0;
    for (int32_t round = 0; round < 2000; ++round) {
        const Bytes noise = dice.NoiseOrLimits(block.size());
        std::copy(noise.begin(), noise.end(), block.begin());
        const auto wrap = [&] {
            Z_VID_PROPS p = SmallRecord(dice, kMixable[dice(0, 5)]);
            p.nWidth = std::min(p.nWidth, 24), p.nHeight = std::clamp(p.nHeight, -20, 20);
            p.nRowBytes = static_cast<int32_t>(Row(p.fccType, p.nWidth));
            return Wrap(p, block.data() + dice(0, 300), BufferSize(&p));
        };
        const ComPtr<IZFrame> target = wrap(), over = dice(0, 9) == 0 ? target : wrap();
        const Z_VID_PROPS t = Props(target).vidProps, o = Props(over).vidProps;
        const int32_t x = AnyPlace(dice, t.nWidth, o.nWidth), y = AnyPlace(dice, std::abs(t.nHeight), std::abs(o.nHeight));
        Laid seen;
        if (dice(0, 1) != 0)
            Lay(target, over, x, y, AnyOpacity(dice), &seen);
        else
            LayWide(target, over, dice(0, 3) == 0 && t.nWidth % 2 == 0 && o.nWidth > 1 ? target : ComPtr<IZFrame>(),
                    {x, y, AnyOpacity(dice), 0, nullptr}, &seen);
        ASSERT_FALSE(HasFailure()) << "round " << round;
        mixed += seen.hr == S_OK ? 1 : 0;
    }
    EXPECT_GT(mixed, 600);
}

TEST_F(MixKept, TwoPartsOfOneFrame) {
    Dice dice(550108);
    for (int32_t round = 0; round < 300; ++round) {
        Z_VID_PROPS p = Picture(kMixable[dice(0, 5)], 24, dice(0, 1) != 0 ? 16 : -16);
        const ComPtr<IZFrame> whole = Filled(dice, p);
        ComPtr<IZFrame> parts[2];
        for (ComPtr<IZFrame> &part : parts) {
            tagRECT rect = {dice(0, 8), dice(0, 6), dice(12, 24), dice(9, 16)};
            ASSERT_EQ(whole->FrameCut(0, &rect, part.Put()), S_OK);
        }
        m_around = whole;
        Lay(parts[0], parts[1], dice(-4, 4), dice(-4, 4), AnyOpacity(dice));
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
}

TEST_F(MixKept, OnAnotherThread) {
    Dice dice(550109);
    for (int32_t round = 0; round < 200; ++round) {
        const eZFCC fcc = kMixable[dice(0, 5)];
        const ComPtr<IZFrame> target = Any(fcc, 11, 6), twin = Of(Props(target).vidProps, Video(target).bytes());
        const ComPtr<IZFrame> over = Any(kMixable[dice(0, 5)], 7, 5), same = Of(Props(over).vidProps, Video(over).bytes());
        const int32_t x = dice(-3, 9), y = dice(-3, 5), flags = dice(0, 2) * 0x1000;
        const double opacity = AnyOpacity(dice);
        const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(target.get());
        const ComPtr<IZFrame> mask = dice(0, 1) != 0 ? Any(eZFCC_ARGB32, 9, 5) : ComPtr<IZFrame>();
        const ComPtr<IZFrame> sameMask = mask ? Of(Props(mask).vidProps, Video(mask).bytes()) : mask;
        const ComPtr<IZFFrame> wideMask = mask ? QueryFor<IZFFrame>(mask.get()) : ComPtr<IZFFrame>();
        ASSERT_EQ(wide->ZFOverlay(QueryFor<IZFFrame>(over.get()).get(), wideMask.get(), x, y, opacity,
                                  TextOf("async=true").get(), 0, flags),
                  S_OK);
        ASSERT_EQ(wide->ZFAsyncWait(), S_OK);
        LayWide(twin, same, sameMask, {x, y, opacity, flags, nullptr});
        ASSERT_EQ(Video(target).bytes(), Video(twin).bytes()) << round;
    }
}

TEST_F(MixKept, WhatIsUnderWayIsWaitedFor) {
    for (int32_t round = 0; round < 60; ++round) {
        // First onto `middle` on another thread, at once `middle` onto the last, then with `middle` as its mask.
        const Z_VID_PROPS shape = Picture(eZFCC_UYVY, 320, 240);
        const ComPtr<IZFrame> first = Any(eZFCC_ARGB32, 320, 240), middle = Any(eZFCC_UYVY, 320, 240),
                              last = Any(eZFCC_UYVY, 320, 240);
        const ComPtr<IZFrame> middleTwin = Of(shape, Video(middle).bytes()), lastTwin = Of(shape, Video(last).bytes());
        const ComPtr<IZFrame> firstTwin = Of(Props(first).vidProps, Video(first).bytes()), over = Any(eZFCC_YUY2, 320, 240);
        const ComPtr<IZFrame> overTwin = Of(Props(over).vidProps, Video(over).bytes());
        const bool asMask = round % 2 != 0;
        EXPECT_EQ(Wide(middle, first, "async=true"), S_OK);
        EXPECT_EQ(asMask ? Wide(last, over, nullptr, middle) : Wide(last, middle), S_OK);
        EXPECT_EQ(Wide(middleTwin, firstTwin), S_OK);
        EXPECT_EQ(asMask ? Wide(lastTwin, overTwin, nullptr, middleTwin) : Wide(lastTwin, middleTwin), S_OK);
        ASSERT_TRUE(Video(last).bytes() == Video(lastTwin).bytes()) << round;
    }
}

TEST_F(MixKept, EachOverTheOther) {
    const ComPtr<IZFrame> a = Any(eZFCC_UYVY, 40, 20), b = Any(eZFCC_ARGB32, 40, 20);
    const auto lay = [](const ComPtr<IZFrame> &under, const ComPtr<IZFrame> &over) {
        for (int32_t i = 0; i < 300; ++i) {
            EXPECT_EQ(Overlay(under, over.get()), S_OK);
            EXPECT_EQ(Wide(under, over, i % 2 != 0 ? "async=true" : nullptr), S_OK);
        }
    };
    std::thread other([&] { lay(b, a); });
    lay(a, b);
    other.join();
    for (const ComPtr<IZFrame> &frame : {a, b}) EXPECT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAsyncWait(), S_OK);
}

}    // namespace
}    // namespace conformance
