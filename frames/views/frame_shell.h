// `IZFrameShell`: a factory's way to make a converting clone whose pixels the caller writes itself.
#pragma once

#include "frames/views/frame_i.h"

/// For callers that convert and work on the pixels in one walk over the memory. Only factories of this library have it; a
/// caller that does not find it uses `IZFrame::FrameClone`.
struct IZFrameShell : IUnknown {
    /// Does what `FrameClone(_eCloneType, _fccPixelFormat)` does for a clone with pixels of its own (type with bit 1, or a
    /// format that has to be converted), but leaves the pixels of `*_ppClone` to the caller.
    ///
    /// `S_OK`: `*_ppClone` has its description, time, audio and data, and a buffer with unspecified bytes. `*_ppLocal` is a
    /// frame of this process with the pixels of the source. Both buffers are as large as their descriptions need. The
    /// caller writes every byte of the clone: where the two formats are equal (RGB32 counts as ARGB32, HDYC as UYVY) a
    /// copy of all the source's bytes, otherwise the conversion from one description to the other; the bytes that the
    /// conversion does not reach are zero. It owns the clone alone until it hands it on.
    ///
    /// `S_FALSE`: `*_ppClone` is complete (there are no pixels to write), `*_ppLocal` is null.
    virtual HRESULT Z_STDCALL CloneShell(IZFrame *_pFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat,
                                         IZFrame_I **_ppClone, IZFrame_I **_ppLocal) = 0;
};
Z_INTERFACE_ID(IZFrameShell, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x25);
