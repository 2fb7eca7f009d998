// Every route of a conversion at one size over a 1920 by 1080 frame, reference and vector version side by side. "px" is the
// time of a pixel; "copies" is the time in plain copies of a 32-bit frame, which are run between the conversions of the same
// benchmark, so that a drifting machine does not move it.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "frames/media/pixel_format.h"
#include "imaging/colour/convert.h"
#include "platform/processor.h"

namespace zck {
namespace {

constexpr int32_t kWidth = 1920;
constexpr int32_t kHeight = 1080;
constexpr size_t kFrameBytes = size_t{4} * kWidth * kHeight;
constexpr size_t kRing = 4;

struct Format {
    eZFCC fcc;
    const char *name;
};

const Format kFormats[] = {{eZFCC_RGB32, "RGB32"}, {eZFCC_RGB24, "RGB24"}, {eZFCC_UYVY, "UYVY"},
                           {eZFCC_HDYC, "HDYC"},   {eZFCC_YUY2, "YUY2"},   {eZFCC_v210, "v210"}};

// Frames that come in turn, as in a pipeline: nothing is in the caches.
struct Ring {
    Ring() {
        std::mt19937 random(7);
        for (auto &frame : frames) {
            frame.resize(kFrameBytes);
            for (uint8_t &b : frame) b = static_cast<uint8_t>(random() >> 8);
        }
    }
    std::vector<uint8_t> frames[kRing];
};

Z_VID_PROPS Record(eZFCC fcc) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = kWidth;
    p.nHeight = IsRgbFormat(fcc) ? -kHeight : kHeight;
    p.nRowBytes = RowBytes(fcc, kWidth);
    return p;
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Run(benchmark::State &state, eZFCC from, eZFCC to, KernelLevel level) {
    static Ring src, dst;
    const Z_VID_PROPS sp = Record(from);
    const Z_VID_PROPS tp = Record(to);
    KernelLevelLimit(level);
    double copy = 0, convert = 0;
    size_t i = 0;
    for ([[maybe_unused]] auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        std::memcpy(dst.frames[i % kRing].data(), src.frames[i % kRing].data(), kFrameBytes);
        copy += SecondsSince(start);
        ++i;
        start = std::chrono::steady_clock::now();
        if (ConvertSameGeometry(src.frames[i % kRing].data(), dst.frames[i % kRing].data(), &sp, &tp) != S_OK)
            state.SkipWithError("no conversion");
        const double seconds = SecondsSince(start);
        convert += seconds;
        ++i;
        state.SetIterationTime(seconds);
    }
    KernelLevelLimit(KernelLevel::Avx2);
    using benchmark::Counter;
    state.counters["px"] = Counter(double{kWidth} * kHeight, Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.counters["copies"] = copy > 0 ? convert / copy : 0;
}

void Register() {
    for (const Format &from : kFormats)
        for (const Format &to : kFormats) {
            if (IsRgbFormat(from.fcc) && to.fcc == eZFCC_v210) continue;
            const std::string name = std::string(from.name) + "/" + to.name;
            for (const KernelLevel level : {KernelLevel::Reference, KernelLevel::Avx2}) {
                if (level == KernelLevel::Avx2 && !CpuHasAvx2()) continue;
                benchmark::RegisterBenchmark((name + (level == KernelLevel::Avx2 ? "/avx2" : "/ref")).c_str(), Run, from.fcc,
                                             to.fcc, level)
                    ->UseManualTime()
                    ->MinTime(0.2)
                    ->Unit(benchmark::kMillisecond);
            }
        }
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    zck::Register();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
