// `CCoZFrame2`: the one media object. One picture, its sound, its time and named data, under three views.
#pragma once

#include <atomic>
#include <shared_mutex>

#include "frames/audio/audio_work.h"
#include "frames/data/named_data.h"
#include "frames/memory/blob_holder.h"
#include "frames/memory/ipc_buffer.h"
#include "frames/views/f_factory.h"
#include "frames/views/frame_i.h"
#include "frames/views/frame_shell.h"
#include "frames/views/frames_i.h"
#include "frames/views/sample_buffer.h"
#include "platform/com_ptr.h"
#include "platform/object.h"
#include "platform/sync.h"

namespace zck {

class PixelsIn;
struct FrameLoad;
struct OverlayCall;
struct OverlayOptions;
struct SeenFrame;
struct PixelsOut;

/// Pixels in this process. `section`, where it is known, keeps the memory from being reused for another frame; `keeper` is
/// what a frame that borrows them itself keeps alive for them.
struct FramePixels {
    uint8_t *data = nullptr;
    uint32_t size = 0;
    ComPtr<IPCBuffer> section;
    ComPtr<IUnknown> keeper;
};

/// A frame. Made by the factory and by its own clones only.
///
/// Where the pixels are, and who keeps them alive:
///   own: `m_pSharedBuffer` is a section of the factory's pool, `m_pSource` is empty; the section goes back to the pool.
///   borrowed: `m_video` points into the memory of `m_pSource`, whose section, if it is known, is counted in `m_pBorrowed`. A
///     clone of a borrower borrows from the same source, so that chains of clones have no depth.
///   borrowed across processes: `m_pSharedBuffer` is the source's section opened here, `m_pSource` is the source.
///   external: `m_video` points at a caller's block, `m_pSource` is the caller's keeper, or empty.
///
/// Locks: `m_lockMedia` guards description, time, pixels and sound; `m_named` has its own. No lock is held while another
/// object is called: what is needed is taken under the lock first. Where both are held, data comes before media.
/// The factory is set before the frame is handed out and does not change.
class CCoZFrame2 final : public CoObject<IZFrame_I, IZFFrame, INSSBuffer3, IZFrameShell> {
public:
    CCoZFrame2() noexcept = default;
    void FinalRelease() noexcept override;

    // Construction, before the frame is handed out. A failure leaves a frame that may only be released.

    /// An empty frame that knows its factory, which may be null.
    static HRESULT Create(IZFrames_I *factory, ComPtr<CCoZFrame2> &out) noexcept;
    /// Gets an own section for `size` bytes and shows it. `E_OUTOFMEMORY` when none comes or it is too small; the frame then
    /// stays without pixels.
    HRESULT VideoAlloc(uint32_t size) noexcept;
    /// Points at memory of others, which `keeper` (may be null) keeps alive; `offset` bytes at its start are skipped.
    void VideoBorrow(const FramePixels &pixels, uint32_t offset, IUnknown *keeper) noexcept;
    /// Reserves zeroed sound, or copies `data`.
    HRESULT AudioAssign(const void *data, uint32_t size) noexcept;
    /// Takes time, description and sound of a frame of this process, and tells where its pixels are; no pixel is touched.
    HRESULT MediaTake(CCoZFrame2 &source, bool audio, FramePixels &pixels) noexcept;
    /// The same with a copy of the pixels, all of one moment. Without memory for them the frame has none, and `S_OK` comes.
    HRESULT MediaCopy(CCoZFrame2 &source, bool audio, FramePixels &pixels) noexcept;
    /// The same, and runs `work` before a writer of the source can come in between. `work` calls no other object.
    template <class Work>
    HRESULT MediaTakeFor(CCoZFrame2 &source, bool audio, FramePixels &pixels, Work &&work) {
        const std::shared_lock lock(source.m_lockMedia);
        const HRESULT hr = source.MediaGive(*this, audio, pixels);
        return SUCCEEDED(hr) ? work() : hr;
    }
    /// The same of a foreign frame, which is asked for what the clone's type wants and no more.
    HRESULT MediaTake(IZFrame_I *source, int32_t type, FramePixels &pixels) noexcept;
    HRESULT MediaTake(IZFFrame *source, bool audio, FramePixels &pixels, ZF_INFO &info) noexcept;
    /// The same with the sound, and for a foreign frame as far as possible at one moment.
    HRESULT MediaTakeWhole(IZFrame_I *source, FramePixels &pixels) noexcept;
    HRESULT MediaTakeWhole(IZFFrame *source, FramePixels &pixels) noexcept;
    /// Ancillary data under the names that its codes have.
    HRESULT DataTakeFrom(IZFrame_I *source) noexcept;
    HRESULT DataTakeFrom(IZFFrame *source) noexcept;
    /// Zeroes an own section that held other pixels before.
    void VideoZero() noexcept;
    Z_AV_PROPS &Props() noexcept { return m_props; }
    FramePixels Pixels() const noexcept;

    /// To be held by whoever fills the pixels of a frame that others know already. Operations of `IZFFrame` that read pixels
    /// wait for it, those of `IZFrame` do not.
    CriticalSection &AsyncSection() noexcept { return m_csAsync; }

    /// The pixels of a frame that others know too.
    FramePixels PixelsGet() noexcept;
    /// The same, with the description and the time of that moment.
    FramePixels PictureGet(Z_TIME &time, Z_AV_PROPS &props) noexcept;

    /// Clones along the roads of the two families. `type` is a set of `eZFrameClone` bits; `offset` bytes at the start of
    /// borrowed pixels are skipped. A copy whose section does not come succeeds without pixels.
    static HRESULT CloneQuorvex(IZFrames_I *factory, IZFrame_I *source, int32_t type, uint32_t offset,
                                ComPtr<CCoZFrame2> &out) noexcept;
    static HRESULT CloneTessilu(IZFrames_I *factory, IZFFrame *source, int32_t type, uint32_t offset,
                                ComPtr<CCoZFrame2> &out) noexcept;

    // IZFrame
    HRESULT Z_STDCALL FrameAVPropsGet(Z_AV_PROPS *_pProps) override;
    HRESULT Z_STDCALL FrameAVPropsSet(Z_AV_PROPS *_pProps) override;
    HRESULT Z_STDCALL FrameTimeGet(Z_TIME *_pTime) override;
    HRESULT Z_STDCALL FrameTimeSet(Z_TIME *_pTime) override;
    HRESULT Z_STDCALL FrameAudioGetBytes(int32_t *_pcbSize, int64_t *_ppbAudio) override;
    HRESULT Z_STDCALL FrameVideoGetBytes(int32_t *_pcbSize, int64_t *_ppbVideo) override;
    HRESULT Z_STDCALL FrameVideoGetHbitmap(int64_t *_pcpHBitmap) override;
    HRESULT Z_STDCALL FrameVideoSaveToFile(BSTR _bsFileName) override;
    HRESULT Z_STDCALL FrameAudioSaveToFile(BSTR _bsFileName, int32_t _bAppend) override;
    HRESULT Z_STDCALL FrameDataGetByIndex(int32_t _nIndex, int32_t *_pnDataFCC, int32_t *_pcbANCData,
                                          int64_t *_ppbANCData) override;
    HRESULT Z_STDCALL FrameDataGet(int32_t _nDataFCC, int32_t *_pcbANCData, int64_t *_ppbANCData) override;
    HRESULT Z_STDCALL FrameDataSet(int32_t _nDataFCC, int32_t _cbANCData, int64_t _pbANCData) override;
    HRESULT Z_STDCALL FrameClone(IZFrame **_ppCloneFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat) override;
    HRESULT Z_STDCALL FrameCut(int32_t _nField, tagRECT *_pRect, IZFrame **_ppFrameRes) override;
    HRESULT Z_STDCALL FrameConvert(Z_VID_PROPS *_pVidPropsDest, IZFrame **_ppFrameRes, BSTR _bsPropsList) override;
    HRESULT Z_STDCALL FrameOverlay(IZFrame *_pFrameOver, int32_t _nPosX, int32_t _nPosY, double _dblAlpha,
                                   BSTR _bsPropsList) override;
    HRESULT Z_STDCALL FrameRelease() override;

    // IZFrame_I
    HRESULT Z_STDCALL FrameProcessIdGet(uint32_t *_pnProcessId) override;
    HRESULT Z_STDCALL FrameBufferIdGet(int64_t *_pnBufferId) override;
    HRESULT Z_STDCALL FrameAudioCopyGet(int32_t *_pcbSize, int64_t *_ppbAudio) override;
    HRESULT Z_STDCALL FrameVideoCopyGet(int32_t *_pcbSize, int64_t *_ppbVideo) override;
    HRESULT Z_STDCALL FrameVideoOffsetGet(int32_t *_pnOffset) override;
    HRESULT Z_STDCALL FrameAudioReset(int32_t _cbSize, int64_t _pbAudio) override;
    HRESULT Z_STDCALL FrameInfoGet(Z_TIME *_pTime, Z_AV_PROPS *_pProps, int32_t *_pcbVideo, int32_t *_pcbAudio) override;
    HRESULT Z_STDCALL FrameInfoPtrGet(Z_TIME *_pTime, Z_AV_PROPS *_pProps, int32_t *_pcbAudio, int64_t *_ppbAudio,
                                      int32_t *_pcbVideo, int64_t *_ppbVideo) override;
    HRESULT Z_STDCALL FrameDataPack(int32_t _nDataFCC, int32_t *_pcbData, int64_t *_ppbData) override;
    HRESULT Z_STDCALL FrameDataCopyFrom(IZFrame *_pFrame, int32_t _nMode) override;
    HRESULT Z_STDCALL FrameAudioResetFwd(int32_t _cbSize, int64_t _pbAudio) override;
    HRESULT Z_STDCALL FrameAudioForward(BSTR _bsFileName, int32_t _nFirstSample, int32_t _nSamples, int32_t _bFlag) override;
    HRESULT Z_STDCALL ZFSaveToStream(IUnknown **_ppStream, int32_t _nFlags) override;
    HRESULT Z_STDCALL ZFAddToStream(IUnknown *_pStream, int32_t _nFlags) override;
    HRESULT Z_STDCALL ZFLoadFromStream(IUnknown *_pStream, int32_t _nFlags) override;

    // IZFFrame
    HRESULT Z_STDCALL ZFProcessIdGet(uint32_t *_pnProcessId) override;
    HRESULT Z_STDCALL ZFAVPropsGet(Z_AV_PROPS *_pProps, int32_t *_pnAudioSamples) override;
    HRESULT Z_STDCALL ZFAVPropsSet(Z_AV_PROPS *_pProps, BSTR _bsChannels) override;
    HRESULT Z_STDCALL ZFTimeGet(Z_TIME *_pTime) override;
    HRESULT Z_STDCALL ZFTimeSet(Z_TIME *_pTime) override;
    HRESULT Z_STDCALL ZFFlagsTest(eZFrameFlags _eMask, int32_t *_pnResult) override;
    HRESULT Z_STDCALL ZFInfoGet(ZF_INFO *_pInfo) override;
    HRESULT Z_STDCALL ZFAudioGetBytes(int32_t *_pcbSize, int64_t *_ppbAudio) override;
    HRESULT Z_STDCALL ZFAudioChannelGet(int32_t _nIndex, int64_t _bGrow, int32_t *_pcbSize, int64_t *_ppbChannel) override;
    HRESULT Z_STDCALL ZFAudioChannelsCommit() override;
    HRESULT Z_STDCALL ZFAudioSamplesSet(Z_AUD_PROPS *_pProps, int32_t _nSamples) override;
    HRESULT Z_STDCALL ZFAudioSet(Z_AUD_PROPS *_pProps, int32_t _cbSize, int64_t _pbAudio) override;
    HRESULT Z_STDCALL ZFAudioAdd(IZFFrame *_pSource, int32_t *_pnSourcePos, int32_t *_pnDestPos, int32_t _nCount,
                                 double _dblStart, double _dblEnd, int32_t _bFade) override;
    HRESULT Z_STDCALL ZFAudioMix(IZFFrame *_pSource, double _dblStart, double _dblEnd, int32_t _bFade, BSTR _bsKey) override;
    HRESULT Z_STDCALL ZFAudioCopyTo(BSTR _bsChannels, IZFFrame *_pDest) override;
    HRESULT Z_STDCALL ZFAudioSaveToFile(BSTR _bsFileName, int32_t _bAppend) override;
    HRESULT Z_STDCALL ZFAudioFromFile(BSTR _bsFileName, int32_t _nFirstSample, int32_t _nSamples) override;
    HRESULT Z_STDCALL ZFAudioGain(BSTR _bsChannels, double _dblStart, double _dblEnd) override;
    HRESULT Z_STDCALL ZFVideoGetBytes(int32_t *_pcbSize, int64_t *_ppbVideo) override;
    HRESULT Z_STDCALL ZFVideoGetHbitmap(int64_t *_pcpHBitmap) override;
    HRESULT Z_STDCALL ZFVideoSaveToFile(BSTR _bsFileName) override;
    HRESULT Z_STDCALL ZFCut(int32_t _nField, tagRECT *_pRect, IZFFrame **_ppFrameRes) override;
    HRESULT Z_STDCALL ZFClone(IZFFrame **_ppCloneFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat) override;
    HRESULT Z_STDCALL ZFOverlay(IZFFrame *_pFrameOver, IZFFrame *_pMask, int32_t _nPosX, int32_t _nPosY, double _dblAlpha,
                                BSTR _bsPropsList, int64_t _nCookie, int32_t _nFlags) override;
    HRESULT Z_STDCALL ZFConvert(Z_AV_PROPS *_pPropsDest, IZFFrame **_ppFrameRes, int32_t *_pnSamples, BSTR _bsPropsList,
                                int64_t _nCookie) override;
    HRESULT Z_STDCALL ZFResize(eZFCC _fccPixelFormat, int32_t _nWidth, int32_t _nHeight, int32_t _nField,
                               IZFFrame **_ppFrameRes, BSTR _bsPropsList, int64_t _nCookie) override;
    HRESULT Z_STDCALL ZFTransition(IZFFrame *_pFrameSecond, IZFFrame **_ppFrameRes, double _dblPos, int64_t _nValue,
                                   BSTR _bsPropsList, int64_t _nCookie) override;
    HRESULT Z_STDCALL ZFDataGetByIndex(int32_t _nIndex, BSTR *_pbsName, int32_t *_pcbData, int64_t *_ppbData) override;
    HRESULT Z_STDCALL ZFDataGet(BSTR _bsName, int32_t *_pcbData, int64_t *_ppbData) override;
    HRESULT Z_STDCALL ZFDataSet(BSTR _bsName, int32_t _cbData, int64_t _pbData) override;
    HRESULT Z_STDCALL ZFObjectGetByIndex(int32_t _nIndex, BSTR *_pbsName, IUnknown **_ppObject, int32_t _bLocal) override;
    HRESULT Z_STDCALL ZFObjectGet(BSTR _bsName, IUnknown **_ppObject, int32_t _bLocal) override;
    HRESULT Z_STDCALL ZFObjectSet(BSTR _bsName, IUnknown *_pObject) override;
    HRESULT Z_STDCALL ZFTextGetByIndex(int32_t _nIndex, BSTR *_pbsName, BSTR *_pbsText) override;
    HRESULT Z_STDCALL ZFTextGet(BSTR _bsName, BSTR *_pbsText) override;
    HRESULT Z_STDCALL ZFTextSet(BSTR _bsName, BSTR _bsText) override;
    HRESULT Z_STDCALL ZFSaveAll(int32_t *_pcbBlock, int64_t *_ppbBlock, int32_t _nFlags) override;
    HRESULT Z_STDCALL ZFLoadAll(int32_t _cbBlock, int64_t _pbBlock, int32_t _nFlags) override;
    HRESULT Z_STDCALL ZFAsyncWait() override;
    HRESULT Z_STDCALL ZFPrint(BSTR _bsText, double _dblSize, PrintRect *_pRect, uint32_t _nFlags, BSTR _bsPropsList,
                              int64_t _nCookie) override;
    HRESULT Z_STDCALL ZFOverlayRect(IZFFrame *_pFrameOver, IZFFrame *_pMask, PrintRect *_pRect, int32_t _nFlags,
                                    double _dblAlpha, BSTR _bsPropsList, int64_t _nCookie) override;

    // INSSBuffer3
    HRESULT Z_STDCALL GetLength(DWORD *_pnLength) override;
    HRESULT Z_STDCALL SetLength(DWORD _nLength) override;
    HRESULT Z_STDCALL GetMaxLength(DWORD *_pnLength) override;
    HRESULT Z_STDCALL GetBuffer(BYTE **_ppbBuffer) override;
    HRESULT Z_STDCALL GetBufferAndLength(BYTE **_ppbBuffer, DWORD *_pnLength) override;
    HRESULT Z_STDCALL GetSampleProperties(DWORD _cbProps, BYTE *_pbProps) override;
    HRESULT Z_STDCALL SetSampleProperties(DWORD _cbProps, BYTE *_pbProps) override;
    HRESULT Z_STDCALL SetProperty(GUID _id, void *_pValue, DWORD _cbValue) override;
    HRESULT Z_STDCALL GetProperty(GUID _id, void *_pValue, DWORD *_pcbValue) override;

    // IZFrameShell
    HRESULT Z_STDCALL CloneShell(IZFrame *_pFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat, IZFrame_I **_ppClone,
                                 IZFrame_I **_ppLocal, ZF_SHELL *_pShell) override;
    HRESULT Z_STDCALL UnwrittenAlloc(int32_t _cbVideo, IZFrame_I **_ppFrameRes) override;

protected:
    void *InterfaceFind(REFIID riid) noexcept override;

private:
    struct AudioView {
        uint8_t *data;
        uint32_t size;
    };

    // With the media lock held.
    uint32_t VideoSize() const;
    uint8_t *VideoData() const;
    AudioView Audio() const;
    int32_t AudioSampleCount() const;
    AudioBlock AudioOwn() const;
    HRESULT VideoRecordSet(Z_VID_PROPS asked);
    HRESULT AudioRecordSet(Z_AUD_PROPS asked, TextView map);
    void AudioReplace(CBLOBHolder<CHeapAlloc> &block);
    HRESULT AudioMappedGive(TextView map, Z_AUD_PROPS &props, CBLOBHolder<CHeapAlloc> &bytes) const;
    HRESULT AudioBegin(const Z_AUD_PROPS &props, int64_t samples);
    HRESULT MediaGive(CCoZFrame2 &clone, bool audio, FramePixels &pixels);

    // What the picture operations of images work on, where this frame's own format will not do. Without a lock.
    HRESULT CloneForImage(ComPtr<IZFrame_I> &clone);

    // The sound of any frame, copied; its media lock is left when this returns.
    static HRESULT SoundTake(IZFFrame *source, Z_AUD_PROPS &props, CBLOBHolder<CHeapAlloc> &bytes);

    // Conversions of the wide view.
    static HRESULT SoundConvert(IZFFrame *result, const Z_AUD_PROPS &wanted);
    HRESULT ResizeMarked(Z_AV_PROPS &target, IZFFrame **result, BSTR options, int64_t cookie);

    // Overlays.
    void OverlaySound(const OverlayCall &call, const Z_VID_PROPS &over, const OverlayOptions &options);
    void OverlayTime(const SeenFrame &over);
    HRESULT OverlayVideo(const OverlayCall &call);
    HRESULT OverlayLater(const OverlayCall &call);

    // Parts of the roads of cloning; they run on the clone.
    HRESULT CloneMedia(IZFrame_I *source, int32_t type, uint32_t offset);
    HRESULT CloneData(IZFrame_I *source, int32_t type);
    void PropsPrune(bool video, int32_t type);
    HRESULT CloneRemote(IZFrame_I *source, int32_t type, uint32_t offset);
    HRESULT CloneRemoteVideo(IZFrame_I *source, int32_t type, uint32_t offset, uint32_t size);
    HRESULT CloneRemoteAudio(IZFrame_I *source);
    void ClonePixels(const FramePixels &pixels, IUnknown *source, int32_t type, uint32_t offset);
    void CloneObjects(IZFFrame *source, int32_t count, bool stopAtFailure);
    void CloneNamed(IZFFrame *source, const ZF_INFO &info);

    // Named data.
    HRESULT DataStore(TextView name, int32_t size, int64_t value);
    HRESULT DataTakeOne(IZFFrame *source, int32_t index);
    HRESULT ObjectGive(ComPtr<IUnknown> object, IUnknown **out, bool local);

    // The stored forms.
    static int64_t SectionIdOf(IUnknown *frame);
    template <class Body>
    HRESULT ContentGive(int32_t flags, Body body);
    HRESULT StreamWrite(IStream *stream, int32_t flags, bool sized);
    template <class Body>
    HRESULT Load(int32_t flags, uint32_t start, Body body);
    HRESULT BlockLoad(int32_t size, int64_t block, int32_t flags, uint32_t start);
    void PixelsReplace(PixelsIn &in, PixelsOut &out) noexcept;
    void MediaReplace(FrameLoad &load) noexcept;
    HRESULT CloneStored(IZFFrame *source, int32_t type, uint32_t offset);

    Z_TIME m_frameTime{};
    Z_AV_PROPS m_props{};
    ComPtr<IPCBuffer> m_pSharedBuffer;
    ComPtr<IPCBuffer> m_pBorrowed;
    uint32_t m_nVideoOffset = 0;
    CBLOBHolder<CFakeAlloc> m_video;
    CBLOBHolder<CHeapAlloc> m_audio;
    CBLOBHolder<CCoTaskAlloc> m_audioRef;
    ZChannelsBuffer m_channels;    // a copy of the sound by channels, as asked for; empty again when other sound comes
    ComPtr<IUnknown> m_pSource;
    ComPtr<IZFrames_I> m_pFactory;
    CriticalSection m_csAsync;
    FrameRWLock m_lockMedia;
    NamedData m_named;
    std::atomic<int32_t> m_nSampleLength{-1};    // as set through INSSBuffer3; the video size while negative
};

}    // namespace zck

/// The class itself, for frames of this module among each other. The identifier is made anew in each process and module, so
/// that nothing else ever answers it.
template <>
struct ZIidHolder<zck::CCoZFrame2> {
    static const IID &Get();
};
