// `IZFrame_I`: the frame's table continued for hosts of the Quorvex family. A frame is asked for it.
#pragma once

#include "zchromakey/frame.h"

/// Addresses travel as 64-bit integers. A block that an operation hands out comes from the task allocator and is freed by
/// the caller, unless the text calls it a pointer into the frame.
struct IZFrame_I : IZFrame {
    /// Id of the process that runs the object. `E_POINTER` for null.
    virtual HRESULT Z_STDCALL FrameProcessIdGet(uint32_t *_pnProcessId) = 0;
    /// Id of the section that holds the pixels, the frame's own or that of the frame it borrows from; 0x800710D2 when there
    /// is none.
    virtual HRESULT Z_STDCALL FrameBufferIdGet(int64_t *_pnBufferId) = 0;
    /// A copy of the audio. With a null block pointer the size only; a frame with no audio gives 0 and 0.
    virtual HRESULT Z_STDCALL FrameAudioCopyGet(int32_t *_pcbSize, int64_t *_ppbAudio) = 0;
    /// A copy of the pixels; otherwise as `FrameAudioCopyGet`.
    virtual HRESULT Z_STDCALL FrameVideoCopyGet(int32_t *_pcbSize, int64_t *_ppbVideo) = 0;
    /// Bytes between the start of the section's data and the frame's first pixel; without a section, between the start of the
    /// memory that the frame borrows and that pixel.
    virtual HRESULT Z_STDCALL FrameVideoOffsetGet(int32_t *_pnOffset) = 0;
    /// Replaces the audio by `_cbSize` bytes, zero when `_pbAudio` is 0; a size of 0 leaves no audio.
    virtual HRESULT Z_STDCALL FrameAudioReset(int32_t _cbSize, int64_t _pbAudio) = 0;
    /// Time, description and sizes at one moment. Any output may be null.
    virtual HRESULT Z_STDCALL FrameInfoGet(Z_TIME *_pTime, Z_AV_PROPS *_pProps, int32_t *_pcbVideo, int32_t *_pcbAudio) = 0;
    /// The same with pointers into the frame. Any output may be null.
    virtual HRESULT Z_STDCALL FrameInfoPtrGet(Z_TIME *_pTime, Z_AV_PROPS *_pProps, int32_t *_pcbAudio, int64_t *_ppbAudio,
                                              int32_t *_pcbVideo, int64_t *_ppbVideo) = 0;
    /// One entry of ancillary data, or all of them packed (code, length, bytes, again and again) with `_nDataFCC` 0.
    virtual HRESULT Z_STDCALL FrameDataPack(int32_t _nDataFCC, int32_t *_pcbData, int64_t *_ppbData) = 0;
    /// Takes the ancillary data of another frame; with `_nMode` 2 or more it replaces the frame's own. `S_FALSE` when there
    /// was nothing to take.
    virtual HRESULT Z_STDCALL FrameDataCopyFrom(IZFrame *_pFrame, int32_t _nMode) = 0;
    /// `FrameAudioReset` through the object's own table.
    virtual HRESULT Z_STDCALL FrameAudioResetFwd(int32_t _cbSize, int64_t _pbAudio) = 0;
    /// Forwards to `IZFFrame::ZFAudioFromFile`.
    virtual HRESULT Z_STDCALL FrameAudioForward(BSTR _bsFileName, int32_t _nFirstSample, int32_t _nSamples, int32_t _bFlag) = 0;
    /// A new memory stream, at its start, with what the flags (`eZFrameClone` bits) choose of the frame: a bit of the picture,
    /// sound, data with texts and objects. Of pixels the stream holds only the number of their shared memory, which lives as
    /// long as this frame keeps it. The stream is the platform's byte stream interface.
    virtual HRESULT Z_STDCALL ZFSaveToStream(IUnknown **_ppStream, int32_t _nFlags) = 0;
    /// The same at the position of a stream, which small writes are expected not to fail. `E_NOINTERFACE` for what is no
    /// `IStream`.
    virtual HRESULT Z_STDCALL ZFAddToStream(IUnknown *_pStream, int32_t _nFlags) = 0;
    /// Reads a frame at the position of a stream; the flags should be those it was stored with. The old pixels go first where
    /// the flags choose pixels; data join what is there. A frame that borrows its pixels maps the new ones with
    /// `eZFC_VideoRef`, otherwise they are copied. `E_FAIL` for what is no stored frame, 0x80070026 for one that is cut, the
    /// system's error where the pixels are gone: what came before stays in the frame.
    virtual HRESULT Z_STDCALL ZFLoadFromStream(IUnknown *_pStream, int32_t _nFlags) = 0;
};
Z_INTERFACE_ID(IZFrame_I, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x21);
