// The anti-spill, reference and vector version side by side: its rows over a 1920 by 1080 frame, and whole pictures. The masks
// of the rows: `clean` lies in long runs of 0 and 255, `ramp` holds neither.
#include <string>
#include <vector>

#include "bench/measure.h"
#include "frames/media/pixel_format.h"
#include "keying/spill/spill.h"
#include "keying/spill/spill_kernels.h"
#include "keying/spill/spill_plan.h"
#include "platform/processor.h"

namespace zck {
namespace {

using bench::kHeight;
using bench::kWidth;
using Bytes = std::vector<uint8_t>;

CHROMA_KEY_RAW GreenKey(int32_t cancel) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.bColorCancel = cancel;
    key.arrKeys[0] = {0x0020C030, 0x00282828, 0, 0, 40, 76, -64, -13, -13, 0};
    return key;
}

Bytes Mask(bool clean) {
    Bytes mask = bench::Noise(kWidth);
    for (size_t i = 0; i < mask.size(); ++i)
        mask[i] = clean ? (i / 200 % 2 != 0 ? 255 : 0) : static_cast<uint8_t>(mask[i] % 254 + 1);
    return mask;
}

// What the walks work on: rows that stay in the cache, and pictures that do not.
struct Stock {
    Bytes row = bench::Noise(kWidth);
    Bytes scaled = Bytes(kWidth);
    Bytes pixels = bench::Noise(size_t{4} * kWidth * kHeight);
    Bytes space = bench::Noise(size_t{4} * kWidth * kHeight);
    Bytes clean = Mask(true);
    Bytes ramp = Mask(false);
    SpillPlan plan = SpillPlanMake(GreenKey(2));
    SpillBlockKey block = SpillBlockKeyOf(plan, plan.entries[0], true);
    SpillPixelKey pixel = SpillPixelKeyOf(plan, plan.entries[0], true);

    Stock() {
        for (size_t i = 0; i < space.size(); ++i)
            space[i] = i / 2000 % 2 != 0 ? uint8_t{0} : i % 4 == 1 ? uint8_t{0xC0} : uint8_t{0x28};
    }
};

Stock &TheStock() {
    static Stock stock;
    return stock;
}

using RowCall = void (*)(const SpillKernels &, Stock &);

void AddRow(const char *name, RowCall row) {
    const auto work = [row](void (*init)(SpillKernels *)) {
        SpillKernels table = {};
        init(&table);
        return [row, table](std::size_t) {
            for (int32_t y = 0; y < kHeight; ++y) row(table, TheStock());
        };
    };
    bench::RegisterPair(name, work(SpillKernelsInitRef), CpuHasAvx2() ? bench::FrameWork(work(SpillKernelsInitAvx2)) : nullptr);
}

void Picture(eZFCC fcc, int32_t cancel) {
    Stock &stock = TheStock();
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = kWidth;
    props.nHeight = kHeight;
    props.nRowBytes = RowBytes(fcc, kWidth);
    const auto bytes = static_cast<int64_t>(stock.space.size());
    SpillCancel(
        {stock.pixels.data(), int64_t{props.nRowBytes} * kHeight, &props, kWidth, stock.space.data(), 4 * kWidth, bytes, bytes},
        SpillPlanMake(GreenKey(cancel)));
}

void AddPicture(const char *name, eZFCC fcc, int32_t cancel) {
    const auto work = [=](KernelLevel level) {
        return [=](std::size_t) {
            KernelLevelLimit(level);
            Picture(fcc, cancel);
            KernelLevelLimit(kKernelLevelHighest);
        };
    };
    bench::RegisterPair(name, work(KernelLevel::Reference), CpuHasAvx2() ? bench::FrameWork(work(KernelLevel::Avx2)) : nullptr);
}

void Register() {
    AddRow("scale/even", [](const SpillKernels &k, Stock &s) { k.scale(s.scaled.data(), s.row.data(), kWidth); });
    AddRow("scale/odd", [](const SpillKernels &k, Stock &s) { k.scale(s.scaled.data(), s.row.data(), kWidth - 1); });
    AddRow("block/clean",
           [](const SpillKernels &k, Stock &s) { k.block(s.pixels.data(), s.clean.data(), kWidth / 16, &s.block); });
    AddRow("block/ramp",
           [](const SpillKernels &k, Stock &s) { k.block(s.pixels.data(), s.ramp.data(), kWidth / 16, &s.block); });
    AddRow("pixel/clean",
           [](const SpillKernels &k, Stock &s) { k.pixel(s.pixels.data(), s.clean.data(), kWidth / 2, &s.pixel); });
    AddRow("pixel/ramp",
           [](const SpillKernels &k, Stock &s) { k.pixel(s.pixels.data(), s.ramp.data(), kWidth / 2, &s.pixel); });
    AddPicture("picture/BGRA/block", eZFCC_ARGB32, 1);
    AddPicture("picture/BGRA/per_pixel", eZFCC_ARGB32, 2);
    AddPicture("picture/UYVY/block", eZFCC_UYVY, 1);
    AddPicture("picture/UYVY/per_pixel", eZFCC_UYVY, 2);
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    zck::Register();
    return zck::bench::Main(argc, argv);
}
