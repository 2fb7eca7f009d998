#include "imaging/convert/img_convert.h"

#include <cstdlib>

#include "frames/media/video_props.h"
#include "imaging/colour/normalize_rects.h"
#include "imaging/colour/row_order.h"

namespace zck {
namespace {

HRESULT ViewOf(const Z_VID_PROPS &props, int64_t bytes, ImageView *view) {
    Z_VID_PROPS p = props;
    int64_t offset = 0;
    const HRESULT hr = NormaliseRecord(&p, &offset, nullptr);
    if (hr != S_OK) return hr;
    if (p.nWidth < 1 || p.nHeight == 0) return E_UNEXPECTED;
    *view = {{p.fccType, p.nWidth, p.nHeight, 0}, std::llabs(int64_t{p.nRowBytes}), bytes};
    return S_OK;
}

bool SameSize(const tagRECT &a, const tagRECT &b) {
    return a.right - a.left == b.right - b.left && a.bottom - a.top == b.bottom - b.top;
}

}    // namespace

HRESULT ImgConvert(ImgScaleState *state, const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes,
                   const Z_VID_PROPS *sp, const Z_VID_PROPS *tp) {
    if (state == nullptr || src == nullptr || dst == nullptr || sp == nullptr || tp == nullptr) return E_INVALIDARG;
    ImageView source;
    ImageView target;
    HRESULT hr = ViewOf(*sp, srcBytes, &source);
    if (hr == S_OK) hr = ViewOf(*tp, dstBytes, &target);
    if (hr != S_OK) return hr;
    tagRECT from = {};
    tagRECT to = {};
    hr = NormalizeRects(&source.desc, &target.desc, &from, &to, true, nullptr, nullptr);
    if (hr != S_OK) return hr;
    if (!SameSize(from, to)) return E_INVALIDARG;
    return Img_Convert(state, src, dst, source, target, &from, &to, {FieldOrderSign(sp) != 0, kResizeCubic, 0, 0});
}

}    // namespace zck
