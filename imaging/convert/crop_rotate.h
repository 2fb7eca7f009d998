// What is done to the sources before a conversion: cut, turned, and woven into one picture.
#pragma once

#include "frames/views/frames_i.h"
#include "imaging/convert/convert_options.h"
#include "imaging/convert/frames_converter.h"
#include "platform/com_ptr.h"

namespace zck {

/// A quarter turn into a new frame. The rest of the record stays but for its standard format; width and height, and the two
/// aspects, change places; bottom-up pictures stay bottom-up. Time comes along, sound with `bSwapAudio`.
///
/// `E_INVALIDARG` for null arguments and for formats that are not turned; 0x80040248 for an invalid record, for one that states
/// more pixels than there are, and for a result of no bytes; `E_UNEXPECTED` without pixels.
HRESULT FrameRotate(IZFrames_I *factory, FramesConverter &converter, bool bLeft, IZFrame_I *source, bool bSwapAudio,
                    ComPtr<IZFrame_I> &result);

/// The picture to convert. Both sources are cut and turned by the options; two sources of equal records then become the two
/// fields of one frame that has the target's scan, and of others the first one goes on. A missing first source is replaced by
/// the second. Sources are frames of this process.
///
/// `E_POINTER` without source; the failures of `FrameCut`, `FrameRotate` and `WeaveFields`; 0x80040248 when a source that is to
/// be woven does not hold its pixels.
HRESULT FrameCropRotate(IZFrames_I *factory, FramesConverter &converter, IZFrame_I *first, IZFrame_I *second,
                        const Z_VID_PROPS &target, const ConvertOptions &options, ComPtr<IZFrame_I> &result);

}    // namespace zck
