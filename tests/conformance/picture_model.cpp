#include "tests/conformance/picture_model.h"

#include <algorithm>
#include <cmath>

#include "tests/conformance/media_model.h"

namespace conformance {
namespace {

struct Wide {
    int64_t left, top, right, bottom;
    bool Empty() const { return right <= left || bottom <= top; }
};

Wide WideOf(const tagRECT *r, const Shape &shape) {
    if (r == nullptr) return {0, 0, shape.width, shape.Rows()};
    return {r->left, r->top, r->right, r->bottom};
}

tagRECT NarrowOf(const Wide &r) {
    const auto narrow = [](int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); };
    return {narrow(r.left), narrow(r.top), narrow(r.right), narrow(r.bottom)};
}

void EvenColumns(Wide &r) {
    if (r.left % 2 != 0) r.left += 1;
    if (r.right % 2 != 0) r.right -= 1;
}

bool Outside(const Wide &r, const Shape &s) {
    return r.Empty() || r.right < 0 || r.left >= s.width || r.bottom < 0 || r.top >= s.Rows();
}

int64_t HalfAway(double v) { return static_cast<int64_t>(std::round(v)); }

// What one side loses below 0 the other loses by the scale.
void ClipLow(int64_t &own, int64_t &other, double scale) {
    if (own >= 0) return;
    other -= HalfAway(static_cast<double>(own) * scale);
    own = 0;
}

void ClipHigh(int64_t &own, int64_t end, int64_t &other, double scale) {
    if (own <= end) return;
    other -= HalfAway(static_cast<double>(own - end) * scale);
    own = end;
}

// As ClipLow and ClipHigh, from the target's side.
void ClipLowBack(int64_t &own, int64_t &other, double scale) {
    if (own >= 0) return;
    other -= HalfAway(static_cast<double>(own) / scale);
    own = 0;
}

void ClipHighBack(int64_t &own, int64_t end, int64_t &other, double scale) {
    if (own <= end) return;
    other -= HalfAway(static_cast<double>(own - end) / scale);
    own = end;
}

int32_t PixelSize(eZFCC fcc) { return fcc == eZFCC_RGB24 ? 3 : 4; }

}    // namespace

bool Is420(eZFCC fcc) { return fcc == eZFCC_I420 || fcc == eZFCC_YV12 || fcc == eZFCC_NV12; }
bool IsGroups(eZFCC fcc) { return fcc == eZFCC_UYVY || fcc == eZFCC_HDYC || fcc == eZFCC_YUY2 || fcc == eZFCC_YVYU; }
bool IsPixels(eZFCC fcc) { return fcc == eZFCC_RGB24 || fcc == eZFCC_RGB32 || fcc == eZFCC_ARGB32; }
bool IsServed(eZFCC fcc) { return Is420(fcc) || IsGroups(fcc) || IsPixels(fcc); }

size_t BytesOf(const Shape &shape) {
    const int64_t luma = shape.row * shape.Rows(), half = shape.Rows() / 2;
    if (shape.fcc == eZFCC_NV12) return static_cast<size_t>(luma + shape.row * half);
    if (Is420(shape.fcc)) return static_cast<size_t>(luma + 2 * (shape.row / 2) * half);
    return static_cast<size_t>(luma);
}

Rects RectsModel(const Shape &src, const Shape &dst, bool proportional, const tagRECT *inSrc, const tagRECT *inDst) {
    for (const tagRECT *r : {inSrc, inDst})
        if (r != nullptr && (r->left >= r->right || r->top >= r->bottom)) return {E_INVALIDARG, {}, {}};
    Wide s = WideOf(inSrc, src), d = WideOf(inDst, dst);
    const bool even = !Rgb(src.fcc) || !Rgb(dst.fcc);
    if (even) EvenColumns(s), EvenColumns(d);
    if (s.Empty() || d.Empty()) return {S_FALSE, NarrowOf(s), NarrowOf(d)};
    double x = 1.0, y = 1.0;
    if (proportional) {
        x = static_cast<double>(d.right - d.left) / static_cast<double>(s.right - s.left);
        y = static_cast<double>(d.bottom - d.top) / static_cast<double>(s.bottom - s.top);
    } else {
        const int64_t w = std::min(s.right - s.left, d.right - d.left), h = std::min(s.bottom - s.top, d.bottom - d.top);
        s = {s.left, s.top, s.left + w, s.top + h};
        d = {d.left, d.top, d.left + w, d.top + h};
    }
    // Top by the scale across, left by the scale down.
    ClipLow(s.top, d.top, x);
    ClipLowBack(d.top, s.top, x);
    ClipLow(s.left, d.left, y);
    ClipLowBack(d.left, s.left, y);
    ClipHigh(s.right, src.width, d.right, x);
    ClipHighBack(d.right, dst.width, s.right, x);
    ClipHigh(s.bottom, src.Rows(), d.bottom, y);
    ClipHighBack(d.bottom, dst.Rows(), s.bottom, y);
    if (even) EvenColumns(s), EvenColumns(d);
    const bool nothing = Outside(s, src) || Outside(d, dst);
    return {nothing ? S_FALSE : S_OK, NarrowOf(s), NarrowOf(d)};
}

int64_t Samples::RowStart(int32_t y) const {
    const bool up = Rgb(m_shape.fcc) && m_shape.height > 0;
    return m_shape.row * (up ? m_shape.Rows() - 1 - y : y);
}

uint8_t &Samples::Pixel(int32_t x, int32_t y, int32_t channel) {
    return At(RowStart(y) + int64_t{x} * PixelSize(m_shape.fcc) + channel);
}

uint8_t &Samples::Luma(int32_t x, int32_t y) {
    if (Is420(m_shape.fcc)) return At(RowStart(y) + x);
    const bool first = m_shape.fcc == eZFCC_YUY2 || m_shape.fcc == eZFCC_YVYU;
    return At(RowStart(y) + int64_t{x} * 2 + (first ? 0 : 1));
}

uint8_t &Samples::Chroma(int32_t which, int32_t column, int32_t row) {
    const int64_t planes = m_shape.row * m_shape.Rows(), half = m_shape.row / 2;
    switch (m_shape.fcc) {
        case eZFCC_NV12:
            return At(planes + m_shape.row * row + int64_t{column} * 2 + which);
        case eZFCC_I420:
            return At(planes + half * (m_shape.Rows() / 2) * which + half * row + column);
        case eZFCC_YV12:
            return At(planes + half * (m_shape.Rows() / 2) * (1 - which) + half * row + column);
        case eZFCC_YUY2:
            return At(RowStart(row) + int64_t{column} * 4 + (which == 0 ? 1 : 3));
        case eZFCC_YVYU:
            return At(RowStart(row) + int64_t{column} * 4 + (which == 0 ? 3 : 1));
        default:
            return At(RowStart(row) + int64_t{column} * 4 + (which == 0 ? 0 : 2));
    }
}

void PartModel(const Bytes &src, const Shape &from, Bytes &dst, const Shape &to, const Part &part) {
    Bytes copy = src;
    Samples in(copy, from), out(dst, to);
    const bool rgbIn = IsPixels(from.fcc), rgbOut = IsPixels(to.fcc), down = Is420(to.fcc);
    // The row of chroma for a row of the part, and the first one; 4:2:0 counts pairs of rows from the part's top.
    const auto chromaRow = [](eZFCC fcc, int32_t top, int32_t y) { return Is420(fcc) ? top / 2 + y / 2 : top + y; };
    const auto chroma = [&](int32_t which, int32_t column, int32_t y) -> int {
        if (in.ChromaRows() == 0) return 128;
        return in.Chroma(which, part.srcLeft / 2 + column, std::min(chromaRow(from.fcc, part.srcTop, y), in.ChromaRows() - 1));
    };
    const auto pixel = [&](int32_t x, int32_t y, int32_t c) -> int { return in.Pixel(part.srcLeft + x, part.srcTop + y, c); };

    for (int32_t y = 0; y < part.rows; ++y)
        for (int32_t x = 0; x < part.width; ++x) {
            const int32_t toX = part.dstLeft + x, toY = part.dstTop + y;
            if (rgbIn && rgbOut) {
                for (int32_t c = 0; c < 3; ++c) out.Pixel(toX, toY, c) = static_cast<uint8_t>(pixel(x, y, c));
                if (to.fcc == eZFCC_RGB24) continue;
                const bool opaque = from.fcc == eZFCC_RGB24 || (from.fcc == eZFCC_RGB32 && to.fcc == eZFCC_ARGB32);
                out.Pixel(toX, toY, 3) = opaque ? uint8_t{255} : static_cast<uint8_t>(pixel(x, y, 3));
            } else if (rgbOut) {
                // Pictures with Cr first come out with exchanged chroma in pixels of four bytes.
                const int32_t exchanged = from.fcc == eZFCC_YVYU && to.fcc != eZFCC_RGB24 ? 1 : 0;
                uint8_t bgr[3];
                Rgb601(in.Luma(part.srcLeft + x, part.srcTop + y), chroma(exchanged, x / 2, y), chroma(1 - exchanged, x / 2, y),
                       bgr);
                for (int32_t c = 0; c < 3; ++c) out.Pixel(toX, toY, c) = bgr[c];
                if (to.fcc != eZFCC_RGB24) out.Pixel(toX, toY, 3) = 255;
            } else if (rgbIn) {
                out.Luma(toX, toY) = Luma601(pixel(x, y, 0), pixel(x, y, 1), pixel(x, y, 2));
            } else {
                out.Luma(toX, toY) = in.Luma(part.srcLeft + x, part.srcTop + y);
            }
        }
    if (rgbOut) return;

    for (int32_t y = 0; y < part.rows; y += down ? 2 : 1)
        for (int32_t column = 0; column < part.width / 2; ++column) {
            const int32_t toRow = chromaRow(to.fcc, part.dstTop, y), second = down && y + 1 < part.rows ? y + 1 : y;
            if (toRow >= out.ChromaRows()) continue;
            if (down && Is420(from.fcc) && in.ChromaRows() == 0) continue;    // there is nothing to copy
            for (int32_t which = 0; which < 2; ++which) {
                int value;
                if (rgbIn) {
                    int sum[3] = {};
                    for (const int32_t row : {y, second})
                        for (int32_t i = 0; i < 2; ++i)
                            for (int32_t c = 0; c < 3; ++c) sum[c] += pixel(column * 2 + i, row, c);
                    value = which == 0 ? Cb601(sum[0], sum[1], sum[2], 4) : Cr601(sum[0], sum[1], sum[2], 4);
                } else {
                    value = (chroma(which, column, y) + chroma(which, column, second) + 1) / 2;
                }
                out.Chroma(which, part.dstLeft / 2 + column, toRow) = static_cast<uint8_t>(value);
            }
        }
}

HRESULT PictureModel(const Bytes &src, const Shape &from, Bytes &dst, const Shape &to, const tagRECT *inSrc,
                     const tagRECT *inDst) {
    const Rects r = RectsModel(from, to, false, inSrc, inDst);
    if (r.hr != S_OK || !IsServed(from.fcc) || !IsServed(to.fcc)) return r.hr;
    const Part part = {r.src.left,
                       r.src.top,
                       r.dst.left,
                       r.dst.top,
                       std::min(r.src.right - r.src.left, r.dst.right - r.dst.left),
                       std::min(r.src.bottom - r.src.top, r.dst.bottom - r.dst.top)};
    PartModel(src, from, dst, to, part);
    return S_OK;
}

}    // namespace conformance
