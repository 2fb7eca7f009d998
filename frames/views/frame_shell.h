// `IZFrameShell`: ways to make a frame whose pixels the caller writes itself.
#pragma once

#include "frames/views/frame_i.h"

/// The two pictures of an unfilled clone, as they were when it was made. Both buffers are at least as large as their
/// descriptions need.
struct ZF_SHELL {
    Z_VID_PROPS source;
    Z_VID_PROPS clone;
    int64_t pbSource;    ///< to be read only
    int64_t pbClone;
    int32_t cbSource;
    int32_t cbClone;
    int32_t bConvert;    ///< 0: the clone's bytes are the source's; else they are converted from one description to the other
};

/// For callers that convert and work on the pixels in one walk over the memory. Factories of this library have it, and
/// their frames lead to them; a caller that does not find it uses `IZFrame::FrameClone`.
struct IZFrameShell : IUnknown {
    /// Does what `FrameClone(_eCloneType, _fccPixelFormat)` does, but leaves the pixels of `*_ppClone` to the caller.
    ///
    /// `S_OK`: `*_ppClone` has its description, time, audio and data, and a buffer with unspecified bytes. The caller
    /// writes all of `pbClone` .. + `cbClone`: without `bConvert` a copy of as many bytes of the source, with it the
    /// conversion, where bytes that the conversion does not reach are 0. `*_ppLocal` keeps the source's pixels alive, and
    /// is released when the caller is done with them. It owns the clone alone until it hands it on.
    ///
    /// `S_FALSE`: `*_ppClone` is complete, as there were no pixels to write, and `*_ppLocal` is null.
    virtual HRESULT Z_STDCALL CloneShell(IZFrame *_pFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat,
                                         IZFrame_I **_ppClone, IZFrame_I **_ppLocal, ZF_SHELL *_pShell) = 0;

    /// Does what `IZFrames_I::FrameAlloc` does, without sound, but leaves unspecified bytes in the pixels: those of an earlier
    /// frame. The caller writes all of them before it hands the frame on.
    virtual HRESULT Z_STDCALL UnwrittenAlloc(int32_t _cbVideo, IZFrame_I **_ppFrameRes) = 0;
};
Z_INTERFACE_ID(IZFrameShell, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x25);
