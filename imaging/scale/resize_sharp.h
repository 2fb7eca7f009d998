// The vertical scaler, a resize along the rows and a sharpening filter in one.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/colour/color_convert.h"
#include "imaging/scale/plane_rows.h"
#include "imaging/scale/resizer.h"
#include "imaging/scale/scale_dyn.h"
#include "imaging/scale/scale_options.h"

namespace zck {

/// Tap tables, resizers and scratch of one plane.
struct PlaneResizer {
    DynScaler dyn;
    Resizer resize;
    PlaneRows pixels;            // of RGB24, with a fourth byte
    std::vector<uint8_t> row;    // one such row
    std::vector<uint8_t> scratch[2];
    /// Columns are resized in two fields, whatever picture and quality are.
    bool bHalvesInParallel = false;
};

/// Scales an image of the RGB family (RGB8, RGB24, RGB32 or ARGB32) to another size: the rows by `Scale_Dyn`, then the columns
/// by `options->nQuality`, then the filter if `nSharpen` is not 0. Opposite row orders are turned. RGB8 has no row order.
///
/// Interlaced pictures under the codes 5, 7, 8 and 16 are resized by field, and the last row of an odd height is not written
/// then. The filter leaves the edge rows and columns as they were (behind a vertical stage it has one row and leaves the last
/// row as well).
///
/// S_OK; `E_POINTER`; `E_INVALIDARG` for other formats and for two formats; 0x80040248 for a memory that is too small; the
/// status of a primitive with its top bit set (0xFFFFFFFA for a picture that leaves the filter or a field nothing to do);
/// `E_OUTOFMEMORY`. The options are only read.
HRESULT SEH_Resize_n_Sharp(PlaneResizer *worker, const uint8_t *src, uint8_t *dst, const ImageView *source,
                           const ImageView *target, bool bInterlaced, const ScaleOptions *options);

}    // namespace zck
