// Images of one or four channels to another size.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/primitives/image.h"
#include "imaging/scale/resize_taps.h"
#include "imaging/scale/scale_options.h"

namespace zck {

constexpr int32_t kPrimitiveNoMemory = -9;

/// Rows of a source that are made when they are asked for. A row is good until another row was asked for that lies
/// `Resizer::RowsAtOnce` or more away from it.
struct RowsOnDemand {
    const uint8_t *(*row)(void *owner, int32_t y);
    void *owner;
};

struct ResizeShape {
    ROI source;
    ROI target;
    int32_t channels;    ///< 1 or 4
    int32_t code;        ///< a `ResizeCode`
    bool operator==(const ResizeShape &o) const {
        return source.width == o.source.width && source.height == o.source.height && target.width == o.target.width &&
               target.height == o.target.height && channels == o.channels && code == o.code;
    }
};

/// Resamples row by row, in any order of target rows: first down the columns, then along the row. It works in fixed point
/// (scale_kernels.h) and differs from the exact sum, rounded half up, by at most one unit; areas of more than
/// `kMostFixedReduction` to one are summed exactly. An image of one value keeps it, and a direction that keeps its size is
/// copied by all codes but 5 and 7.
///
/// One object serves one thread; the tables stay while the shape does.
class Resizer {
public:
    /// 0; `kPrimitiveBadSize` for a side below 1; `kPrimitiveBadArgument` for an unknown code, for other channels, and for
    /// super-sampling where a direction grows; `kPrimitiveNoMemory`. After a failure the object has no shape.
    int32_t Prepare(const ResizeShape &shape);

    /// Source rows that are held at one time, at most.
    int32_t RowsAtOnce() const;

    /// Makes target row `y` of the shape: `target.width` pixels.
    void Row(int32_t y, const RowsOnDemand &source, uint8_t *dst);

private:
    void SizeColumns();
    void SizeRows();
    void MakeRowTaps(int32_t y, ResizeTaps *taps) const;
    void MakeColumns(int32_t x);
    void MakePlaces(int32_t count);
    void Columns(const uint8_t *row, uint8_t *dst);
    const ResizeTaps &RowTaps(int32_t y);
    void FilteredRow(int32_t y, const RowsOnDemand &source, uint8_t *dst);
    void SummedRow(int32_t y, const RowsOnDemand &source, uint8_t *dst);

    ResizeShape m_shape = {};
    bool m_bSummed = false;
    bool m_bColumns = false;         // the row's length changes, or its code filters all the same
    int32_t m_nTaps = 0;             // of each column, even
    int32_t m_nMade = -1;            // the columns from here on are in the tables; very long rows go piece by piece
    bool m_bClose = false;           // those columns have places
    std::vector<int32_t> m_first;    // these three as in `ColumnTable`
    std::vector<int16_t> m_weights;
    std::vector<uint32_t> m_places;
    std::vector<ResizeTaps> m_rowTaps;    // of all target rows, or the last one's where there are very many
    std::vector<int16_t> m_mid;           // one row between the directions, with room for the last column's taps
    std::vector<uint64_t> m_sums;         // of one target row
};

/// Image to image with steps: `Resize_8u_C1R` and `Resize_8u_C4R` by the channels of the shape, super-sampling included.
/// Statuses as `Resizer::Prepare`, `kPrimitiveNull` without an image.
int32_t ResizeImage(Resizer *resizer, const ResizeShape &shape, const uint8_t *src, int64_t srcStep, uint8_t *dst,
                    int64_t dstStep);

}    // namespace zck
