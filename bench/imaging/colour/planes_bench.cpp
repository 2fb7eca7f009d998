// A 1920 by 1080 frame into planes and back, reference and vector version side by side. I420 and YV12 are only wrapped on their
// way in, so they are not there.
#include <string>

#include "bench/imaging/colour/frames.h"
#include "imaging/colour/planar_image.h"
#include "platform/processor.h"

namespace zck {
namespace {

constexpr Format kLoaded[] = {{eZFCC_UYVY, "UYVY"},   {eZFCC_YUY2, "YUY2"},   {eZFCC_YVYU, "YVYU"},
                              {eZFCC_RGB24, "RGB24"}, {eZFCC_RGB32, "RGB32"}, {eZFCC_NV12, "NV12"}};
constexpr Format kPacked[] = {{eZFCC_UYVY, "UYVY"},   {eZFCC_YUY2, "YUY2"}, {eZFCC_YVYU, "YVYU"}, {eZFCC_RGB24, "RGB24"},
                              {eZFCC_RGB32, "RGB32"}, {eZFCC_NV12, "NV12"}, {eZFCC_I420, "I420"}};

void Load(size_t round, eZFCC fcc) {
    const Z_VID_PROPS p = Record(fcc);
    PlanarImage image;
    LoadPlanes(&image, Sources()[round % bench::kRing].data(), kFrameBytes, &p, Targets()[round % bench::kRing].data(),
               kFrameBytes);
}

// From planes of the format's own sampling.
void Pack(size_t round, eZFCC fcc) {
    const Z_VID_PROPS p = Record(IsPlanarFormat(fcc) ? eZFCC_I420 : eZFCC_UYVY);
    PlanarImage image;
    LoadPlanes(&image, nullptr, 0, &p, Sources()[round % bench::kRing].data(), kFrameBytes);
    PackPlanes(&image, Targets()[round % bench::kRing].data(), kFrameBytes, fcc, Record(fcc).nRowBytes);
}

void Add(const char *kind, void (*work)(size_t, eZFCC), const Format &format) {
    const auto at = [work, format](KernelLevel level) {
        return [=](std::size_t round) {
            KernelLevelLimit(level);
            work(round, format.fcc);
            KernelLevelLimit(kKernelLevelHighest);
        };
    };
    bench::RegisterPair(std::string(kind) + "/" + format.name, at(KernelLevel::Reference),
                        CpuHasAvx2() ? bench::FrameWork(at(KernelLevel::Avx2)) : nullptr);
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    for (const zck::Format &format : zck::kLoaded) zck::Add("load", zck::Load, format);
    for (const zck::Format &format : zck::kPacked) zck::Add("pack", zck::Pack, format);
    return zck::bench::Main(argc, argv);
}
