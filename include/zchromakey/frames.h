// `IZFrames`: the frame factory, for hosts that bring no frame model of their own. `ZFramesCreate` (module.h) makes one.
#pragma once

#include "zchromakey/frame.h"

/// Makes frames. Free-threaded. Every frame holds a reference on its factory, and the factory owns the pool of pixel
/// buffers, so that a host keeps one factory and makes all its frames with it.
struct IZFrames : IUnknown {
    /// A frame of this process: `_pFrame` itself, or a reference clone if it lives in another process or `_bForce` is set.
    virtual HRESULT Z_STDCALL FrameLocal(IUnknown *_pFrame, IZFrame **_ppFrameRes, int32_t _bForce) = 0;
    /// An empty frame with `_cbVideo` bytes of pixels and no description.
    virtual HRESULT Z_STDCALL FrameCreate(int32_t _cbVideo, IUnknown *_pKeeper, IZFrame **_ppFrameRes) = 0;
    /// A frame of the given description, with a copy of the pixels at address `_pbVideo`, or filled with "solid_color" when
    /// that is 0. `_bsProps` holds name=value pairs: "solid_color", "audio_samples", "channels", "rate", "bits".
    virtual HRESULT Z_STDCALL FrameCreateFromProps(Z_VID_PROPS *_pVidProps, int64_t _pbVideo, IZFrame **_ppFrameRes,
                                                   BSTR _bsProps) = 0;
    /// A frame from an image file, or filled with a colour named by `_bsFileNameOrColor`.
    virtual HRESULT Z_STDCALL FrameCreateFromFile(BSTR _bsFileNameOrColor, IZFrame **_ppFrameRes, BSTR _bsProps) = 0;
    /// A frame from a platform bitmap.
    virtual HRESULT Z_STDCALL FrameCreateFromHbitmap(int64_t _pHBitmap, IZFrame **_ppFrameRes, BSTR _bsProps) = 0;
    /// Reserved; `E_NOTIMPL`.
    virtual HRESULT Z_STDCALL FrameCreateReserved() = 0;
};
Z_INTERFACE_ID(IZFrames, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x02);
