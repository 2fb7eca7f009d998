// The stored forms of a frame: the stream and the block.
#include <mutex>
#include <shared_mutex>

#include "frames/object/address.h"
#include "frames/object/frame.h"
#include "frames/object/frame_stored.h"
#include "frames/stream/frame_save.h"
#include "platform/memory_stream.h"

namespace zck {
namespace {

/// A frame's content with copies of what may change, for a writer that holds no lock. The bytes of data do not change and are
/// shared.
class ContentCopy {
public:
    HRESULT Take(const FrameContent &content) {
        m_content = content;
        if (ChoosesData(content.flags)) m_named = *content.named;
        m_content.named = &m_named;
        if (!ChoosesAudio(content.flags) || content.audioBytes == 0) return S_OK;
        const HRESULT hr = m_audio.Reserve(content.audioBytes);
        if (SUCCEEDED(hr)) m_audio.CopyIn(content.audio, content.audioBytes);
        m_content.audio = m_audio.Data();
        return hr;
    }
    const FrameContent &Content() const { return m_content; }

private:
    FrameContent m_content;
    CBLOBHolder<CHeapAlloc> m_audio;
    NamedMaps m_named;
};

}    // namespace

// The number of a source's section is asked for without a lock, and counts while the source is still the same.
template <class Body>
HRESULT CCoZFrame2::ContentGive(int32_t flags, Body body) {
    ComPtr<IUnknown> asked;
    {
        const std::shared_lock lock(m_lockMedia);
        if (!Pixels().section) asked = m_pSource;
    }
    const int64_t answer = ChoosesVideo(flags) ? SectionIdOf(asked.get()) : 0;
    return m_named.Read([&](const NamedMaps &maps) {
        const std::shared_lock lock(m_lockMedia);
        const AudioView audio = Audio();
        FrameContent content;
        content.flags = flags;
        content.videoBytes = VideoSize();
        if (const ComPtr<IPCBuffer> section = Pixels().section) {
            content.section = section->BufferId();
        } else if (m_pSource == asked) {
            content.section = static_cast<uint64_t>(answer);
        }
        content.audio = audio.data;
        content.audioBytes = audio.size;
        content.time = m_frameTime;
        content.props = m_props;
        content.named = &maps;
        return body(content);
    });
}

HRESULT CCoZFrame2::StreamWrite(IStream *stream, int32_t flags, bool sized) {
    ContentCopy copy;
    HRESULT hr = ContentGive(flags, [&](const FrameContent &content) { return copy.Take(content); });
    if (FAILED(hr)) return hr;
    ULARGE_INTEGER size = {};
    size.QuadPart = FrameStreamBytes(copy.Content());
    if (sized) hr = stream->SetSize(size);
    return SUCCEEDED(hr) ? FrameSaveStream(copy.Content(), stream) : hr;
}

HRESULT CCoZFrame2::ZFSaveToStream(IUnknown **_ppStream, int32_t _nFlags) {
    if (_ppStream == nullptr) return E_INVALIDARG;
    *_ppStream = nullptr;
    return Guarded([&] {
        ComPtr<IStream> stream;
        ULARGE_INTEGER end = {};
        HRESULT hr = MemoryStreamCreate(stream.Put());
        if (SUCCEEDED(hr)) hr = StreamWrite(stream.get(), _nFlags, true);
        if (SUCCEEDED(hr)) hr = stream->Seek({}, STREAM_SEEK_CUR, &end);
        if (SUCCEEDED(hr)) hr = stream->SetSize(end);
        if (SUCCEEDED(hr)) hr = stream->Seek({}, STREAM_SEEK_SET, nullptr);
        if (SUCCEEDED(hr)) *_ppStream = stream.Detach();
        return hr;
    });
}

HRESULT CCoZFrame2::ZFAddToStream(IUnknown *_pStream, int32_t _nFlags) {
    if (_pStream == nullptr) return E_INVALIDARG;
    const auto stream = QueryFor<IStream>(_pStream);
    if (!stream) return E_NOINTERFACE;
    return Guarded([&] { return StreamWrite(stream.get(), _nFlags, false); });
}

HRESULT CCoZFrame2::ZFSaveAll(int32_t *_pcbBlock, int64_t *_ppbBlock, int32_t _nFlags) {
    if (_pcbBlock == nullptr || _ppbBlock == nullptr) return E_INVALIDARG;
    *_pcbBlock = 0;
    *_ppbBlock = 0;
    return Guarded([&] {
        void *block = nullptr;
        const HRESULT hr =
            ContentGive(_nFlags, [&](const FrameContent &content) { return FrameSaveBlock(content, *_pcbBlock, block); });
        *_ppbBlock = AddressOf(block);
        return hr;
    });
}

// Puts everything that was read into the frame at one moment, also what came before a failure.
template <class Body>
HRESULT CCoZFrame2::Load(int32_t flags, uint32_t start, Body body) {
    FrameLoad load;
    load.flags = flags;
    ComPtr<IUnknown> keeper;
    {
        const std::shared_lock lock(m_lockMedia);
        load.time = m_frameTime;
        if ((flags & eZFC_VideoRef) != 0 && !m_pSharedBuffer) keeper = m_pSource;
    }
    PixelsIn pixels(m_pFactory.get(), keeper.get(), start);
    const HRESULT hr = body(pixels, load);
    PixelsOut old;
    m_named.Join(load.named, [&] {
        const std::lock_guard lock(m_lockMedia);
        if (load.bVideo) PixelsReplace(pixels, old);
        MediaReplace(load);
    });
    return hr;
}

// A source whose pixels were borrowed without a section of the frame's own stays, unless a copy comes in their place.
void CCoZFrame2::PixelsReplace(PixelsIn &in, PixelsOut &out) noexcept {
    out.factory = m_pFactory;
    out.borrowed.Swap(m_pBorrowed);
    if (m_pSharedBuffer || (in.Buffer() && !in.Keeper())) out.source.Swap(m_pSource);
    out.buffer.Swap(m_pSharedBuffer);
    m_video.Clear();
    m_nVideoOffset = 0;
    if (!in.Buffer()) return;
    m_video.Attach(in.Buffer()->DataPointer(0), in.Start() + in.Size());
    m_nVideoOffset = in.Start();
    m_pSharedBuffer.Swap(in.Buffer());
    if (in.Keeper()) m_pSource = in.Keeper();
}

void CCoZFrame2::MediaReplace(FrameLoad &load) noexcept {
    if (load.bAudio) {
        const uint32_t size = load.audio.Size();
        m_audio.Attach(load.audio.Detach(), size);
        m_audioRef.Clear();
        m_channels.Clear();
    }
    if (load.bTime) m_frameTime = load.time;
    if (load.bProps && ChoosesVideo(load.flags)) m_props.vidProps = load.props.vidProps;
    if (load.bProps && ChoosesAudio(load.flags)) {
        m_props.audProps = load.props.audProps;
        m_props.ancData = load.props.ancData;
    }
}

HRESULT CCoZFrame2::BlockLoad(int32_t size, int64_t block, int32_t flags, uint32_t start) {
    if (size < 0 || (block == 0 && size != 0)) return E_INVALIDARG;
    return Load(flags, start, [&](PixelOpener &pixels, FrameLoad &load) {
        return FrameLoadBlock(PointerFrom<const uint8_t>(block), static_cast<uint32_t>(size), pixels, load);
    });
}

HRESULT CCoZFrame2::ZFLoadAll(int32_t _cbBlock, int64_t _pbBlock, int32_t _nFlags) {
    return Guarded([&] { return BlockLoad(_cbBlock, _pbBlock, _nFlags, 0); });
}

HRESULT CCoZFrame2::ZFLoadFromStream(IUnknown *_pStream, int32_t _nFlags) {
    if (_pStream == nullptr) return E_INVALIDARG;
    const auto stream = QueryFor<IStream>(_pStream);
    if (!stream) return E_NOINTERFACE;
    return Guarded([&] {
        return Load(_nFlags, 0,
                    [&](PixelOpener &pixels, FrameLoad &load) { return FrameLoadStream(stream.get(), pixels, load); });
    });
}

// A frame of another process travels in the block form, which says where its section's pixels end but not where they start.
HRESULT CCoZFrame2::CloneStored(IZFFrame *source, int32_t type, uint32_t offset) {
    m_pSource = source;
    int32_t start = 0;
    const auto quorvex = QueryFor<IZFrame_I>(source);
    if (!quorvex || FAILED(quorvex->FrameVideoOffsetGet(&start)) || start < 0) start = 0;
    int32_t size = 0;
    int64_t block = 0;
    HRESULT hr = source->ZFSaveAll(&size, &block, type);
    if (FAILED(hr)) return hr;
    hr = BlockLoad(size, block, type, static_cast<uint32_t>(start));
    CoTaskMemFree(PointerFrom<void>(block));
    // An offset that reaches the size is dropped on purpose.
    if (ChoosesVideo(type) && VideoSize() > offset) m_nVideoOffset += offset;
    return hr;
}

}    // namespace zck
