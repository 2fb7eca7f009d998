// `IZFrame`: one picture, the audio that belongs to it, its time, and named data.
#pragma once

#include "zchromakey/media_types.h"

/// A frame. Reference-counted and free-threaded: any operation may be called from any thread. Pointers that it hands out
/// stay good while the frame lives; pixels may be written by the frame's only owner.
///
/// Every operation returns a status; outputs are written only where the text says so.
struct IZFrame : IUnknown {
    /// Copies the description of the media to `_pProps`. `E_POINTER` for null.
    virtual HRESULT Z_STDCALL FrameAVPropsGet(Z_AV_PROPS *_pProps) = 0;
    /// Takes the description as it stands, or zeroes it with null. Nothing is checked against the buffer; an operation that
    /// later finds the buffer too small for the description answers 0x80040248.
    virtual HRESULT Z_STDCALL FrameAVPropsSet(Z_AV_PROPS *_pProps) = 0;
    /// Copies the time to `_pTime`. `E_POINTER` for null.
    virtual HRESULT Z_STDCALL FrameTimeGet(Z_TIME *_pTime) = 0;
    /// Sets the time, or zeroes it with null.
    virtual HRESULT Z_STDCALL FrameTimeSet(Z_TIME *_pTime) = 0;
    /// Byte count and address of the audio; each output may be null.
    virtual HRESULT Z_STDCALL FrameAudioGetBytes(int32_t *_pcbSize, int64_t *_ppbAudio) = 0;
    /// Byte count and address of the pixels; each output may be null.
    virtual HRESULT Z_STDCALL FrameVideoGetBytes(int32_t *_pcbSize, int64_t *_ppbVideo) = 0;
    /// A platform bitmap of the picture, which the caller destroys.
    virtual HRESULT Z_STDCALL FrameVideoGetHbitmap(int64_t *_pcpHBitmap) = 0;
    /// Saves the picture; the kind of file follows from the extension.
    virtual HRESULT Z_STDCALL FrameVideoSaveToFile(BSTR _bsFileName) = 0;
    /// Saves the audio as a WAV file, or adds it to the end of one.
    virtual HRESULT Z_STDCALL FrameAudioSaveToFile(BSTR _bsFileName, int32_t _bAppend) = 0;
    /// Ancillary data by index, in the order of first insertion.
    virtual HRESULT Z_STDCALL FrameDataGetByIndex(int32_t _nIndex, int32_t *_pnDataFCC, int32_t *_pcbANCData,
                                                  int64_t *_ppbANCData) = 0;
    /// Ancillary data by four-character code, such as 'C608'.
    virtual HRESULT Z_STDCALL FrameDataGet(int32_t _nDataFCC, int32_t *_pcbANCData, int64_t *_ppbANCData) = 0;
    virtual HRESULT Z_STDCALL FrameDataSet(int32_t _nDataFCC, int32_t _cbANCData, int64_t _pbANCData) = 0;
    /// A clone; `_eCloneType` says what it takes over. With `_fccPixelFormat` set and different from the frame's, pixels are
    /// converted, and copied even for a reference. The caller releases the clone.
    virtual HRESULT Z_STDCALL FrameClone(IZFrame **_ppCloneFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat) = 0;
    /// A part of the picture, without copying a pixel. `_nField` above 0 takes field 1 or 2 only; `_pRect` (null or empty:
    /// the whole picture) is in pixels from the top left corner.
    virtual HRESULT Z_STDCALL FrameCut(int32_t _nField, tagRECT *_pRect, IZFrame **_ppFrameRes) = 0;
    /// A frame of another format or size.
    virtual HRESULT Z_STDCALL FrameConvert(Z_VID_PROPS *_pVidPropsDest, IZFrame **_ppFrameRes, BSTR _bsPropsList) = 0;
    /// Mixes `_pFrameOver` over this frame. `_dblAlpha`: 0 transparent (no mix), 1 solid.
    virtual HRESULT Z_STDCALL FrameOverlay(IZFrame *_pFrameOver, int32_t _nPosX, int32_t _nPosY, double _dblAlpha,
                                           BSTR _bsPropsList) = 0;
    /// Does nothing and returns `S_FALSE`: the references do all the work.
    virtual HRESULT Z_STDCALL FrameRelease() = 0;
};
Z_INTERFACE_ID(IZFrame, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x01);
