#include "imaging/engines/img_convert.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>

#include "frames/media/pixel_format.h"
#include "imaging/colour/normalize_rects.h"
#include "imaging/engines/img_planes.h"
#include "imaging/primitives/copy.h"
#include "platform/status.h"

namespace zck {
namespace {

int32_t Width(const tagRECT &rc) { return static_cast<int32_t>(rc.right - rc.left); }
int32_t Rows(const tagRECT &rc) { return static_cast<int32_t>(rc.bottom - rc.top); }

bool IsPlain(eZFCC fcc) { return fcc == eZFCC_RGB8; }

// An image, the part of it that counts, and its layout (not of RGB8).
struct Side {
    uint8_t *p;
    ImageView view;
    tagRECT rc;
    ImageLayout layout;

    eZFCC Fcc() const { return view.desc.fcc; }
    bool Rgb() const { return IsRgbFormat(Fcc()); }
};

struct Stage {
    ImgScaleState *state;
    ImgConvertJob job;
    ScaleOptions options;    // of luma and RGB
};

HRESULT Open(const uint8_t *p, const ImageView &view, Side *side) {
    const ImgDesc &d = view.desc;
    side->p = const_cast<uint8_t *>(p);
    side->view = view;
    if (IsPlain(d.fcc)) {
        if (d.nWidth < 1 || d.nHeight == 0 || view.rowBytes < d.nWidth) return E_INVALIDARG;
        const int64_t need = (std::llabs(int64_t{d.nHeight}) - 1) * view.rowBytes + d.nWidth;
        return need > view.bytes ? kVfwEInvalidMediaType : S_OK;
    }
    if (PixelClassOf(d.fcc) == PixelClass::None) return kVfwEInvalidSubtype;
    if (!ImageLayoutMake(d.fcc, d.nWidth, d.nHeight, view.rowBytes, &side->layout)) return E_INVALIDARG;
    return side->layout.bytes > view.bytes ? kVfwEInvalidMediaType : S_OK;
}

// An image of the size of another, in scratch, all 0.
Side ScratchLike(std::vector<uint8_t> *scratch, const Side &like, eZFCC fcc, bool bottomUp) {
    Side side = like;
    const int64_t rows = std::llabs(int64_t{like.view.desc.nHeight});
    side.view.desc.fcc = fcc;
    side.view.desc.nRowPixels = 0;
    side.view.desc.nHeight = static_cast<int32_t>(bottomUp ? rows : -rows);
    side.view.rowBytes = RowBytes(fcc, like.view.desc.nWidth);
    side.view.bytes = rows * side.view.rowBytes;
    scratch->assign(static_cast<size_t>(side.view.bytes), 0);
    side.p = scratch->data();
    ImageLayoutMake(fcc, side.view.desc.nWidth, side.view.desc.nHeight, side.view.rowBytes, &side.layout);
    return side;
}

HRESULT Recolour(const Stage &stage, const Side &from, const Side &to, const tagRECT &rc) {
    return ColorConvertViews(stage.state, from.p, to.p, from.view, to.view, &rc, &rc);
}

// The rectangle of an RGB image as an image of its own.
Side Part(const Side &side) {
    Side part = side;
    const ImgDesc &d = side.view.desc;
    const int64_t rows = std::llabs(int64_t{d.nHeight});
    const bool bottomUp = d.nHeight > 0 && !IsPlain(d.fcc);
    const int64_t first = bottomUp ? rows - side.rc.bottom : side.rc.top;
    const int64_t offset = first * side.view.rowBytes + side.rc.left * (PixelBits(d.fcc) / 8);
    part.p += offset;
    part.view.bytes -= offset;
    part.view.desc.nWidth = Width(side.rc);
    part.view.desc.nHeight = d.nHeight > 0 ? Rows(side.rc) : -Rows(side.rc);
    return part;
}

HRESULT ScaleRgb(const Stage &stage, const Side &source, const Side &target) {
    const Side from = Part(source);
    const Side to = Part(target);
    return SEH_Resize_n_Sharp(&stage.state->plane[0], from.p, to.p, &from.view, &to.view, stage.job.bInterlaced,
                              &stage.options);
}

HRESULT FromRgb(const Stage &stage, const Side &source, const Side &target) {
    if (source.Fcc() == target.Fcc()) return ScaleRgb(stage, source, target);
    const Side scaled = ScratchLike(&stage.state->scratch[1], target, source.Fcc(), false);
    const HRESULT hr = ScaleRgb(stage, source, scaled);
    return hr == S_OK ? Recolour(stage, scaled, target, target.rc) : hr;
}

// 4:2:2 rows of one length: bytes are scaled as they lie.
HRESULT ScaleRows(const Stage &stage, const Side &source, const Side &target) {
    const bool straight = source.layout.kind == target.layout.kind;
    const Side to = straight ? target : ScratchLike(&stage.state->scratch[1], target, source.Fcc(), false);
    const auto at = [](const Side &s) { return s.p + s.rc.top * s.view.rowBytes + int64_t{2} * s.rc.left; };
    const HRESULT hr =
        Scale_Dyn(&stage.state->plane[0].dyn, at(source), at(to), Rows(source.rc), Rows(to.rc), 2 * Width(source.rc),
                  source.view.rowBytes, to.view.rowBytes, stage.options.dblFactor, stage.options.nFlags);
    return hr != S_OK || straight ? hr : Recolour(stage, to, target, target.rc);
}

HRESULT ScalePlanes(const Stage &stage, const ImgPlanes &from, const ImgPlanes &to) {
    for (int32_t i = 0; i < 3; ++i) {
        const ImgPlane &a = from.plane[i];
        const ImgPlane &b = to.plane[i];
        const auto empty = [](const ImgPlane &p) { return p.width < 1 || p.rows < 1; };
        if (a.width == b.width && a.rows == b.rows && empty(a)) continue;
        if (empty(a) || empty(b)) return E_FAIL;
        const auto view = [](const ImgPlane &p) {
            return ImageView{{eZFCC_RGB8, p.width, p.rows, 0}, p.step, (p.rows - 1) * p.step + p.width};
        };
        const ImageView source = view(a);
        const ImageView target = view(b);
        ScaleOptions options = stage.options;
        if (i > 0) {
            options.dblFactor /= 2;
            options.nSharpen = 0;
        }
        const HRESULT hr =
            SEH_Resize_n_Sharp(&stage.state->plane[i], a.p, b.p, &source, &target, stage.job.bInterlaced, &options);
        if (hr != S_OK) return hr;
    }
    return S_OK;
}

HRESULT ByPlanes(const Stage &stage, const Side &source, const Side &target) {
    const bool planarSource = Is420(source.layout.kind);
    const bool planarTarget = Is420(target.layout.kind);
    const bool half = planarSource || planarTarget;
    // Down by field for every interlaced picture, so that a field that is dropped leaves no trace; up only if both stay.
    const ChromaRows down = stage.job.bInterlaced ? ChromaRows::ByField : ChromaRows::Progressive;
    const bool both = (stage.options.nFlags & kScaleModeMask) == kScaleBothFields;
    const ChromaRows up = both ? ChromaRows::ByField : ChromaRows::Progressive;
    std::vector<uint8_t> *const scratch = stage.state->scratch;
    const ImgPlanes from = planarSource ? PlanesOf420(source.p, source.layout, source.rc, &scratch[1])
                                        : PlanesOf422(source.p, source.layout, source.rc, half, down, &scratch[1]);
    const ImgPlanes to = planarTarget ? PlanesOf420(target.p, target.layout, target.rc, &scratch[2])
                                      : ScratchPlanes(&scratch[2], Width(target.rc), Rows(target.rc), half);
    const HRESULT hr = ScalePlanes(stage, from, to);
    if (hr != S_OK) return hr;
    if (planarTarget)
        JoinNv12(to, target.p, target.layout, target.rc);
    else
        PackPlanes422(to, half, up, target.p, target.layout, target.rc);
    return S_OK;
}

HRESULT Scale(const Stage &stage, Side source, Side target) {
    if (source.Fcc() != target.Fcc() && target.Rgb()) {
        const bool bottomUp = source.Rgb() && target.view.desc.nHeight > 0;
        const Side converted = ScratchLike(&stage.state->scratch[0], source, target.Fcc(), bottomUp);
        HRESULT hr = Recolour(stage, source, converted, source.rc);
        if (hr != S_OK) return hr;
        source = converted;
        const tagRECT rcSrc = source.rc;
        const tagRECT rcDst = target.rc;
        hr = NormalizeRects(&source.view.desc, &target.view.desc, &source.rc, &target.rc, true, &rcSrc, &rcDst);
        if (hr != S_OK) return hr;
    }
    if (source.Rgb()) return FromRgb(stage, source, target);
    const bool packed = !Is420(source.layout.kind) && !Is420(target.layout.kind);
    if (packed && Width(source.rc) == Width(target.rc)) return ScaleRows(stage, source, target);
    return ByPlanes(stage, source, target);
}

// Of RGB8, which has no colour to convert.
HRESULT CopyPlain(const Side &source, const Side &target) {
    const Side from = Part(source);
    const Side to = Part(target);
    const int32_t status = Copy_8u_C1R(from.p, from.view.rowBytes, to.p, to.view.rowBytes, {Width(to.rc), Rows(to.rc)});
    return status == kPrimitiveOk ? S_OK : E_FAIL;
}

double Sharpened(double factor, int32_t sharpen) {
    if (sharpen == 0) return factor;
    if (factor < 0) factor = 0.5;
    if (factor == 0) factor = 0.8;
    return sharpen > 0 ? factor / (1 + sharpen / 25.0) : factor * (1 - sharpen / 25.0);
}

HRESULT Convert(Stage &stage, Side &source, Side &target, const tagRECT *rcSrc, const tagRECT *rcDst) {
    const std::lock_guard lock(stage.state->cs);
    HRESULT hr = NormalizeRects(&source.view.desc, &target.view.desc, &source.rc, &target.rc, true, rcSrc, rcDst);
    if (hr != S_OK) return hr;
    const bool plain = IsPlain(source.Fcc()) && IsPlain(target.Fcc());
    const bool copied = Width(source.rc) == Width(target.rc) && Rows(source.rc) == Rows(target.rc) && stage.job.nSharpen == 0 &&
                        stage.job.nFlags == 0;
    if (copied && !plain)
        return ColorConvertViews(stage.state, source.p, target.p, source.view, target.view, &source.rc, &target.rc);
    if (!plain && (IsPlain(source.Fcc()) || IsPlain(target.Fcc()))) return kVfwEInvalidSubtype;
    hr = Open(source.p, source.view, &source);
    if (hr == S_OK) hr = Open(target.p, target.view, &target);
    if (hr != S_OK) return hr;
    if (copied) return CopyPlain(source, target);
    const bool widens = Width(target.rc) > Width(source.rc);
    ScaleOptions &o = stage.options;
    o.nQuality = stage.job.nQuality == kResizeSuper && widens ? kResizeBSpline : stage.job.nQuality;
    o.dblFactor = Sharpened(ScaleFactorOf(stage.job.nQuality), stage.job.nSharpen);
    o.nSharpen = stage.job.nSharpen;
    o.nFlags = stage.job.nFlags | (stage.job.bInterlaced ? 0 : kScaleProgressive);
    return Scale(stage, source, target);
}

}    // namespace

double ScaleFactorOf(int32_t quality) {
    switch (quality) {
        case kResizeNearest:
            return -1.0;
        case kResizeLinear:
            return 0.5;
        case kResizeCubic:
            return 0.75;
        case kResizeBSpline:
            return 0.8;
        case kResizeCatmullRom:
            return 0.85;
        case kResizeSoftCubic:
            return 0.9;
        default:
            return 1.0;
    }
}

HRESULT Img_Convert(ImgScaleState *state, const uint8_t *src, uint8_t *dst, const ImageView &source, const ImageView &target,
                    const tagRECT *rcSrc, const tagRECT *rcDst, const ImgConvertJob &job) {
    if (state == nullptr || src == nullptr || dst == nullptr) return E_INVALIDARG;
    Stage stage = {state, job, {}};
    Side from = {const_cast<uint8_t *>(src), source, {}, {}};
    Side to = {dst, target, {}, {}};
    return Guarded([&] { return Convert(stage, from, to, rcSrc, rcDst); });
}

}    // namespace zck
