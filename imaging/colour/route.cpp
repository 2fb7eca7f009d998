#include "imaging/colour/route.h"

#include <algorithm>
#include <cstring>

#include "frames/media/pixel_format.h"
#include "imaging/colour/colour_kernels.h"
#include "imaging/primitives/convert422.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

using RowKernel = void (*)(uint8_t *dst, const uint8_t *src, int32_t width);

template <int kPixelBytes>
void CopyRow(const RowJob &job) {
    std::memmove(job.dst, job.src, static_cast<size_t>(int64_t{job.width} * kPixelBytes));
}

void CopyV210Row(const RowJob &job) {
    const int64_t row = RowBytes(eZFCC_v210, job.width);
    const int64_t bytes = std::min({row, job.srcEnd - job.src, job.dstEnd - job.dst});
    std::memmove(job.dst, job.src, static_cast<size_t>(bytes));
}

template <RowKernel PrimitiveKernels::*kKernel>
void KernelRow(const RowJob &job) {
    (PrimitiveKernelsGet().*kKernel)(job.dst, job.src, job.width);
}

template <RowKernel kRow>
void PieceRow(const RowJob &job) {
    kRow(job.dst, job.src, job.width);
}

void UyvyToBgra(uint8_t *dst, const uint8_t *src, int32_t width) { PrimitiveKernelsGet().uyvy_to_bgra(dst, src, width, 255); }
void Yuy2ToBgra(uint8_t *dst, const uint8_t *src, int32_t width) { PrimitiveKernelsGet().yuy2_to_bgra(dst, src, width, 255); }
void UyvyToYuy2(uint8_t *dst, const uint8_t *src, int32_t width) { PrimitiveKernelsGet().uyvy_to_yuy2(dst, src, width); }

int64_t Decode709Pairs(int32_t width) { return 2 * (width / 4) + (width & 3); }

void Decode709Row(const RowJob &job) {
    const ColourKernels &k = ColourKernelsGet();
    const int64_t pairs = std::min<int64_t>(Decode709Pairs(job.width), (job.srcEnd - job.src) / 4);
    const int64_t whole = std::min<int64_t>(pairs, (job.dstEnd - job.dst) / 8);
    k.decode709(job.dst, job.src, whole);
    if (whole == pairs) return;
    uint8_t last[8];
    k.decode709(last, job.src + 4 * whole, 1);
    std::memcpy(job.dst + 8 * whole, last, static_cast<size_t>(job.dstEnd - (job.dst + 8 * whole)));
}

void Encode709Row(const RowJob &job) {
    const int32_t blocks = job.width / 4;
    ColourKernelsGet().encode709(job.dst, job.src, blocks);
    if ((job.width & 3) == 0) return;
    const uint8_t *first = job.src + int64_t{16} * blocks;
    const uint8_t *second = job.srcEnd - first >= 8 ? first + 4 : first;
    uint8_t group[4];
    Encode709Rest(group, first, second);
    uint8_t *dst = job.dst + int64_t{8} * blocks;
    std::memcpy(dst, group, static_cast<size_t>(std::min<int64_t>(4, job.dstEnd - dst)));
}

// Pixels of a two-step route that are in the scratch at a time: whole blocks of every kind, and small enough for the
// first-level cache.
constexpr int32_t kPiece = 384;

// As if the row went through an image with rows padded to 16 bytes, of which the padding is 0: with one pixel left behind
// the last block, its partner is black.
void BgrToHdycRow(const RowJob &job) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    uint8_t scratch[kPiece * 4];
    for (int64_t x = 0; x < job.width; x += kPiece) {
        const auto n = static_cast<int32_t>(std::min<int64_t>(kPiece, job.width - x));
        k.add_alpha(scratch, job.src + 3 * x, n);
        const int32_t padded = (n + 3) / 4 * 4;
        std::memset(scratch + 4 * n, 0, static_cast<size_t>(4 * (padded - n)));
        Encode709Row({scratch, scratch + 4 * padded, job.dst + 2 * x, job.dstEnd, n});
    }
}

template <void (*ColourKernels::*kKernel)(uint8_t *, const uint8_t *, int64_t)>
void PackRow(const RowJob &job) {
    const auto pack = ColourKernelsGet().*kKernel;
    const int64_t blocks = (int64_t{job.width} + 5) / 6;
    const int64_t whole = std::min<int64_t>(blocks, (job.srcEnd - job.src) / 12);
    pack(job.dst, job.src, whole);
    if (whole == blocks) return;
    uint8_t last[12] = {};
    const uint8_t *src = job.src + 12 * whole;
    std::memcpy(last, src, static_cast<size_t>(job.srcEnd - src));
    pack(job.dst + 16 * whole, last, 1);
}

// Returns the bytes written.
int64_t Unpack(uint8_t *dst, const uint8_t *src, int32_t width) {
    const int64_t blocks = width / 6;
    const int64_t rest = width % 6 / 2 * 4;
    const ColourKernels &k = ColourKernelsGet();
    k.unpack_uyvy(dst, src, blocks);
    if (rest != 0) {
        uint8_t block[12];
        k.unpack_uyvy(block, src + 16 * blocks, 1);
        std::memcpy(dst + 12 * blocks, block, static_cast<size_t>(rest));
    }
    return 12 * blocks + rest;
}

void UnpackRow(const RowJob &job) { Unpack(job.dst, job.src, job.width); }

// By way of UYVY, in which an unwritten pixel is 0.
template <RowKernel kSecond, int kPixelBytes>
void UnpackThenRow(const RowJob &job) {
    uint8_t scratch[kPiece * 2];
    for (int64_t x = 0; x < job.width; x += kPiece) {
        const auto n = static_cast<int32_t>(std::min<int64_t>(kPiece, job.width - x));
        const int64_t written = Unpack(scratch, job.src + x / 6 * 16, n);
        const int64_t groups = (n + 1) / 2 * 4;
        std::memset(scratch + written, 0, static_cast<size_t>(groups - written));
        kSecond(job.dst + kPixelBytes * x, scratch, n);
    }
}

constexpr ConvertRoute kNotProvided = {nullptr, 1};

// Rows are sources, columns targets, both in the order of `RouteClass`. BT.709 in three cells only: everywhere else HDYC is
// read and written as UYVY.
constexpr ConvertRoute kRoutes[kRouteClasses][kRouteClasses] = {
    {{CopyRow<4>, 1},
     {KernelRow<&PrimitiveKernels::drop_alpha>, 1},
     {KernelRow<&PrimitiveKernels::bgra_to_uyvy>, 1},
     {Encode709Row, 1},
     {KernelRow<&PrimitiveKernels::bgra_to_yuy2>, 1},
     kNotProvided},
    {{KernelRow<&PrimitiveKernels::add_alpha>, 1},
     {CopyRow<3>, 1},
     {PieceRow<RowBgrToUyvy>, 1},
     {BgrToHdycRow, 1},
     {PieceRow<RowBgrToYuy2>, 1},
     kNotProvided},
    {{PieceRow<UyvyToBgra>, -1},
     {PieceRow<RowUyvyToBgr>, 1},
     {CopyRow<2>, 1},
     {CopyRow<2>, 1},
     {PieceRow<UyvyToYuy2>, 1},
     {PackRow<&ColourKernels::pack_uyvy>, 1}},
    {{Decode709Row, 1},
     {Decode709Row, 1},
     {CopyRow<2>, 1},
     {CopyRow<2>, 1},
     {PieceRow<UyvyToYuy2>, 1},
     {PackRow<&ColourKernels::pack_uyvy>, 1}},
    {{PieceRow<Yuy2ToBgra>, -1},
     {PieceRow<RowYuy2ToBgr>, 1},
     {KernelRow<&PrimitiveKernels::yuy2_to_uyvy>, 1},
     {KernelRow<&PrimitiveKernels::yuy2_to_uyvy>, 1},
     {CopyRow<2>, 1},
     {PackRow<&ColourKernels::pack_yuy2>, 1}},
    {{UnpackThenRow<UyvyToBgra, 4>, 1},
     {UnpackThenRow<RowUyvyToBgr, 3>, 1},
     {UnpackRow, 1},
     {UnpackRow, 1},
     {UnpackThenRow<UyvyToYuy2, 2>, 1},
     {CopyV210Row, 1}},
};

}    // namespace

const ConvertRoute *ConvertRouteFind(eZFCC from, eZFCC to) {
    const FormatRow *source = FormatFind(from);
    const FormatRow *target = FormatFind(to);
    if (source == nullptr || target == nullptr) return nullptr;
    if (source->route == RouteClass::None || target->route == RouteClass::None) return nullptr;
    return &kRoutes[static_cast<int>(source->route)][static_cast<int>(target->route)];
}

int64_t ConvertRouteReach(eZFCC from, eZFCC to, int32_t width) {
    const ConvertRoute *route = ConvertRouteFind(from, to);
    if (route != nullptr && route->routine == Decode709Row) return 8 * Decode709Pairs(width);
    return RowBytes(to, width);
}

}    // namespace zck
