#include "imaging/colour/color_convert.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <mutex>

#include "frames/media/pixel_format.h"
#include "imaging/colour/image_layout.h"
#include "imaging/colour/normalize_rects.h"
#include "imaging/colour/picture_rows.h"
#include "platform/status.h"

namespace zck {
namespace {

// The rectangles may end unequal: the smaller width and height count.
PicturePart PartOf(const tagRECT &src, const tagRECT &dst) {
    return {src.left,
            src.top,
            dst.left,
            dst.top,
            std::min(src.right - src.left, dst.right - dst.left),
            std::min(src.bottom - src.top, dst.bottom - dst.top)};
}

HRESULT Convert(ImgConvertState *state, const uint8_t *src, uint8_t *dst, const ImageView &source, const ImageView &target,
                const tagRECT *rcSrc, const tagRECT *rcDst, bool served) {
    if (state == nullptr || src == nullptr || dst == nullptr) return E_INVALIDARG;
    const std::lock_guard lock(state->cs);
    tagRECT from = {};
    tagRECT to = {};
    const HRESULT hr = NormalizeRects(&source.desc, &target.desc, &from, &to, false, rcSrc, rcDst);
    if (hr != S_OK) return hr;
    if (!served) return S_OK;
    ImageLayout a;
    ImageLayout b;
    if (!ImageLayoutMake(source.desc.fcc, source.desc.nWidth, source.desc.nHeight, source.rowBytes, &a) ||
        !ImageLayoutMake(target.desc.fcc, target.desc.nWidth, target.desc.nHeight, target.rowBytes, &b))
        return E_INVALIDARG;
    if (a.bytes > source.bytes || b.bytes > target.bytes) return kVfwEInvalidMediaType;
    const bool setAlpha = Is32BitFormat(source.desc.fcc) && !HasAlpha(source.desc.fcc) && HasAlpha(target.desc.fcc);
    PictureConvert(src, a, dst, b, PartOf(from, to), setAlpha);
    return S_OK;
}

// The image that a record without memory size describes is there as a whole.
ImageView ViewOf(const ImgDesc &desc) { return {desc, RowBytesOf(desc), std::numeric_limits<int64_t>::max()}; }

}    // namespace

bool ColorConvertServes(eZFCC from, eZFCC to) {
    return PixelClassOf(from) != PixelClass::None && PixelClassOf(to) != PixelClass::None;
}

HRESULT ColorConvert(ImgConvertState *state, const uint8_t *src, uint8_t *dst, const ImgDesc *sd, const ImgDesc *dd,
                     const tagRECT *rcSrc, const tagRECT *rcDst) {
    if (sd == nullptr || dd == nullptr) return E_INVALIDARG;
    const bool joinedChroma = PixelClassOf(sd->fcc) == PixelClass::Nv12 || PixelClassOf(dd->fcc) == PixelClass::Nv12;
    const bool served = ColorConvertServes(sd->fcc, dd->fcc) && !joinedChroma;
    return Convert(state, src, dst, ViewOf(*sd), ViewOf(*dd), rcSrc, rcDst, served);
}

HRESULT ColorConvertViews(ImgConvertState *state, const uint8_t *src, uint8_t *dst, const ImageView &source,
                          const ImageView &target, const tagRECT *rcSrc, const tagRECT *rcDst) {
    return Convert(state, src, dst, source, target, rcSrc, rcDst, ColorConvertServes(source.desc.fcc, target.desc.fcc));
}

}    // namespace zck
