// Pictures of 1920 by 1080 laid over each other, reference and vector version side by side. `copies` is the figure to look at.
// Goals: ARGB32 over RGB32 1.2 at opacity 1 and 1.4 below; mixes by opacity 1.3; premultiplied 4:2:2 of a converted
// overlay 1.8; ARGB32 over UYVY 2.5; the logo, 5 % of the picture, about 5 % of ARGB32 over its target.
#include <string>

#include "bench/imaging/colour/frames.h"
#include "imaging/mix/mix_alpha.h"
#include "imaging/mix/overlay_picture.h"
#include "platform/processor.h"

namespace zck {
namespace {

constexpr Format kRgb32 = {eZFCC_RGB32, "RGB32"};
constexpr Format kArgb32 = {eZFCC_ARGB32, "ARGB32"};
constexpr Format kRgb24 = {eZFCC_RGB24, "RGB24"};
constexpr Format kUyvy = {eZFCC_UYVY, "UYVY"};
constexpr Format kHdyc = {eZFCC_HDYC, "HDYC"};
constexpr Format kYuy2 = {eZFCC_YUY2, "YUY2"};

MixTarget TargetOf(size_t round, eZFCC fcc) {
    return {Record(fcc), Targets()[round % bench::kRing].data(), static_cast<int64_t>(kFrameBytes)};
}

MixOverlay OverlayOf(size_t round, const Z_VID_PROPS &props) {
    return {props, Sources()[(round + 1) % bench::kRing].data(), static_cast<int64_t>(kFrameBytes)};
}

void Add(const std::string &name, const bench::FrameWork &work) {
    const auto at = [work](KernelLevel level) {
        return [=](std::size_t round) {
            KernelLevelLimit(level);
            work(round);
            KernelLevelLimit(kKernelLevelHighest);
        };
    };
    bench::RegisterPair(name, at(KernelLevel::Reference), CpuHasAvx2() ? bench::FrameWork(at(KernelLevel::Avx2)) : nullptr);
}

// As `FrameOverlay` does it.
void AddOver(const Format &over, const Format &under, double opacity) {
    const std::string name = std::string(over.name) + "_over_" + under.name + "/" + (opacity < 1 ? "half" : "whole");
    Add(name,
        [=](size_t round) { OverlayPicture(TargetOf(round, under.fcc), OverlayOf(round, Record(over.fcc)), 0, 0, opacity); });
}

void AddLogo(const Format &under) {
    Z_VID_PROPS logo = Record(eZFCC_ARGB32);
    logo.nWidth = 430;
    logo.nHeight = -242;
    logo.nRowBytes = 4 * logo.nWidth;
    Add(std::string("logo_over_") + under.name,
        [=](size_t round) { OverlayPicture(TargetOf(round, under.fcc), OverlayOf(round, logo), 1400, 40, 1.0); });
}

// As `ZFOverlay` does it with a kept copy and a kept mask.
void AddMasked(const char *kind, const Format &format, bool bField, bool masked, double opacity) {
    Add(std::string(kind) + "/" + format.name, [=](size_t round) {
        const MixMask mask = {Sources()[(round + 2) % bench::kRing].data(), kWidth};
        MixImage_Mask8(TargetOf(round, format.fcc), OverlayOf(round, Record(format.fcc)), bField, masked ? &mask : nullptr,
                       opacity);
    });
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    using namespace zck;
    for (const double opacity : {1.0, 0.5}) {
        AddOver(kArgb32, kRgb32, opacity);
        AddOver(kRgb32, kRgb32, opacity);
        AddOver(kRgb24, kRgb24, opacity);
        AddOver(kUyvy, kUyvy, opacity);
        AddOver(kArgb32, kUyvy, opacity);
        AddOver(kArgb32, kHdyc, opacity);
        AddOver(kArgb32, kYuy2, opacity);
        AddOver(kArgb32, kRgb24, opacity);
        AddOver(kYuy2, kRgb32, opacity);
    }
    AddLogo(kRgb32);
    AddLogo(kUyvy);
    AddMasked("premultiplied", kUyvy, true, true, 1.0);
    AddMasked("premultiplied", kYuy2, true, true, 0.5);
    AddMasked("masked", kUyvy, false, true, 0.5);
    AddMasked("masked", kYuy2, false, true, 0.5);
    AddMasked("masked", kRgb32, false, true, 1.0);
    AddMasked("blended", kUyvy, false, false, 0.5);
    AddMasked("blended_half", kRgb32, false, false, 0.5);
    return bench::Main(argc, argv);
}
