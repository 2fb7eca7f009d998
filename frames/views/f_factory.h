// `IZFFactory`: the frame factory for hosts of the Tessilu family.
#pragma once

#include "frames/views/f_frame.h"

struct IZFFactory : IUnknown {
    /// A frame of this process: the object itself, or a clone that borrows everything.
    virtual HRESULT Z_STDCALL ZFFrameLocal(IUnknown *_pFrame, IZFFrame **_ppFrameRes, int32_t _bForce) = 0;
    virtual HRESULT Z_STDCALL ZFCloneConvert(IUnknown *_pFrame, IZFFrame **_ppFrameRes, eZFrameClone _eCloneType,
                                             eZFCC _fccPixelFormat) = 0;
    virtual HRESULT Z_STDCALL ZFFrameCreate(Z_AV_PROPS *_pProps, int64_t _pbVideo, int32_t _cbAudio, int64_t _pbAudio,
                                            IZFFrame **_ppFrameRes) = 0;
    /// As `IZFrames::FrameCreateFromFile`.
    virtual HRESULT Z_STDCALL ZFFrameCreateFromFile(BSTR _bsFileNameOrColor, IZFFrame **_ppFrameRes, BSTR _bsProps) = 0;
    virtual HRESULT Z_STDCALL ZFFrameCreateFromHbitmap(int64_t _pHBitmap, IZFFrame **_ppFrameRes, BSTR _bsProps) = 0;
    /// A frame over the caller's memory, without a copy. `_pKeeper` keeps the memory alive as long as the frame, and may be
    /// null.
    virtual HRESULT Z_STDCALL ZFFrameWrap(Z_VID_PROPS *_pVidProps, int32_t _cbVideo, int64_t _pbVideo, IUnknown *_pKeeper,
                                          IZFFrame **_ppFrameRes) = 0;
};
Z_INTERFACE_ID(IZFFactory, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x24);
