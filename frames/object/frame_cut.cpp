// Cutting: a clone that borrows the pixels, with a narrowed record and another start.
#include <algorithm>
#include <mutex>

#include "frames/media/record_view.h"
#include "frames/object/frame.h"

namespace zck {
namespace {

bool IsEmpty(const tagRECT *rect) { return rect == nullptr || rect->left >= rect->right || rect->top >= rect->bottom; }

}    // namespace

HRESULT CCoZFrame2::FrameCut(int32_t _nField, tagRECT *_pRect, IZFrame **_ppFrameRes) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    if (!m_pFactory) return E_NOINTERFACE;
    return Guarded([&] {
        ComPtr<CCoZFrame2> clone;
        HRESULT hr = Create(m_pFactory.get(), clone);
        if (FAILED(hr)) return hr;
        FramePixels pixels;
        int64_t offset = 0;
        {
            const std::lock_guard lock(m_lockMedia);
            hr = MediaGive(*clone, true, pixels);
        }
        if (FAILED(hr)) return hr;
        Z_AV_PROPS narrowed = clone->m_props;
        if (_nField > 0) offset += FieldView(narrowed.vidProps, _nField - 1);
        if (!IsEmpty(_pRect)) offset += SubRectView(narrowed.vidProps, *_pRect);
        const auto start = static_cast<uint32_t>(std::clamp<int64_t>(offset, 0, INT32_MAX));
        clone->ClonePixels(pixels, static_cast<IZFrame_I *>(this), eZFC_VideoRef_Audio, start);
        hr = clone->CloneData(this, eZFC_VideoRef_Audio);
        if (SUCCEEDED(hr)) hr = clone->FrameAVPropsSet(&narrowed);
        if (SUCCEEDED(hr)) *_ppFrameRes = clone.Detach();
        return hr;
    });
}

HRESULT CCoZFrame2::ZFCut(int32_t _nField, tagRECT *_pRect, IZFFrame **_ppFrameRes) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    ComPtr<IZFrame> cut;
    const HRESULT hr = FrameCut(_nField, _pRect, cut.Put());
    return FAILED(hr) ? hr : cut->QueryInterface(ZIidOf<IZFFrame>(), reinterpret_cast<void **>(_ppFrameRes));
}

}    // namespace zck
