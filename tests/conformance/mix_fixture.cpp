#include "tests/conformance/mix_fixture.h"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace conformance {
namespace {

// Alpha that is often nothing or all.
void AnyAlpha(Dice &dice, Bytes &bytes) {
    const int32_t kind = dice(0, 2);
    for (size_t i = 3; i < bytes.size() && kind != 0; i += 4) {
        const int32_t one = dice(0, 3);
        if (one == 0) bytes[i] = 0;
        if (one == 1 || kind == 2) bytes[i] = 255;
    }
}

void ExpectBytes(const Bytes &found, const Bytes &want, int32_t tolerance, const char *what) {
    ASSERT_EQ(found.size(), want.size()) << what;
    size_t wrong = 0, first = 0;
    for (size_t i = found.size(); i-- > 0;)
        if (std::abs(found[i] - want[i]) > tolerance) ++wrong, first = i;
    ASSERT_EQ(wrong, 0U) << what << ": of " << want.size() << " bytes, the first at " << first << ": " << int{found[first]}
                         << " instead of " << int{want[first]} << ", allowed " << tolerance;
}

void ExpectStatus(HRESULT hr, HRESULT want) {
    // Of a failure while planes are made only that it is one is known.
    if (want == E_FAIL)
        ASSERT_LT(hr, 0);
    else
        ASSERT_EQ(hr, want) << std::hex << "0x" << static_cast<uint32_t>(hr) << " instead of 0x" << static_cast<uint32_t>(want);
}

// The memory that a target is a part of.
class Around {
public:
    Around(const ComPtr<IZFrame> &around, const ComPtr<IZFrame> &part) {
        if (!around || !part) return;
        const Seen whole = Video(around), seen = Video(part);
        const int64_t at = seen.address - whole.address;
        if (whole.size <= 0 || at < 0 || at + seen.size > whole.size) return;
        m_whole = around;
        m_at = static_cast<size_t>(at);
        m_size = static_cast<size_t>(seen.size);
        m_before = whole.bytes();
    }
    void Check() const {
        if (!m_whole) return;
        Bytes now = Video(m_whole).bytes();
        for (size_t i = 0; i < now.size(); ++i)
            if (i < m_at || i >= m_at + m_size) {
                ASSERT_EQ(now[i], m_before[i]) << "outside of the part, at " << i;
            }
    }

private:
    ComPtr<IZFrame> m_whole;
    size_t m_at = 0, m_size = 0;
    Bytes m_before;
};

bool Overlap(const ComPtr<IZFrame> &a, const ComPtr<IZFrame> &b) {
    const Seen x = Video(a), y = Video(b);
    return x.address < y.address + y.size && y.address < x.address + x.size;
}

}    // namespace

const std::vector<eZFCC> &MixFormats() {
    static const std::vector<eZFCC> formats = {eZFCC_UYVY,  eZFCC_HDYC,   eZFCC_YUY2, eZFCC_YVYU, eZFCC_RGB24,
                                               eZFCC_RGB32, eZFCC_ARGB32, eZFCC_I420, eZFCC_YV12, eZFCC_NV12,
                                               eZFCC_v210,  eZFCC_r210,   eZFCC_RGB8};
    return formats;
}

Z_VID_PROPS SmallRecord(Dice &dice, eZFCC fcc) {
    const auto side = [&dice] {
        return dice(0, 59) == 0 ? dice(90, 130) : dice(0, 9) == 0 ? dice(17, 41) : dice(0, 4) == 0 ? dice(10, 16) : dice(1, 9);
    };
    Z_VID_PROPS p = Picture(fcc, side(), side());
    if (Rgb(fcc) && dice(0, 1) != 0) p.nHeight = -p.nHeight;
    if (dice(0, 3) == 0) p.nRowBytes += fcc == eZFCC_v210 ? 128 : fcc == eZFCC_r210 ? 256 : 4 * dice(1, 9);
    constexpr eZInterlace kScans[] = {eZI_Progressive, eZI_Progressive, eZI_Field1First, eZI_Field2First, eZI_Default};
    p.eInterlace = kScans[dice(0, 4)];
    p.eScaleType = static_cast<eZScaleType>(dice(0, 1) != 0 ? 0 : dice(0, 4));
    if (dice(0, 1) != 0) {
        p.nAspectX = static_cast<int16_t>(dice(1, 16));
        p.nAspectY = static_cast<int16_t>(dice(1, 9));
    }
    return p;
}

double AnyOpacity(Dice &dice) {
    constexpr double kOpacities[] = {0.0,
                                     1.0,
                                     1.0,
                                     1.0,
                                     0.5,
                                     0.25,
                                     1.0 / 3,
                                     0.75,
                                     1.0 / 256,
                                     1.0 / 512,
                                     0.00194,
                                     127.0 / 128,
                                     255.0 / 256,
                                     255.4 / 256,
                                     255.5 / 256,
                                     0.99609374,
                                     1.001,
                                     2.0,
                                     -0.25,
                                     -0.0,
                                     1e300,
                                     -1e300,
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::quiet_NaN()};
    constexpr auto kCount = static_cast<int32_t>(sizeof kOpacities / sizeof kOpacities[0]);
    return dice(0, 2) == 0 ? dice(0, 1000) / 1000.0 : kOpacities[dice(0, kCount - 1)];
}

int32_t AnyPlace(Dice &dice, int32_t size, int32_t over) {
    const int32_t kind = dice(0, 30);
    if (kind == 0) return dice(0, 1) != 0 ? INT32_MAX - dice(0, 3) : INT32_MIN + dice(0, 3);
    if (kind < 10) return 0;
    return kind < 14 ? dice(-over - 2, size + 2) : dice(-over / 2, std::max(size - 1, 0));
}

ComPtr<IZFrame> Mix::Of(const Z_VID_PROPS &p, const Bytes &bytes) {
    const ComPtr<IZFrame> frame = Make(p);
    if (frame) Refill(frame, bytes);
    return frame;
}

void Mix::Refill(const ComPtr<IZFrame> &frame, const Bytes &bytes) {
    const Seen seen = Video(frame);
    ASSERT_EQ(static_cast<size_t>(seen.size), bytes.size());
    if (!bytes.empty()) std::memcpy(seen.data(), bytes.data(), bytes.size());
}

ComPtr<IZFrame> Mix::Filled(Dice &dice, const Z_VID_PROPS &p, bool cut) {
    Z_VID_PROPS larger = p;
    const tagRECT rect = {dice(0, 3), dice(0, 3), 0, 0};
    if (cut) {
        larger.nWidth += rect.left + dice(0, 3);
        larger.nHeight += (p.nHeight < 0 ? -1 : 1) * (rect.top + dice(0, 3));
        larger.nRowBytes = static_cast<int32_t>(Row(p.fccType, larger.nWidth));
    }
    const ComPtr<IZFrame> frame = Make(larger);
    if (!frame) return frame;
    Bytes noise = dice.NoiseOrLimits(static_cast<size_t>(Video(frame).size));
    if (p.fccType == eZFCC_ARGB32) AnyAlpha(dice, noise);
    Refill(frame, noise);
    if (!cut) return frame;
    tagRECT wanted = {rect.left, rect.top, rect.left + p.nWidth, rect.top + std::abs(p.nHeight)};
    ComPtr<IZFrame> part;
    EXPECT_EQ(frame->FrameCut(0, &wanted, part.Put()), S_OK);
    m_around = frame;
    return part;
}

std::unique_ptr<Still> Mix::Stored(const ComPtr<IZFrame> &frame, const char *name) {
    ComPtr<IUnknown> object;
    const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(frame.get());
    if (!wide || wide->ZFObjectGet(TextOf(name).get(), object.Put(), 0) != S_OK) return {};
    const ComPtr<IZFrame> stored = QueryFor<IZFrame>(object.get());
    return stored ? std::make_unique<Still>(StillOf(stored)) : nullptr;
}

void Mix::Store(const ComPtr<IZFrame> &frame, const char *name, const ComPtr<IZFrame> &object) {
    ASSERT_EQ(QueryFor<IZFFrame>(frame.get())->ZFObjectSet(TextOf(name).get(), object.get()), S_OK);
}

void Mix::Lay(const ComPtr<IZFrame> &target, const ComPtr<IZFrame> &over, int32_t x, int32_t y, double opacity, Laid *seen) {
    const Still t = StillOf(target), o = StillOf(over);
    SCOPED_TRACE(testing::Message() << "over " << Words(t.props) << "\nlay  " << Words(o.props) << "\nat   " << x << "," << y
                                    << " opacity " << opacity);
    Laid expected;
    ASSERT_NO_THROW(expected = FrameOverlayModel(t, o, x, y, opacity));
    if (seen != nullptr) *seen = expected;
    const Around around(m_around, target);
    const HRESULT hr = target->FrameOverlay(over.get(), x, y, opacity, nullptr);
    ASSERT_NO_FATAL_FAILURE(ExpectStatus(hr, expected.hr));
    ASSERT_NO_FATAL_FAILURE(ExpectBytes(Video(target).bytes(), expected.target, expected.tolerance, "target"));
    if (!Overlap(target, over)) {
        ASSERT_EQ(Video(over).bytes(), o.memory) << "the overlay was written";
    }
    ASSERT_EQ(Words(Props(target).vidProps), Words(t.props));
    ASSERT_EQ(Words(Props(over).vidProps), Words(o.props));
    around.Check();
}

void Mix::LayWide(const ComPtr<IZFrame> &target, const ComPtr<IZFrame> &over, const ComPtr<IZFrame> &mask, const WideCall &call,
                  Laid *seen) {
    const Still t = StillOf(target), o = StillOf(over), m = mask ? StillOf(mask) : Still{};
    const std::unique_ptr<Still> converted = Stored(over, kConverted), overMask = Stored(over, kMask),
                                 maskMask = mask ? Stored(mask, kMask) : nullptr;
    SCOPED_TRACE(testing::Message() << "over " << Words(t.props) << "\nlay  " << Words(o.props) << "\nby   "
                                    << (mask ? Words(m.props) : std::string("no mask")) << "\nat   " << call.x << "," << call.y
                                    << " opacity " << call.opacity << " flags " << std::hex << call.flags << " stored"
                                    << (converted ? " picture" : "") << (overMask ? " mask" : "")
                                    << (maskMask ? " mask's mask" : ""));
    const Layers layers = {&o, converted.get(), overMask.get(), mask ? &m : nullptr, maskMask.get()};
    Laid expected;
    const int32_t field = (call.flags & 0x1000) != 0 ? 1 : (call.flags & 0x2000) != 0 ? 2 : -1;
    ASSERT_NO_THROW(expected = WideOverlayModel(t, layers, call.x, call.y, call.opacity, field));
    if (seen != nullptr) *seen = expected;
    const Around around(m_around, target);
    const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(target.get()), wideOver = QueryFor<IZFFrame>(over.get()),
                           wideMask = mask ? QueryFor<IZFFrame>(mask.get()) : ComPtr<IZFFrame>();
    const HRESULT hr = wide->ZFOverlay(wideOver.get(), wideMask.get(), call.x, call.y, call.opacity,
                                       call.props != nullptr ? TextOf(call.props).get() : nullptr, 0, call.flags);
    ASSERT_NO_FATAL_FAILURE(ExpectStatus(hr, expected.hr));
    ASSERT_NO_FATAL_FAILURE(ExpectBytes(Video(target).bytes(), expected.target, expected.tolerance, "target"));
    for (const auto &[frame, before] : {std::pair{&over, &o}, std::pair{&mask, &m}})
        if (*frame && !Overlap(target, *frame)) {
            ASSERT_EQ(Video(*frame).bytes(), before->memory) << "an overlay was written";
            ASSERT_EQ(Words(Props(*frame).vidProps), Words(before->props));
        }
    around.Check();
    if (expected.hr != S_OK) return;

    const std::unique_ptr<Still> keptPicture = Stored(over, kConverted), keptMask = Stored(mask ? mask : over, kMask);
    ASSERT_EQ(keptPicture != nullptr, converted || expected.converted) << kConverted;
    if (expected.converted) {
        ASSERT_TRUE(SameStoredModel(keptPicture->props, expected.converted->props))
            << Words(keptPicture->props) << "\ninstead of " << Words(expected.converted->props);
        ExpectBytes(keptPicture->memory, expected.converted->memory, expected.tolerance, kConverted);
    } else if (converted) {
        ASSERT_EQ(keptPicture->memory, converted->memory);
    }
    const Still *before = mask ? maskMask.get() : overMask.get();
    ASSERT_EQ(keptMask != nullptr, before != nullptr || expected.mask) << kMask;
    if (expected.mask) {
        const Z_VID_PROPS &p = keptMask->props, &want = expected.mask->props;
        ASSERT_TRUE(p.fccType == want.fccType && p.nWidth == want.nWidth && p.nHeight == want.nHeight &&
                    p.nRowBytes == want.nRowBytes)
            << Words(p) << "\ninstead of " << Words(want);
        ExpectBytes(keptMask->memory, expected.mask->memory, expected.tolerance == 0 ? 0 : 1, kMask);
    } else if (before != nullptr) {
        ASSERT_EQ(keptMask->memory, before->memory);
    }
}

ComPtr<IZFrame> Mix::WithoutPicture(const ComPtr<IZFrame> &frame) {
    ComPtr<IZFrame> clone;
    EXPECT_EQ(frame->FrameClone(clone.Put(), eZFC_Props, eZFCC_Default), S_OK);
    EXPECT_EQ(Video(clone).size, 0);
    return clone;
}

void Mix::Describe(const ComPtr<IZFrame> &frame, const Z_VID_PROPS &p) {
    Z_AV_PROPS props = Props(frame);
    props.vidProps = p;
    ASSERT_EQ(frame->FrameAVPropsSet(&props), S_OK);
}

HRESULT Mix::Wide(const ComPtr<IZFrame> &target, const ComPtr<IZFrame> &over, const char *props, const ComPtr<IZFrame> &mask,
                  int32_t x) {
    return QueryFor<IZFFrame>(target.get())
        ->ZFOverlay(QueryFor<IZFFrame>(over.get()).get(), mask ? QueryFor<IZFFrame>(mask.get()).get() : nullptr, x, 0, 1.0,
                    props != nullptr ? TextOf(props).get() : nullptr, 0, 0);
}

int32_t Mix::Objects(const ComPtr<IZFrame> &frame) {
    ZF_INFO info = {};
    EXPECT_EQ(QueryFor<IZFFrame>(frame.get())->ZFInfoGet(&info), S_OK);
    return info.nObjectCount;
}

}    // namespace conformance
