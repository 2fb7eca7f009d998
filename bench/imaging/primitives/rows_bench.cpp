// Each row of the image primitives over a 1920 by 1080 frame, reference and vector version side by side.
#include <functional>
#include <utility>
#include <vector>

#include "bench/measure.h"
#include "imaging/primitives/row_kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

using bench::kHeight;
using bench::kWidth;

using K = PrimitiveKernels;
using RowCall = std::function<void(const K &, uint8_t *dst, const uint8_t *src)>;

constexpr int32_t kHalf = kWidth / 2;

const uint8_t kValue[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
const uint8_t kOrder[4] = {2, 1, 0, 3};

uint8_t g_row[4 * kWidth];

const std::pair<const char *, RowCall> kRows[] = {
    {"drop_alpha", [](const K &k, uint8_t *d, const uint8_t *s) { k.drop_alpha(d, s, kWidth); }},
    {"add_alpha", [](const K &k, uint8_t *d, const uint8_t *s) { k.add_alpha(d, s, kWidth); }},
    {"get_channel", [](const K &k, uint8_t *d, const uint8_t *s) { k.get_channel(d, s + 3, kWidth); }},
    {"put_channel", [](const K &k, uint8_t *d, const uint8_t *s) { k.put_channel(d + 3, s, kWidth); }},
    {"set_channel", [](const K &k, uint8_t *d, const uint8_t *) { k.set_channel(d + 3, 255, kWidth); }},
    {"set3", [](const K &k, uint8_t *d, const uint8_t *) { k.set3(d, kValue, kWidth); }},
    {"set4", [](const K &k, uint8_t *d, const uint8_t *) { k.set4(d, kValue, kWidth); }},
    {"mul_const", [](const K &k, uint8_t *d, const uint8_t *s) { k.mul_const(d, s, 77, 4 * kWidth, 7); }},
    {"mul", [](const K &k, uint8_t *d, const uint8_t *s) { k.mul(d, d, s, 4 * kWidth, 8); }},
    {"add", [](const K &k, uint8_t *d, const uint8_t *s) { k.add(d, d, s, 4 * kWidth, 0); }},
    {"add_const", [](const K &k, uint8_t *d, const uint8_t *s) { k.add_const(d, s, kValue, 4 * kWidth, 0); }},
    {"alpha_over", [](const K &k, uint8_t *d, const uint8_t *s) { k.alpha_over(d, s, d, kWidth); }},
    {"mirror1", [](const K &k, uint8_t *d, const uint8_t *s) { k.mirror1(d, s, kWidth); }},
    {"mirror2", [](const K &k, uint8_t *d, const uint8_t *s) { k.mirror2(d, s, kWidth); }},
    {"mirror3", [](const K &k, uint8_t *d, const uint8_t *s) { k.mirror3(d, s, kWidth); }},
    {"mirror4", [](const K &k, uint8_t *d, const uint8_t *s) { k.mirror4(d, s, kWidth); }},
    {"swap4", [](const K &k, uint8_t *d, const uint8_t *s) { k.swap4(d, s, kOrder, kWidth); }},
    {"bgra_to_uyvy", [](const K &k, uint8_t *d, const uint8_t *s) { k.bgra_to_uyvy(d, s, kWidth); }},
    {"bgra_to_yuy2", [](const K &k, uint8_t *d, const uint8_t *s) { k.bgra_to_yuy2(d, s, kWidth); }},
    {"uyvy_to_bgra", [](const K &k, uint8_t *d, const uint8_t *s) { k.uyvy_to_bgra(d, s, kWidth, 255); }},
    {"yuy2_to_bgra", [](const K &k, uint8_t *d, const uint8_t *s) { k.yuy2_to_bgra(d, s, kWidth, 255); }},
    {"uyvy_to_yuy2", [](const K &k, uint8_t *d, const uint8_t *s) { k.uyvy_to_yuy2(d, s, kWidth); }},
    {"yuy2_to_uyvy", [](const K &k, uint8_t *d, const uint8_t *s) { k.yuy2_to_uyvy(d, s, kWidth); }},
    {"swap_chroma", [](const K &k, uint8_t *d, const uint8_t *s) { k.swap_chroma(d, s, kWidth); }},
    {"split_uyvy",
     [](const K &k, uint8_t *d, const uint8_t *s) { k.split_uyvy(d, d + kWidth, d + kWidth + kHalf, s, kWidth); }},
    {"split_yuy2",
     [](const K &k, uint8_t *d, const uint8_t *s) { k.split_yuy2(d, d + kWidth, d + kWidth + kHalf, s, kWidth); }},
    {"join_uyvy", [](const K &k, uint8_t *d, const uint8_t *s) { k.join_uyvy(d, s, s + kWidth, s + kWidth + kHalf, kWidth); }},
    {"join_yuy2", [](const K &k, uint8_t *d, const uint8_t *s) { k.join_yuy2(d, s, s + kWidth, s + kWidth + kHalf, kWidth); }},
    {"split_pairs", [](const K &k, uint8_t *d, const uint8_t *s) { k.split_pairs(d, d + kWidth, s, kWidth); }},
    {"join_pairs", [](const K &k, uint8_t *d, const uint8_t *s) { k.join_pairs(d, s, s + kWidth, kWidth); }},
    {"mean", [](const K &k, uint8_t *d, const uint8_t *s) { k.mean(d, s, s + kWidth, kWidth); }},
    {"planes_to_bgra",
     [](const K &k, uint8_t *d, const uint8_t *s) { k.planes_to_bgra(d, s, s + kWidth, s + kWidth + kHalf, kWidth, 255); }},
    {"nv12_to_bgra", [](const K &k, uint8_t *d, const uint8_t *s) { k.nv12_to_bgra(d, s, s + kWidth, kWidth, 255); }},
    // Half as wide, as it takes two rows.
    {"bgra_to_420",
     [](const K &k, uint8_t *d,
        const uint8_t *s) { k.bgra_to_420(d, d + kHalf, d + kWidth, d + kWidth + kHalf, s, s + 4 * kHalf, kHalf); }},
    // As a fused walk meets it: the target stays in the first-level cache.
    {"uyvy_to_bgra_cached", [](const K &k, uint8_t *, const uint8_t *s) { k.uyvy_to_bgra(g_row, s, kWidth, 255); }},
};

void Walk(const K &table, const RowCall &row) {
    static const std::vector<uint8_t> src = bench::Noise(size_t{4} * kWidth * kHeight);
    static std::vector<uint8_t> dst(src);
    for (size_t y = 0; y < kHeight; ++y) row(table, &dst[y * 4 * kWidth], &src[y * 4 * kWidth]);
}

void Register() {
    static K ref = {};
    static K avx2 = {};
    PrimitiveKernelsInitRef(&ref);
    avx2 = ref;
    if (CpuHasAvx2()) PrimitiveKernelsInitAvx2(&avx2);
    for (const auto &entry : kRows) {
        const RowCall &row = entry.second;
        const bench::FrameWork vec = [&row](std::size_t) { Walk(avx2, row); };
        bench::RegisterPair(
            entry.first, [&row](std::size_t) { Walk(ref, row); }, CpuHasAvx2() ? vec : nullptr);
    }
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    zck::Register();
    return zck::bench::Main(argc, argv);
}
