// The preview of a key on its reference frame.
#pragma once

#include "keyobject/key_frames.h"
#include "zchromakey/key_types.h"

namespace zck {

/// A private keyed and premultiplied copy of `frame`. A type that keys nothing gives the plain copy, premultiplied.
/// 0x80040248 for a frame that is no picture of 32-bit pixels; else the failure of the clone, the memory or the keying.
HRESULT ApplyKey(IZFrame *frame, const CHROMA_KEY_RAW &key, ComPtr<IZFrame> *result);

/// The keyed reference, over the background where there is one. `VFW_E_WRONG_STATE` without a reference. Takes no lock while
/// it works; the background that it fits is kept in `frames` for the next time.
///
/// The result of the overlay is not looked at: a background that cannot be mixed (planar, 10-bit, RGB24) is shown as it is.
HRESULT RenderPreview(KeyFrames &frames, const CHROMA_KEY_RAW &key, ComPtr<IZFrame> *result);

}    // namespace zck
