// Frames over frames: pictures, fields, masks, what is kept on the overlay, sound, threads.
#include <atomic>
#include <cmath>
#include <functional>
#include <thread>

#include "frames/media/pixel_format.h"
#include "frames/object/frame.h"
#include "imaging/mix/overlay_picture.h"
#include "platform/status.h"
#include "tests/frames/object/audio_fixture.h"
#include "tests/frames/object/foreign_frame.h"
#include "tests/support/eventually.h"

namespace zck::test {
namespace {

constexpr HRESULT kInvalidRecord = static_cast<HRESULT>(0x80040200);

class Overlays : public AudioTest {
protected:
    void TearDown() override {
        // A job lets its frames go after it has done its work.
        m_factory.Reset();
        EXPECT_TRUE(Eventually([&] { return ModuleCount::Get() == m_objects; }));
    }

    using Frames = ComPtr<IZFFrame>;

    Frames Picture(eZFCC fcc, int32_t width, int32_t height, uint8_t first = 0) {
        Z_VID_PROPS record = test::Record(fcc, width, height);
        record.nRowBytes = RowBytes(fcc, width);
        const ComPtr<IZFrame_I> frame = Frame(record);
        if (first != 0) {
            const Bytes bytes = VideoOf(frame);
            for (int32_t i = 0; i < bytes.size; ++i) bytes.data()[i] = static_cast<uint8_t>(bytes.data()[i] * 3 + first);
        }
        return As<IZFFrame>(frame);
    }
    static std::vector<uint8_t> PixelsOf(const Frames &frame) { return VideoOf(As<IZFrame>(frame)).Copy(); }
    static Bytes Video(const Frames &frame) { return VideoOf(As<IZFrame>(frame)); }
    static Z_VID_PROPS VideoProps(const Frames &frame) { return PropsOf(As<IZFrame>(frame)).vidProps; }
    static HRESULT Lay(const Frames &target, const Frames &over, int32_t x, int32_t y, double opacity = 1.0,
                       const char *options = "", int32_t flags = 0, const Frames &mask = {}) {
        const Bstr text(TextFromUtf8(options));
        return target->ZFOverlay(over.get(), mask.get(), x, y, opacity, text.get(), 0, flags);
    }
    static HRESULT LayPublic(const Frames &target, const Frames &over, int32_t x, int32_t y, double opacity = 1.0) {
        return As<IZFrame>(target)->FrameOverlay(As<IZFrame>(over).get(), x, y, opacity, nullptr);
    }
    static Frames Attached(const Frames &owner, TextView name) {
        const Bstr text(name);
        ComPtr<IUnknown> object;
        owner->ZFObjectGet(text.get(), object.Put(), 0);
        return QueryFor<IZFFrame>(object.get());
    }
    static void Attach(const Frames &owner, TextView name, IUnknown *object) {
        const Bstr text(name);
        EXPECT_EQ(S_OK, owner->ZFObjectSet(text.get(), object));
    }
    static Frames Copy(const ComPtr<IZFFrame> &frame) {
        Frames clone;
        EXPECT_EQ(S_OK, frame->ZFClone(clone.Put(), eZFC_Full, eZFCC_Default));
        return clone;
    }
    static void Fill(const Frames &frame, std::vector<uint8_t> pixel) {
        const Bytes bytes = Video(frame);
        for (int32_t i = 0; i < bytes.size; ++i) bytes.data()[i] = pixel[static_cast<size_t>(i) % pixel.size()];
    }
    void Set(const Frames &frame, const Z_VID_PROPS &video) {
        Z_AV_PROPS props = PropsOf(As<IZFrame>(frame));
        props.vidProps = video;
        EXPECT_EQ(S_OK, As<IZFrame>(frame)->FrameAVPropsSet(&props));
    }
};

constexpr TextView kCopy = ZCK_TEXT("MIX_CC");
constexpr TextView kMask = ZCK_TEXT("MASK8");

// FrameOverlay.

TEST_F(Overlays, ThePublicOneChecksItsArguments) {
    const auto frame = Picture(eZFCC_RGB32, 16, -8), none = Empty();
    const auto target = As<IZFrame>(frame);
    EXPECT_EQ(E_NOINTERFACE, target->FrameOverlay(nullptr, 0, 0, 1, nullptr));
    EXPECT_EQ(kErrorEmpty, LayPublic(none, frame, 0, 0));
    EXPECT_EQ(kErrorEmpty, LayPublic(frame, none, 0, 0));
    EXPECT_EQ(S_FALSE, LayPublic(frame, frame, 16, 0));
    const auto over = Picture(eZFCC_RGB32, 16, -8, 5);
    Z_VID_PROPS record = VideoProps(over);
    record.nHeight = -9;
    Set(over, record);
    EXPECT_EQ(kVfwEInvalidMediaType, LayPublic(frame, over, 0, 0));
    Set(over, {});
    EXPECT_EQ(kInvalidRecord, LayPublic(frame, over, 0, 0));
}

TEST_F(Overlays, ThePublicOneMixesAndLeavesTheOverlay) {
    for (const eZFCC from : {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_I420})
        for (const eZFCC to : {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_YUY2}) {
            const auto frame = Picture(to, 32, IsRgbFormat(to) ? -16 : 16);
            const auto over = Picture(from, 20, IsRgbFormat(from) ? -10 : 10, 7);
            std::vector<uint8_t> expected = PixelsOf(frame);
            const std::vector<uint8_t> before = PixelsOf(over);
            const MixTarget target = {VideoProps(frame), expected.data(), static_cast<int64_t>(expected.size())};
            const MixOverlay overlay = {VideoProps(over), before.data(), static_cast<int64_t>(before.size())};
            ASSERT_EQ(S_OK, OverlayPicture(target, overlay, -3, 9, 0.6));
            EXPECT_NE(expected, PixelsOf(frame));
            ASSERT_EQ(S_OK, LayPublic(frame, over, -3, 9, 0.6));
            EXPECT_EQ(expected, PixelsOf(frame)) << from << ", " << to;
            EXPECT_EQ(before, PixelsOf(over));
        }
}

TEST_F(Overlays, FramesThatShareMemoryGiveTheBytesOfSeparateOnes) {
    for (const eZFCC fcc : {eZFCC_ARGB32, eZFCC_RGB24, eZFCC_UYVY}) {
        const auto frame = Picture(fcc, 32, IsRgbFormat(fcc) ? -16 : 16);
        const auto apart = Copy(frame), source = Copy(frame);
        Frames shared;
        ASSERT_EQ(S_OK, frame->ZFClone(shared.Put(), eZFC_VideoRef, eZFCC_Default));
        ASSERT_EQ(Video(frame).address, Video(shared).address);
        EXPECT_EQ(S_OK, LayPublic(frame, shared, 2, 3, 0.5));
        EXPECT_EQ(S_OK, LayPublic(apart, source, 2, 3, 0.5));
        EXPECT_EQ(PixelsOf(frame), PixelsOf(apart));
        if (fcc == eZFCC_RGB24) continue;
        const auto again = Copy(frame);
        EXPECT_EQ(S_OK, Lay(frame, frame, 2, 1, 0.7));
        EXPECT_EQ(S_OK, Lay(apart, again, 2, 1, 0.7));
        EXPECT_EQ(PixelsOf(frame), PixelsOf(apart));
    }
}

TEST_F(Overlays, FramesOfOtherModulesAreRead) {
    const auto frame = Picture(eZFCC_RGB32, 16, -8), twin = Copy(frame), over = Picture(eZFCC_RGB32, 8, -4, 9);
    const auto pixels = PixelsOf(over);
    ForeignState state;
    state.props.vidProps = VideoProps(over);
    state.video = pixels;
    const auto quorvex = ForeignCreate<ForeignQuorvex, IZFrame_I>(state);
    EXPECT_EQ(S_OK, As<IZFrame>(frame)->FrameOverlay(quorvex.get(), 3, 1, 0.5, nullptr));
    EXPECT_EQ(S_OK, LayPublic(twin, over, 3, 1, 0.5));
    EXPECT_EQ(PixelsOf(frame), PixelsOf(twin));
}

// A frame of another process that gives nothing fails, and one without a factory cannot be made local at all.
TEST_F(Overlays, FramesOfOtherProcessesAreMadeLocalFirst) {
    ForeignState state;
    state.props.vidProps = test::Record(eZFCC_RGB32, 8, -4);
    state.video.resize(128);
    state.process = CurrentProcessId() + 1;
    const auto tessilu = ForeignCreate<ForeignTessilu, IZFFrame>(state);
    const auto quorvex = ForeignCreate<ForeignQuorvex, IZFrame_I>(state);
    std::vector<uint8_t> memory(16 * 8 * 4, 9);
    ComPtr<CCoZFrame2> bare;
    ASSERT_EQ(S_OK, CCoZFrame2::Create(nullptr, bare));
    bare->Props().vidProps = test::Record(eZFCC_RGB32, 16, -8);
    FramePixels pixels;
    pixels.data = memory.data();
    pixels.size = static_cast<uint32_t>(memory.size());
    bare->VideoBorrow(pixels, 0, nullptr);
    const std::vector<uint8_t> before = memory;
    EXPECT_EQ(E_UNEXPECTED, bare->FrameOverlay(quorvex.get(), 0, 0, 1, nullptr));
    const auto frame = Picture(eZFCC_RGB32, 16, -8);
    const auto own = PixelsOf(frame);
    EXPECT_TRUE(FAILED(As<IZFrame>(frame)->FrameOverlay(quorvex.get(), 0, 0, 1, nullptr)));
    EXPECT_TRUE(FAILED(frame->ZFOverlay(tessilu.get(), nullptr, 0, 0, 1, nullptr, 0, 0)));
    EXPECT_EQ(own, PixelsOf(frame));
    // Without a factory the wide one lays nothing, the public one does.
    EXPECT_EQ(S_OK, bare->ZFOverlay(frame.get(), nullptr, 0, 0, 1, nullptr, 0, 0));
    EXPECT_EQ(before, memory);
    EXPECT_EQ(S_OK, bare->FrameOverlay(As<IZFrame>(frame).get(), 0, 0, 1, nullptr));
    EXPECT_EQ(own, memory);
}

// ZFOverlay.

TEST_F(Overlays, TheWideOneChecksItsArguments) {
    const auto frame = Picture(eZFCC_RGB32, 16, -8), none = Empty();
    EXPECT_EQ(E_INVALIDARG, frame->ZFOverlay(nullptr, nullptr, 0, 0, 1, nullptr, 0, 0));
    EXPECT_EQ(S_OK, Lay(none, frame, 0, 0));
    EXPECT_EQ(S_OK, Lay(frame, none, 0, 0));
    const auto before = PixelsOf(frame);
    const auto over = Picture(eZFCC_RGB32, 16, -8, 3);
    EXPECT_EQ(S_OK, Lay(frame, over, 16, 0));
    EXPECT_EQ(S_OK, Lay(frame, over, 0, 0, 1, "video=false"));
    EXPECT_EQ(before, PixelsOf(frame));
    EXPECT_EQ(S_OK, Lay(frame, over, 0, 0));
    EXPECT_EQ(PixelsOf(over), PixelsOf(frame));
}

TEST_F(Overlays, FormatsThatTheWideOneDoesNotMix) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_YVYU, eZFCC_v210, eZFCC_I420}) {
        const auto frame = Picture(fcc, 48, IsRgbFormat(fcc) ? -8 : 8);
        const auto before = PixelsOf(frame);
        EXPECT_EQ(E_INVALIDARG, Lay(frame, Picture(fcc, 48, IsRgbFormat(fcc) ? -8 : 8, 3), 0, 0)) << fcc;
        EXPECT_EQ(before, PixelsOf(frame));
    }
    EXPECT_EQ(E_FAIL, Lay(Picture(eZFCC_v210, 48, 8), Picture(eZFCC_RGB32, 48, -8), 0, 0));
}

TEST_F(Overlays, RateAndTimeComeFromTheOverlay) {
    const auto frame = Picture(eZFCC_RGB32, 16, -8), over = Picture(eZFCC_RGB32, 16, -8, 3);
    Z_VID_PROPS record = VideoProps(frame);
    record.dblRate = 0;
    Set(frame, record);
    record = VideoProps(over);
    record.dblRate = 24;
    Set(over, record);
    Z_TIME time = {};
    time.rtStartTime = 77;
    EXPECT_EQ(S_OK, over->ZFTimeSet(&time));
    // Also when nothing lies on the frame.
    EXPECT_EQ(S_OK, Lay(frame, over, 99, 0));
    EXPECT_EQ(24, VideoProps(frame).dblRate);
    Z_TIME taken = {};
    EXPECT_EQ(S_OK, frame->ZFTimeGet(&taken));
    EXPECT_EQ(77, taken.rtStartTime);
    time.rtStartTime = 78;
    record.dblRate = 25;
    Set(over, record);
    EXPECT_EQ(S_OK, over->ZFTimeSet(&time));
    EXPECT_EQ(S_OK, Lay(frame, over, 0, 0));
    EXPECT_EQ(24, VideoProps(frame).dblRate);
    EXPECT_EQ(S_OK, frame->ZFTimeGet(&taken));
    EXPECT_EQ(77, taken.rtStartTime);
}

TEST_F(Overlays, AnOverlayIsConvertedOnce) {
    const auto frame = Picture(eZFCC_UYVY, 32, 16), again = Copy(frame), fresh = Copy(frame);
    const auto over = Picture(eZFCC_RGB32, 16, -8, 3);
    ASSERT_EQ(S_OK, Lay(frame, over, 4, 4));
    const auto kept = Attached(over, kCopy);
    ASSERT_TRUE(kept);
    EXPECT_EQ(eZFCC_UYVY, VideoProps(kept).fccType);
    EXPECT_EQ(8, VideoProps(kept).nHeight);
    EXPECT_EQ(32, VideoProps(kept).nRowBytes);
    // The copy stays when the overlay is drawn anew, until it is taken away.
    const auto before = PixelsOf(frame);
    Fill(over, {1, 2, 3, 4});
    ASSERT_EQ(S_OK, Lay(again, over, 4, 4));
    EXPECT_EQ(before, PixelsOf(again));
    EXPECT_EQ(Attached(over, kCopy).get(), kept.get());
    Attach(over, kCopy, nullptr);
    ASSERT_EQ(S_OK, Lay(fresh, over, 4, 4));
    EXPECT_NE(before, PixelsOf(fresh));
    // One of another description is made anew.
    const auto rgb = Picture(eZFCC_ARGB32, 32, -16), yuv = Picture(eZFCC_UYVY, 16, 8);
    ASSERT_EQ(S_OK, Lay(rgb, yuv, 0, 0));
    EXPECT_EQ(-8, VideoProps(Attached(yuv, kCopy)).nHeight);
    ASSERT_EQ(S_OK, Lay(Picture(eZFCC_ARGB32, 32, 16), yuv, 0, 0));
    EXPECT_EQ(8, VideoProps(Attached(yuv, kCopy)).nHeight);
}

TEST_F(Overlays, AnOverlayOfTheFamilyIsUsedAsItIs) {
    const auto frame = Picture(eZFCC_HDYC, 32, 16), over = Picture(eZFCC_UYVY, 32, 16, 3);
    Attach(over, kCopy, Picture(eZFCC_HDYC, 32, 16, 9).get());
    ASSERT_EQ(S_OK, Lay(frame, over, 0, 0));
    EXPECT_EQ(PixelsOf(over), PixelsOf(frame));
    EXPECT_FALSE(Attached(Picture(eZFCC_UYVY, 32, 16), kCopy));
}

// What a host has attached is used only if its bytes are those of its description.
TEST_F(Overlays, WhatIsKeptMustHoldWhatItStates) {
    const auto over = Picture(eZFCC_RGB32, 16, -8, 3), plain = Copy(over), twin = Copy(over);
    const auto frame = Picture(eZFCC_UYVY, 32, 16), other = Copy(frame);
    ASSERT_EQ(S_OK, Lay(frame, plain, 0, 0));
    const auto small = Picture(eZFCC_UYVY, 16, 2);
    Set(small, VideoProps(Attached(plain, kCopy)));
    Attach(over, kCopy, small.get());
    ASSERT_EQ(S_OK, Lay(other, over, 0, 0));
    EXPECT_EQ(PixelsOf(frame), PixelsOf(other));
    EXPECT_NE(Attached(over, kCopy).get(), small.get());
    Attach(twin, kCopy, m_factory.get());
    Attach(twin, kMask, m_factory.get());
    ASSERT_EQ(S_OK, Lay(other, twin, 0, 0));
    EXPECT_TRUE(Attached(twin, kCopy));
}

TEST_F(Overlays, TheAlphaOfAConvertedOverlayIsKeptAsItsMask) {
    const auto frame = Picture(eZFCC_UYVY, 32, 16);
    const auto over = Picture(eZFCC_ARGB32, 13, -8, 3);
    ASSERT_EQ(S_OK, Lay(frame, over, 0, 0));
    const auto mask = Attached(over, kMask);
    ASSERT_TRUE(mask);
    EXPECT_EQ(eZFCC_RGB8, VideoProps(mask).fccType);
    EXPECT_EQ(13, VideoProps(mask).nWidth);
    EXPECT_EQ(16, VideoProps(mask).nRowBytes);
    EXPECT_EQ(PixelsOf(over)[3 + 4 * 13], PixelsOf(mask)[16]);
    // Over a frame of its own family it needs none.
    const auto same = Picture(eZFCC_ARGB32, 13, -8, 3);
    ASSERT_EQ(S_OK, Lay(Picture(eZFCC_RGB32, 32, -16), same, 0, 0));
    EXPECT_FALSE(Attached(same, kMask));
    EXPECT_FALSE(Attached(same, kCopy));
}

// The same picture through the public operation, which has the same mix for premultiplied pixels.
TEST_F(Overlays, BothFamiliesAgreeOnPremultipliedPixels) {
    for (const eZFCC to : {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_UYVY, eZFCC_YUY2})
        for (const int32_t height : {-8, 8}) {
            const auto one = Picture(to, 32, IsRgbFormat(to) ? -16 : 16), two = Copy(one);
            const auto over = Picture(eZFCC_ARGB32, 16, height, 3);
            ASSERT_EQ(S_OK, Lay(one, over, 6, 3, 0.8));
            ASSERT_EQ(S_OK, LayPublic(two, over, 6, 3, 0.8));
            EXPECT_EQ(PixelsOf(one), PixelsOf(two)) << to << ", " << height;
        }
}

TEST_F(Overlays, AMaskFrameIsReadFromTheTopAndKept) {
    for (const int32_t height : {-8, 8}) {
        const auto frame = Picture(eZFCC_RGB32, 16, -8), over = Picture(eZFCC_RGB32, 16, -8, 3);
        const auto mask = Picture(eZFCC_ARGB32, 16, height, 5);
        const auto before = PixelsOf(frame), pixels = PixelsOf(over), alpha = PixelsOf(mask);
        ASSERT_EQ(S_OK, Lay(frame, over, 0, 0, 0.5, "", 0, mask));
        const auto mixed = PixelsOf(frame);
        for (size_t y = 0; y < 8; ++y)
            for (size_t i = 0; i < 64; ++i) {
                const size_t row = height > 0 ? 7 - y : y;
                const int32_t k = alpha[row * 64 + i / 4 * 4 + 3];
                const int32_t expected = std::min(255, (pixels[y * 64 + i] * 128 + (255 - k) * before[y * 64 + i] + 255) >> 8);
                ASSERT_EQ(expected, mixed[y * 64 + i]) << height << ", " << y << ", " << i;
            }
        EXPECT_TRUE(Attached(mask, kMask));
        EXPECT_FALSE(Attached(over, kMask));
        Fill(mask, {0, 0, 0, 0});
        const auto again = Picture(eZFCC_RGB32, 16, -8);
        ASSERT_EQ(S_OK, Lay(again, over, 0, 0, 0.5, "", 0, mask));
        EXPECT_EQ(mixed, PixelsOf(again));
    }
}

// The mask follows the overlay's rows in either order, cut off on the left and at the top.
TEST_F(Overlays, MaskAndOverlayAreCutAlike) {
    std::vector<uint8_t> first;
    for (const int32_t height : {-8, 8}) {
        const auto frame = Picture(eZFCC_RGB32, 16, -8), over = Picture(eZFCC_RGB32, 12, height, 3);
        if (height > 0) {    // the same picture
            const auto turned = Copy(Picture(eZFCC_RGB32, 12, -8, 3));
            Z_AV_PROPS props = {};
            props.vidProps = VideoProps(turned);
            props.vidProps.nHeight = 8;
            ASSERT_EQ(S_OK, turned->ZFAVPropsSet(&props, nullptr));
            ASSERT_EQ(8, VideoProps(turned).nHeight);
            std::memcpy(Video(over).data(), Video(turned).data(), static_cast<size_t>(Video(over).size));
        }
        const auto mask = Picture(eZFCC_ARGB32, 12, -8, 5);
        ASSERT_EQ(S_OK, Lay(frame, over, -5, -2, 0.9, "", 0, mask));
        if (height < 0) first = PixelsOf(frame);
        EXPECT_NE(PixelsOf(Picture(eZFCC_RGB32, 16, -8)), first);
        EXPECT_EQ(first, PixelsOf(frame)) << height;
    }
}

TEST_F(Overlays, AMaskOfAnotherSizeIsScaledFromItsPicture) {
    const auto frame = Picture(eZFCC_UYVY, 32, 16), over = Picture(eZFCC_UYVY, 16, 8, 3);
    const auto mask = Picture(eZFCC_ARGB32, 20, -10);
    Fill(mask, {0, 0, 0, 90});
    ASSERT_EQ(S_OK, Lay(frame, over, 0, 0, 1, "", 0, mask));
    const auto kept = Attached(mask, kMask);
    ASSERT_TRUE(kept);
    EXPECT_EQ(16, VideoProps(kept).nWidth);
    EXPECT_EQ(std::vector<uint8_t>(16 * 8, 90), PixelsOf(kept));
    // Another size is made of the picture again, not of what is kept.
    Fill(mask, {0, 0, 0, 60});
    ASSERT_EQ(S_OK, Lay(frame, Picture(eZFCC_UYVY, 24, 8, 3), 0, 0, 1, "", 0, mask));
    EXPECT_EQ(std::vector<uint8_t>(24 * 8, 60), PixelsOf(Attached(mask, kMask)));
    // Without a picture what is kept is scaled, and stays.
    const auto bare = Empty();
    Attach(bare, kMask, kept.get());
    const auto one = Picture(eZFCC_UYVY, 24, 8), two = Copy(one);
    ASSERT_EQ(S_OK, Lay(one, Picture(eZFCC_UYVY, 24, 8, 3), 0, 0, 1, "", 0, bare));
    EXPECT_EQ(Attached(bare, kMask).get(), kept.get());
    const auto even = Picture(eZFCC_ARGB32, 24, -8);
    Fill(even, {0, 0, 0, 90});
    ASSERT_EQ(S_OK, Lay(two, Picture(eZFCC_UYVY, 24, 8, 3), 0, 0, 1, "", 0, even));
    EXPECT_EQ(PixelsOf(two), PixelsOf(one));
}

TEST_F(Overlays, MasksThatCannotBeMade) {
    const auto frame = Picture(eZFCC_RGB32, 16, -8), over = Picture(eZFCC_RGB32, 16, -8, 3);
    const auto before = PixelsOf(frame);
    EXPECT_EQ(kErrorEmpty, Lay(frame, over, 0, 0, 1, "", 0, Empty()));
    EXPECT_EQ(E_INVALIDARG, Lay(frame, over, 0, 0, 1, "", 0, Picture(eZFCC_v210, 48, 8)));
    const auto mask = Picture(eZFCC_ARGB32, 16, -8);
    Z_VID_PROPS record = VideoProps(mask);
    record.nHeight = -9;
    Set(mask, record);
    EXPECT_EQ(kVfwEInvalidMediaType, Lay(frame, over, 0, 0, 1, "", 0, mask));
    Set(mask, {});
    EXPECT_EQ(kInvalidRecord, Lay(frame, over, 0, 0, 1, "", 0, mask));
    EXPECT_EQ(before, PixelsOf(frame));
    // An overlay of ARGB32 goes by its alpha, and nobody asks for the mask.
    EXPECT_EQ(S_OK, Lay(frame, Picture(eZFCC_ARGB32, 16, -8), 0, 0, 1, "", 0, Empty()));
}

// A mask that a host keeps on an overlay without alpha acts as its alpha: colours count as multiplied by it.
TEST_F(Overlays, AKeptMaskActsAsTheOverlaysAlpha) {
    const auto frame = Picture(eZFCC_UYVY, 16, 8), over = Picture(eZFCC_UYVY, 16, 8);
    const auto mask = Picture(eZFCC_RGB8, 16, 8);
    Fill(mask, {0});
    Fill(over, {128, 16});
    Attach(over, kMask, mask.get());
    const auto before = PixelsOf(frame);
    ASSERT_EQ(S_OK, Lay(frame, over, 0, 0));
    const auto after = PixelsOf(frame);
    for (size_t i = 0; i < before.size(); ++i) EXPECT_NEAR(before[i], after[i], 1);
}

TEST_F(Overlays, FieldsAreMixedAlone) {
    for (const int32_t field : {0x1000, 0x2000, 0x3000}) {
        const auto frame = Picture(eZFCC_UYVY, 16, 8), over = Picture(eZFCC_UYVY, 16, 8, 3);
        const auto before = PixelsOf(frame), pixels = PixelsOf(over);
        ASSERT_EQ(S_OK, Lay(frame, over, 0, 0, 1, "", field));
        const auto after = PixelsOf(frame);
        for (size_t i = 0; i < after.size(); ++i) {
            const bool odd = i / 32 % 2 != 0;
            EXPECT_EQ((field == 0x2000) == odd ? pixels[i] : before[i], after[i]) << field << ", " << i;
        }
    }
    // Where the second field comes first the flags change places.
    const auto frame = Picture(eZFCC_UYVY, 16, 8), over = Picture(eZFCC_UYVY, 16, 8, 3);
    for (const auto &f : {frame, over}) {
        Z_VID_PROPS record = VideoProps(f);
        record.eInterlace = eZI_Field2First;
        Set(f, record);
    }
    const auto before = PixelsOf(frame);
    ASSERT_EQ(S_OK, Lay(frame, over, 0, 0, 1, "", 0x1000));
    EXPECT_EQ(before[0], PixelsOf(frame)[0]);
    EXPECT_EQ(PixelsOf(over)[32], PixelsOf(frame)[32]);
}

// A field of a bottom-up picture that reaches the bottom starts at the first row in memory, both of them.
TEST_F(Overlays, BothFieldsOfABottomUpPictureStartAtTheFirstRow) {
    for (const int32_t field : {0x1000, 0x2000}) {
        const auto frame = Picture(eZFCC_RGB32, 16, 8), over = Picture(eZFCC_RGB32, 16, 8, 3);
        const auto before = PixelsOf(frame), pixels = PixelsOf(over);
        ASSERT_EQ(S_OK, Lay(frame, over, 0, 0, 1, "", field));
        const auto after = PixelsOf(frame);
        for (size_t i = 0; i < after.size(); ++i)
            EXPECT_EQ(i / 64 % 2 == 0 ? pixels[i] : before[i], after[i]) << field << ", " << i;
    }
}

TEST_F(Overlays, APlaceIsGivenByARectangle) {
    const auto frame = Picture(eZFCC_RGB32, 40, -20), over = Picture(eZFCC_RGB32, 8, -4, 3);
    const auto twin = Copy(frame);
    PrintRect rect = {0.5, 0.26, 0, 0, 1};
    EXPECT_EQ(E_INVALIDARG, frame->ZFOverlayRect(over.get(), nullptr, nullptr, 0, 1, nullptr, 0));
    EXPECT_EQ(E_INVALIDARG, frame->ZFOverlayRect(nullptr, nullptr, &rect, 0, 1, nullptr, 0));
    EXPECT_EQ(S_OK, frame->ZFOverlayRect(over.get(), nullptr, &rect, 0, 1, nullptr, 0));
    EXPECT_EQ(S_OK, Lay(twin, over, 20, 5));
    EXPECT_EQ(PixelsOf(twin), PixelsOf(frame));
    rect = {1, 2, 0, 0, 2};
    const double row = 20 * 0.86 / 14;
    EXPECT_EQ(S_OK, frame->ZFOverlayRect(over.get(), nullptr, &rect, 0, 1, nullptr, 0));
    EXPECT_EQ(S_OK, Lay(twin, over, static_cast<int32_t>(2.8 + 0.55 * row), static_cast<int32_t>(1.4 + 2 * row)));
    EXPECT_EQ(PixelsOf(twin), PixelsOf(frame));
}

// Sound.

class OverlaySounds : public Overlays {
protected:
    Frames WithSound(int32_t width, int32_t height, int16_t value) {
        const auto frame = Picture(eZFCC_RGB32, width, height);
        Z_AUD_PROPS props = kMono16;
        const Shorts samples(8, value);
        EXPECT_EQ(S_OK, frame->ZFAudioSet(&props, 16, AddressIn(samples.data())));
        return frame;
    }
    static int16_t First(const Frames &frame) { return SamplesOf<int16_t>(frame.get()).at(0); }
    // What the mix of the whole overlay gives at a gain.
    int16_t Mixed(double dB, bool fade = true) {
        const auto one = WithSound(16, -8, 1000), two = WithSound(16, -8, 8000);
        EXPECT_EQ(S_OK, one->ZFAudioMix(two.get(), dB, dB, fade ? 1 : 0, nullptr));
        return First(one);
    }
};

TEST_F(OverlaySounds, TheGainIsTheShareThatIsCovered) {
    const auto over = WithSound(16, -8, 8000);
    const auto half = WithSound(16, -8, 1000);
    ASSERT_EQ(S_OK, Lay(half, over, 8, 0));
    EXPECT_EQ(Mixed(20 * std::log10(0.5)), First(half));
    EXPECT_NE(1000, First(half));
    const auto eighth = WithSound(16, -8, 1000);
    ASSERT_EQ(S_OK, Lay(eighth, over, 8, -4, 0.5));
    EXPECT_EQ(Mixed(20 * std::log10(0.125)), First(eighth));
    const auto none = WithSound(16, -8, 1000);
    ASSERT_EQ(S_OK, Lay(none, over, 16, 0));
    EXPECT_EQ(1000, First(none));
}

TEST_F(OverlaySounds, OptionsOfTheSound) {
    const auto over = WithSound(16, -8, 8000);
    const auto mixed = [&](const char *options, int32_t x = 0, int32_t flags = 0) {
        const auto frame = WithSound(16, -8, 1000);
        EXPECT_EQ(S_OK, Lay(frame, over, x, 0, 1, options, flags));
        return First(frame);
    };
    EXPECT_EQ(1000, mixed("audio=false"));
    EXPECT_EQ(1000, mixed("", 0, 0x2000));
    EXPECT_EQ(Mixed(0), mixed("", 0, 0x1000));
    EXPECT_EQ(Mixed(0), mixed("audio=true", 0, 0x2000));
    EXPECT_EQ(Mixed(-6), mixed("audio_gain=-6", 99));
    EXPECT_EQ(Mixed(-6, false), mixed("audio_gain=-6 symmetric_gain=false video=false"));
    EXPECT_EQ(Mixed(0), mixed("audio_gain=loud"));
    // A frame without a description of sound stays silent.
    const auto silent = Picture(eZFCC_RGB32, 16, -8);
    ASSERT_EQ(S_OK, Lay(silent, over, 0, 0));
    EXPECT_EQ(0, PropsOf(As<IZFrame>(silent)).audProps.nChannels);
}

// Threads.

TEST_F(Overlays, AnAsyncOverlayIsThereForWhoWaits) {
    const auto frame = Picture(eZFCC_UYVY, 320, 180), over = Picture(eZFCC_ARGB32, 160, -90, 3);
    const auto twin = Copy(frame);
    ASSERT_EQ(S_OK, Lay(twin, over, 10, 10, 0.7));
    ASSERT_EQ(S_OK, Lay(frame, over, 10, 10, 0.7, "async=true"));
    // The job holds the frame before the call returns.
    EXPECT_EQ(S_OK, frame->ZFAsyncWait());
    EXPECT_EQ(PixelsOf(twin), PixelsOf(frame));
    EXPECT_EQ(S_OK, Lay(frame, over, 0, 0, 1, "async=true video=false"));
    EXPECT_EQ(S_OK, Lay(frame, Empty(), 0, 0, 1, "async=true"));
    EXPECT_EQ(S_OK, Lay(Picture(eZFCC_v210, 48, 8), over, 0, 0, 1, "async=true"));
}

// The call comes back when the job owns the frame, and so not before somebody else who fills it has left. The pause only gives
// a call that comes back too early the time to do so.
TEST_F(Overlays, AnAsyncCallComesBackWhenTheJobOwnsTheFrame) {
    const auto frame = Picture(eZFCC_UYVY, 32, 16), over = Picture(eZFCC_ARGB32, 16, -8, 3);
    std::atomic<bool> left{false};
    std::atomic<bool> early{false};
    CriticalSection &section = QueryFor<CCoZFrame2>(frame.get())->AsyncSection();
    section.lock();
    std::thread caller([&] {
        EXPECT_EQ(S_OK, Lay(frame, over, 0, 0, 1, "async=true"));
        early = !left;
    });
    SleepMs(20);
    left = true;
    section.unlock();
    caller.join();
    frame->ZFAsyncWait();
    EXPECT_FALSE(early);
}

TEST_F(Overlays, AJobKeepsItsFrames) {
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(S_OK, Lay(Picture(eZFCC_UYVY, 64, 48), Picture(eZFCC_ARGB32, 64, -48, 3), 0, 0, 1, "async=true", 0,
                            Picture(eZFCC_RGB32, 32, -24)));
}

// A over B and B over A at once: each reads the left half of the other and writes its own right one.
TEST_F(Overlays, TwoFramesAreLaidOverEachOther) {
    const auto a = Picture(eZFCC_RGB32, 64, -32), b = Picture(eZFCC_RGB32, 64, -32, 3);
    std::atomic<int> wrong{0};
    const auto lay = [&](const Frames &target, const Frames &over, const char *options) {
        for (int i = 0; i < 60; ++i) {
            const HRESULT hr = i % 3 == 0 ? LayPublic(target, over, 32, 0) : Lay(target, over, 32, 0, 1, options);
            if (hr != S_OK) ++wrong;
        }
        target->ZFAsyncWait();
    };
    std::thread one([&] { lay(a, b, ""); });
    std::thread two([&] { lay(b, a, "async=true"); });
    std::thread three([&] { lay(a, b, "async=true"); });
    one.join();
    two.join();
    three.join();
    a->ZFAsyncWait();
    b->ZFAsyncWait();
    EXPECT_EQ(0, wrong);
    const auto left = PixelsOf(a), right = PixelsOf(b);
    for (size_t y = 0; y < 32; ++y)
        for (size_t i = 0; i < 128; ++i) {
            EXPECT_EQ(left[y * 256 + i], right[y * 256 + 128 + i]);
            EXPECT_EQ(right[y * 256 + i], left[y * 256 + 128 + i]);
        }
}

// One overlay on many targets: its copy and its mask are made and kept by several threads.
TEST_F(Overlays, OneOverlayServesManyThreads) {
    const auto over = Picture(eZFCC_ARGB32, 32, -16, 3), twin = Copy(over);
    const auto expected = Picture(eZFCC_UYVY, 64, 32);
    ASSERT_EQ(S_OK, Lay(expected, twin, 7, 5, 0.6));
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) {
                const auto frame = Picture(eZFCC_UYVY, 64, 32);
                if (Lay(frame, over, 7, 5, 0.6) != S_OK || PixelsOf(frame) != PixelsOf(expected)) ++wrong;
                if (i % 5 == 0) Attach(over, kCopy, nullptr);
            }
        });
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(0, wrong);
}

}    // namespace
}    // namespace zck::test
