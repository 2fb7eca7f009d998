// `IZKey`: the operator's side of a key. A key object holds a reference frame, edits the key on it and answers each edit
// with a preview frame.
#pragma once

#include "zchromakey/frame.h"
#include "zchromakey/key_types.h"

/// A key under construction. Free-threaded. Every `_ppZFrameRes` receives the preview frame, with a reference for the caller.
struct IZKey : IUnknown {
    /// Sets the frame for key detection and/or the background.
    virtual HRESULT Z_STDCALL KeyFrameSet(IUnknown *_pZFrameKeyingOrNull, IUnknown *_pZFrameBGOrNull) = 0;
    /// The preview of the frame for key detection, and the background.
    virtual HRESULT Z_STDCALL KeyFrameGet(IUnknown **_ppZFrameRes, IUnknown **_ppZFrameBG) = 0;
    /// Detects the key in the frame.
    virtual HRESULT Z_STDCALL KeyDetect(BSTR _bsProps, IUnknown **_ppZFrameRes) = 0;
    /// Adds the colour at a point to the key.
    virtual HRESULT Z_STDCALL KeyAddPoint(int32_t _nXPosPixels, int32_t _nYPosPixels, BSTR _bsProps,
                                          IUnknown **_ppZFrameRes) = 0;
    /// Excludes the colour at a point from the key.
    virtual HRESULT Z_STDCALL KeyExcludePoint(int32_t _nXPosPixels, int32_t _nYPosPixels, BSTR _bsProps,
                                              IUnknown **_ppZFrameRes) = 0;
    /// Adds the colours of a rectangle to the key.
    virtual HRESULT Z_STDCALL KeyAddRect(int32_t _nX1PosPixels, int32_t _nY1PosPixels, int32_t _nX2PosPixels,
                                         int32_t _nY2PosPixels, BSTR _bsProps, IUnknown **_ppZFrameRes) = 0;
    virtual HRESULT Z_STDCALL KeyAdjustSet(eCK_Adjust _eAdjust, double _dblValue, IUnknown **_ppZFrameRes) = 0;
    virtual HRESULT Z_STDCALL KeyAdjustGet(eCK_Adjust _eAdjust, double *_pdblValue) = 0;
    /// Goes back by one state of the history, whatever `_nSteps` holds.
    virtual HRESULT Z_STDCALL KeyStepBack(int32_t _nSteps, IUnknown **_ppZFrameRes) = 0;
    /// Goes forward by one state of the history, whatever `_nSteps` holds.
    virtual HRESULT Z_STDCALL KeyStepFwd(int32_t _nSteps, IUnknown **_ppZFrameRes) = 0;
    virtual HRESULT Z_STDCALL KeyReset(IUnknown **_ppZFrameRes) = 0;
    /// Takes a key from a record; `_pKeyAdjust` may be null. `E_POINTER` for a null `_pvmKey`.
    virtual HRESULT Z_STDCALL KeyRawSet(CHROMA_KEY_RAW *_pvmKey, CK_ADJUST *_pKeyAdjust) = 0;
    /// Gives the key as a record; `_pKeyAdjust` may be null. `E_POINTER` for a null `_pvmKey`.
    virtual HRESULT Z_STDCALL KeyRawGet(CHROMA_KEY_RAW *_pvmKey, CK_ADJUST *_pKeyAdjust) = 0;
};
Z_INTERFACE_ID(IZKey, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x05);
