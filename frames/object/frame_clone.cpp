// "InitClone(Quorvex)": cloning a source that answers `IZFrame_I`, in this process or another.
#include <algorithm>
#include <mutex>
#include <shared_mutex>

#include "frames/object/address.h"
#include "frames/object/frame.h"
#include "platform/copy.h"
#include "platform/process.h"

namespace zck {

HRESULT CCoZFrame2::CloneQuorvex(IZFrames_I *factory, IZFrame_I *source, int32_t type, uint32_t offset,
                                 ComPtr<CCoZFrame2> &out) noexcept {
    if (factory == nullptr) return E_NOINTERFACE;
    return Guarded([&] {
        ComPtr<CCoZFrame2> clone;
        HRESULT hr = Create(factory, clone);
        if (SUCCEEDED(hr)) hr = clone->CloneMedia(source, type, offset);
        if (SUCCEEDED(hr)) hr = clone->CloneData(source, type);
        if (SUCCEEDED(hr)) out.Swap(clone);
        return hr;
    });
}

// Ancillary data always comes along; objects by the type.
HRESULT CCoZFrame2::CloneData(IZFrame_I *source, int32_t type) {
    const HRESULT hr = DataTakeFrom(source);
    if (FAILED(hr)) return hr;
    if ((type & eZFC_Obj) != 0) {
        if (const auto named = QueryFor<IZFFrame>(source)) CloneObjects(named.get(), INT32_MAX, true);
    }
    return S_OK;
}

HRESULT CCoZFrame2::CloneMedia(IZFrame_I *source, int32_t type, uint32_t offset) {
    const bool audio = (type & eZFC_Audio) != 0;
    FramePixels pixels;
    HRESULT hr = S_OK;
    if (const auto own = QueryFor<CCoZFrame2>(source)) {
        if ((type & eZFC_Video) != 0) return MediaCopy(*own, audio, pixels);
        hr = MediaTake(*own, audio, pixels);
    } else {
        uint32_t process = 0;
        hr = source->FrameProcessIdGet(&process);
        if (FAILED(hr)) return hr;
        if (process != CurrentProcessId()) return CloneRemote(source, type, offset);
        hr = MediaTake(source, type, pixels);
    }
    if (SUCCEEDED(hr)) ClonePixels(pixels, source, type, offset);
    return hr;
}

HRESULT CCoZFrame2::MediaTake(CCoZFrame2 &source, bool audio, FramePixels &pixels) noexcept {
    return MediaTakeFor(source, audio, pixels, [] { return S_OK; });
}

// The section is got without the source's lock, as the factory is called for it.
HRESULT CCoZFrame2::MediaCopy(CCoZFrame2 &source, bool audio, FramePixels &pixels) noexcept {
    bool whole = false;
    while (!whole) {
        const uint32_t size = source.PixelsGet().size;
        const bool room = size != 0 && SUCCEEDED(VideoAlloc(size));
        const HRESULT hr = MediaTakeFor(source, audio, pixels, [&] {
            whole = pixels.size == size;
            if (whole && room) CopyBytes(m_video.Data(), pixels.data, size);
            return S_OK;
        });
        if (FAILED(hr)) return hr;
    }
    return S_OK;
}

HRESULT CCoZFrame2::MediaGive(CCoZFrame2 &clone, bool audio, FramePixels &pixels) {
    clone.m_frameTime = m_frameTime;
    clone.m_props = m_props;
    pixels = Pixels();
    const AudioView bytes = Audio();
    return audio && bytes.size != 0 ? clone.AudioAssign(bytes.data, bytes.size) : S_OK;
}

HRESULT CCoZFrame2::MediaTake(IZFrame_I *source, int32_t type, FramePixels &pixels) noexcept {
    int32_t videoSize = 0;
    int32_t audioSize = 0;
    HRESULT hr = source->FrameInfoGet(&m_frameTime, &m_props, &videoSize, &audioSize);
    if (FAILED(hr)) return hr;
    int64_t address = 0;
    if (videoSize > 0 && (type & (eZFC_Video | eZFC_VideoRef)) != 0) {
        hr = source->FrameVideoGetBytes(&videoSize, &address);
        if (FAILED(hr)) return hr;
        pixels.data = PointerFrom<>(address);
        pixels.size = pixels.data != nullptr ? static_cast<uint32_t>(std::max(videoSize, 0)) : 0;
    }
    if ((type & eZFC_Audio) == 0 || audioSize <= 0) return S_OK;
    hr = source->FrameAudioGetBytes(&audioSize, &address);
    if (FAILED(hr) || address == 0 || audioSize <= 0) return hr;
    return AudioAssign(PointerFrom<>(address), static_cast<uint32_t>(audioSize));
}

HRESULT CCoZFrame2::MediaTakeWhole(IZFrame_I *source, FramePixels &pixels) noexcept {
    if (const auto own = QueryFor<CCoZFrame2>(source)) return MediaTake(*own, true, pixels);
    int32_t videoSize = 0;
    int32_t audioSize = 0;
    int64_t video = 0;
    int64_t audio = 0;
    const HRESULT hr = source->FrameInfoPtrGet(&m_frameTime, &m_props, &audioSize, &audio, &videoSize, &video);
    if (FAILED(hr)) return hr;
    pixels.data = PointerFrom<>(video);
    pixels.size = pixels.data != nullptr ? static_cast<uint32_t>(std::max(videoSize, 0)) : 0;
    return audio != 0 && audioSize > 0 ? AudioAssign(PointerFrom<>(audio), static_cast<uint32_t>(audioSize)) : S_OK;
}

HRESULT CCoZFrame2::DataTakeFrom(IZFrame_I *source) noexcept {
    return FrameDataCopyFrom(source, 2) == E_OUTOFMEMORY ? E_OUTOFMEMORY : S_OK;
}

// Pixels of this process: copied, or shared with the source or whom it borrows them from. A copy that finds no section leaves
// the clone without pixels, and the clone succeeds all the same.
void CCoZFrame2::ClonePixels(const FramePixels &pixels, IUnknown *source, int32_t type, uint32_t offset) {
    if (pixels.size == 0) return;
    if ((type & eZFC_Video) != 0) {
        if (SUCCEEDED(VideoAlloc(pixels.size))) CopyBytes(m_video.Data(), pixels.data, pixels.size);
    } else if ((type & eZFC_VideoRef) != 0) {
        VideoBorrow(pixels, offset, pixels.keeper ? pixels.keeper.get() : source);
    }
}

HRESULT CCoZFrame2::CloneRemote(IZFrame_I *source, int32_t type, uint32_t offset) {
    int32_t videoSize = 0;
    int32_t audioSize = 0;
    HRESULT hr = source->FrameInfoGet(&m_frameTime, &m_props, &videoSize, &audioSize);
    if (SUCCEEDED(hr) && videoSize > 0 && (type & (eZFC_Video | eZFC_VideoRef)) != 0)
        hr = CloneRemoteVideo(source, type, offset, static_cast<uint32_t>(videoSize));
    if (SUCCEEDED(hr) && audioSize > 0 && (type & eZFC_Audio) != 0) hr = CloneRemoteAudio(source);
    return hr;
}

// The source's pixels start behind its own offset in the section; all sizes end with what was opened.
HRESULT CCoZFrame2::CloneRemoteVideo(IZFrame_I *source, int32_t type, uint32_t offset, uint32_t size) {
    int64_t id = 0;
    HRESULT hr = source->FrameBufferIdGet(&id);
    if (FAILED(hr)) return hr;
    ComPtr<IPCBuffer> section;
    section.Attach(new IPCBuffer);
    hr = section->OpenBuffer(static_cast<uint64_t>(id));
    if (FAILED(hr)) return hr;

    int32_t sourceOffset = 0;
    if (FAILED(source->FrameVideoOffsetGet(&sourceOffset))) sourceOffset = 0;
    const auto room = section->DataSize(0);
    const auto start = std::min(static_cast<uint32_t>(std::max(sourceOffset, 0)), room);
    size = std::min(size, room - start);
    if (size == 0) return S_OK;
    if ((type & eZFC_Video) != 0) {
        ClonePixels({section->DataPointer(start), size, nullptr, nullptr}, nullptr, eZFC_Video, 0);
        return S_OK;
    }
    m_video.Attach(section->DataPointer(0), start + size);
    m_nVideoOffset = start + std::min(offset, size);
    m_pSharedBuffer.Swap(section);
    m_pSource = source;
    return S_OK;
}

HRESULT CCoZFrame2::CloneRemoteAudio(IZFrame_I *source) {
    int32_t size = 0;
    int64_t block = 0;
    const HRESULT hr = source->FrameAudioCopyGet(&size, &block);
    if (FAILED(hr)) return hr;
    m_audioRef.Attach(PointerFrom<>(block), static_cast<uint32_t>(std::max(size, 0)));
    return S_OK;
}

void CCoZFrame2::CloneObjects(IZFFrame *source, int32_t count, bool stopAtFailure) {
    for (int32_t i = 0; i < count; ++i) {
        Bstr name;
        ComPtr<IUnknown> object;
        if (SUCCEEDED(source->ZFObjectGetByIndex(i, name.Put(), object.Put(), 0))) {
            m_named.ObjectSet(name.view(), std::move(object));
        } else if (stopAtFailure) {
            break;
        }
    }
}

}    // namespace zck
