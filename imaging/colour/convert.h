// Conversion between two images of one size: any of RGB32, ARGB32, RGB24, UYVY, HDYC, YUY2 and v210 into any other, bottom-up
// images and field order included.
//
// The matrix follows the pixel formats and nothing else: BT.601, but BT.709 from RGB to HDYC and from HDYC to RGB. Of two
// images of different size the common top left part is converted. RGB to v210 is not provided. No function here keeps
// anything between calls; they may run on any thread. Source and target do not overlap.
#pragma once

#include <cstdint>

#include "imaging/colour/route.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Converts an image. The records tell what the memories hold (|height| whole rows each), and nothing outside is touched.
///
/// When both pictures are interlaced and their field orders differ, the picture moves by one line; the line that is left over
/// at the edge repeats its neighbour.
///
/// `E_POINTER` without image or record; `E_UNEXPECTED` for a record without size or row bytes; 0x80040201 when a format has no
/// route; 0x80040248 for a record of more than 2 GB; `E_FAIL` for RGB to v210.
HRESULT ConvertSameGeometry(const uint8_t *src, uint8_t *dst, const Z_VID_PROPS *sp, const Z_VID_PROPS *tp);

/// The same for images whose memories end where the caller says, in bytes from `src` and `dst`: views of a part of a frame,
/// whose last row ends early, and records that are not to be trusted. 0x80040248 when a memory does not hold all pixels of
/// its record.
HRESULT ConvertSameGeometry(const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes, const Z_VID_PROPS *sp,
                            const Z_VID_PROPS *tp);

/// A conversion that is prepared once from both records and then runs, whole or row by row, on any images of these records.
/// After `Prepare` it is constant: any number of threads may use it.
class ConvertPlan {
public:
    /// Statuses as above, but for those of missing images. After a failure the plan must not be used.
    HRESULT Prepare(const Z_VID_PROPS *sp, const Z_VID_PROPS *tp);
    HRESULT Prepare(const Z_VID_PROPS *sp, int64_t srcBytes, const Z_VID_PROPS *tp, int64_t dstBytes);

    /// Converts everything. `E_FAIL` for a route that is not provided.
    HRESULT Run(const uint8_t *src, uint8_t *dst) const;

    /// True: each row is a matter of its own, so that rows may be converted in any order and on any thread, the target row is
    /// complete at once, and no other target row changes. False: use `Run`. Rows depend on each other
    /// - when the field order changes: the row at the edge repeats its neighbour;
    /// - in HDYC to RGB where what a row writes (see route.h) reaches into another row: RGB24 always, unless its rows have
    ///   room for 4 bytes a pixel, and RGB32 with a width that is no multiple of 4, unless its rows have room for the surplus;
    /// - when there is no route.
    bool RowsIndependent() const { return m_bIndependent; }

    /// Converts the rows y0 to y1 - 1; only for independent rows. Rows are counted from the top of the picture (for formats
    /// outside the RGB family: from the start of the memory), from 0 to `Rows()` - 1, on both sides.
    void RunRows(const uint8_t *src, uint8_t *dst, int32_t y0, int32_t y1) const;

    /// Converts row `y`, counted likewise, into a memory of its own, `room` bytes from `row` on; only for independent rows.
    void RunRow(const uint8_t *src, int32_t y, uint8_t *row, int64_t room) const;

    /// From now on no row writes more than so many bytes from its start: what it has beyond its pixels (see route.h) is
    /// dropped there. For images whose rows stand between rows of others.
    void RowRoomSet(int64_t bytes) { m_nRowRoom = bytes; }

    int32_t Width() const { return m_nWidth; }
    int32_t Rows() const { return m_nRows; }

    /// Where a row starts, in bytes from the start of its image.
    int64_t SourceOffset(int32_t y) const { return m_source.offset + y * m_source.step; }
    int64_t TargetOffset(int32_t y) const { return m_target.offset + y * m_target.step; }

private:
    struct Side {
        int64_t offset;    // of the first row
        int64_t step;
        int64_t bytes;    // of the memory
    };

    HRESULT PrepareBoth(const Z_VID_PROPS *sp, const int64_t *srcBytes, const Z_VID_PROPS *tp, const int64_t *dstBytes);
    void PrepareFieldOrder(const Z_VID_PROPS &sp, const Z_VID_PROPS &tp);
    void RepeatRow(uint8_t *dst) const;

    Side m_source = {};
    Side m_target = {};
    int32_t m_nWidth = 0;
    int32_t m_nRows = 0;    // that are converted
    const ConvertRoute *m_pRoute = nullptr;
    int64_t m_nRepeatFrom = -1;    // offsets of the rows in the target when the field order changes
    int64_t m_nRepeatTo = -1;
    int64_t m_nRowRoom = INT64_MAX;
    bool m_bIndependent = false;
};

}    // namespace zck
