// Whole pictures into another format where no route leads: at once, and row by row.
#include <gtest/gtest.h>

#include <string>

#include "imaging/colour/planar_plan.h"
#include "imaging/convert/img_convert.h"
#include "tests/conformance/both_levels.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/media_model.h"
#include "tests/conformance/picture_model.h"

namespace conformance {
namespace {

constexpr HRESULT kNoRoute = static_cast<HRESULT>(0x80040201);
constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr size_t kGuard = 64;

const std::vector<eZFCC> &Pictures() {
    static const std::vector<eZFCC> all = {eZFCC_I420, eZFCC_YV12, eZFCC_NV12,  eZFCC_YVYU,  eZFCC_YUY2,
                                           eZFCC_UYVY, eZFCC_HDYC, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32};
    return all;
}

TEST(WithoutRoute, EveryPairAgreesWithTheModel) {
    const uint32_t seed = 92004;
    Dice dice(seed);
    zck::ImgScaleState state;
    for (int round = 0; round < 25; ++round)
        for (const eZFCC from : Pictures())
            for (const eZFCC to : Pictures()) {
                const int32_t w = dice(1, 60), h = dice(1, 8);
                Z_VID_PROPS sp = Picture(from, w, h), tp = Picture(to, w, h);
                for (Z_VID_PROPS *p : {&sp, &tp}) {
                    if (Rgb(p->fccType) && dice(0, 1) != 0) p->nHeight = -h;
                    if (dice(0, 2) == 0) p->nRowBytes += dice(0, 20);
                    p->eInterlace = dice(0, 1) != 0 ? eZI_Field1First : eZI_Field2First;    // of no meaning here
                }
                const Shape a = ShapeOf(sp), b = ShapeOf(tp);
                const Bytes src = dice.Noise(BytesOf(a));
                const Bytes before = dice.Noise(BytesOf(b) + 2 * kGuard);
                Bytes want(before.begin() + kGuard, before.end() - kGuard);
                const HRESULT should = PictureModel(src, a, want, b, nullptr, nullptr);
                BothLevels([&] {
                    Bytes all = before;
                    ASSERT_EQ(zck::ImgConvert(&state, src.data(), static_cast<int64_t>(src.size()), all.data() + kGuard,
                                              static_cast<int64_t>(want.size()), &sp, &tp),
                              should)
                        << Words(sp) << "\n"
                        << Words(tp);
                    for (size_t i = 0; i < all.size(); ++i) {
                        const bool inside = i >= kGuard && i < kGuard + want.size();
                        ASSERT_EQ(all[i], inside ? want[i - kGuard] : before[i])
                            << Words(sp) << "\n"
                            << Words(tp) << "\nat " << static_cast<int64_t>(i) - static_cast<int64_t>(kGuard);
                    }
                });
                ASSERT_FALSE(HasFatalFailure()) << "seed " << seed;
            }
}

TEST(WithoutRoute, BadInputWritesNothing) {
    zck::ImgScaleState state;
    Bytes src(8192, 1), dst(8192, 2);
    const Z_VID_PROPS i420 = Picture(eZFCC_I420, 16, 8), uyvy = Picture(eZFCC_UYVY, 16, 8);
    const auto convert = [&](const Z_VID_PROPS &a, int64_t have, const Z_VID_PROPS &b, int64_t room) {
        return zck::ImgConvert(&state, src.data(), have, dst.data(), room, &a, &b);
    };
    EXPECT_EQ(zck::ImgConvert(nullptr, src.data(), 8192, dst.data(), 8192, &i420, &uyvy), E_INVALIDARG);
    EXPECT_EQ(zck::ImgConvert(&state, nullptr, 8192, dst.data(), 8192, &i420, &uyvy), E_INVALIDARG);
    EXPECT_EQ(zck::ImgConvert(&state, src.data(), 8192, nullptr, 8192, &i420, &uyvy), E_INVALIDARG);
    EXPECT_EQ(zck::ImgConvert(&state, src.data(), 8192, dst.data(), 8192, nullptr, &uyvy), E_INVALIDARG);
    EXPECT_EQ(zck::ImgConvert(&state, src.data(), 8192, dst.data(), 8192, &i420, nullptr), E_INVALIDARG);
    EXPECT_EQ(convert(i420, 191, uyvy, 8192), kBadMedia);
    EXPECT_EQ(convert(i420, 192, uyvy, 255), kBadMedia);
    EXPECT_EQ(convert(uyvy, 256, i420, 191), kBadMedia);
    Z_VID_PROPS p = i420;
    p.nHeight = 6;
    EXPECT_EQ(convert(p, 8192, uyvy, 8192), E_INVALIDARG);
    p = i420;
    p.nWidth = 14;
    EXPECT_EQ(convert(p, 8192, uyvy, 8192), E_INVALIDARG);
    p = i420;
    p.nRowBytes = 0;
    EXPECT_EQ(convert(p, 8192, uyvy, 8192), E_UNEXPECTED);
    p = {};
    EXPECT_EQ(convert(p, 8192, uyvy, 8192), E_UNEXPECTED);
    for (const eZFCC fcc : {eZFCC_v210, eZFCC_r210, eZFCC_RGB8}) {
        const Z_VID_PROPS odd = Picture(fcc, 16, 8);
        EXPECT_EQ(convert(odd, 8192, uyvy, 8192), S_OK) << std::hex << fcc;
        EXPECT_EQ(convert(i420, 8192, odd, 8192), S_OK) << std::hex << fcc;
    }
    EXPECT_EQ(convert(Picture(eZFCC_I420, 1, 8), 8192, Picture(eZFCC_RGB32, 1, 8), 8192), S_FALSE);
    EXPECT_EQ(dst, Bytes(8192, 2));
}

TEST(WithoutRoute, RowByRowIsTheSame) {
    const uint32_t seed = 92005;
    Dice dice(seed);
    for (int round = 0; round < 120; ++round)
        for (const eZFCC from : {eZFCC_I420, eZFCC_YV12, eZFCC_NV12, eZFCC_YVYU})
            for (const eZFCC to : {eZFCC_RGB32, eZFCC_ARGB32}) {
                const int32_t w = dice(2, 80), h = dice(1, 9);
                Z_VID_PROPS sp = Picture(from, w, h), tp = Picture(to, w, dice(0, 1) != 0 ? h : -h);
                if (dice(0, 1) != 0) sp.nRowBytes += dice(0, 4) * 2;
                const Shape a = ShapeOf(sp), b = ShapeOf(tp);
                const Bytes src = dice.Noise(BytesOf(a));
                Bytes want(BytesOf(b), 0);
                ASSERT_EQ(PictureModel(src, a, want, b, nullptr, nullptr), S_OK);
                BothLevels([&] {
                    zck::PlanarPlan plan;
                    ASSERT_EQ(plan.Prepare(&sp, static_cast<int64_t>(src.size()), &tp, static_cast<int64_t>(want.size())), S_OK)
                        << Words(sp) << "\n"
                        << Words(tp);
                    ASSERT_EQ(plan.Width(), w);
                    ASSERT_EQ(plan.Rows(), h);
                    ASSERT_TRUE(plan.RowsIndependent());
                    Bytes got(want.size(), 0xEE);
                    const int32_t middle = dice(0, h);
                    plan.RunRows(src.data(), got.data(), middle, h);
                    for (int32_t y = 0; y < middle; ++y) plan.RunRows(src.data(), got.data(), y, y + 1);
                    ASSERT_EQ(got, want) << Words(sp) << "\n" << Words(tp) << " seed " << seed;
                });
                ASSERT_FALSE(HasFatalFailure());
            }
}

TEST(WithoutRoute, RowByRowRefusals) {
    zck::PlanarPlan plan;
    const Z_VID_PROPS i420 = Picture(eZFCC_I420, 16, 8), rgb = Picture(eZFCC_RGB32, 16, -8);
    EXPECT_EQ(plan.Prepare(nullptr, 192, &rgb, 512), E_POINTER);
    EXPECT_EQ(plan.Prepare(&i420, 192, nullptr, 512), E_POINTER);
    EXPECT_EQ(plan.Prepare(&i420, 191, &rgb, 512), kBadMedia);
    EXPECT_EQ(plan.Prepare(&i420, 192, &rgb, 511), kBadMedia);
    EXPECT_EQ(plan.Prepare(&i420, 192, &rgb, 512), S_OK);
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_UYVY, eZFCC_I420, eZFCC_v210}) {
        const Z_VID_PROPS p = Picture(fcc, 16, 8);
        EXPECT_EQ(plan.Prepare(&i420, 192, &p, 4096), kNoRoute) << std::hex << fcc;
    }
    for (const eZFCC fcc : {eZFCC_RGB32, eZFCC_UYVY, eZFCC_v210}) {
        const Z_VID_PROPS p = Picture(fcc, 16, 8);
        EXPECT_EQ(plan.Prepare(&p, 4096, &rgb, 512), kNoRoute) << std::hex << fcc;
    }
    Z_VID_PROPS p = i420;
    p.nRowBytes = 0;
    EXPECT_EQ(plan.Prepare(&p, 192, &rgb, 512), E_UNEXPECTED);
}

}    // namespace
}    // namespace conformance
