// `IZFrame_I`: where the pixels live, copies, and everything at one moment.
#include <mutex>
#include <shared_mutex>

#include "frames/object/address.h"
#include "frames/object/frame.h"
#include "platform/copy.h"
#include "platform/process.h"

namespace zck {
namespace {

// A copy for the caller in a block of the task allocator.
HRESULT CopyOut(const void *data, uint32_t size, int32_t *outSize, int64_t *outBlock) {
    void *block = nullptr;
    if (outBlock != nullptr && size != 0) {
        block = CoTaskMemAlloc(size);
        if (block == nullptr) return E_OUTOFMEMORY;
        CopyBytes(block, data, size);
    }
    if (outSize != nullptr) *outSize = static_cast<int32_t>(size);
    if (outBlock != nullptr) *outBlock = AddressOf(block);
    return S_OK;
}

HRESULT CopyOutputsClear(int32_t *outSize, int64_t *outBlock) {
    if (outSize != nullptr) *outSize = 0;
    if (outBlock != nullptr) *outBlock = 0;
    return outSize == nullptr && outBlock == nullptr ? E_POINTER : S_OK;
}

}    // namespace

// The section that a frame of any kind names.
int64_t CCoZFrame2::SectionIdOf(IUnknown *frame) {
    int64_t id = 0;
    if (const auto quorvex = QueryFor<IZFrame_I>(frame)) {
        if (SUCCEEDED(quorvex->FrameBufferIdGet(&id)) && id != 0) return id;
    }
    if (const auto tessilu = QueryFor<IZFFrame>(frame)) {
        ZF_INFO info = {};
        if (SUCCEEDED(tessilu->ZFInfoGet(&info))) return info.llSectionId;
    }
    return 0;
}

HRESULT CCoZFrame2::FrameProcessIdGet(uint32_t *_pnProcessId) {
    if (_pnProcessId == nullptr) return E_POINTER;
    *_pnProcessId = CurrentProcessId();
    return S_OK;
}

HRESULT CCoZFrame2::FrameBufferIdGet(int64_t *_pnBufferId) {
    if (_pnBufferId == nullptr) return E_POINTER;
    *_pnBufferId = 0;
    ComPtr<IUnknown> source;
    {
        const std::shared_lock lock(m_lockMedia);
        if (const ComPtr<IPCBuffer> section = Pixels().section) {
            *_pnBufferId = static_cast<int64_t>(section->BufferId());
            return S_OK;
        }
        source = m_pSource;
    }
    *_pnBufferId = SectionIdOf(source.get());
    return *_pnBufferId != 0 ? S_OK : kErrorEmpty;
}

HRESULT CCoZFrame2::FrameAudioCopyGet(int32_t *_pcbSize, int64_t *_ppbAudio) {
    const HRESULT hr = CopyOutputsClear(_pcbSize, _ppbAudio);
    if (FAILED(hr)) return hr;
    const std::shared_lock lock(m_lockMedia);
    const AudioView audio = Audio();
    return CopyOut(audio.data, audio.size, _pcbSize, _ppbAudio);
}

HRESULT CCoZFrame2::FrameVideoCopyGet(int32_t *_pcbSize, int64_t *_ppbVideo) {
    const HRESULT hr = CopyOutputsClear(_pcbSize, _ppbVideo);
    if (FAILED(hr)) return hr;
    const std::shared_lock lock(m_lockMedia);
    return CopyOut(VideoData(), VideoData() != nullptr ? VideoSize() : 0, _pcbSize, _ppbVideo);
}

HRESULT CCoZFrame2::FrameVideoOffsetGet(int32_t *_pnOffset) {
    if (_pnOffset == nullptr) return E_POINTER;
    const std::shared_lock lock(m_lockMedia);
    const FramePixels pixels = Pixels();
    // Borrowed memory may start anywhere in its section.
    const std::ptrdiff_t start =
        pixels.section && m_video.Data() != nullptr ? m_video.Data() - pixels.section->DataPointer(0) : 0;
    *_pnOffset = static_cast<int32_t>(start + m_nVideoOffset);
    return S_OK;
}

HRESULT CCoZFrame2::FrameAudioReset(int32_t _cbSize, int64_t _pbAudio) {
    if (_cbSize < 0) return E_INVALIDARG;
    const std::lock_guard lock(m_lockMedia);
    const HRESULT hr = AudioAssign(PointerFrom<>(_pbAudio), static_cast<uint32_t>(_cbSize));
    if (FAILED(hr)) return hr;
    // The bytes may have come from here, so it goes last.
    m_audioRef.Clear();
    m_channels.Clear();
    return S_OK;
}

HRESULT CCoZFrame2::FrameInfoGet(Z_TIME *_pTime, Z_AV_PROPS *_pProps, int32_t *_pcbVideo, int32_t *_pcbAudio) {
    return FrameInfoPtrGet(_pTime, _pProps, _pcbAudio, nullptr, _pcbVideo, nullptr);
}

HRESULT CCoZFrame2::FrameInfoPtrGet(Z_TIME *_pTime, Z_AV_PROPS *_pProps, int32_t *_pcbAudio, int64_t *_ppbAudio,
                                    int32_t *_pcbVideo, int64_t *_ppbVideo) {
    const std::shared_lock lock(m_lockMedia);
    const AudioView audio = Audio();
    if (_pTime != nullptr) *_pTime = m_frameTime;
    if (_pProps != nullptr) *_pProps = m_props;
    if (_pcbAudio != nullptr) *_pcbAudio = static_cast<int32_t>(audio.size);
    if (_ppbAudio != nullptr) *_ppbAudio = AddressOf(audio.data);
    if (_pcbVideo != nullptr) *_pcbVideo = static_cast<int32_t>(VideoSize());
    if (_ppbVideo != nullptr) *_ppbVideo = AddressOf(VideoData());
    return S_OK;
}

HRESULT CCoZFrame2::FrameAudioResetFwd(int32_t _cbSize, int64_t _pbAudio) { return FrameAudioReset(_cbSize, _pbAudio); }

HRESULT CCoZFrame2::FrameAudioForward(BSTR _bsFileName, int32_t _nFirstSample, int32_t _nSamples, int32_t) {
    return ZFAudioFromFile(_bsFileName, _nFirstSample, _nSamples);
}

}    // namespace zck
