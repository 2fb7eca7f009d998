// Each row kernel over the rows of a 1920 by 1080 frame, reference and vector version side by side.
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "bench/measure.h"
#include "keying/kernels/kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

using bench::kHeight;
using bench::kWidth;
using bench::Noise;
constexpr size_t kPixels = size_t{kWidth} * kHeight;

using Bytes = std::vector<uint8_t>;

// A disc of noise on a screen of the key colour with a few units of grain.
Bytes Screen() {
    Bytes frame = Noise(4 * kPixels);
    for (int32_t y = 0; y < kHeight; ++y) {
        for (int32_t x = 0; x < kWidth; ++x) {
            const int32_t dx = x - kWidth / 2;
            const int32_t dy = y - kHeight / 2;
            uint8_t *pixel = &frame[4 * (static_cast<size_t>(y) * kWidth + static_cast<size_t>(x))];
            const bool inside = dx * dx + dy * dy < 400 * 400;
            for (int j = 0; j < 3; ++j) pixel[j] = static_cast<uint8_t>((inside ? 30 : 100) + pixel[j] % (inside ? 20 : 8));
        }
    }
    return frame;
}

struct Frame {
    Bytes noise = Noise(4 * kPixels);
    Bytes screen = Screen();
    Bytes out = Noise(4 * kPixels);
    Bytes plane = Noise(kPixels);
    Bytes target = Noise(kPixels);
    DistanceKey key = DistanceKeySetup(0x00646464, 0x00282828, 20);
    DistanceKey wide = DistanceKeySetup(0x00808080, 0x00101010, 150);    // nearly all of the noise is on its ramp
};

using RowCall = std::function<void(const KeyingKernels &, Frame &, size_t pixel)>;

const std::pair<const char *, RowCall> kRows[] = {
    {"distance/screen",
     [](const KeyingKernels &t, Frame &f, size_t i) { t.distance(&f.plane[i], &f.screen[4 * i], kWidth / 8, &f.key); }},
    {"distance/noise",
     [](const KeyingKernels &t, Frame &f, size_t i) { t.distance(&f.plane[i], &f.noise[4 * i], kWidth / 8, &f.key); }},
    {"distance/ramp",
     [](const KeyingKernels &t, Frame &f, size_t i) { t.distance(&f.plane[i], &f.noise[4 * i], kWidth / 8, &f.wide); }},
    {"join", [](const KeyingKernels &t, Frame &f, size_t i) { t.join(&f.target[i], &f.plane[i], kWidth, 3); }},
    {"invert", [](const KeyingKernels &t, Frame &f, size_t i) { t.invert(&f.plane[i], kWidth, false); }},
    {"merge", [](const KeyingKernels &t, Frame &f, size_t i) { t.merge(&f.out[4 * i], &f.out[4 * i], &f.plane[i], kWidth); }},
    {"premultiply", [](const KeyingKernels &t, Frame &f, size_t i) { t.premultiply(&f.out[4 * i], kWidth); }},
    {"merge_premultiply", [](const KeyingKernels &t, Frame &f,
                             size_t i) { t.merge_premultiply(&f.out[4 * i], &f.out[4 * i], &f.plane[i], kWidth); }},
    {"to_hls", [](const KeyingKernels &t, Frame &f, size_t i) { t.to_hls(&f.out[4 * i], &f.noise[4 * i], kWidth); }},
    {"to_yuv", [](const KeyingKernels &t, Frame &f, size_t i) { t.to_yuv(&f.out[4 * i], &f.noise[4 * i], kWidth); }},
    {"from_yuv", [](const KeyingKernels &t, Frame &f, size_t i) { t.from_yuv(&f.out[4 * i], &f.noise[4 * i], kWidth); }},
    {"flat",
     [](const KeyingKernels &t, Frame &f, size_t i) {
         const uint8_t *row = &f.screen[4 * i];
         benchmark::DoNotOptimize(t.flat(row, row - 4 * kWidth, kWidth - 1, row, 3 * 256 * 256));
     }},
    {"add_const", [](const KeyingKernels &t, Frame &f, size_t i) { t.add_const(&f.plane[i], kWidth, 1); }},
    {"add_plane", [](const KeyingKernels &t, Frame &f, size_t i) { t.add_plane(&f.target[i], &f.plane[i], kWidth); }},
    {"threshold", [](const KeyingKernels &t, Frame &f, size_t i) { t.threshold(&f.plane[i], kWidth, 100, 230); }},
};

const std::pair<const char *, KeyingKernels::Filter3x3 KeyingKernels::*> kFilters[] = {
    {"erode", &KeyingKernels::erode},
    {"dilate", &KeyingKernels::dilate},
    {"box", &KeyingKernels::box},
    {"gauss", &KeyingKernels::gauss},
};

void Add(const char *name, const RowCall &row) {
    const auto walk = [&row](void (*init)(KeyingKernels *)) {
        KeyingKernels table = {};
        KeyingKernelsInitRef(&table);
        init(&table);
        return [row, table](std::size_t) {
            static Frame frame;
            for (int32_t y = 1; y < kHeight - 1; ++y) row(table, frame, static_cast<size_t>(y) * kWidth);
        };
    };
    bench::RegisterPair(name, walk(KeyingKernelsInitRef),
                        CpuHasAvx2() ? bench::FrameWork(walk(KeyingKernelsInitAvx2)) : nullptr);
}

void Register() {
    for (const auto &[name, row] : kRows) Add(name, row);
    for (const auto &[name, filter] : kFilters) {
        Add(name, [f = filter](const KeyingKernels &t, Frame &frame, size_t i) {
            const uint8_t *row = &frame.plane[i + 1];
            (t.*f)(&frame.target[i + 1], row - kWidth, row, row + kWidth, kWidth - 2);
        });
    }
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    zck::Register();
    return zck::bench::Main(argc, argv);
}
