// `IZFrame`: one picture, the audio that belongs to it, its time, and named data.
#pragma once

#include "zchromakey/media_types.h"

/// A frame. Reference-counted and free-threaded: any operation may be called from any thread. Pointers that it hands out
/// stay good while the frame lives; pixels may be written by the frame's only owner.
///
/// Times are in units of 100 nanoseconds, sizes in bytes. What is handed out as an interface has a reference for the caller.
/// Every operation returns a status: `S_OK`, or what its text says; outputs are written only where the text says so.
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
    /// Byte count and address of the audio, 0 and 0 without any; each output may be null. `S_OK`.
    virtual HRESULT Z_STDCALL FrameAudioGetBytes(int32_t *_pcbSize, int64_t *_ppbAudio) = 0;
    /// Byte count and address of the pixels, from the start of the part that this frame shows; 0 and 0 without any. Each
    /// output may be null. `S_OK`.
    virtual HRESULT Z_STDCALL FrameVideoGetBytes(int32_t *_pcbSize, int64_t *_ppbVideo) = 0;
    /// A platform bitmap (`HBITMAP`) of the picture, 32 bits a pixel, which the caller frees with `DeleteObject`. Formats
    /// outside the RGB family are converted first. The rows of a cut are not told apart from those of the frame that it was cut
    /// from: convert a cut before.
    ///
    /// `E_POINTER` for null; 0x800710D2 without pixels; `E_INVALIDARG` for RGB8; 0x80040248 for a description that exceeds its
    /// buffer; `E_UNEXPECTED` when the platform makes none; `E_OUTOFMEMORY`.
    virtual HRESULT Z_STDCALL FrameVideoGetHbitmap(int64_t *_pcpHBitmap) = 0;
    /// Saves the picture; the kind of file follows from the extension, in any case: .png and .tif or .tiff (with alpha), .jpg
    /// or .jpeg and .gif (without), and BMP for every other name, "*.tga" among them. In a .bmp file an ARGB32 picture keeps
    /// alpha and stands as it is in memory; in all other files the colour is what it was before it was multiplied by alpha.
    /// Formats outside the RGB family are converted to ARGB32 first. Convert a cut before, as its rows are not told apart from
    /// those of the frame that it was cut from.
    ///
    /// 0x800710D2 without pixels; 0x80040248 for a description that exceeds its buffer; 0x80004021 for RGB8 and r210, and when
    /// the system has no encoder for the kind of file; the system's status for a .bmp file of ARGB32, `E_FAIL` for other files
    /// that cannot be written, of which a part may stay; `E_OUTOFMEMORY`.
    virtual HRESULT Z_STDCALL FrameVideoSaveToFile(BSTR _bsFileName) = 0;
    /// Saves the audio as a WAV file, or adds it to the end of one. Adding to a file that holds no sound of the same format
    /// starts it anew.
    virtual HRESULT Z_STDCALL FrameAudioSaveToFile(BSTR _bsFileName, int32_t _bAppend) = 0;
    /// Ancillary data by index, in the order of first insertion: its code, its byte count and its address, which stays good
    /// while the frame holds the entry. A value that was set with a count of 0 comes back in place of the address. Each
    /// output may be null and is cleared first. 0x80070585 for an index out of range.
    virtual HRESULT Z_STDCALL FrameDataGetByIndex(int32_t _nIndex, int32_t *_pnDataFCC, int32_t *_pcbANCData,
                                                  int64_t *_ppbANCData) = 0;
    /// Ancillary data by four-character code, such as 'C608' (low byte first). 0x80070002 when there is none of it.
    virtual HRESULT Z_STDCALL FrameDataGet(int32_t _nDataFCC, int32_t *_pcbANCData, int64_t *_ppbANCData) = 0;
    /// Adds or replaces ancillary data by a copy of `_cbANCData` bytes at the address. A count of 0 keeps `_pbANCData` itself
    /// as a value of 8 bytes; a negative count removes the entry (`S_FALSE` when there was none). Code 0 replaces all
    /// entries by those of a packed block: code, byte count, bytes, and so on. `E_INVALIDARG` for a null address,
    /// `E_OUTOFMEMORY`.
    virtual HRESULT Z_STDCALL FrameDataSet(int32_t _nDataFCC, int32_t _cbANCData, int64_t _pbANCData) = 0;
    /// A clone; `_eCloneType` says what it takes over. With `_fccPixelFormat` set and different from the frame's, pixels are
    /// converted, and copied even for a reference; sound then comes along too. A reference clone keeps the frame alive whose
    /// pixels they are: this one, or the one from which this one borrows them. A copy is of one moment: no call that turns
    /// or renames the picture comes in between. Ancillary data always come along. The caller releases the clone.
    ///
    /// `E_POINTER` for a null output; 0x80040248 when the description does not suit the pixels; `E_OUTOFMEMORY`;
    /// `E_NOINTERFACE` or `E_UNEXPECTED` for a frame without a factory. Pixels that cannot be copied for want of memory are
    /// left out of a clone in the same format, which succeeds.
    virtual HRESULT Z_STDCALL FrameClone(IZFrame **_ppCloneFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat) = 0;
    /// A part of the picture, without copying a pixel. `_nField` above 0 takes field 1 or 2 only; `_pRect` (null or empty:
    /// the whole picture) is in pixels from the top left corner, and is cut to the picture; planar pictures ignore it. Outside
    /// the RGB family its sides move inwards to even columns, and in interlaced pictures to even lines. The cut keeps
    /// the pixels alive as a reference clone does. `E_POINTER` for a null output, `E_NOINTERFACE` for a frame without a
    /// factory.
    virtual HRESULT Z_STDCALL FrameCut(int32_t _nField, tagRECT *_pRect, IZFrame **_ppFrameRes) = 0;
    /// A frame of another format, size, scan or stereo layout. What `_pVidPropsDest` does not say (0) comes from this frame;
    /// time, sound, data and objects come along. The same picture is a clone that shares the pixels. Sources with fields keep
    /// them in targets with fields, and others are made of the first field alone.
    ///
    /// `_bsPropsList` holds name=value pairs; the keywords go without regard to case, and what is unknown counts as missing:
    /// - scale_type: how the picture is fitted, for frames that do not say it themselves: default, none (all of it fills the
    ///   target), letter-box (all of it between black borders), crop (a part of it fills the target), no-scale. By default the
    ///   shapes of both pictures decide.
    /// - scaling_quality: 1 nearest, 2 linear, 4 cubic (the default), 5 B-spline, 6 Catmull-Rom, 7 between these two, 8
    ///   super-sampling, 9 Lanczos; 10 more, from 14 on, for the slower filter that weighs rows by tables; 0 chooses by the
    ///   scans.
    /// - crop: pixels to cut off first: all sides, or left and top, or left, top, right, bottom. Outside the RGB family left
    /// and
    ///   right are rounded to even columns.
    /// - rotate: right or left, before the fitting.
    /// - mirror: horz, vert or both, of the result.
    /// - field: 0 or more keeps both fields of the source.
    ///
    /// `E_POINTER` for a null argument before the list; `E_UNEXPECTED` for a frame without a factory and for pictures without
    /// size; 0x80040248 for a target that cannot be completed and for a frame that states more pixels than it has; 0x80040201
    /// for formats between which there is no way; `E_INVALIDARG` for formats that are not turned, 0x80004001 for formats
    /// that are not mirrored; `E_FAIL`; `E_OUTOFMEMORY`.
    virtual HRESULT Z_STDCALL FrameConvert(Z_VID_PROPS *_pVidPropsDest, IZFrame **_ppFrameRes, BSTR _bsPropsList) = 0;
    /// Lays the picture of `_pFrameOver` over this one, which is changed in place; the overlay never is, also when both share
    /// their memory. `_nPosX`, `_nPosY`: its top left corner, which may be outside; in 4:2:2 pictures columns are rounded
    /// inwards to even ones. `_dblAlpha`: 0 transparent (no mix), 1 solid. The list is not read.
    ///
    /// An ARGB32 overlay is taken as multiplied by its alpha, but over RGB24. Any other is converted into this frame's format
    /// at its size and mixed by the opacity alone, byte by byte: the chroma of 4:2:2 drifts from neutral at partial opacity. An
    /// ARGB32 frame takes it as pixels with alpha, those of an RGB32 overlay as they stand.
    ///
    /// `S_OK`; `S_FALSE` when nothing of the overlay lies on this frame. `E_NOINTERFACE` for null and for what is no frame;
    /// 0x800710D2 when one of the two has no picture; 0x80040200 for a description that is not complete, 0x80040248 for one
    /// that states more than its pixels; 0x80040201 or `E_FAIL` for formats between which there is no way; 0x8004022A for
    /// formats that have no mix; `E_UNEXPECTED` for an overlay of another process and a frame without a factory;
    /// `E_OUTOFMEMORY`. This frame is unchanged after a failure.
    virtual HRESULT Z_STDCALL FrameOverlay(IZFrame *_pFrameOver, int32_t _nPosX, int32_t _nPosY, double _dblAlpha,
                                           BSTR _bsPropsList) = 0;
    /// Does nothing and returns `S_FALSE`: the references do all the work.
    virtual HRESULT Z_STDCALL FrameRelease() = 0;
};
Z_INTERFACE_ID(IZFrame, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x01);
