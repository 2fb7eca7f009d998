// "InitClone(Tessilu)": cloning a source that answers `IZFFrame`. Data keeps its whole names on this road.
#include <algorithm>
#include <mutex>
#include <shared_mutex>

#include "frames/object/address.h"
#include "frames/object/frame.h"
#include "platform/process.h"

namespace zck {

HRESULT CCoZFrame2::CloneTessilu(IZFrames_I *factory, IZFFrame *source, int32_t type, uint32_t offset,
                                 ComPtr<CCoZFrame2> &out) noexcept {
    return Guarded([&] {
        ComPtr<CCoZFrame2> clone;
        HRESULT hr = Create(factory, clone);
        if (FAILED(hr)) return hr;
        FramePixels pixels;
        ZF_INFO info = {};
        const auto own = (type & eZFC_Video) != 0 ? QueryFor<CCoZFrame2>(source) : nullptr;
        const bool audio = (type & eZFC_Audio) != 0;
        hr = own ? source->ZFInfoGet(&info) : clone->MediaTake(source, audio, pixels, info);
        if (SUCCEEDED(hr) && own) hr = clone->MediaCopy(*own, audio, pixels);
        if (FAILED(hr)) return hr;
        if (info.nProcessId != CurrentProcessId()) {
            hr = clone->CloneStored(source, type, offset);
            if (FAILED(hr)) return hr;
        } else {
            clone->PropsPrune(pixels.size != 0, type);
            // An offset that reaches the size is dropped on purpose.
            if (!own) clone->ClonePixels(pixels, source, type, offset < pixels.size ? offset : 0);
            if (info.nDataCount > 0 || info.nTextCount > 0) clone->CloneNamed(source, info);
        }
        if ((type & eZFC_Obj) != 0) clone->CloneObjects(source, info.nObjectCount, false);
        out.Swap(clone);
        return S_OK;
    });
}

// Each part of the description comes with its media only.
void CCoZFrame2::PropsPrune(bool video, int32_t type) {
    if (!video) m_props.vidProps = {};
    if ((type & eZFC_Audio) == 0 || m_audio.Size() == 0) {
        m_props.audProps = {};
        m_props.ancData = {};
    }
    m_props.bLocked = 0;
}

HRESULT CCoZFrame2::MediaTake(IZFFrame *source, bool audio, FramePixels &pixels, ZF_INFO &info) noexcept {
    HRESULT hr = source->ZFInfoGet(&info);
    if (FAILED(hr)) return hr;
    if (const auto own = QueryFor<CCoZFrame2>(source)) return MediaTake(*own, audio, pixels);
    // A frame of another process travels in its stored form.
    if (info.nProcessId != CurrentProcessId()) return S_OK;
    m_frameTime = info.time;
    m_props = info.avProps;
    pixels.data = PointerFrom<>(info.pbVideo);
    pixels.size = pixels.data != nullptr ? static_cast<uint32_t>(std::max(info.cbVideo, 0)) : 0;
    if (!audio || info.cbAudio <= 0 || info.pbAudio == 0) return S_OK;
    return AudioAssign(PointerFrom<>(info.pbAudio), static_cast<uint32_t>(info.cbAudio));
}

HRESULT CCoZFrame2::MediaTakeWhole(IZFFrame *source, FramePixels &pixels) noexcept {
    ZF_INFO info = {};
    return MediaTake(source, true, pixels, info);
}

HRESULT CCoZFrame2::DataTakeFrom(IZFFrame *source) noexcept {
    if (const auto frame = QueryFor<IZFrame_I>(source)) return DataTakeFrom(frame.get());
    return Guarded([&] {
        ZF_INFO info = {};
        HRESULT hr = source->ZFInfoGet(&info);
        for (int32_t i = 0; SUCCEEDED(hr) && i < info.nDataCount; ++i) hr = DataTakeOne(source, i);
        return std::min(hr, S_OK);
    });
}

// An entry that the source does not give is passed over.
HRESULT CCoZFrame2::DataTakeOne(IZFFrame *source, int32_t index) {
    Bstr name;
    int32_t size = 0;
    int64_t data = 0;
    if (FAILED(source->ZFDataGetByIndex(index, name.Put(), &size, &data)) || size < 0) return S_FALSE;
    const HRESULT hr = DataStore(name.view(), size, data);
    return hr == E_OUTOFMEMORY ? hr : S_OK;
}

void CCoZFrame2::CloneNamed(IZFFrame *source, const ZF_INFO &info) {
    if (const auto own = QueryFor<CCoZFrame2>(source)) {
        m_named.TakeNamed(own->m_named);
        return;
    }
    for (int32_t i = 0; i < info.nDataCount; ++i) DataTakeOne(source, i);
    for (int32_t i = 0; i < info.nTextCount; ++i) {
        Bstr name;
        Bstr text;
        if (SUCCEEDED(source->ZFTextGetByIndex(i, name.Put(), text.Put()))) m_named.TextAdd(name.view(), text.view());
    }
}

}    // namespace zck
