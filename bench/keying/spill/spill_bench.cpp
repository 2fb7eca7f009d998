// The anti-spill: its rows, reference and vector side by side, and a whole HD picture. The rows stay in the cache; the rate
// counts pixels. The masks: `clean` lies in long runs of 0 and 255, `ramp` holds neither.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "frames/media/pixel_format.h"
#include "keying/spill/spill.h"
#include "platform/processor.h"

namespace zck {
namespace {

constexpr int32_t kWidth = 1920;
constexpr int32_t kHeight = 1080;

CHROMA_KEY_RAW GreenKey(int32_t cancel) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.bColorCancel = cancel;
    key.arrKeys[0] = {0x0020C030, 0x00282828, 0, 0, 40, 76, -64, -13, -13, 0};
    return key;
}

std::vector<uint8_t> Noise(size_t bytes) {
    std::mt19937 random(1);
    std::vector<uint8_t> noise(bytes);
    for (uint8_t &b : noise) b = static_cast<uint8_t>(random());
    return noise;
}

std::vector<uint8_t> Mask(bool clean) {
    std::vector<uint8_t> mask = Noise(kWidth);
    for (size_t i = 0; i < mask.size(); ++i)
        mask[i] = clean ? (i / 200 % 2 != 0 ? 255 : 0) : static_cast<uint8_t>(mask[i] % 254 + 1);
    return mask;
}

void Rate(benchmark::State &state, int64_t pixels) { state.SetItemsProcessed(state.iterations() * pixels); }

void Register(const std::string &level, void (*init)(SpillKernels *)) {
    SpillKernels k = {};
    init(&k);
    for (const int32_t width : {kWidth, kWidth - 1}) {
        benchmark::RegisterBenchmark(("scale/" + std::to_string(width) + "/" + level).c_str(),
                                     [k, width](benchmark::State &state) {
                                         const std::vector<uint8_t> row = Noise(kWidth);
                                         std::vector<uint8_t> mask(kWidth);
                                         for ([[maybe_unused]] auto _ : state) {
                                             k.scale(mask.data(), row.data(), width);
                                             benchmark::ClobberMemory();
                                         }
                                         Rate(state, width);
                                     });
    }
    for (const bool clean : {true, false}) {
        const std::string name = std::string(clean ? "clean/" : "ramp/") + level;
        const SpillPlan plan = SpillPlanMake(GreenKey(2));
        benchmark::RegisterBenchmark(("block/" + name).c_str(), [=](benchmark::State &state) {
            std::vector<uint8_t> pixels = Noise(2 * kWidth);
            const std::vector<uint8_t> mask = Mask(clean);
            const SpillBlockKey key = SpillBlockKeyOf(plan, plan.entries[0], true);
            for ([[maybe_unused]] auto _ : state) {
                k.block(pixels.data(), mask.data(), kWidth / 16, &key);
                benchmark::ClobberMemory();
            }
            Rate(state, kWidth);
        });
        benchmark::RegisterBenchmark(("pixel/" + name).c_str(), [=](benchmark::State &state) {
            std::vector<uint8_t> pixels = Noise(2 * kWidth);
            const std::vector<uint8_t> mask = Mask(clean);
            const SpillPixelKey key = SpillPixelKeyOf(plan, plan.entries[0], true);
            for ([[maybe_unused]] auto _ : state) {
                k.pixel(pixels.data(), mask.data(), kWidth / 2, &key);
                benchmark::ClobberMemory();
            }
            Rate(state, kWidth);
        });
    }
}

void Picture(benchmark::State &state, eZFCC fcc, int32_t cancel) {
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = kWidth;
    props.nHeight = kHeight;
    props.nRowBytes = RowBytes(fcc, kWidth);
    std::vector<uint8_t> pixels = Noise(static_cast<size_t>(props.nRowBytes) * kHeight);
    std::vector<uint8_t> space(4 * size_t{kWidth} * kHeight);
    for (size_t i = 0; i < space.size(); ++i)
        space[i] = i / 2000 % 2 != 0 ? uint8_t{0} : i % 4 == 1 ? uint8_t{0xC0} : uint8_t{0x28};
    const SpillPlan plan = SpillPlanMake(GreenKey(cancel));
    const auto bytes = static_cast<int64_t>(space.size());
    for ([[maybe_unused]] auto _ : state) {
        SpillCancel(
            {pixels.data(), static_cast<int64_t>(pixels.size()), &props, kWidth, space.data(), 4 * kWidth, bytes, bytes}, plan);
        benchmark::ClobberMemory();
    }
    Rate(state, int64_t{kWidth} * kHeight);
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    zck::Register("reference", zck::SpillKernelsInitRef);
    if (zck::CpuHasAvx2()) zck::Register("avx2", zck::SpillKernelsInitAvx2);
    for (const int32_t cancel : {1, 2}) {
        const std::string path = cancel == 2 ? "/per_pixel" : "/block";
        benchmark::RegisterBenchmark(("picture/BGRA" + path).c_str(), zck::Picture, eZFCC_ARGB32, cancel)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("picture/UYVY" + path).c_str(), zck::Picture, eZFCC_UYVY, cancel)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
