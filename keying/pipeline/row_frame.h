// One frame to be walked by rows. The rows are those of the whole frame, whatever slices they are told to belong to.
#pragma once

#include "keying/pipeline/image_view.h"
#include "keying/pipeline/plan.h"
#include "keying/pipeline/row_source.h"

namespace zck {

struct RowFrame {
    KeyView view;    ///< `blocks` as the slices measure them
    const KeyPlan *plan;
    const RowSource *source;    ///< or null
    int32_t fields;             ///< 2: the fields are smoothed apart
    int32_t combs;              ///< slices, or fields of a single one: row r belongs to comb r mod `combs`, measured by itself
    int32_t keyedRows;          ///< rows from the top that are keyed; the others keep the alpha of the plane
    bool seam;                  ///< several slices: the plane is smoothed and inverted once more after they are done
    bool merge;                 ///< keyed rows get their alpha into the pixels, also without a seam
    bool premultiply;

    bool Viewed() const { return source != nullptr && source->view != nullptr; }
    uint8_t *PixelRow(int32_t row) const { return view.pixels + row * view.rowBytes; }
    uint8_t *AlphaRowOf(int32_t row) const { return view.alpha + row * view.stride; }

    /// Where the row's pixels stand before anything is done to them; a row that is fetched must have been.
    const uint8_t *SourceRow(int32_t row) const { return Viewed() ? source->view(source->context, row) : PixelRow(row); }

    /// Bytes of a row that are its own and inside the buffer.
    int64_t OwnBytes(int32_t row) const { return std::min(view.rowBytes, view.bounds.pixelBytes - row * view.rowBytes); }
};

}    // namespace zck
