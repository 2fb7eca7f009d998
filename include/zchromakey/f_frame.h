// `IZFFrame`: the wide view of a frame, for hosts of the Tessilu family. It does not continue `IZFrame`; a frame is asked for
// it.
#pragma once

#include "zchromakey/frame.h"
#include "zchromakey/frame_info.h"

/// Operations that read pixels first wait for an asynchronous fill of the frame to end. `_nCookie` belongs to the caller
/// and is handed through. Gains are in dB and run from start to end.
struct IZFFrame : IUnknown {
    // State.
    virtual HRESULT Z_STDCALL ZFProcessIdGet(uint32_t *_pnProcessId) = 0;
    virtual HRESULT Z_STDCALL ZFAVPropsGet(Z_AV_PROPS *_pProps, int32_t *_pnAudioSamples) = 0;
    /// The checked form: the description cannot state more than the buffer holds. `_bsChannels` maps audio channels.
    virtual HRESULT Z_STDCALL ZFAVPropsSet(Z_AV_PROPS *_pProps, BSTR _bsChannels) = 0;
    virtual HRESULT Z_STDCALL ZFTimeGet(Z_TIME *_pTime) = 0;
    virtual HRESULT Z_STDCALL ZFTimeSet(Z_TIME *_pTime) = 0;
    /// `S_OK` when a flag of the mask is set, otherwise `S_FALSE`. The result may be null.
    virtual HRESULT Z_STDCALL ZFFlagsTest(eZFrameFlags _eMask, int32_t *_pnResult) = 0;
    virtual HRESULT Z_STDCALL ZFInfoGet(ZF_INFO *_pInfo) = 0;

    // Audio.
    virtual HRESULT Z_STDCALL ZFAudioGetBytes(int32_t *_pcbSize, int64_t *_ppbAudio) = 0;
    /// One channel of the sound; `_bGrow` makes it when it is not there.
    virtual HRESULT Z_STDCALL ZFAudioChannelGet(int32_t _nIndex, int64_t _bGrow, int32_t *_pcbSize, int64_t *_ppbChannel) = 0;
    /// Makes the sound of the channels that were changed.
    virtual HRESULT Z_STDCALL ZFAudioChannelsCommit() = 0;
    /// Sets the format and the number of samples.
    virtual HRESULT Z_STDCALL ZFAudioSamplesSet(Z_AUD_PROPS *_pProps, int32_t _nSamples) = 0;
    /// Replaces the sound and its format.
    virtual HRESULT Z_STDCALL ZFAudioSet(Z_AUD_PROPS *_pProps, int32_t _cbSize, int64_t _pbAudio) = 0;
    /// Adds `_nCount` samples of another frame.
    virtual HRESULT Z_STDCALL ZFAudioAdd(IZFFrame *_pSource, int32_t *_pnSourcePos, int32_t *_pnDestPos, int32_t _nCount,
                                         double _dblStart, double _dblEnd, int32_t _bFade) = 0;
    /// Mixes the sound of another frame in.
    virtual HRESULT Z_STDCALL ZFAudioMix(IZFFrame *_pSource, double _dblStart, double _dblEnd, int32_t _bFade, BSTR _bsKey) = 0;
    /// Copies channels to another frame.
    virtual HRESULT Z_STDCALL ZFAudioCopyTo(BSTR _bsChannels, IZFFrame *_pDest) = 0;
    /// As `IZFrame::FrameAudioSaveToFile`.
    virtual HRESULT Z_STDCALL ZFAudioSaveToFile(BSTR _bsFileName, int32_t _bAppend) = 0;
    /// Takes samples of a WAV file.
    virtual HRESULT Z_STDCALL ZFAudioFromFile(BSTR _bsFileName, int32_t _nFirstSample, int32_t _nSamples) = 0;
    /// Changes the loudness of channels.
    virtual HRESULT Z_STDCALL ZFAudioGain(BSTR _bsChannels, double _dblStart, double _dblEnd) = 0;

    // Video.
    virtual HRESULT Z_STDCALL ZFVideoGetBytes(int32_t *_pcbSize, int64_t *_ppbVideo) = 0;
    /// As `IZFrame::FrameVideoGetHbitmap`, for a frame that is being filled when that is done.
    virtual HRESULT Z_STDCALL ZFVideoGetHbitmap(int64_t *_pcpHBitmap) = 0;
    /// As `IZFrame::FrameVideoSaveToFile`, for a frame that is being filled when that is done.
    virtual HRESULT Z_STDCALL ZFVideoSaveToFile(BSTR _bsFileName) = 0;
    virtual HRESULT Z_STDCALL ZFCut(int32_t _nField, tagRECT *_pRect, IZFFrame **_ppFrameRes) = 0;
    virtual HRESULT Z_STDCALL ZFClone(IZFFrame **_ppCloneFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat) = 0;
    /// Lays `_pFrameOver` over this frame, picture and sound. `_nFlags`: 0x1000 mixes the first field in time alone, 0x2000 the
    /// second. Options, as name=value pairs:
    /// - audio: mix the overlay's sound into this frame's, when this frame has a description of sound (true; with the flag
    ///   0x2000 false).
    /// - audio_gain: decibels. Without it the gain is the share of the frame that the overlay covers, times the opacity.
    /// - symmetric_gain: the fade of `ZFAudioMix` (true).
    /// - video: mix the picture (true).
    /// - async: do so on another thread (false). Who asks for the frame's picture by this interface waits for it.
    ///
    /// The overlay is used in this frame's format. A converted copy is kept on it as the attached object "MIX_CC" and used
    /// again for every frame of this format. The opacities of an ARGB32 overlay, where its own are not in the pixels any more,
    /// and those of `_pMask` (its alpha, else its luma, scaled to the overlay) are kept as "MASK8". Both stay when the pixels
    /// of the overlay or mask change: who redraws one lays a new frame, or takes the objects away by `ZFObjectSet` with null. A
    /// "MASK8" that a host attaches to an overlay without alpha acts as its alpha.
    ///
    /// By its format in the mix: RGB32 is copied without a mask, and below opacity 1 only the first half of each row is mixed;
    /// with a mask it counts as multiplied by it. ARGB32 goes by its alpha, and a mask is not used. UYVY, HDYC and YUY2 are
    /// blended; mixed by a mask frame; or laid as multiplied by their own alpha.
    ///
    /// A frame without rate or time takes the overlay's. `S_OK`, also when nothing lies on the frame, without picture and
    /// without a factory. `E_INVALIDARG` without an overlay, for other formats and for a mask that cannot be made; 0x800710D2
    /// for a mask frame without picture and mask; the failures of `FrameOverlay`. The picture is unchanged after a failure.
    virtual HRESULT Z_STDCALL ZFOverlay(IZFFrame *_pFrameOver, IZFFrame *_pMask, int32_t _nPosX, int32_t _nPosY,
                                        double _dblAlpha, BSTR _bsPropsList, int64_t _nCookie, int32_t _nFlags) = 0;
    /// As `IZFrame::FrameConvert`, for pictures and sound. `*_ppFrameRes` comes in with a frame or null: the result takes its
    /// place on success, and without `_pPropsDest` it is converted to that frame's description. Sound of the frame is
    /// converted to the wanted one where that is complete; a frame without sound takes over the description alone.
    /// `_pnSamples` stays as it is. `E_INVALIDARG` without a place or without a target; 0x80040248 for sounds of two rates.
    virtual HRESULT Z_STDCALL ZFConvert(Z_AV_PROPS *_pPropsDest, IZFFrame **_ppFrameRes, int32_t *_pnSamples, BSTR _bsPropsList,
                                        int64_t _nCookie) = 0;
    /// A frame of another size and, unless 0, format, with square pixels. `_nField` 1 or 2 takes that field alone. The options
    /// are those of `FrameConvert`; without scale_type all of the picture fills the new size, and with fit_ar the size is made
    /// smaller to keep the picture's shape. The result's flags say that the stream breaks here; so do the frame's own after a
    /// failure. `E_INVALIDARG` for a null output.
    virtual HRESULT Z_STDCALL ZFResize(eZFCC _fccPixelFormat, int32_t _nWidth, int32_t _nHeight, int32_t _nField,
                                       IZFFrame **_ppFrameRes, BSTR _bsPropsList, int64_t _nCookie) = 0;
    /// A picture on the way from this frame to the second, made by a processor object, which no frame of this library has:
    /// `E_INVALIDARG` without a second frame, otherwise `E_NOINTERFACE`.
    virtual HRESULT Z_STDCALL ZFTransition(IZFFrame *_pFrameSecond, IZFFrame **_ppFrameRes, double _dblPos, int64_t _nValue,
                                           BSTR _bsPropsList, int64_t _nCookie) = 0;

    // Named data.
    virtual HRESULT Z_STDCALL ZFDataGetByIndex(int32_t _nIndex, BSTR *_pbsName, int32_t *_pcbData, int64_t *_ppbData) = 0;
    virtual HRESULT Z_STDCALL ZFDataGet(BSTR _bsName, int32_t *_pcbData, int64_t *_ppbData) = 0;
    virtual HRESULT Z_STDCALL ZFDataSet(BSTR _bsName, int32_t _cbData, int64_t _pbData) = 0;
    virtual HRESULT Z_STDCALL ZFObjectGetByIndex(int32_t _nIndex, BSTR *_pbsName, IUnknown **_ppObject, int32_t _bLocal) = 0;
    virtual HRESULT Z_STDCALL ZFObjectGet(BSTR _bsName, IUnknown **_ppObject, int32_t _bLocal) = 0;
    virtual HRESULT Z_STDCALL ZFObjectSet(BSTR _bsName, IUnknown *_pObject) = 0;
    virtual HRESULT Z_STDCALL ZFTextGetByIndex(int32_t _nIndex, BSTR *_pbsName, BSTR *_pbsText) = 0;
    virtual HRESULT Z_STDCALL ZFTextGet(BSTR _bsName, BSTR *_pbsText) = 0;
    virtual HRESULT Z_STDCALL ZFTextSet(BSTR _bsName, BSTR _bsText) = 0;
    /// The stored form of `IZFrame_I::ZFAddToStream`, without objects, in a block of the task allocator; the caller frees it.
    virtual HRESULT Z_STDCALL ZFSaveAll(int32_t *_pcbBlock, int64_t *_ppbBlock, int32_t _nFlags) = 0;
    /// Reads such a block. One that is cut gives what is there, and no failure, as soon as its first word is whole.
    virtual HRESULT Z_STDCALL ZFLoadAll(int32_t _cbBlock, int64_t _pbBlock, int32_t _nFlags) = 0;

    // Asynchronous work and text on the picture.
    virtual HRESULT Z_STDCALL ZFAsyncWait() = 0;
    /// Draws text on the picture. Not implemented yet: `E_NOTIMPL`.
    virtual HRESULT Z_STDCALL ZFPrint(BSTR _bsText, double _dblSize, PrintRect *_pRect, uint32_t _nFlags, BSTR _bsPropsList,
                                      int64_t _nCookie) = 0;
    /// `ZFOverlay` at the top left corner of a rectangle: by its `eType` in pixels (0), in fractions of this frame (1), or on a
    /// grid of text rows (so many; 14 for 2) inside margins of 7 %. The corner is truncated to whole pixels. `E_INVALIDARG`
    /// without a rectangle.
    virtual HRESULT Z_STDCALL ZFOverlayRect(IZFFrame *_pFrameOver, IZFFrame *_pMask, PrintRect *_pRect, int32_t _nFlags,
                                            double _dblAlpha, BSTR _bsPropsList, int64_t _nCookie) = 0;
};
Z_INTERFACE_ID(IZFFrame, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x22);
