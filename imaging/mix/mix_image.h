// The two images of a mix, as records and memory, and the parts of them that lie on each other.
#pragma once

#include <cstdint>

#include "frames/media/picture.h"
#include "frames/media/record_view.h"
#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

constexpr HRESULT kMixInvalidRecord = static_cast<HRESULT>(0x80040200);
constexpr HRESULT kMixFormatsDiffer = static_cast<HRESULT>(0x8004022A);

/// A picture by its record, in `bytes` bytes from `p` on. The memory belongs to somebody else.
template <class Byte>
struct MixImage {
    Z_VID_PROPS props = {};
    Byte *p = nullptr;
    int64_t bytes = 0;
};
using MixTarget = MixImage<uint8_t>;
using MixOverlay = MixImage<const uint8_t>;

/// Completes a record as mixing reads it: what has no size or no row bytes is filled in, packed rows are at least whole.
/// 0x80040200 for a record that is not valid, has negative row bytes, or stays without size; 0x80040248 when `bytes` do not
/// hold all its pixels.
HRESULT MixRecordComplete(Z_VID_PROPS &props, int64_t bytes);

/// Where an overlay lies on a target, as rectangles of both.
struct MixPlace {
    /// The overlay's top left corner is at `x`, `y` of the target.
    MixPlace(int32_t x, int32_t y, const Z_VID_PROPS &overlay);

    tagRECT target;
    tagRECT overlay;
};

/// The overlay's rectangle without an odd last column, where two pixels share their chroma. Outside the RGB family pictures end
/// at an even column, also when they are converted into it.
void MixEvenWidth(const Z_VID_PROPS &overlay, tagRECT &rect);

/// The image narrowed to a rectangle, and to a field of it unless `field` is -1 (see `SubRectView`). False when nothing is
/// left.
template <class Byte>
bool MixNarrow(MixImage<Byte> &image, const tagRECT &rect, int32_t field = -1) {
    const int64_t offset = SubRectView(image.props, rect, field);
    image.p += offset;
    image.bytes -= offset;
    return image.props.nWidth > 0 && image.props.nHeight != 0;
}

/// An opacity as a fixed-point number: opacity * whole, rounded half away from zero, from 0 to `whole`; no number is 0.
int32_t MixOpacity(double opacity, int32_t whole);

/// Two memories have a byte in common.
bool MixMemoriesMeet(const MixTarget &target, const MixOverlay &overlay);

}    // namespace zck
