// A 1920 by 1080 frame to 1280 by 720, reference and vector version side by side. Times are of the source's pixels; `copies`
// is against a plain copy of the source as a 32-bit frame. `planar` is the planar engine, `quality` the other one; the number
// is the interpolation code.
#include <string>

#include "bench/imaging/colour/frames.h"
#include "imaging/engines/convert_frame.h"
#include "platform/processor.h"

namespace zck {
namespace {

using Engine = HRESULT (*)(FieldConverter *, const EngineSource &, const EngineTarget &, int32_t);

struct Case {
    const char *name;
    Engine engine;
    eZFCC from;
    eZFCC to;
    int32_t width;
    int32_t height;
    int32_t quality;
};

constexpr Case kCases[] = {
    {"planar/UYVY_UYVY/4", ConvertFrame2, eZFCC_UYVY, eZFCC_UYVY, 1280, 720, 4},
    {"planar/HDYC_HDYC/4", ConvertFrame2, eZFCC_HDYC, eZFCC_HDYC, 1280, 720, 4},
    {"planar/UYVY_UYVY/8", ConvertFrame2, eZFCC_UYVY, eZFCC_UYVY, 1280, 720, 8},
    {"planar/UYVY_UYVY/16", ConvertFrame2, eZFCC_UYVY, eZFCC_UYVY, 1280, 720, 16},
    {"planar/I420_UYVY/4", ConvertFrame2, eZFCC_I420, eZFCC_UYVY, 1280, 720, 4},
    {"planar/UYVY_ARGB32/4", ConvertFrame2, eZFCC_UYVY, eZFCC_ARGB32, 1280, 720, 4},
    {"planar/ARGB32_ARGB32/4", ConvertFrame2, eZFCC_ARGB32, eZFCC_ARGB32, 1280, 720, 4},
    {"planar/ARGB32_ARGB32/8", ConvertFrame2, eZFCC_ARGB32, eZFCC_ARGB32, 1280, 720, 8},
    {"planar/RGB24_UYVY/4", ConvertFrame2, eZFCC_RGB24, eZFCC_UYVY, 1280, 720, 4},
    {"quality/UYVY_UYVY_rows/4", ConvertFrame3, eZFCC_UYVY, eZFCC_UYVY, 1920, 720, 4},
    {"quality/UYVY_UYVY/4", ConvertFrame3, eZFCC_UYVY, eZFCC_UYVY, 1280, 720, 4},
    {"quality/ARGB32_ARGB32/4", ConvertFrame3, eZFCC_ARGB32, eZFCC_ARGB32, 1280, 720, 4},
};

Z_VID_PROPS Sized(eZFCC fcc, int32_t width, int32_t height) {
    Z_VID_PROPS p = Record(fcc);
    p.nWidth = width;
    p.nHeight = IsRgbFormat(fcc) ? -height : height;
    p.nRowBytes = RowBytes(fcc, width);
    p.eScaleType = eZST_None;
    return p;
}

void Add(const Case &c) {
    const auto at = [&c](KernelLevel level) {
        return [level, &c](std::size_t round) {
            static FieldConverter ctx;
            const Z_VID_PROPS sp = Sized(c.from, kWidth, kHeight);
            const Z_VID_PROPS tp = Sized(c.to, c.width, c.height);
            KernelLevelLimit(level);
            c.engine(&ctx, {Sources()[round % bench::kRing].data(), kFrameBytes, &sp},
                     {Targets()[round % bench::kRing].data(), nullptr, nullptr, kFrameBytes, &tp}, c.quality);
            KernelLevelLimit(kKernelLevelHighest);
        };
    };
    bench::RegisterPair(c.name, at(KernelLevel::Reference), CpuHasAvx2() ? bench::FrameWork(at(KernelLevel::Avx2)) : nullptr);
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    for (const zck::Case &c : zck::kCases) zck::Add(c);
    return zck::bench::Main(argc, argv);
}
