// Quarter turns and mirrors of a 1920 by 1080 frame, reference and vector version side by side.
#include <string>

#include "bench/imaging/colour/frames.h"
#include "imaging/geometry/mirror_bits.h"
#include "imaging/geometry/rotate_bits.h"
#include "platform/processor.h"

namespace zck {
namespace {

constexpr Format kTurned[] = {{eZFCC_ARGB32, "ARGB32"}, {eZFCC_RGB24, "RGB24"}, {eZFCC_UYVY, "UYVY"}};

void Turn(size_t round, eZFCC fcc) {
    static RotateScratch scratch;
    const Z_VID_PROPS sp = Record(fcc);
    Z_VID_PROPS tp = sp;
    tp.nWidth = kHeight;
    tp.nHeight = IsRgbFormat(fcc) ? -kWidth : kWidth;
    tp.nRowBytes = RowBytes(fcc, kHeight);
    RotateBits(&scratch, Sources()[round % bench::kRing].data(), kFrameBytes, Targets()[round % bench::kRing].data(),
               kFrameBytes, &sp, &tp, true, false);
}

template <int32_t index>
void Mirror(size_t round, eZFCC fcc) {
    const Z_VID_PROPS p = Record(fcc);
    MirrorBits(Targets()[round % bench::kRing].data(), kFrameBytes, &p, index);
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
    for (const zck::Format &format : zck::kTurned) {
        zck::Add("turn", zck::Turn, format);
        zck::Add("mirror_horz", zck::Mirror<zck::kMirrorHorz>, format);
        zck::Add("mirror_vert", zck::Mirror<zck::kMirrorVert>, format);
        zck::Add("mirror_both", zck::Mirror<zck::kMirrorHorzVert>, format);
    }
    return zck::bench::Main(argc, argv);
}
