#include "tests/conformance/mix_model.h"

#include <cmath>
#include <cstdlib>

#include "tests/conformance/media_model.h"
#include "tests/conformance/mix_rows_model.h"
#include "tests/conformance/picture_model.h"
#include "tests/conformance/scale_model.h"

namespace conformance {
namespace {

struct Rect {
    int64_t left, top, right, bottom;
};

// The part of a picture that is mixed: rows of the memory, columns in pixels.
struct Pane {
    Z_VID_PROPS whole;
    int64_t left, firstRow, every, width, rows;
    bool up;

    // The row of the memory that shows as row `r` of the part.
    int64_t MemoryRow(int64_t r) const { return firstRow + (up ? rows - 1 - r : r) * every; }
    int64_t At(int64_t r) const { return MemoryRow(r) * whole.nRowBytes + left * Bits(whole.fccType) / 8; }
    // The row of the whole picture, from its top.
    int64_t PictureRow(int64_t r) const { return up ? std::abs(whole.nHeight) - 1 - MemoryRow(r) : MemoryRow(r); }
};

bool Is422(eZFCC fcc) { return IsGroups(fcc) || fcc == eZFCC_v210; }
int64_t EvenDown(int64_t v) { return v / 2 * 2; }

Pane PaneOf(const Z_VID_PROPS &p, const Rect &rect, int32_t field) {
    const int64_t w = p.nWidth, h = std::abs(p.nHeight);
    const bool up = Rgb(p.fccType) && p.nHeight > 0;
    if (Planar(p.fccType)) return {p, 0, 0, 1, w, h, false};
    int64_t left = std::max<int64_t>(rect.left, 0), top = std::max<int64_t>(rect.top, 0);
    int64_t right = std::clamp<int64_t>(rect.right, 0, w), bottom = std::clamp<int64_t>(rect.bottom, 0, h);
    left = std::min(left, right);
    top = std::min(top, bottom);
    if (!Rgb(p.fccType)) left = EvenDown(left + 1), right = EvenDown(right);
    const int32_t order = OrderSign(&p);
    if (order != 0 || field >= 0) top = EvenDown(top + 1), bottom = EvenDown(bottom);
    left = std::min(left, right);
    top = std::min(top, bottom);
    if ((field == 1 && order < 0) || (field == 2 && order >= 0)) ++top, ++bottom;
    Pane pane = {p, left, up ? std::max<int64_t>(0, h - 1 - bottom) : top, 1, right - left, bottom - top, up};
    if (field >= 0) pane.rows /= 2, pane.every = 2;
    return pane;
}

struct Panes {
    Pane target, over;
    int64_t width, rows;
    bool Nothing() const { return width < 1 || rows < 1; }
};

// Where both pictures lie on each other. `overWidth` counts the overlay's columns that have pixels.
Panes PanesOf(const Z_VID_PROPS &target, const Z_VID_PROPS &over, int64_t overWidth, int64_t x, int64_t y, int32_t field) {
    const int64_t h = std::abs(over.nHeight);
    Panes p = {PaneOf(target, {x, y, x + over.nWidth, y + h}, field),
               PaneOf(over, {std::max<int64_t>(0, -x), std::max<int64_t>(0, -y), overWidth, h}, field), 0, 0};
    p.width = std::min(p.target.width, p.over.width);
    p.rows = std::min(p.target.rows, p.over.rows);
    return p;
}

// Completes a record, and holds it against the memory.
HRESULT Complete(const Still &still, Z_VID_PROPS *p) {
    *p = still.props;
    if (!Valid(p)) return kBadRecordModel;
    const auto open = [p] { return p->nWidth == 0 || p->nHeight == 0 || p->nRowBytes == 0; };
    if (open()) Update(p, false);
    if (open() || p->nRowBytes < 0) return kBadRecordModel;
    return Need(*p) > static_cast<int64_t>(still.memory.size()) ? kBadMediaModel : S_OK;
}

eZFCC Family(eZFCC fcc) { return fcc == eZFCC_HDYC ? eZFCC_UYVY : fcc == eZFCC_RGB32 ? eZFCC_ARGB32 : fcc; }

Order422 OrderOf(eZFCC fcc) { return fcc == eZFCC_YUY2 || fcc == eZFCC_YVYU ? Order422::LumaFirst : Order422::LumaSecond; }

// Every pixel stays where it is.
HRESULT Convert(const Bytes &memory, Z_VID_PROPS from, Z_VID_PROPS to, Still *result, int32_t *tolerance) {
    *result = {to, Bytes(static_cast<size_t>(BufferSize(&to)))};
    const HRESULT hr = ConvertModel(memory, result->memory, from, to).hr;
    if (hr != kNoRouteModel) return hr;
    if (!IsServed(from.fccType) || !IsServed(to.fccType))
        return from.nWidth < 2 && (Is422(from.fccType) || Is422(to.fccType)) ? E_UNEXPECTED : hr;
    from.eScaleType = to.eScaleType = eZST_None;
    from.e3DFormat = to.e3DFormat = eZ3D_None;
    from.eInterlace = to.eInterlace = eZI_Progressive;
    *tolerance = 1 + (Rgb(from.fccType) == Rgb(to.fccType) ? 1 : Rgb(to.fccType) ? 6 : 2);
    return Frame2Model(memory, {&result->memory, nullptr, nullptr}, from, to, 2) ? S_OK : E_FAIL;
}

// Runs `mix(target row, overlay row, row of the part)` from the top.
template <class Mix>
void ForRows(const Panes &p, Bytes &target, const Bytes &over, Mix &&mix) {
    for (int64_t r = 0; r < p.rows; ++r) mix(target.data() + p.target.At(r), over.data() + p.over.At(r), r);
}

void MixConstant(const Panes &p, Laid &out, const Bytes &over, double opacity) {
    const eZFCC fcc = p.target.whole.fccType;
    const bool known = IsGroups(fcc) || IsPixels(fcc);
    if (!known || Family(fcc) != Family(p.over.whole.fccType)) {
        out.hr = kCannotMixModel;
        return;
    }
    const int32_t a = Opacity128Model(opacity);
    const int64_t bytes = p.width * Bits(fcc) / 8;
    ForRows(p, out.target, over, [&](uint8_t *d, const uint8_t *s, int64_t) {
        if (fcc == eZFCC_ARGB32)
            OverRowModel(d, s, p.width, a, 7);
        else if (a == 128)
            CopyRowModel(d, s, IsGroups(fcc) ? p.width / 2 * 4 : bytes);
        else
            ConstantRowModel(d, s, bytes, a);
    });
}

void MixPair(const Panes &p, Laid &out, const Bytes &over, const Still &alpha, double opacity) {
    ForRows(p, out.target, over, [&](uint8_t *d, const uint8_t *s, int64_t r) {
        Bytes row;
        const int64_t h = std::abs(alpha.props.nHeight), y = p.over.PictureRow(r);
        const int64_t at = (alpha.props.nHeight > 0 ? h - 1 - y : y) * alpha.props.nRowBytes;
        for (int64_t x = 0; x < p.width; ++x)
            row.push_back(alpha.memory.at(static_cast<size_t>(at + (p.over.left + x) * 4 + 3)));
        AlphaPairRowModel(d, s, row.data(), p.width, Opacity128Model(opacity));
    });
}

// Multiplied colours over any picture. `over` is the part's own picture.
void MixPremultiplied(const Panes &p, Laid &out, const Bytes &over, double opacity) {
    const eZFCC fcc = p.target.whole.fccType;
    const int32_t a = Opacity256Model(opacity);
    if (Family(fcc) == eZFCC_ARGB32) {
        ForRows(p, out.target, over, [&](uint8_t *d, const uint8_t *s, int64_t) { OverRowModel(d, s, p.width, a, 8); });
        return;
    }
    // The whole part is converted, also what will not be mixed.
    Z_VID_PROPS from = p.over.whole, to;
    from.nWidth = static_cast<int32_t>(p.over.width);
    from.nHeight = static_cast<int32_t>(p.over.up ? p.over.rows : -p.over.rows);
    from.eVideoFormat = eZVF_Custom;
    to = from;
    to.fccType = fcc;
    to.nRowBytes = static_cast<int32_t>(Row(fcc, to.nWidth));
    Still part = {to, Bytes(static_cast<size_t>(std::max(BufferSize(&to), 1)))};
    const int64_t start = p.over.firstRow * from.nRowBytes + p.over.left * 4;
    out.hr = ConvertModel(Bytes(over.begin() + start, over.end()), part.memory, from, to).hr;
    if (out.hr != S_OK) return;
    if (fcc != eZFCC_UYVY && fcc != eZFCC_HDYC && fcc != eZFCC_YUY2) {
        out.hr = E_FAIL;
        return;
    }
    ForRows(p, out.target, over, [&](uint8_t *d, const uint8_t *s, int64_t r) {
        Bytes alpha;
        for (int64_t x = 0; x < p.width; ++x) alpha.push_back(s[x * 4 + 3]);
        Premultiplied422RowModel(d, part.memory.data() + r * to.nRowBytes, alpha.data(), p.width, a, OrderOf(fcc));
    });
}

// A mask of `width` by `rows` with the top row first.
Still EmptyMask(int64_t width, int64_t rows) {
    Still mask;
    mask.props = Picture(eZFCC_RGB8, static_cast<int32_t>(width), static_cast<int32_t>(rows));
    mask.props.nRowBytes = static_cast<int32_t>((width + 7) / 8 * 8);
    mask.memory.resize(static_cast<size_t>(mask.props.nRowBytes * rows));
    return mask;
}

bool Fits(const Still *mask, const Still &size) {
    return mask != nullptr && mask->props.fccType == eZFCC_RGB8 && mask->props.nWidth == size.props.nWidth &&
           std::abs(mask->props.nHeight) == size.props.nHeight &&
           Need(mask->props) <= static_cast<int64_t>(mask->memory.size());
}

// The mask as large as the overlay: a stored one, or `made`.
HRESULT MaskFor(const Layers &layers, const Z_VID_PROPS &over, Laid &out, Still &made, const Still **found) {
    const Still size = EmptyMask(Rgb(over.fccType) ? over.nWidth : EvenDown(over.nWidth), std::abs(over.nHeight));
    const Still *stored = layers.mask != nullptr ? layers.maskMask : layers.overMask;
    *found = nullptr;
    if (Fits(stored, size)) {
        *found = stored;
        return S_OK;
    }
    const Still *picture = layers.mask != nullptr ? layers.mask : over.fccType == eZFCC_ARGB32 ? layers.over : nullptr;
    if (picture == nullptr) return S_OK;
    // Without a picture the stored mask is scaled, and stays as it is.
    const bool keep = !picture->memory.empty() || stored == nullptr;
    if (!keep)
        made = *stored;
    else if (const HRESULT hr = MaskOfModel(*picture, &made); hr != S_OK)
        return hr;
    if (!Fits(&made, size)) {
        Still scaled = size;
        ResizeModel({&made.memory, 0, made.props.nRowBytes}, made.props.nWidth, made.props.nHeight,
                    {&scaled.memory, 0, scaled.props.nRowBytes}, scaled.props.nWidth, scaled.props.nHeight, 1, 2);
        made = scaled;
        out.tolerance = std::max(out.tolerance, 3);
    }
    if (keep) out.mask = made;
    *found = &made;
    return S_OK;
}

void MixMasked(const Panes &p, Laid &out, const Bytes &over, const Still *mask, bool multiplied, double opacity) {
    const eZFCC fcc = p.over.whole.fccType;
    const int32_t a = Opacity256Model(opacity);
    ForRows(p, out.target, over, [&](uint8_t *d, const uint8_t *s, int64_t r) {
        if (fcc == eZFCC_ARGB32) return OverRowModel(d, s, p.width, a, 8);
        if (mask == nullptr)
            return fcc == eZFCC_RGB32 ? Plain4RowModel(d, s, p.width, a) : Plain422RowModel(d, s, p.width, a, OrderOf(fcc));
        const uint8_t *k = mask->memory.data() + p.over.PictureRow(r) * mask->props.nRowBytes + p.over.left;
        if (fcc == eZFCC_RGB32) return Masked4RowModel(d, s, k, p.width, a);
        (multiplied ? Premultiplied422RowModel : Masked422RowModel)(d, s, k, p.width, a, OrderOf(fcc));
    });
}

bool CanMask(eZFCC fcc) {
    return fcc == eZFCC_UYVY || fcc == eZFCC_HDYC || fcc == eZFCC_YUY2 || fcc == eZFCC_RGB32 || fcc == eZFCC_ARGB32;
}

}    // namespace

Z_VID_PROPS ConvertedRecordModel(const Z_VID_PROPS &over, const Z_VID_PROPS &target, eZFCC fcc) {
    Z_VID_PROPS p = over;
    p.fccType = fcc;
    p.nHeight = std::abs(over.nHeight);
    if (Rgb(fcc) && target.nHeight < 0) p.nHeight = -p.nHeight;
    p.nRowBytes = static_cast<int32_t>(Row(fcc, p.nWidth));
    return p;
}

bool SameStoredModel(const Z_VID_PROPS &a, const Z_VID_PROPS &b) {
    const bool aspects = a.nAspectX != 0 && a.nAspectY != 0 && b.nAspectX != 0 && b.nAspectY != 0;
    if (aspects && (a.nAspectX != b.nAspectX || a.nAspectY != b.nAspectY)) return false;
    if (a.fccType != b.fccType || a.nWidth != b.nWidth || a.nHeight != b.nHeight || a.eInterlace != b.eInterlace ||
        a.nRowBytes != b.nRowBytes)
        return false;
    if (a.eVideoFormat != 0 && a.eVideoFormat == b.eVideoFormat) return true;
    return std::fabs(a.dblRate - b.dblRate) < 0.01 && a.e3DFormat == b.e3DFormat && a.eScaleType == b.eScaleType;
}

HRESULT MaskOfModel(const Still &picture, Still *mask) {
    if (picture.memory.empty()) return kNoPictureModel;
    Z_VID_PROPS p;
    if (const HRESULT hr = Complete(picture, &p); hr != S_OK) return hr;
    if (!IsServed(p.fccType) && p.fccType != eZFCC_RGB8) return E_INVALIDARG;
    *mask = EmptyMask(Rgb(p.fccType) ? p.nWidth : EvenDown(p.nWidth), std::abs(p.nHeight));
    Bytes memory = picture.memory;
    Samples samples(memory, ShapeOf(p));
    const int32_t h = std::abs(p.nHeight);
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < mask->props.nWidth; ++x) {
            uint8_t &k = mask->memory.at(static_cast<size_t>(y * mask->props.nRowBytes + x));
            if (p.fccType == eZFCC_RGB8)
                k = memory.at(static_cast<size_t>((p.nHeight > 0 ? h - 1 - y : y) * p.nRowBytes + x));
            else if (p.fccType == eZFCC_ARGB32)
                k = samples.Pixel(x, y, 3);
            else if (IsPixels(p.fccType))
                k = Luma601(samples.Pixel(x, y, 0), samples.Pixel(x, y, 1), samples.Pixel(x, y, 2));
            else
                k = samples.Luma(x, y);
        }
    return S_OK;
}

Laid FrameOverlayModel(const Still &target, const Still &over, int64_t x, int64_t y, double opacity) {
    Laid out;
    out.target = target.memory;
    const auto fail = [&out](HRESULT hr) {
        out.hr = hr;
        return out;
    };
    if (target.memory.empty() || over.memory.empty()) return fail(kNoPictureModel);
    Z_VID_PROPS tp, op;
    if (const HRESULT hr = Complete(target, &tp); hr != S_OK) return fail(hr);
    if (const HRESULT hr = Complete(over, &op); hr != S_OK) return fail(hr);
    const eZFCC t = tp.fccType, o = op.fccType;
    const bool asItIs = Family(t) == Family(o) && (Family(t) == eZFCC_UYVY || o == eZFCC_ARGB32);
    const eZFCC working = asItIs ? o : t;
    Still used = {op, over.memory};
    const bool multiplied = o == eZFCC_ARGB32 && working != eZFCC_RGB24;
    if (!multiplied && o != working)
        if (const HRESULT hr = Convert(over.memory, op, ConvertedRecordModel(op, tp, working), &used, &out.tolerance);
            hr != S_OK)
            return fail(hr);
    const Panes panes = PanesOf(tp, used.props, Rgb(o) ? op.nWidth : EvenDown(op.nWidth), x, y, -1);
    if (panes.Nothing()) return fail(S_FALSE);
    out.hr = S_OK;
    if (multiplied)
        MixPremultiplied(panes, out, used.memory, opacity);
    else if (o == eZFCC_ARGB32)
        MixPair(panes, out, used.memory, {op, over.memory}, opacity);
    else
        MixConstant(panes, out, used.memory, opacity);
    return out;
}

Laid WideOverlayModel(const Still &target, const Layers &layers, int64_t x, int64_t y, double opacity, int32_t field) {
    Laid out;
    out.target = target.memory;
    const auto end = [&out](HRESULT hr) {
        out.hr = hr;
        return out;
    };
    const Still &over = *layers.over;
    if (!Valid(&target.props) || !Valid(&over.props) || target.memory.empty() || over.memory.empty()) return end(S_OK);
    Z_VID_PROPS tp, op;
    if (const HRESULT hr = Complete(target, &tp); hr != S_OK) return end(hr);
    if (const HRESULT hr = Complete(over, &op); hr != S_OK) return end(hr);
    const int64_t w = op.nWidth, h = std::abs(op.nHeight);
    const int64_t columns = Rgb(op.fccType) ? w : EvenDown(w);
    if (x >= tp.nWidth || y >= std::abs(tp.nHeight) || x + w <= 0 || y + h <= 0) return end(S_OK);
    Still used = {op, over.memory};
    if (Family(op.fccType) != Family(tp.fccType)) {
        const Z_VID_PROPS wanted = ConvertedRecordModel(op, tp, tp.fccType);
        if (layers.overConverted != nullptr && SameStoredModel(layers.overConverted->props, wanted)) {
            used = *layers.overConverted;
        } else {
            if (const HRESULT hr = Convert(over.memory, op, wanted, &used, &out.tolerance); hr != S_OK) return end(hr);
            out.converted = used;
        }
    }
    const eZFCC fcc = used.props.fccType;
    Still made;
    const Still *mask = nullptr;
    if (CanMask(fcc) && fcc != eZFCC_ARGB32)
        if (const HRESULT hr = MaskFor(layers, op, out, made, &mask); hr != S_OK) return end(hr);
    const Panes panes = PanesOf(tp, used.props, columns, x, y, field);
    if (panes.Nothing()) return end(S_OK);
    if (!CanMask(fcc)) return end(E_INVALIDARG);
    MixMasked(panes, out, used.memory, mask, layers.mask == nullptr, opacity);
    return end(S_OK);
}

}    // namespace conformance
