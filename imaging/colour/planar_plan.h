// Formats without a direct route (YVYU and 4:2:0) into 4-byte RGB, row by row: what `ConvertPlan` is for the other formats.
#pragma once

#include <cstdint>

#include "imaging/colour/image_layout.h"
#include "imaging/colour/picture_rows.h"
#include "zchromakey/com.h"

namespace zck {

/// A conversion that is prepared once from both records and then runs row by row, in any order and on any thread, on any images
/// of these records. The bytes are those of `ColorConvertViews` on a target of zeros: an odd last column stays without a
/// colour and becomes 0.
class PlanarPlan {
public:
    /// `E_POINTER` without record; `E_UNEXPECTED` for a record without size or row bytes; 0x80040201 unless it goes from I420,
    /// YV12, NV12 or YVYU to RGB32 or ARGB32; 0x80040248 when a memory does not hold its image. Of two images of different size
    /// the common top left part is converted. After a failure the plan must not be used.
    HRESULT Prepare(const Z_VID_PROPS *sp, int64_t srcBytes, const Z_VID_PROPS *tp, int64_t dstBytes);

    /// Converts the rows y0 to y1 - 1, counted from the top of the picture on both sides.
    void RunRows(const uint8_t *src, uint8_t *dst, int32_t y0, int32_t y1) const;

    /// Always: chroma rows are read by both of their rows.
    bool RowsIndependent() const { return true; }
    int32_t Width() const { return m_nWidth; }
    int32_t Rows() const { return m_nRows; }

private:
    ImageLayout m_source;
    ImageLayout m_target;
    int32_t m_nWidth = 0;
    int32_t m_nRows = 0;
};

}    // namespace zck
