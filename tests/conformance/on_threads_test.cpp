// Conversions on several threads against the model of one.
#include <gtest/gtest.h>

#include <cstdlib>

#include "imaging/convert/copy_frame.h"
#include "tests/conformance/convert_model.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/media_model.h"

namespace conformance {
namespace {

constexpr HRESULT kNoRoute = static_cast<HRESULT>(0x80040201);
constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr size_t kGuard = 64;

TEST(OnThreads, BytesAndStatusesAreThoseOfOne) {
    const uint32_t seed = 92006;
    Dice dice(seed);
    const eZFCC all[] = {eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210};
    for (const eZFCC from : all)
        for (const eZFCC to : all)
            for (const int32_t h : {1, 3, 240, 243, -243}) {
                const int32_t w = h == 240 ? 720 : dice(300, 420);
                Z_VID_PROPS sp = Picture(from, w, Rgb(from) ? h : std::abs(h)), tp = Picture(to, w, Rgb(to) ? h : std::abs(h));
                const eZInterlace orders[] = {eZI_Progressive, eZI_Field1First, eZI_Field2First};
                sp.eInterlace = orders[dice(0, 2)];
                tp.eInterlace = orders[dice(0, 2)];
                const auto size = [](const Z_VID_PROPS &p) {
                    return static_cast<size_t>(p.nRowBytes) * static_cast<size_t>(std::abs(p.nHeight));
                };
                const Bytes src = dice.Noise(size(sp)), before = dice.Noise(size(tp) + 2 * kGuard);
                Bytes want(before.begin() + kGuard, before.end() - kGuard), all2 = before;
                const HRESULT should = ConvertModel(src, want, sp, tp).hr;
                ASSERT_EQ(zck::CopyFrameCC_Thread(src.data(), static_cast<int64_t>(src.size()), all2.data() + kGuard,
                                                  static_cast<int64_t>(want.size()), &sp, &tp),
                          should)
                    << Words(sp) << "\n"
                    << Words(tp);
                const Bytes got(all2.begin() + kGuard, all2.end() - kGuard);
                ASSERT_TRUE(got == want) << Words(sp) << "\n" << Words(tp) << " seed " << seed;
                for (size_t i = 0; i < kGuard; ++i) {
                    ASSERT_EQ(all2[i], before[i]);
                    ASSERT_EQ(all2[all2.size() - 1 - i], before[all2.size() - 1 - i]);
                }
            }
    const Z_VID_PROPS p = Picture(eZFCC_I420, 320, 240), q = Picture(eZFCC_RGB32, 320, 240);
    Bytes a(320 * 240 * 2), b(320 * 240 * 4);
    EXPECT_EQ(zck::CopyFrameCC_Thread(a.data(), 115200, b.data(), 307200, &p, &q), kNoRoute);
    EXPECT_EQ(zck::CopyFrameCC_Thread(nullptr, 115200, b.data(), 307200, &p, &q), E_POINTER);
    EXPECT_EQ(zck::CopyFrameCC_Thread(b.data(), 307199, b.data(), 307200, &q, &q), kBadMedia);
}

}    // namespace
}    // namespace conformance
