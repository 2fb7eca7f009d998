// The rows of an overlay, in the format in which they are mixed.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/colour/convert.h"
#include "imaging/mix/mix_image.h"
#include "imaging/scale/resize_planes.h"

namespace zck {

/// An overlay as it stands, or as if it had been converted by `ConvertAtOneSize`. Rows are converted one by one when they are
/// asked for, so that they are still in the cache when they are mixed and take no memory of a picture's size; only pictures
/// whose rows depend on each other are converted at once. Rows are best asked for in their order.
class OverlayRows {
public:
    /// As it stands. The record is complete, and the memory holds the picture.
    explicit OverlayRows(const MixOverlay &overlay) : m_image(overlay), m_source(overlay) {}
    OverlayRows(const OverlayRows &) = delete;
    OverlayRows &operator=(const OverlayRows &) = delete;

    /// From now on the picture in the format `fcc`, with whole rows and the row order that the sign of `height` says. Statuses
    /// of `ConvertAtOneSize`; throws `std::bad_alloc`.
    HRESULT Convert(eZFCC fcc, bool bBottomUp);

    /// Of the picture as it is now.
    const Z_VID_PROPS &Record() const { return m_image.props; }

    /// Narrows to a rectangle: rows and columns count from its top left corner now. False when nothing is left. After
    /// `Convert`; once.
    bool Narrow(const tagRECT &rect);

    int32_t Width() const { return m_view.nWidth; }
    int32_t Rows() const;

    /// A row of the narrowed picture, counted from its top. Good until the next call.
    const uint8_t *Row(int32_t y);
    /// The same pixels as they were before they were converted, in rows of 4-byte pixels.
    const uint8_t *SourceRow32(int32_t y) const;

private:
    enum class Way { AtOnce, ByRoute, ByPlanes };

    HRESULT PreparePlanes();
    int64_t MemoryRow(int32_t y) const;

    MixOverlay m_image;     // the picture; without memory while its rows are made one by one
    MixOverlay m_source;    // as it was given
    Z_VID_PROPS m_view = {};
    int64_t m_nFirstRow = 0;    // of the view, in memory
    int64_t m_nLeft = 0;        // pixels
    Way m_way = Way::AtOnce;
    ConvertPlan m_plan;
    PlaneScaler m_planes;
    std::vector<uint8_t> m_scratch;    // one converted row, or all
};

}    // namespace zck
