// Every conversion at one size over a 1920 by 1080 frame, reference and vector version side by side. "same" are the routes that
// frames take between packed formats, "part" those of `ColorConvertViews`, which serves planes.
#include <string>

#include "bench/imaging/colour/frames.h"
#include "imaging/colour/color_convert.h"
#include "imaging/colour/convert.h"
#include "platform/processor.h"

namespace zck {
namespace {

constexpr Format kPacked[] = {{eZFCC_RGB32, "RGB32"}, {eZFCC_RGB24, "RGB24"}, {eZFCC_UYVY, "UYVY"},
                              {eZFCC_HDYC, "HDYC"},   {eZFCC_YUY2, "YUY2"},   {eZFCC_v210, "v210"}};
constexpr Format kPlanar[] = {{eZFCC_YVYU, "YVYU"}, {eZFCC_I420, "I420"}, {eZFCC_YV12, "YV12"}, {eZFCC_NV12, "NV12"}};
constexpr Format kPartners[] = {{eZFCC_RGB32, "RGB32"}, {eZFCC_RGB24, "RGB24"}, {eZFCC_UYVY, "UYVY"}, {eZFCC_YUY2, "YUY2"}};

void Same(size_t round, eZFCC from, eZFCC to) {
    const Z_VID_PROPS sp = Record(from);
    const Z_VID_PROPS tp = Record(to);
    ConvertSameGeometry(Sources()[round % bench::kRing].data(), Targets()[round % bench::kRing].data(), &sp, &tp);
}

void Part(size_t round, eZFCC from, eZFCC to) {
    static ImgConvertState state;
    const auto view = [](eZFCC fcc) {
        const Z_VID_PROPS p = Record(fcc);
        return ImageView{{fcc, p.nWidth, p.nHeight, 0}, p.nRowBytes, static_cast<int64_t>(kFrameBytes)};
    };
    ColorConvertViews(&state, Sources()[round % bench::kRing].data(), Targets()[round % bench::kRing].data(), view(from),
                      view(to), nullptr, nullptr);
}

void Add(const char *kind, void (*convert)(size_t, eZFCC, eZFCC), const Format &from, const Format &to) {
    const auto work = [convert, from, to](KernelLevel level) {
        return [=](std::size_t round) {
            KernelLevelLimit(level);
            convert(round, from.fcc, to.fcc);
            KernelLevelLimit(kKernelLevelHighest);
        };
    };
    bench::RegisterPair(std::string(kind) + "/" + from.name + "/" + to.name, work(KernelLevel::Reference),
                        CpuHasAvx2() ? bench::FrameWork(work(KernelLevel::Avx2)) : nullptr);
}

void Register() {
    for (const Format &from : kPacked) {
        for (const Format &to : kPacked) {
            // Not provided, and plain copies.
            const bool plain = from.fcc == to.fcc && from.fcc != eZFCC_RGB32;
            if (!plain && !(IsRgbFormat(from.fcc) && to.fcc == eZFCC_v210)) Add("same", Same, from, to);
        }
    }
    for (const Format &planar : kPlanar) {
        for (const Format &partner : kPartners) Add("part", Part, planar, partner);
        for (const Format &partner : kPartners) Add("part", Part, partner, planar);
    }
    Add("part", Part, kPlanar[1], kPlanar[3]);
    Add("part", Part, kPlanar[3], kPlanar[1]);
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    zck::Register();
    return zck::bench::Main(argc, argv);
}
