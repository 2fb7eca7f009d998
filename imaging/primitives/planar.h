// Conversions between planes and interleaved pixels. `P3` is three planes, Y, Cb and Cr, each with a step of its own; `P2` is
// luma and pairs Cb Cr. Chroma rows of 4:2:2 and 4:2:0 have (width + 1) / 2 samples, and 4:2:0 has (height + 1) / 2 of them.
//
// BT.601 and odd widths as in row_kernels.h. Chroma up is repetition. From 4:2:2 down to 4:2:0 it is the mean of two rows, ties
// up; from BGR the formula on the exact mean of the four pixels; a last odd row stands for its pair. Names with `YCrCb` on the
// side of the planes want them in the order Y, Cr, Cb.
#pragma once

#include "imaging/primitives/image.h"

namespace zck {

// 4:2:2, interleaved and in planes.
int32_t CbYCr422ToYCbCr422_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t YCbCr422_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t YCrCb422ToYCbCr422_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t BGRToYCbCr422_8u_AC4P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t BGRToYCbCr422_8u_C3P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t YCbCr422_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t YCbCr422ToYCrCb422_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t YCbCr422ToBGR_8u_P3C3R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size);

// Up from 4:2:0. In the interlaced form the chroma rows belong to the fields in turn: the rows 4 n and 4 n + 2 of the picture
// take chroma row 2 n, the rows 4 n + 1 and 4 n + 3 the one below.
int32_t YCbCr420ToYCrCb422_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t YCrCb420ToCbYCr422_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t YCbCr420ToCbYCr422_Interlace_8u_P3C2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep,
                                              ROI size);
int32_t YCbCr420ToBGR_8u_P3C3R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t YCbCr420ToBGR_8u_P3C4R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dst, int64_t dstStep, ROI size,
                               uint8_t alpha);

// Down to 4:2:0.
int32_t YCrCb422ToYCbCr420_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t YCbCr422ToYCbCr420_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t CbYCr422ToYCbCr420_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t CbYCr422ToYCbCr420_Interlace_8u_C2P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep,
                                              ROI size);
int32_t BGRToYCbCr420_8u_C3P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);
int32_t BGRToYCbCr420_8u_AC4P3R(const uint8_t *src, int64_t srcStep, uint8_t *const *dst, const int64_t *dstStep, ROI size);

// NV12 and three planes.
int32_t YCbCr420_8u_P2P3R(const uint8_t *srcY, int64_t stepY, const uint8_t *srcCbCr, int64_t stepCbCr, uint8_t *const *dst,
                          const int64_t *dstStep, ROI size);
int32_t YCbCr420_8u_P3P2R(const uint8_t *const *src, const int64_t *srcStep, uint8_t *dstY, int64_t stepY, uint8_t *dstCbCr,
                          int64_t stepCbCr, ROI size);

// Rows of the conversions that go by way of other pixels, a piece at a time through a small scratch.
void RowBgraToPlanes422(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width);
void RowBgrToPlanes422(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width);
void RowPlanesToBgr(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width);
/// Two rows to 4:2:0, as `bgra_to_420` has it.
void RowsBgrTo420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1, int32_t width);
void RowsUyvyTo420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1, int32_t width);
void RowsYuy2To420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1, int32_t width);

}    // namespace zck
