// The picture of the blocks that a detection accepted: the painted working image, shown in RGB and without keying.
#pragma once

#include "keyobject/working_image.h"
#include "zchromakey/frames.h"

namespace zck {

/// A new `eZFCC_RGB32` frame of the image's size, row order and row step. Its fourth bytes are the image's. The failure of the
/// factory.
HRESULT BlockPicture(IZFrames *factory, const WorkingImage &image, ComPtr<IZFrame> *result);

}    // namespace zck
