// The general conversion with rectangles, and the rectangles themselves.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "imaging/colour/color_convert.h"
#include "imaging/colour/normalize_rects.h"
#include "platform/processor.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/media_model.h"
#include "tests/conformance/picture_model.h"

namespace conformance {
namespace {

using zck::ColorConvert;
using zck::ColorConvertViews;
using zck::ImageView;
using zck::ImgConvertState;
using zck::ImgDesc;

constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr size_t kGuard = 80;
constexpr eZFCC kTable[] = {eZFCC_YVYU, eZFCC_I420,  eZFCC_YV12,  eZFCC_YUY2,  eZFCC_UYVY,
                            eZFCC_HDYC, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32};

std::string Text(const tagRECT &r) {
    return "(" + std::to_string(r.left) + " " + std::to_string(r.top) + " " + std::to_string(r.right) + " " +
           std::to_string(r.bottom) + ")";
}
std::string Text(const std::optional<tagRECT> &r) { return r ? Text(*r) : "all"; }
std::string Text(const Shape &s) {
    Z_VID_PROPS p = Picture(s.fcc, s.width, s.height);
    p.nRowBytes = static_cast<int32_t>(s.row);
    return Words(p);
}

const tagRECT *AddressOf(const std::optional<tagRECT> &r) { return r ? &*r : nullptr; }

tagRECT AnyRect(Dice &dice, int32_t reach) {
    const int32_t left = dice(-reach, reach), top = dice(-reach, reach);
    return {left, top, left + dice(-1, reach), top + dice(-1, reach)};
}

TEST(Rectangles, AgreeWithTheModel) {
    const uint32_t seed = 91001;
    Dice dice(seed);
    int32_t seen[3] = {};
    for (int round = 0; round < 60000; ++round) {
        const eZFCC codes[] = {eZFCC_RGB24, eZFCC_ARGB32, eZFCC_UYVY, eZFCC_I420, eZFCC_RGB8, eZFCC_r210, eZFCC_v210};
        const Shape a = {codes[dice(0, 6)], dice(1, 40), dice(1, 30) * (dice(0, 1) * 2 - 1), 0};
        const Shape b = {codes[dice(0, 6)], dice(1, 40), dice(1, 30) * (dice(0, 1) * 2 - 1), 0};
        std::optional<tagRECT> s, d;
        if (dice(0, 4) != 0) s = AnyRect(dice, 50);
        if (dice(0, 4) != 0) d = AnyRect(dice, 50);
        const bool proportional = dice(0, 1) != 0;
        const Rects want = RectsModel(a, b, proportional, AddressOf(s), AddressOf(d));
        const ImgDesc sd = {a.fcc, a.width, a.height, 0}, dd = {b.fcc, b.width, b.height, 0};
        tagRECT rs = {}, rd = {};
        const HRESULT hr = zck::NormalizeRects(&sd, &dd, &rs, &rd, proportional, AddressOf(s), AddressOf(d));
        const std::string text = Text(a) + " " + Text(s) + "\n" + Text(b) + " " + Text(d) + (proportional ? " scaled" : "") +
                                 " seed " + std::to_string(seed);
        ASSERT_EQ(hr, want.hr) << text;
        ++seen[hr == S_OK ? 0 : hr == S_FALSE ? 1 : 2];
        if (hr != S_OK) continue;
        ASSERT_EQ(Text(rs), Text(want.src)) << text;
        ASSERT_EQ(Text(rd), Text(want.dst)) << text;
    }
    for (const int32_t n : seen) EXPECT_GT(n, 3000);
}

TEST(Rectangles, WorkedCases) {
    const ImgDesc small = {eZFCC_RGB32, 100, 50, 0}, large = {eZFCC_RGB32, 300, 400, 0}, yuv = {eZFCC_UYVY, 100, 50, 0};
    tagRECT s, d;
    const auto normal = [&](const ImgDesc &a, const ImgDesc &b, bool scaled, tagRECT in, tagRECT out) {
        return zck::NormalizeRects(&a, &b, &s, &d, scaled, &in, &out);
    };
    // The scale across is 3, down 8. Ten rows above the source cost thirty of the target, four columns left thirty-two.
    ASSERT_EQ(normal(small, large, true, {-4, -10, 96, 40}, {0, 0, 300, 400}), S_OK);
    EXPECT_EQ(Text(s), Text(tagRECT{0, 0, 96, 40}));
    EXPECT_EQ(Text(d), Text(tagRECT{32, 30, 300, 400}));
    // On the right and at the bottom each goes by its own.
    ASSERT_EQ(normal(small, large, true, {4, 10, 104, 60}, {0, 0, 300, 400}), S_OK);
    EXPECT_EQ(Text(s), Text(tagRECT{4, 10, 100, 50}));
    EXPECT_EQ(Text(d), Text(tagRECT{0, 0, 288, 320}));
    // From the target to the source it is divided: 8 columns by 8, 9 rows by 3.
    ASSERT_EQ(normal(small, large, true, {0, 0, 100, 50}, {-8, -9, 292, 391}), S_OK);
    EXPECT_EQ(Text(s), Text(tagRECT{1, 3, 100, 50}));
    EXPECT_EQ(Text(d), Text(tagRECT{0, 0, 292, 391}));
    // Even columns as soon as one side is not RGB, on both sides, left up and right down.
    ASSERT_EQ(normal(small, yuv, false, {3, 3, 20, 20}, {5, 1, 60, 50}), S_OK);
    EXPECT_EQ(Text(s), Text(tagRECT{4, 3, 20, 20}));
    EXPECT_EQ(Text(d), Text(tagRECT{6, 1, 22, 18}));
    // What was two columns can be none.
    EXPECT_EQ(normal(small, yuv, false, {3, 0, 5, 4}, {0, 0, 4, 4}), S_FALSE);
    EXPECT_EQ(normal(small, large, false, {3, 0, 4, 4}, {0, 0, 4, 4}), S_OK);
    // Outside.
    EXPECT_EQ(normal(small, large, false, {100, 0, 110, 4}, {0, 0, 10, 4}), S_FALSE);
    EXPECT_EQ(normal(small, large, false, {0, 50, 10, 54}, {0, 0, 10, 4}), S_FALSE);
    EXPECT_EQ(normal(small, large, false, {-20, 0, -10, 4}, {0, 0, 10, 4}), S_FALSE);
    EXPECT_EQ(normal(small, large, false, {0, 0, 10, 4}, {300, 0, 310, 4}), S_FALSE);
    EXPECT_EQ(normal(small, large, false, {0, 0, 10, 4}, {0, -4, 10, 0}), S_FALSE);
}

TEST(Rectangles, BadInput) {
    const ImgDesc desc = {eZFCC_RGB32, 100, 50, 0};
    tagRECT s, d;
    EXPECT_EQ(zck::NormalizeRects(nullptr, &desc, &s, &d, false, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(zck::NormalizeRects(&desc, nullptr, &s, &d, false, nullptr, nullptr), E_INVALIDARG);
    for (const tagRECT bad : {tagRECT{5, 0, 5, 9}, tagRECT{5, 0, 4, 9}, tagRECT{0, 7, 5, 7}, tagRECT{0, 7, 5, 6}, tagRECT{}}) {
        EXPECT_EQ(zck::NormalizeRects(&desc, &desc, &s, &d, false, &bad, nullptr), E_INVALIDARG);
        EXPECT_EQ(zck::NormalizeRects(&desc, &desc, &s, &d, true, nullptr, &bad), E_INVALIDARG);
    }
    // The far ends of the numbers.
    const tagRECT all = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, one = {0, 0, 1, 1};
    for (const bool scaled : {false, true})
        for (const tagRECT *a : {&all, &one})
            for (const tagRECT *b : {&all, &one}) {
                const Shape shape = {eZFCC_RGB32, 100, 50, 0};
                const Rects want = RectsModel(shape, shape, scaled, a, b);
                ASSERT_EQ(zck::NormalizeRects(&desc, &desc, &s, &d, scaled, a, b), want.hr);
                if (want.hr != S_OK) continue;
                EXPECT_EQ(Text(s), Text(want.src));
                EXPECT_EQ(Text(d), Text(want.dst));
            }
}

// A conversion into a memory between guards, against the model.
struct Job {
    Shape from, to;
    std::optional<tagRECT> src, dst;
    bool views;
};

int32_t RowPixelsOf(const Shape &s) { return static_cast<int32_t>(Pixels(s.fcc, s.row)); }

void Compare(const Job &run, Dice &dice, ImgConvertState &state) {
    const Bytes src = dice.NoiseOrLimits(BytesOf(run.from));
    const Bytes before = dice.NoiseOrLimits(BytesOf(run.to) + 2 * kGuard);
    Bytes want(before.begin() + kGuard, before.end() - kGuard);
    const HRESULT should = PictureModel(src, run.from, want, run.to, AddressOf(run.src), AddressOf(run.dst));
    for (const zck::KernelLevel level : {zck::KernelLevel::Reference, zck::KernelLevel::Avx2}) {
        zck::KernelLevelLimit(level);
        Bytes all = before;
        const ImgDesc sd = {run.from.fcc, run.from.width, run.from.height, RowPixelsOf(run.from)};
        const ImgDesc dd = {run.to.fcc, run.to.width, run.to.height, RowPixelsOf(run.to)};
        HRESULT hr;
        if (run.views) {
            const ImageView source = {sd, run.from.row, static_cast<int64_t>(src.size())};
            const ImageView target = {dd, run.to.row, static_cast<int64_t>(want.size())};
            hr = ColorConvertViews(&state, src.data(), all.data() + kGuard, source, target, AddressOf(run.src),
                                   AddressOf(run.dst));
        } else {
            hr = ColorConvert(&state, src.data(), all.data() + kGuard, &sd, &dd, AddressOf(run.src), AddressOf(run.dst));
        }
        const std::string text = Text(run.from) + " " + Text(run.src) + "\n" + Text(run.to) + " " + Text(run.dst) +
                                 (level == zck::KernelLevel::Avx2 ? "\nvector rows" : "\nreference rows") +
                                 (run.views ? ", views" : "");
        ASSERT_EQ(hr, should) << text;
        for (size_t i = 0; i < kGuard; ++i) {
            ASSERT_EQ(all[i], before[i]) << "before the target at " << i << "\n" << text;
            ASSERT_EQ(all[kGuard + want.size() + i], before[kGuard + want.size() + i]) << "behind it at " << i << "\n" << text;
        }
        for (size_t i = 0; i < want.size(); ++i)
            ASSERT_EQ(static_cast<int>(all[kGuard + i]), static_cast<int>(want[i]))
                << "at " << i << ", was " << static_cast<int>(before[kGuard + i]) << "\n"
                << text;
    }
}

Shape AnyShape(Dice &dice, eZFCC fcc, int32_t width, int32_t height, bool padded) {
    Shape s = {fcc, width, Rgb(fcc) && dice(0, 1) != 0 ? -height : height, Row(fcc, width)};
    if (padded) s.row = Row(fcc, width + dice(0, 12));
    return s;
}

TEST(PictureConversion, EveryPairOfFormatsAgreesWithTheModel) {
    const uint32_t seed = 91002;
    Dice dice(seed);
    ImgConvertState state;
    for (int round = 0; round < 40; ++round)
        for (const eZFCC from : kTable)
            for (const eZFCC to : kTable) {
                const int32_t w = dice(1, 45), h = dice(1, 9);
                const bool padded = dice(0, 2) == 0;
                const Job run = {AnyShape(dice, from, w, h, padded), AnyShape(dice, to, w, h, padded), {}, {}, false};
                ASSERT_NO_FATAL_FAILURE(Compare(run, dice, state)) << "seed " << seed << " round " << round;
            }
}

TEST(PictureConversion, RectanglesOnBothSides) {
    const uint32_t seed = 91003;
    Dice dice(seed);
    ImgConvertState state;
    for (int round = 0; round < 120; ++round)
        for (const eZFCC from : kTable)
            for (const eZFCC to : kTable) {
                Job run = {AnyShape(dice, from, dice(1, 40), dice(1, 12), true),
                           AnyShape(dice, to, dice(1, 40), dice(1, 12), true),
                           {},
                           {},
                           dice(0, 1) != 0};
                if (dice(0, 4) != 0) run.src = AnyRect(dice, 20);
                if (dice(0, 4) != 0) run.dst = AnyRect(dice, 20);
                ASSERT_NO_FATAL_FAILURE(Compare(run, dice, state)) << "seed " << seed << " round " << round;
            }
}

TEST(PictureConversion, WideRows) {
    const uint32_t seed = 91004;
    Dice dice(seed);
    ImgConvertState state;
    for (const eZFCC from : kTable)
        for (const eZFCC to : kTable)
            for (const int32_t w : {64, 130, 257, 720, 1922}) {
                const Job run = {AnyShape(dice, from, w, 4, false), AnyShape(dice, to, w, 4, false), {}, {}, dice(0, 1) != 0};
                ASSERT_NO_FATAL_FAILURE(Compare(run, dice, state)) << "seed " << seed;
            }
}

TEST(PictureConversion, ViewsServeJoinedChromaToo) {
    const uint32_t seed = 91005;
    Dice dice(seed);
    ImgConvertState state;
    for (int round = 0; round < 60; ++round)
        for (const eZFCC other : {eZFCC_NV12, eZFCC_YVYU, eZFCC_I420, eZFCC_YV12, eZFCC_YUY2, eZFCC_UYVY, eZFCC_HDYC,
                                  eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32}) {
            const int32_t w = dice(1, 70), h = dice(1, 9);
            Job run = {AnyShape(dice, eZFCC_NV12, w, h, true), AnyShape(dice, other, w, h, true), {}, {}, true};
            if (dice(0, 1) != 0) std::swap(run.from, run.to);
            if (dice(0, 1) != 0) run.src = AnyRect(dice, 30);
            ASSERT_NO_FATAL_FAILURE(Compare(run, dice, state)) << "seed " << seed << " round " << round;
        }
}

TEST(PictureConversion, FormatsOutsideTheTableAreLeftAlone) {
    ImgConvertState state;
    Bytes src(16384, 7), dst(16384, 9);
    for (const eZFCC fcc : {eZFCC_v210, eZFCC_NV12, eZFCC_RGB8, eZFCC_r210, eZFCC_Default, Fcc(0x34343459), Fcc(0x32323459),
                            Fcc(0x41424344), eZFCC_GPU_RGB444})
        for (const eZFCC other : {eZFCC_UYVY, eZFCC_RGB32, eZFCC_I420, fcc}) {
            const ImgDesc odd = {fcc, 48, 4, 48}, even = {other, 48, 4, 48};
            EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &odd, &even, nullptr, nullptr), S_OK)
                << std::hex << fcc << " " << other;
            EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &even, &odd, nullptr, nullptr), S_OK)
                << std::hex << fcc << " " << other;
            const tagRECT outside = {60, 0, 70, 4};
            EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &even, &odd, &outside, nullptr), S_FALSE);
        }
    EXPECT_EQ(dst, Bytes(16384, 9));
}

TEST(PictureConversion, BadInputWritesNothing) {
    ImgConvertState state;
    Bytes src(4096, 7), dst(4096, 9);
    const ImgDesc uyvy = {eZFCC_UYVY, 16, 8, 16}, rgb = {eZFCC_RGB32, 16, -8, 16}, i420 = {eZFCC_I420, 16, 8, 16};
    EXPECT_EQ(ColorConvert(nullptr, src.data(), dst.data(), &uyvy, &rgb, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, nullptr, dst.data(), &uyvy, &rgb, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, src.data(), nullptr, &uyvy, &rgb, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), nullptr, &rgb, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &uyvy, nullptr, nullptr, nullptr), E_INVALIDARG);
    const std::pair<tagRECT, HRESULT> rects[] = {{{8, 0, 8, 8}, E_INVALIDARG},
                                                 {{8, 0, 6, 8}, E_INVALIDARG},
                                                 {{0, 8, 8, 2}, E_INVALIDARG},
                                                 {{0, 0, 0, 0}, E_INVALIDARG},
                                                 {{16, 0, 20, 8}, S_FALSE},
                                                 {{0, 8, 8, 10}, S_FALSE},
                                                 {{-10, 0, -2, 8}, S_FALSE},
                                                 {{0, -9, 8, -1}, S_FALSE},
                                                 {{1, 0, 2, 8}, S_FALSE},
                                                 {{INT32_MIN, 0, -1, 8}, S_FALSE},
                                                 {{INT32_MAX - 1, 0, INT32_MAX, 8}, S_FALSE}};
    for (const auto &[rect, hr] : rects) {
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &uyvy, &rgb, &rect, nullptr), hr) << Text(rect);
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &rgb, &uyvy, nullptr, &rect), hr) << Text(rect);
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &i420, &i420, &rect, &rect), hr) << Text(rect);
    }
    // Rows that are shorter than their pixels.
    for (const ImgDesc &good : {uyvy, rgb, i420}) {
        ImgDesc bad = good;
        bad.nRowPixels = 8;
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &bad, &good, nullptr, nullptr), E_INVALIDARG);
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &good, &bad, nullptr, nullptr), E_INVALIDARG);
        bad.nRowPixels = -16;
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &bad, &good, nullptr, nullptr), E_INVALIDARG);
    }
    // A picture of one column has no pair.
    const ImgDesc column = {eZFCC_UYVY, 1, 8, 2};
    EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &column, &rgb, nullptr, nullptr), S_FALSE);
    // No picture: nothing of it is visible, before anybody looks how it lies in memory.
    for (const ImgDesc none : {ImgDesc{eZFCC_UYVY, 0, 8, 16}, ImgDesc{eZFCC_UYVY, 16, 0, 16}, ImgDesc{eZFCC_UYVY, -4, 8, 16}}) {
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &none, &rgb, nullptr, nullptr), S_FALSE);
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &rgb, &none, nullptr, nullptr), S_FALSE);
    }
    EXPECT_EQ(dst, Bytes(4096, 9));
}

TEST(PictureConversion, ViewsThatDoNotHoldTheirPictureAreRefused) {
    ImgConvertState state;
    for (const eZFCC fcc : {eZFCC_YVYU, eZFCC_UYVY, eZFCC_I420, eZFCC_YV12, eZFCC_NV12, eZFCC_RGB24, eZFCC_RGB32}) {
        const Shape shape = {fcc, 16, 6, Row(fcc, 16) + 8}, other = {eZFCC_YUY2, 16, 6, 32};
        // The last row of packed pixels may end early.
        const size_t need = Is420(fcc) ? BytesOf(shape) : BytesOf(shape) - 8;
        Bytes a(BytesOf(shape), 5), b(BytesOf(other), 6);
        ImageView view = {{fcc, 16, 6, 0}, shape.row, static_cast<int64_t>(need)};
        const ImageView plain = {{eZFCC_YUY2, 16, 6, 0}, 32, 192};
        EXPECT_EQ(ColorConvertViews(&state, a.data(), b.data(), view, plain, nullptr, nullptr), S_OK) << std::hex << fcc;
        EXPECT_EQ(ColorConvertViews(&state, b.data(), a.data(), plain, view, nullptr, nullptr), S_OK) << std::hex << fcc;
        // Chroma rows of planes end with their samples; 4 bytes of padding behind the last of them are nobody's.
        view.bytes = static_cast<int64_t>(need) - (Is420(fcc) ? 9 : 1);
        const Bytes keptA = a, keptB = b;
        EXPECT_EQ(ColorConvertViews(&state, a.data(), b.data(), view, plain, nullptr, nullptr), kBadMedia) << std::hex << fcc;
        EXPECT_EQ(ColorConvertViews(&state, b.data(), a.data(), plain, view, nullptr, nullptr), kBadMedia) << std::hex << fcc;
        view.bytes = 0;
        EXPECT_EQ(ColorConvertViews(&state, b.data(), a.data(), plain, view, nullptr, nullptr), kBadMedia) << std::hex << fcc;
        EXPECT_EQ(a, keptA);
        EXPECT_EQ(b, keptB);
        view.bytes = static_cast<int64_t>(need);
        view.rowBytes = 15;
        EXPECT_EQ(ColorConvertViews(&state, b.data(), a.data(), plain, view, nullptr, nullptr), E_INVALIDARG)
            << std::hex << fcc;
    }
}

TEST(PictureConversion, ExchangedChromaOfYvyuStays) {
    ImgConvertState state;
    // Red in BT.601: Y 81, Cb 90, Cr 240.
    const uint8_t red[4] = {81, 240, 81, 90};
    const ImgDesc yvyu = {eZFCC_YVYU, 2, 1, 0}, rgb32 = {eZFCC_RGB32, 2, -1, 0}, rgb24 = {eZFCC_RGB24, 2, -1, 0};
    uint8_t four[8] = {}, three[8] = {};
    ASSERT_EQ(ColorConvert(&state, red, four, &yvyu, &rgb32, nullptr, nullptr), S_OK);
    EXPECT_EQ(four[0], 255);    // blue
    EXPECT_EQ(four[2], 15);
    EXPECT_EQ(four[3], 255);
    ASSERT_EQ(ColorConvert(&state, red, three, &yvyu, &rgb24, nullptr, nullptr), S_OK);
    EXPECT_EQ(three[2], 254);    // red
    EXPECT_EQ(three[0], 0);
}

}    // namespace
}    // namespace conformance
