// The picture that every search for a screen leaves behind, for whoever looks into what it saw.
#pragma once

#include "keyobject/working_image.h"

namespace zck {

/// Writes the image to "F:\CK.bmp" where the system has drives and this one takes it; elsewhere nothing is written. The format
/// is the tag of the image: HLS has no bitmap form, YUV goes as if it were YUY2.
void DumpBlocks(const WorkingImage &image) noexcept;

}    // namespace zck
