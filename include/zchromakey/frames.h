// `IZFrames`: the frame factory, for hosts that bring no frame model of their own. `ZFramesCreate` (module.h) makes one.
#pragma once

#include "zchromakey/frame.h"

/// Makes frames. Free-threaded. Every frame holds a reference on its factory, and the factory owns the pool of pixel
/// buffers, so that a host keeps one factory and makes all its frames with it. The caller releases what it is handed.
///
/// Pixels lie in shared memory, which other processes of the same user can open. Outside Windows each frame with pixels, and
/// each spare in the pool, holds one file descriptor: a host that keeps many frames raises its soft limit `RLIMIT_NOFILE`,
/// which often is 1024, to the hard one at its start. There `/dev/shm` has to have room for the names, one page each; as long
/// as half of it stays free the pixels lie there too, and elsewhere in memory otherwise. What cannot be had, be it memory, room
/// or a descriptor, is `E_OUTOFMEMORY`, after the pool has given up what lay idle.
struct IZFrames : IUnknown {
    /// A frame of this process: `_pFrame` itself, or a reference clone if it lives in another process or `_bForce` is set.
    /// `E_POINTER` for a null argument, `E_NOINTERFACE` for an object that is no frame of this family, or the status of opening
    /// its pixels.
    virtual HRESULT Z_STDCALL FrameLocal(IUnknown *_pFrame, IZFrame **_ppFrameRes, int32_t _bForce) = 0;
    /// An empty frame with `_cbVideo` bytes of pixels, all 0, and no description; 0 bytes make a frame without pixels. The
    /// keeper is not used. `E_POINTER` for a null output, `E_INVALIDARG` for a negative size, `E_OUTOFMEMORY`.
    virtual HRESULT Z_STDCALL FrameCreate(int32_t _cbVideo, IUnknown *_pKeeper, IZFrame **_ppFrameRes) = 0;
    /// A frame of the given description, with a copy of the pixels at address `_pbVideo`, or filled with "solid_color" when
    /// that is 0 (0, transparent black, unless given). `_bsProps` holds name=value pairs: "solid_color", "audio_samples",
    /// "channels", "rate", "bits". With "audio_samples" and no complete sound format of its own the frame has so many samples
    /// of silence, 2 channels of 16 bits at 48000 a second; a complete format is only noted.
    ///
    /// The description is completed first: a format alone is enough, and so are width, height and pixel format.
    /// `E_POINTER` for a null output; 0x80040248 for a description of no picture or of more than 2 GB; 0x80070005 for pixels
    /// that cannot be read; `E_OUTOFMEMORY`.
    virtual HRESULT Z_STDCALL FrameCreateFromProps(Z_VID_PROPS *_pVidProps, int64_t _pbVideo, IZFrame **_ppFrameRes,
                                                   BSTR _bsProps) = 0;
    /// A frame from an image file: its first picture, with colour multiplied by alpha. PNG, JPEG, TIFF, GIF and BMP are read,
    /// by their content; a .bmp file of 32 bits comes as it stands, and its alpha is what the fourth bytes say, also where
    /// another program left them all 0. A name of no file and without a slash may be a colour ("Orange", "0xFF8000"), which
    /// makes a frame of the NTSC size.
    ///
    /// `_bsProps` holds name=value pairs: "pixel_format" (the file's own, ARGB32 or for a colour ARGB32, unless given),
    /// "bottom-top" for files and formats of the RGB family (false: the top row first), and the sound of
    /// `FrameCreateFromProps`.
    ///
    /// `E_POINTER` for a null output; 0x80070002 for a file that is not there; `E_INVALIDARG` for one that is no image,
    /// `E_FAIL` for an image without a picture that can be read; 0x80040201 for a format to which there is no conversion
    /// (`E_FAIL` for v210); `E_OUTOFMEMORY`, also for a picture of more than 32767 pixels a side or 2 GB, before it is decoded.
    virtual HRESULT Z_STDCALL FrameCreateFromFile(BSTR _bsFileNameOrColor, IZFrame **_ppFrameRes, BSTR _bsProps) = 0;
    /// Always 0x80070002: it looks for a file first, and has no name. Its slot is kept.
    virtual HRESULT Z_STDCALL FrameCreateFromHbitmap(int64_t _pHBitmap, IZFrame **_ppFrameRes, BSTR _bsProps) = 0;
    /// Reserved; `E_NOTIMPL`.
    virtual HRESULT Z_STDCALL FrameCreateReserved() = 0;
};
Z_INTERFACE_ID(IZFrames, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x02);
