// `IZPlugin` and `IZChromaKey`: the two faces of the keyer. A host puts frames in through the first and sets the key
// through the second; both are views of one object of class `CLSID_ZChromaKey`.
#pragma once

#include "zchromakey/frame.h"
#include "zchromakey/key.h"

/// The road of the frames.
struct IZPlugin : IUnknown {
    /// Keys a frame. The input frame is never changed; the result is a new `eZFCC_ARGB32` frame with premultiplied colour.
    ///
    /// With the property `output.thread` true (the default) the host gets each frame one call late: the first call returns
    /// `S_FALSE` and leaves `_ppFrameRes` as it is. `S_FALSE` also says that the frame was dropped because the output thread
    /// was busy for more than 1000 ms. With `output.thread` false the call keys and returns the frame itself.
    ///
    /// Keying works in blocks of pixels: columns that fill no block at the right edge keep what the plug-in's alpha plane held.
    /// So do the bottom rows that are left when the height is divided by `process.threads`, and a frame of fewer rows than
    /// threads is not keyed at all. Widths that are multiples of 32 and heights that are
    /// multiples of `process.threads` lose nothing.
    ///
    /// `E_INVALIDARG` for a null frame or a null result pointer, and, with `output.thread` false, for a key of type
    /// `eCKT_None`, which gives no frame. `E_NOINTERFACE` for a frame whose clone is none of this family. Otherwise a failure
    /// of the frame's `FrameClone`, `E_POINTER` for a frame without pixels, 0x80040248 for a description that states more than
    /// the pixels, 0x800705B4 when the threads do not end within 10 seconds. The output thread tells no failure: the next
    /// call finds no frame then. One thread delivers; `_llCallbackUserData` and `_pSender` are ignored.
    virtual HRESULT Z_STDCALL OnMediaReceive(int64_t _llCallbackUserData, IUnknown *_pSender, IZFrame *_pFrame,
                                             IZFrame **_ppFrameRes) = 0;
    /// End of the media, or the sender was disconnected. Does nothing; `S_OK`.
    virtual HRESULT Z_STDCALL OnMediaEnd(int64_t _llCallbackUserData, IUnknown *_pSender, uint32_t _dwFlags) = 0;
    /// Does nothing; a pending frame stays pending. `S_OK`.
    virtual HRESULT Z_STDCALL OnMediaFlush(int64_t _llCallbackUserData, IUnknown *_pSender, uint32_t _dwFlags) = 0;
};
Z_INTERFACE_ID(IZPlugin, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x06);

/// The key of the plug-in. A key that is set takes effect at the next frame.
struct IZChromaKey : IUnknown {
    /// Takes the key of a key object, or with null resets the key: a zeroed record, which keys nothing, and the default
    /// adjustment. `S_OK`, whatever the key object answers.
    virtual HRESULT Z_STDCALL KeySet(IZKey *_pKeyObject) = 0;
    /// A key object with the plug-in's key and properties, on the last input frame or on `_pZFrameForAdjustOrNull`.
    /// `_bsProps` overrides properties, such as "background='path'". `E_POINTER` for a null output; 0x80040227 when there is
    /// no frame yet.
    virtual HRESULT Z_STDCALL KeyGet(IUnknown *_pZFrameForAdjustOrNull, IZKey **_ppKeyObject, BSTR _bsProps) = 0;
    /// Takes the key from a record. `E_POINTER` for null.
    virtual HRESULT Z_STDCALL KeyRawSet(CHROMA_KEY_RAW *_pvmKey) = 0;
    /// Gives the key as a record, just as it was set. `E_POINTER` for null.
    virtual HRESULT Z_STDCALL KeyRawGet(CHROMA_KEY_RAW *_pvmKey) = 0;
};
Z_INTERFACE_ID(IZChromaKey, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x07);
