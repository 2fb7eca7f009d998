#include "imaging/primitives/planar.h"

#include <algorithm>

#include "imaging/primitives/convert422.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

using K = PrimitiveKernels;
using SplitKernel = void (*)(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width);
using JoinKernel = void (*)(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width);
using RowsTo420 = void (*)(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1,
                           int32_t width);

// Even, so that no pair is cut; the scratch stays in the first-level cache.
constexpr int32_t kPiece = 512;

int32_t PieceOf(int64_t x, int32_t width) { return static_cast<int32_t>(std::min<int64_t>(kPiece, width - x)); }

int32_t PlanesCheck(const void *packed, const uint8_t *const *planes, const int64_t *steps, ROI size) {
    if (packed == nullptr || planes == nullptr || steps == nullptr) return kPrimitiveNull;
    for (int i = 0; i < 3; ++i)
        if (planes[i] == nullptr) return kPrimitiveNull;
    return PrimitiveCheck(packed, packed, size);
}

// The order of the planes when the two of chroma change places.
constexpr int kInOrder[3] = {0, 1, 2};
constexpr int kExchanged[3] = {0, 2, 1};

int32_t SplitRows(SplitKernel kernel, const int (&order)[3], const uint8_t *src, int64_t srcStep, uint8_t *const *dst,
                  const int64_t *dstStep, ROI size) {
    const int32_t status = PlanesCheck(src, dst, dstStep, size);
    for (int64_t row = 0; status == kPrimitiveOk && row < size.height; ++row) {
        uint8_t *const y = dst[0] + row * dstStep[0];
        uint8_t *const cb = dst[order[1]] + row * dstStep[order[1]];
        uint8_t *const cr = dst[order[2]] + row * dstStep[order[2]];
        kernel(y, cb, cr, src + row * srcStep, size.width);
    }
    return status;
}

int64_t SameRow(int64_t row, int32_t) { return row; }
int64_t HalfRow(int64_t row, int32_t) { return row / 2; }
// A last group of rows that lacks its second pair has no chroma row of its second field.
int64_t FieldRow(int64_t row, int32_t height) {
    return std::min<int64_t>(row / 4 * 2 + row % 2, (int64_t{height} + 1) / 2 - 1);
}

template <class Join>
int32_t JoinRows(Join &&join, int64_t (*chromaRow)(int64_t, int32_t), const int (&order)[3], const uint8_t *const *src,
                 const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    const int32_t status = PlanesCheck(dst, src, srcStep, size);
    for (int64_t row = 0; status == kPrimitiveOk && row < size.height; ++row) {
        const int64_t chroma = chromaRow(row, size.height);
        const uint8_t *const y = src[0] + row * srcStep[0];
        const uint8_t *const cb = src[order[1]] + chroma * srcStep[order[1]];
        const uint8_t *const cr = src[order[2]] + chroma * srcStep[order[2]];
        join(dst + row * dstStep, y, cb, cr, size.width);
    }
    return status;
}

int32_t DownRows(RowsTo420 rows, const int (&order)[3], const uint8_t *src, int64_t srcStep, uint8_t *const *dst,
                 const int64_t *dstStep, ROI size) {
    const int32_t status = PlanesCheck(src, dst, dstStep, size);
    for (int64_t row = 0; status == kPrimitiveOk && row < size.height; row += 2) {
        const int64_t partner = std::min<int64_t>(row + 1, size.height - 1);
        uint8_t *const cb = dst[order[1]] + row / 2 * dstStep[order[1]];
        uint8_t *const cr = dst[order[2]] + row / 2 * dstStep[order[2]];
        rows(dst[0] + row * dstStep[0], dst[0] + partner * dstStep[0], cb, cr, src + row * srcStep, src + partner * srcStep,
             size.width);
    }
    return status;
}

template <SplitKernel K::*kSplit>
void RowsOf422To420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1,
                    int32_t width) {
    const K &k = PrimitiveKernelsGet();
    uint8_t chroma[kPiece];
    for (int64_t x = 0; x < width; x += kPiece) {
        const int32_t n = PieceOf(x, width);
        const int32_t samples = (n + 1) / 2;
        (k.*kSplit)(y1 + x, chroma, chroma + kPiece / 2, src1 + 2 * x, n);
        (k.*kSplit)(y0 + x, cb + x / 2, cr + x / 2, src0 + 2 * x, n);
        k.mean(cb + x / 2, cb + x / 2, chroma, samples);
        k.mean(cr + x / 2, cr + x / 2, chroma + kPiece / 2, samples);
    }
}

void LumaOfUyvy(uint8_t *y, const uint8_t *src, int32_t width) {
    uint8_t chroma[kPiece];
    for (int64_t x = 0; x < width; x += kPiece)
        PrimitiveKernelsGet().split_uyvy(y + x, chroma, chroma + kPiece / 2, src + 2 * x, PieceOf(x, width));
}

}    // namespace

void RowBgraToPlanes422(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width) {
    const K &k = PrimitiveKernelsGet();
    uint8_t scratch[kPiece * 2];
    for (int64_t x = 0; x < width; x += kPiece) {
        const int32_t n = PieceOf(x, width);
        k.bgra_to_uyvy(scratch, src + 4 * x, n);
        k.split_uyvy(y + x, cb + x / 2, cr + x / 2, scratch, n);
    }
}

void RowBgrToPlanes422(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width) {
    const K &k = PrimitiveKernelsGet();
    uint8_t scratch[kPiece * 2];
    for (int64_t x = 0; x < width; x += kPiece) {
        const int32_t n = PieceOf(x, width);
        RowBgrToUyvy(scratch, src + 3 * x, n);
        k.split_uyvy(y + x, cb + x / 2, cr + x / 2, scratch, n);
    }
}

void RowPlanesToBgr(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width) {
    const K &k = PrimitiveKernelsGet();
    uint8_t scratch[kPiece * 4];
    for (int64_t x = 0; x < width; x += kPiece) {
        const int32_t n = PieceOf(x, width);
        k.planes_to_bgra(scratch, y + x, cb + x / 2, cr + x / 2, n, 255);
        k.drop_alpha(dst + 3 * x, scratch, n);
    }
}

void RowsBgrTo420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1, int32_t width) {
    const K &k = PrimitiveKernelsGet();
    uint8_t scratch[kPiece * 8];
    for (int64_t x = 0; x < width; x += kPiece) {
        const int32_t n = PieceOf(x, width);
        k.add_alpha(scratch, src0 + 3 * x, n);
        k.add_alpha(scratch + kPiece * 4, src1 + 3 * x, n);
        k.bgra_to_420(y0 + x, y1 + x, cb + x / 2, cr + x / 2, scratch, scratch + kPiece * 4, n);
    }
}

void RowsUyvyTo420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1,
                   int32_t width) {
    RowsOf422To420<&K::split_uyvy>(y0, y1, cb, cr, src0, src1, width);
}

void RowsYuy2To420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1,
                   int32_t width) {
    RowsOf422To420<&K::split_yuy2>(y0, y1, cb, cr, src0, src1, width);
}

int32_t CbYCr422ToYCbCr422_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep,
                                    ROI size) {
    return SplitRows(PrimitiveKernelsGet().split_uyvy, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr422_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size) {
    return SplitRows(PrimitiveKernelsGet().split_yuy2, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCrCb422ToYCbCr422_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep,
                                    ROI size) {
    return SplitRows(PrimitiveKernelsGet().split_yuy2, kExchanged, src, srcStep, dst, dstStep, size);
}

int32_t BGRToYCbCr422_8u_AC4P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size) {
    return SplitRows(RowBgraToPlanes422, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t BGRToYCbCr422_8u_C3P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size) {
    return SplitRows(RowBgrToPlanes422, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr422_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return JoinRows(PrimitiveKernelsGet().join_yuy2, SameRow, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr422ToYCrCb422_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep,
                                    ROI size) {
    return JoinRows(PrimitiveKernelsGet().join_yuy2, SameRow, kExchanged, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr422ToBGR_8u_P3C3R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return JoinRows(RowPlanesToBgr, SameRow, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr420ToYCrCb422_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep,
                                    ROI size) {
    return JoinRows(PrimitiveKernelsGet().join_yuy2, HalfRow, kExchanged, src, srcStep, dst, dstStep, size);
}

int32_t YCrCb420ToCbYCr422_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep,
                                    ROI size) {
    return JoinRows(PrimitiveKernelsGet().join_uyvy, HalfRow, kExchanged, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr420ToCbYCr422_Interlace_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep,
                                              ROI size) {
    return JoinRows(PrimitiveKernelsGet().join_uyvy, FieldRow, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr420ToBGR_8u_P3C3R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return JoinRows(RowPlanesToBgr, HalfRow, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr420ToBGR_8u_P3C4R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size,
                               uint8_t alpha) {
    const K &k = PrimitiveKernelsGet();
    const auto row = [&k, alpha](uint8_t *d, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width) {
        k.planes_to_bgra(d, y, cb, cr, width, alpha);
    };
    return JoinRows(row, HalfRow, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCrCb422ToYCbCr420_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep,
                                    ROI size) {
    return DownRows(RowsYuy2To420, kExchanged, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr422ToYCbCr420_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep,
                                    ROI size) {
    return DownRows(RowsYuy2To420, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t CbYCr422ToYCbCr420_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep,
                                    ROI size) {
    return DownRows(RowsUyvyTo420, kInOrder, src, srcStep, dst, dstStep, size);
}

// Chroma row n is made of two rows of field n % 2; where the second one is missing, of the first alone. Of a last group of two
// rows only the first one has a chroma row.
int32_t CbYCr422ToYCbCr420_Interlace_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep,
                                              ROI size) {
    const int32_t status = PlanesCheck(src, dst, dstStep, size);
    if (status != kPrimitiveOk) return status;
    const int64_t last = int64_t{size.height} - 1;
    for (int64_t n = 0; n <= last / 2; ++n) {
        const int64_t row = n / 2 * 4 + n % 2;
        const int64_t partner = row + 2 <= last ? row + 2 : row;
        RowsUyvyTo420(dst[0] + row * dstStep[0], dst[0] + partner * dstStep[0], dst[1] + n * dstStep[1],
                      dst[2] + n * dstStep[2], src + row * srcStep, src + partner * srcStep, size.width);
    }
    if (size.height % 4 == 2) LumaOfUyvy(dst[0] + last * dstStep[0], src + last * srcStep, size.width);
    return status;
}

int32_t BGRToYCbCr420_8u_C3P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size) {
    return DownRows(RowsBgrTo420, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t BGRToYCbCr420_8u_AC4P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size) {
    return DownRows(PrimitiveKernelsGet().bgra_to_420, kInOrder, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr420_8u_P2P3R(const uint8_t *srcY, int64_t stepY, const uint8_t *srcCbCr, int64_t stepCbCr, uint8_t *const *dst,
                          const int64_t *dstStep, ROI size) {
    const int32_t status = srcCbCr == nullptr ? kPrimitiveNull : PlanesCheck(srcY, dst, dstStep, size);
    if (status != kPrimitiveOk) return status;
    const K &k = PrimitiveKernelsGet();
    for (int64_t row = 0; row < size.height; ++row) std::copy_n(srcY + row * stepY, size.width, dst[0] + row * dstStep[0]);
    for (int64_t row = 0; row < (int64_t{size.height} + 1) / 2; ++row)
        k.split_pairs(dst[1] + row * dstStep[1], dst[2] + row * dstStep[2], srcCbCr + row * stepCbCr,
                      size.width / 2 + size.width % 2);
    return status;
}

int32_t YCbCr420_8u_P3P2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dstY, int64_t stepY, uint8_t *dstCbCr,
                          int64_t stepCbCr, ROI size) {
    const int32_t status = dstCbCr == nullptr ? kPrimitiveNull : PlanesCheck(dstY, src, srcStep, size);
    if (status != kPrimitiveOk) return status;
    const K &k = PrimitiveKernelsGet();
    for (int64_t row = 0; row < size.height; ++row) std::copy_n(src[0] + row * srcStep[0], size.width, dstY + row * stepY);
    for (int64_t row = 0; row < (int64_t{size.height} + 1) / 2; ++row)
        k.join_pairs(dstCbCr + row * stepCbCr, src[1] + row * srcStep[1], src[2] + row * srcStep[2],
                     size.width / 2 + size.width % 2);
    return status;
}

}    // namespace zck
