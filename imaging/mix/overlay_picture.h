// A picture laid over another: the formats decide which mix it is.
#pragma once

#include "imaging/mix/mix_image.h"

namespace zck {

/// Lays an overlay over the target with its top left corner at `x`, `y`. An ARGB32 overlay is taken as premultiplied, but not
/// over RGB24, which is mixed by its alpha; any other is converted into the target's format and mixed by the opacity alone. The
/// overlay's memory is not written, and may be the target's: it is read as it was before.
///
/// S_OK; `S_FALSE` when nothing of the overlay lies on the target. In this order, for the target first: 0x80040200 for a record
/// that is not valid, 0x80040248 for a memory that does not hold its picture. Then the failure of the conversion; 0x8004022A
/// for formats that have no mix; `E_OUTOFMEMORY`. Nothing is written after a failure.
HRESULT OverlayPicture(const MixTarget &target, const MixOverlay &overlay, int32_t x, int32_t y, double opacity);

}    // namespace zck
