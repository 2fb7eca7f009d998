#include "tests/conformance/geometry_model.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tests/conformance/media_model.h"
#include "tests/conformance/picture_model.h"
#include "tests/conformance/scale_model.h"

namespace conformance {
namespace {

int64_t Even(int64_t v) { return v / 2 * 2; }

// The shape of the picture's pixels is kept.
void PartAspect(const Z_VID_PROPS &whole, Z_VID_PROPS &part) {
    const double height = std::fabs(static_cast<double>(whole.nHeight));
    const double pixel = whole.nWidth < 1 ? 1.0 : Aspect(&whole) * height / static_cast<double>(whole.nWidth);
    int64_t x = static_cast<int64_t>(std::round(pixel * static_cast<double>(part.nWidth))), y = std::abs(part.nHeight);
    if (x <= 0 || y <= 0) x = y = 0;
    if (x != 0) {
        const int64_t common = std::gcd(x, y);
        x /= common, y /= common;
    }
    while (x > 32767 || y > 32767) x = std::max<int64_t>(x / 2, 1), y = std::max<int64_t>(y / 2, 1);
    part.nAspectX = static_cast<int16_t>(x);
    part.nAspectY = static_cast<int16_t>(y);
}

// A grid of samples of `size` bytes.
struct Grid {
    int32_t width, rows, size;
    Bytes bytes;
    Grid(int32_t w, int32_t h, int32_t s)
        : width(w), rows(h), size(s), bytes(static_cast<size_t>(w) * static_cast<size_t>(h * s)) {}
    uint8_t &At(int32_t x, int32_t y, int32_t c) { return bytes.at(static_cast<size_t>((y * width + x) * size + c)); }
};

// Rows `first`, `first` + `step` ... of a grid: brought to the size that the turned one has before the turn, and turned.
void TurnRows(Grid &in, Grid &out, int32_t first, int32_t step, bool left) {
    const int32_t rows = in.rows / step, outRows = out.rows / step;
    if (rows < 1 || outRows < 1 || in.width < 1 || out.width < 1) return;
    Grid staged(outRows, out.width, in.size);
    ResizeModel({&in.bytes, int64_t{first} * in.width * in.size, int64_t{step} * in.width * in.size}, in.width, rows,
                {&staged.bytes, 0, int64_t{staged.width} * staged.size}, staged.width, staged.rows, in.size, 2);
    for (int32_t r = 0; r < outRows; ++r)
        for (int32_t c = 0; c < out.width; ++c)
            for (int32_t i = 0; i < in.size; ++i)
                out.At(c, first + r * step, i) =
                    left ? staged.At(staged.width - 1 - r, c, i) : staged.At(r, staged.rows - 1 - c, i);
}

void Turn(Grid &in, Grid &out, bool fields, bool left) {
    for (int32_t parity = 0; parity < (fields ? 2 : 1); ++parity) TurnRows(in, out, parity, fields ? 2 : 1, left);
}

}    // namespace

bool Spot::BottomUp() const { return Rgb(props.fccType) && props.nHeight > 0; }

Z_VID_PROPS UpdatedModel(Z_VID_PROPS props) {
    const int32_t height = props.nHeight;
    const bool line = (height == 1 || height == -1) && props.nRowBytes != 0;
    Update(&props, false);
    if (line) props.nHeight = height;
    return props;
}

Spot PartOfModel(Spot spot, const tagRECT &rect) {
    const Z_VID_PROPS whole = spot.props;
    Z_VID_PROPS &p = spot.props;
    if (!Valid(&whole) || Planar(whole.fccType)) return spot;
    const int64_t w = whole.nWidth, h = spot.Height();
    int64_t right = std::clamp<int64_t>(rect.right, 0, w), left = std::clamp<int64_t>(rect.left, 0, right);
    int64_t bottom = std::clamp<int64_t>(rect.bottom, 0, h), top = std::clamp<int64_t>(rect.top, 0, bottom);
    if (!Rgb(whole.fccType)) left = Even(left + 1), right = Even(right);
    if (OrderSign(&whole) != 0) top = Even(top + 1), bottom = Even(bottom);
    left = std::min(left, right);
    top = std::min(top, bottom);
    const int64_t row = spot.BottomUp() ? std::max<int64_t>(0, h - 1 - bottom) : top;
    spot.at += row * whole.nRowBytes + left * Bits(whole.fccType) / 8;
    p.eVideoFormat = eZVF_Custom;
    p.nWidth = static_cast<int32_t>(Rgb(whole.fccType) ? right - left : Even(right - left));
    p.nHeight = static_cast<int32_t>(whole.nHeight < 0 ? top - bottom : bottom - top);
    PartAspect(whole, p);
    return spot;
}

Spot FieldOfModel(Spot spot, int32_t f) {
    Z_VID_PROPS &p = spot.props;
    int32_t parity = OrderSign(&p) < 0 ? (f + 1) % 2 : f;
    if (spot.BottomUp()) parity = (parity + 1) % 2;
    if (parity == 1) spot.at += p.nRowBytes;
    p.nRowBytes *= 2;
    p.nHeight /= 2;
    p.eInterlace = eZI_Progressive;
    p.eVideoFormat = eZVF_Custom;
    return spot;
}

HRESULT TurnModel(const Still &still, bool left, Still *turned, bool *rounded) {
    if (!Valid(&still.props)) return kBadMediaModel;
    if (still.memory.empty()) return E_UNEXPECTED;
    if (Need(still.props) > static_cast<int64_t>(still.memory.size())) return kBadMediaModel;
    const eZFCC fcc = still.props.fccType;
    if (!IsGroups(fcc) && !IsPixels(fcc)) return E_INVALIDARG;
    const Z_VID_PROPS from = UpdatedModel(still.props);
    const int32_t w = from.nWidth, h = std::abs(from.nHeight);
    const bool fields = OrderSign(&from) != 0;
    Z_VID_PROPS to = from;
    if (to.eInterlace == eZI_Default) to.eInterlace = static_cast<eZInterlace>(FormatOf(from.eVideoFormat).scan);
    to.nWidth = h;
    to.nHeight = from.nHeight < 0 ? -w : w;
    std::swap(to.nAspectX, to.nAspectY);
    to.eVideoFormat = eZVF_Custom;
    to.nRowBytes = static_cast<int32_t>(Row(fcc, h));
    Bytes in = still.memory, out(static_cast<size_t>(BufferSize(&to)));
    *rounded = fields || IsGroups(fcc);

    // Rows in the order of the memory, which is that of a picture with its top row first.
    Samples read(in, {fcc, w, -h, from.nRowBytes}), write(out, {fcc, h, -w, to.nRowBytes});
    if (IsPixels(fcc)) {
        const int32_t size = fcc == eZFCC_RGB24 ? 3 : 4;
        Grid a(w, h, size), b(h, w, size);
        for (int32_t y = 0; y < h; ++y)
            for (int32_t x = 0; x < w; ++x)
                for (int32_t c = 0; c < size; ++c) a.At(x, y, c) = read.Pixel(x, y, c);
        Turn(a, b, fields, left);
        for (int32_t y = 0; y < w; ++y)
            for (int32_t x = 0; x < h; ++x)
                for (int32_t c = 0; c < size; ++c) write.Pixel(x, y, c) = b.At(x, y, c);
    } else {
        Grid a(w, h, 1), b(h, w, 1);
        for (int32_t y = 0; y < h; ++y)
            for (int32_t x = 0; x < w; ++x) a.At(x, y, 0) = read.Luma(x, y);
        Turn(a, b, fields, left);
        // In fields an odd last row is not made.
        const int32_t made = fields ? w / 2 * 2 : w;
        for (int32_t y = 0; y < made; ++y)
            for (int32_t x = 0; x < h; ++x) write.Luma(x, y) = b.At(x, y, 0);
        for (int32_t which = 0; which < 2; ++which) {
            Grid ca((w + 1) / 2, h, 1), cb((h + 1) / 2, w, 1);
            for (int32_t y = 0; y < h; ++y)
                for (int32_t x = 0; x < ca.width; ++x) ca.At(x, y, 0) = read.Chroma(which, x, y);
            Turn(ca, cb, fields, left);
            for (int32_t y = 0; y < made; ++y)
                for (int32_t x = 0; x < cb.width; ++x) write.Chroma(which, x, y) = cb.At(x, y, 0);
        }
    }
    *turned = {to, out};
    return S_OK;
}

HRESULT MirrorModel(Still &still, int32_t axis) {
    const Z_VID_PROPS p = UpdatedModel(still.props);
    const eZFCC fcc = p.fccType;
    if (!IsGroups(fcc) && !IsPixels(fcc)) return E_NOTIMPL;
    const int32_t h = std::abs(p.nHeight), size = IsGroups(fcc) ? 2 : fcc == eZFCC_RGB24 ? 3 : 4;
    const Bytes before = still.memory;
    const auto place = [&p](int32_t x, int32_t y, int32_t i) { return static_cast<size_t>(int64_t{y} * p.nRowBytes + x + i); };
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < p.nWidth; ++x)
            for (int32_t i = 0; i < size; ++i)
                still.memory.at(place(x * size, y, i)) =
                    before.at(place((axis == 2 ? x : p.nWidth - 1 - x) * size, axis == 1 ? y : h - 1 - y, i));
    if (IsGroups(fcc) && axis != 2)
        for (int32_t y = 0; y < h; ++y)
            for (int32_t g = 0; g < p.nWidth / 2; ++g) {
                const int32_t one = fcc == eZFCC_YUY2 ? 1 : 0;
                std::swap(still.memory.at(place(g * 4, y, one)), still.memory.at(place(g * 4, y, one + 2)));
            }
    const int64_t end = std::min<int64_t>(BufferSize(&p), static_cast<int64_t>(still.memory.size()));
    if (axis != 1 && OrderSign(&p) != 0 && end > p.nRowBytes)
        std::copy(still.memory.begin() + p.nRowBytes, still.memory.begin() + end, still.memory.begin());
    return S_OK;
}

HRESULT WeaveModel(const Still &first, const Still &second, eZInterlace scan, Still *woven) {
    const Z_VID_PROPS p = UpdatedModel(first.props);
    const eZFCC fcc = p.fccType;
    if (p.nWidth < 1 || p.nHeight == 0) return E_UNEXPECTED;
    if (!IsPixels(fcc) && fcc != eZFCC_v210 && (!IsGroups(fcc) || fcc == eZFCC_YVYU)) return kNoRouteModel;
    const int32_t h = std::abs(p.nHeight);
    const int64_t bytes = fcc == eZFCC_v210 ? Row(fcc, p.nWidth) : int64_t{p.nWidth} * Bits(fcc) / 8;
    const bool up = Rgb(fcc) && p.nHeight > 0;
    const bool exchanged = (scan == eZI_Field2First) != up;
    Still out = {first.props, Bytes(static_cast<size_t>(BufferSize(&first.props)))};
    out.props.eInterlace = scan;
    for (int32_t y = 0; y < h / 2 * 2; ++y) {
        const Still &from = (y % 2 != 0) != exchanged ? second : first;
        const int64_t at = int64_t{up ? h - 1 - y : y} * p.nRowBytes;
        for (int64_t i = 0; i < bytes && at + i < static_cast<int64_t>(from.memory.size()); ++i)
            out.memory.at(static_cast<size_t>(at + i)) = from.memory.at(static_cast<size_t>(at + i));
    }
    *woven = out;
    return S_OK;
}

}    // namespace conformance
