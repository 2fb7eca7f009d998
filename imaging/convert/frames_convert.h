// Frames of one or two pictures become one of another format, size, scan or stereo layout.
#pragma once

#include "frames/views/frames_i.h"
#include "imaging/convert/frames_converter.h"
#include "platform/com_ptr.h"
#include "platform/text.h"

namespace zck {

/// Converts. Time, frame flags, sound, ancillary data and attached objects are those of the first source, or of the second
/// where there is no first. What the target record does not say is taken from that source. A target that is the same picture
/// is a clone that shares its pixels. Two sources of equal records are woven into the fields of one frame first. The options
/// are those of `ConvertOptions`. Sources are not written, and no half-made frame comes out.
///
/// `E_POINTER` without target record; `E_INVALIDARG` without source; `E_NOINTERFACE` for a source that is no frame;
/// 0x80040248 for a target that cannot be completed and for a source that states more pixels than it has; the failures of
/// `FrameCropRotate`, `ConvertBits` and `MirrorBits`; `E_OUTOFMEMORY`. Throws `std::bad_alloc`.
HRESULT FramesConvert(IZFrames_I *factory, FramesConverter &converter, IZFrame *first, IZFrame *second,
                      const Z_VID_PROPS *target, TextView options, ComPtr<IZFrame_I> &result);

}    // namespace zck
