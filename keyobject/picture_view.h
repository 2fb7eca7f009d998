// `PictureView`: the pixels of a frame, checked against its description before anything touches them.
#pragma once

#include "platform/com_ptr.h"
#include "zchromakey/frame.h"

namespace zck {

/// A picture of 32-bit pixels in memory that its frame keeps alive.
struct PictureView {
    Z_VID_PROPS props;
    uint8_t *pixels;
    int64_t bytes;       ///< from `pixels` on; a last row may end with its last pixel
    int32_t rows;        ///< |`nHeight`|
    int64_t rowBytes;    ///< at least 4 times the width
};

/// The view of a frame that may be foreign. 0x80040248 for a frame without pixels, and for a description that is no 32-bit RGB
/// picture or tells more than the memory holds; else the frame's own failure.
HRESULT PictureViewOf(IZFrame *frame, PictureView *view);

/// A clone, which has to be there: `E_UNEXPECTED` for a frame that answers success and gives none.
HRESULT CloneOf(IZFrame *frame, eZFrameClone type, eZFCC format, ComPtr<IZFrame> *clone);

}    // namespace zck
