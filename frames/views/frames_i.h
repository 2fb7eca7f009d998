// `IZFrames_I`: the frame factory's table continued for hosts of the Quorvex family.
#pragma once

#include "frames/views/frame_i.h"
#include "zchromakey/frames.h"

namespace zck {
class IPCBuffer;
}

struct IZFrames_I : IZFrames {
    /// An empty frame of this process with zeroed pixels and audio of the given sizes. It has no description yet.
    virtual HRESULT Z_STDCALL FrameAlloc(int32_t _cbVideo, int32_t _cbAudio, IUnknown *_pKeeper, IZFrame_I **_ppFrameRes) = 0;
    /// A clone in another pixel format; 0 keeps the format.
    virtual HRESULT Z_STDCALL FrameCloneConvert(IZFrame *_pFrame, IZFrame_I **_ppFrameRes, eZFrameClone _eCloneType,
                                                eZFCC _fccPixelFormat) = 0;
    /// As `IZFrame::FrameConvert`, of one or two pictures: two of equal description become the two fields of the result's
    /// source; else the second is there for a missing first. `E_POINTER` for a null output, then for a null target;
    /// `E_INVALIDARG` without a frame.
    virtual HRESULT Z_STDCALL FramesConvert(IZFrame *_pFrame, IZFrame *_pFrameSecond, Z_VID_PROPS *_pVidPropsDest,
                                            IZFrame **_ppFrameRes, BSTR _bsPropsList) = 0;
    /// A section of at least `_cbSize` usable bytes; the caller owns it until `BufferReturn`.
    virtual HRESULT Z_STDCALL BufferGet(int32_t _cbSize, zck::IPCBuffer **_ppBuffer) = 0;
    virtual HRESULT Z_STDCALL BufferReturn(zck::IPCBuffer *_pBuffer) = 0;
    /// The frame itself when it lives in this process, otherwise, or when forced, a clone that borrows everything.
    virtual HRESULT Z_STDCALL FrameMakeLocal(IZFrame *_pFrame, IZFrame_I **_ppFrameRes, int32_t _bForce) = 0;
    /// `FrameCloneConvert` of any object that is a frame.
    virtual HRESULT Z_STDCALL FrameCloneObject(IUnknown *_pObject, IZFrame **_ppFrameRes, eZFrameClone _eCloneType,
                                               eZFCC _fccPixelFormat) = 0;
};
Z_INTERFACE_ID(IZFrames_I, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x23);
