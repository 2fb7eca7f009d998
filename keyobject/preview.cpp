#include "keyobject/preview.h"

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "frames/media/video_props.h"
#include "frames/memory/blob_holder.h"
#include "frames/views/f_frame.h"
#include "keying/pipeline/pipeline.h"
#include "keying/slices/finish_alpha.h"
#include "keyobject/picture_view.h"
#include "platform/status.h"

namespace zck {
namespace {

bool SameSize(const Z_VID_PROPS &a, const Z_VID_PROPS &b) {
    return a.nWidth == b.nWidth && RowCount(a.nHeight) == RowCount(b.nHeight);
}

HRESULT VideoPropsOf(IZFrame *frame, Z_VID_PROPS *props) {
    Z_AV_PROPS all = {};
    const HRESULT hr = frame->FrameAVPropsGet(&all);
    *props = all.vidProps;
    return hr;
}

/// The background in the size of `like`.
HRESULT Fit(IZFrame *background, const Z_VID_PROPS &like, ComPtr<IZFrame> *fit) {
    Z_VID_PROPS own = {};
    HRESULT hr = VideoPropsOf(background, &own);
    if (FAILED(hr)) return hr;
    Z_VID_PROPS wanted = {};
    wanted.nWidth = like.nWidth;
    // A sign says the order of rows only within the RGB family.
    wanted.nHeight = IsRgbFormat(own.fccType) ? like.nHeight : static_cast<int32_t>(RowCount(like.nHeight));
    hr = background->FrameConvert(&wanted, fit->Put(), nullptr);
    if (FAILED(hr)) {
        fit->Reset();
        return hr;
    }
    return *fit ? S_OK : E_UNEXPECTED;
}

HRESULT FittedBackground(KeyFrames &frames, const FrameSet &now, const Z_VID_PROPS &like, ComPtr<IZFrame> *fit) {
    Z_VID_PROPS present = {};
    *fit = now.backgroundFit;
    if (*fit && SUCCEEDED(VideoPropsOf(fit->get(), &present)) && SameSize(present, like)) return S_OK;
    const HRESULT hr = Fit(now.background.get(), like, fit);
    if (SUCCEEDED(hr)) frames.FitKeep(now, *fit);
    return hr;
}

/// By the wide view where both have it.
void Overlay(IZFrame *under, IZFrame *over) {
    const ComPtr<IZFFrame> underView = QueryFor<IZFFrame>(under);
    const ComPtr<IZFFrame> overView = QueryFor<IZFFrame>(over);
    if (underView && overView)
        underView->ZFOverlay(overView.get(), nullptr, 0, 0, 1.0, nullptr, 0, 0);
    else
        under->FrameOverlay(over, 0, 0, 1.0, nullptr);
}

HRESULT OverBackground(KeyFrames &frames, const FrameSet &now, ComPtr<IZFrame> *result) {
    Z_VID_PROPS props = {};
    HRESULT hr = VideoPropsOf(result->get(), &props);
    ComPtr<IZFrame> fit;
    if (SUCCEEDED(hr)) hr = FittedBackground(frames, now, props, &fit);
    ComPtr<IZFrame> under;
    if (SUCCEEDED(hr)) hr = CloneOf(fit.get(), eZFC_Video, eZFCC_Default, &under);
    if (FAILED(hr)) return hr;
    Overlay(under.get(), result->get());
    *result = under;
    return S_OK;
}

}    // namespace

HRESULT ApplyKey(IZFrame *frame, const CHROMA_KEY_RAW &key, ComPtr<IZFrame> *result) {
    ComPtr<IZFrame> clone;
    HRESULT hr = CloneOf(frame, eZFC_Video, eZFCC_ARGB32, &clone);
    PictureView view;
    if (SUCCEEDED(hr)) hr = PictureViewOf(clone.get(), &view);
    if (FAILED(hr)) return hr;
    const int64_t alphaBytes = AlphaStride(view.props) * view.rows;
    CBLOBHolder<CHeapAlloc> alpha;
    hr = alpha.Reserve(static_cast<uint32_t>(alphaBytes));
    if (FAILED(hr)) return hr;
    const KeyBounds bounds{view.bytes, alphaBytes, KeyBounds::kAnyRow, KeyBounds::kAnyRow};
    hr = KeyImage(view.pixels, alpha.Data(), &view.props, &key, true, bounds);
    if (FAILED(hr)) return hr;
    PremultiplyFrame(view.pixels, view.props, view.bytes);
    *result = std::move(clone);
    return S_OK;
}

HRESULT RenderPreview(KeyFrames &frames, const CHROMA_KEY_RAW &key, ComPtr<IZFrame> *result) {
    const FrameSet now = frames.Now();
    if (!now.keying || !now.keyingArgb) return kVfwEWrongState;
    const HRESULT hr = ApplyKey(now.keyingArgb.get(), key, result);
    return SUCCEEDED(hr) && now.background ? OverBackground(frames, now, result) : hr;
}

}    // namespace zck
