// What an overlay reads of other frames: pictures of one moment, and the copies and masks that are kept on them.
#pragma once

#include "frames/object/frame.h"
#include "imaging/mix/mix_image.h"

namespace zck {

/// A frame as it was at one moment. The references keep its pixels from going or being used for another frame.
struct SeenFrame {
    ComPtr<IUnknown> frame;
    Z_TIME time = {};
    Z_AV_PROPS props = {};
    FramePixels pixels;

    bool HasPixels() const { return pixels.data != nullptr && pixels.size > 0; }
    MixOverlay Image() const { return {props.vidProps, pixels.data, HasPixels() ? pixels.size : 0}; }
    ComPtr<IZFFrame> View() const { return QueryFor<IZFFrame>(frame.get()); }
};

/// The frame itself when it lives in this process, else a clone of this one that borrows everything. `E_NOINTERFACE` for an
/// object that is no frame, and for null; `E_UNEXPECTED` for a frame of another process without a factory.
HRESULT FrameLocalise(IZFrames_I *factory, IUnknown *frame, ComPtr<IUnknown> &local);

/// Reads a frame of this process. No lock is held afterwards.
HRESULT FrameSee(IUnknown *frame, SeenFrame &seen);

/// The overlay in the target's format: itself where the formats are of one family; else the copy that is kept on it under
/// "MIX_CC" if it has the description of such a copy, else a new one, which is kept there from now on. `image` is complete and
/// lives as long as `holder`.
HRESULT OverlayConverted(IZFrames_I *factory, const SeenFrame &overlay, const Z_VID_PROPS &target, MixOverlay &image,
                         SeenFrame &holder);

/// The opacities of an overlay of the record `overlay`, as a mask of `MaskRecord`'s size: what is kept on `owner` under "MASK8"
/// in that size. Otherwise, `bFromPicture`, they are made of the owner's picture and kept there from now on; else a kept mask
/// of another size is scaled for this call alone. 0x800710D2 when there is neither.
HRESULT OverlayMask(IZFrames_I *factory, const SeenFrame &owner, bool bFromPicture, const Z_VID_PROPS &overlay,
                    MixOverlay &mask, SeenFrame &holder);

/// Whether a usable mask is kept on a frame.
bool OverlayMaskKept(const SeenFrame &owner);

}    // namespace zck
