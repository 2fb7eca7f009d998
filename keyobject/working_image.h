// `WorkingImage`: the reference frame in the colour space of an edit, in memory of its own.
#pragma once

#include "frames/memory/blob_holder.h"
#include "keyobject/key_step.h"
#include "keyobject/picture_view.h"

namespace zck {

/// Four bytes a pixel, the fourth the frame's, in the row order and with the row step of the frame's view; row padding is 0.
/// The block is kept and grows only. Not locked.
class WorkingImage {
public:
    /// Makes the image of `view` in a space, unless it is that already. `serial` tells one view from another.
    /// `VFW_E_WRONG_STATE` without a view, 0x80040248 for one that is no picture of 32-bit pixels, `E_OUTOFMEMORY`.
    HRESULT Build(KeySpace space, IZFrame *view, uint64_t serial);

    /// The pixels have been painted on: the next `Build` makes them anew. They stay readable until then.
    void Spend() { m_valid = false; }

    KeySpace Space() const { return m_space; }
    int32_t Width() const { return m_props.nWidth; }
    int32_t Rows() const { return m_rows; }
    int64_t RowBytes() const { return m_props.nRowBytes; }
    /// The description of the view. `fccType` is a tag of the space: ARGB32, 0 for HLS, YUY2 for YUV.
    const Z_VID_PROPS &Props() const { return m_props; }
    /// A row in the order of memory.
    uint8_t *Row(int64_t row) const { return m_buffer.Data() + row * RowBytes(); }

private:
    void Fill(const PictureView &view);

    CBLOBHolder<CHeapAlloc> m_buffer;
    Z_VID_PROPS m_props = {};
    int32_t m_rows = 0;
    KeySpace m_space = KeySpace::Rgb;
    uint64_t m_serial = 0;
    bool m_valid = false;
};

}    // namespace zck
