// Life, ownership and the derived values.
#include <algorithm>
#include <cstring>
#include <mutex>
#include <shared_mutex>

#include "frames/object/frame.h"
#include "frames/object/frame_stored.h"
#include "platform/copy.h"

const IID &ZIidHolder<zck::CCoZFrame2>::Get() {
    static const IID id = [] {
        static const char anchor = 0;
        const char *address = &anchor;
        IID made = {0x6B0F1D32, 0x8E54, 0x4C1B, {}};
        static_assert(sizeof(address) == sizeof(made.Data4));
        std::memcpy(made.Data4, &address, sizeof(address));
        return made;
    }();
    return id;
}

namespace zck {

void *CCoZFrame2::InterfaceFind(REFIID riid) noexcept {
    if (riid == ZIidOf<IZFrame>()) return static_cast<IZFrame *>(this);
    if (riid == ZIidOf<INSSBuffer>()) return static_cast<INSSBuffer *>(this);
    if (riid == ZIidOf<INSSBuffer2>()) return static_cast<INSSBuffer2 *>(this);
    if (riid == ZIidOf<CCoZFrame2>()) return this;
    return nullptr;
}

HRESULT CCoZFrame2::Create(IZFrames_I *factory, ComPtr<CCoZFrame2> &out) noexcept {
    const HRESULT hr = CreateObject<CCoZFrame2>(nullptr, ZIidOf<CCoZFrame2>(), out.PutVoid());
    if (SUCCEEDED(hr)) out->m_pFactory = factory;
    return hr;
}

// The factory goes last, and may die with its pool right here.
void CCoZFrame2::FinalRelease() noexcept {
    {
        PixelsOut out;
        const std::lock_guard lock(m_lockMedia);
        out.factory = m_pFactory;
        out.source.Swap(m_pSource);
        out.buffer.Swap(m_pSharedBuffer);
        out.borrowed.Swap(m_pBorrowed);
    }
    m_named.ObjectsClear();
    m_pFactory.Reset();
}

HRESULT CCoZFrame2::VideoAlloc(uint32_t size) noexcept {
    if (!m_pFactory) return E_UNEXPECTED;
    m_video.Clear();
    if (m_pSharedBuffer) m_pFactory->BufferReturn(m_pSharedBuffer.Detach());
    ComPtr<IPCBuffer> buffer;
    // A pool at its limit can give a section and a failure; the section is what counts.
    m_pFactory->BufferGet(static_cast<int32_t>(size), buffer.Put());
    if (!buffer) return E_OUTOFMEMORY;
    if (buffer->DataSize(0) < size) {
        m_pFactory->BufferReturn(buffer.Detach());
        return E_OUTOFMEMORY;
    }
    m_video.Attach(buffer->DataPointer(0), size);
    m_pSharedBuffer.Swap(buffer);
    return S_OK;
}

void CCoZFrame2::VideoBorrow(const FramePixels &pixels, uint32_t offset, IUnknown *keeper) noexcept {
    m_video.Attach(pixels.data, pixels.size);
    m_pBorrowed = pixels.section;
    m_pSource = keeper;
    m_nVideoOffset = offset;
}

// `data` may lie in the frame's own audio: the old block lives until the new one is filled.
HRESULT CCoZFrame2::AudioAssign(const void *data, uint32_t size) noexcept {
    if (data == nullptr || size == 0) return std::min(m_audio.Reserve(size, 0), S_OK);
    if (size > m_audio.Capacity()) {
        CBLOBHolder<CHeapAlloc> fresh;
        if (FAILED(fresh.Reserve(size))) return E_OUTOFMEMORY;
        CopyBytes(fresh.Data(), data, size);
        m_audio.Attach(fresh.Detach(), size);
        return S_OK;
    }
    std::memmove(m_audio.Data(), data, size);
    return m_audio.SetSize(size);
}

FramePixels CCoZFrame2::Pixels() const noexcept {
    FramePixels pixels;
    pixels.size = VideoSize();
    pixels.data = VideoData();
    pixels.section = m_pSharedBuffer ? m_pSharedBuffer : m_pBorrowed;
    pixels.keeper = m_pSource;
    return pixels;
}

FramePixels CCoZFrame2::PixelsGet() noexcept {
    const std::shared_lock lock(m_lockMedia);
    return Pixels();
}

void CCoZFrame2::VideoZero() noexcept {
    if (m_pSharedBuffer && !m_pSharedBuffer->IsFresh()) std::memset(m_video.Data(), 0, m_video.Size());
}

uint32_t CCoZFrame2::VideoSize() const { return m_video.Size() > m_nVideoOffset ? m_video.Size() - m_nVideoOffset : 0; }

uint8_t *CCoZFrame2::VideoData() const { return m_video.Size() != 0 ? m_video.Data(m_nVideoOffset) : nullptr; }

CCoZFrame2::AudioView CCoZFrame2::Audio() const {
    if (m_audio.Size() != 0) return {m_audio.Data(), m_audio.Size()};
    return {m_audioRef.Size() != 0 ? m_audioRef.Data() : nullptr, m_audioRef.Size()};
}

AudioBlock CCoZFrame2::AudioOwn() const {
    const AudioView audio = Audio();
    return {m_props.audProps, audio.data, audio.size};
}

int32_t CCoZFrame2::AudioSampleCount() const { return static_cast<int32_t>(AudioOwn().Samples()); }

}    // namespace zck
