#include "imaging/geometry/rotate_bits.h"

#include <algorithm>
#include <cstdlib>

#include "frames/media/video_props.h"
#include "imaging/colour/image_layout.h"
#include "imaging/colour/row_order.h"
#include "imaging/geometry/transpose.h"
#include "imaging/primitives/row_kernels.h"
#include "platform/status.h"

namespace zck {
namespace {

// One plane, or an image of pixels, rows in the order of the memory.
struct Plane {
    uint8_t *p;
    int64_t step;
    int32_t width;
    int32_t rows;
    int32_t pixel;    // bytes

    Plane Field(int32_t parity) const { return {p + parity * step, 2 * step, width, rows / 2, pixel}; }
    int64_t Bytes() const { return rows * step; }
};

struct Turn {
    RotateScratch *scratch;
    bool bLeft;
    bool bInterlaced;
};

// Left: target row r is source column (last - r); right: target column c is source row (last - c).
void TurnPlane(const Plane &from, const Plane &to, bool left) {
    if (left)
        Transpose(to.p + (to.rows - 1) * to.step, -to.step, from.p, from.step, {from.width, from.rows}, from.pixel);
    else
        Transpose(to.p, to.step, from.p + (from.rows - 1) * from.step, -from.step, {from.width, from.rows}, from.pixel);
}

// RGB24 is resized with a fourth byte, and then has it no more.
Plane Widened(const Plane &from, std::vector<uint8_t> *memory) {
    const int64_t step = int64_t{4} * from.width;
    memory->resize(static_cast<size_t>(step * from.rows));
    for (int32_t y = 0; y < from.rows; ++y)
        PrimitiveKernelsGet().add_alpha(memory->data() + y * step, from.p + y * from.step, from.width);
    return {memory->data(), step, from.width, from.rows, 4};
}

void Narrowed(const Plane &plane) {
    for (int32_t y = 0; y < plane.rows; ++y) {
        uint8_t *const row = plane.p + y * plane.step;
        for (int64_t x = 0; x < plane.width; ++x) std::copy_n(row + 4 * x, 3, row + 3 * x);
    }
}

// First to the exchanged size, then the turn.
int32_t ResizeAndTurn(const Turn &turn, const Plane &from, const Plane &to, Resizer *resizer) {
    if (from.width < 1 || from.rows < 1 || to.width < 1 || to.rows < 1) return kPrimitiveOk;
    if (from.width == to.rows && from.rows == to.width) {
        TurnPlane(from, to, turn.bLeft);
        return kPrimitiveOk;
    }
    const bool widen = from.pixel == 3;
    const Plane source = widen ? Widened(from, &turn.scratch->widened) : from;
    Plane sized = {nullptr, int64_t{source.pixel} * to.rows, to.rows, to.width, source.pixel};
    turn.scratch->resized.resize(static_cast<size_t>(sized.Bytes()));
    sized.p = turn.scratch->resized.data();
    const ResizeShape shape = {{source.width, source.rows}, {sized.width, sized.rows}, source.pixel, kResizeLinear};
    const int32_t status = ResizeImage(resizer, shape, source.p, source.step, sized.p, sized.step);
    if (status != kPrimitiveOk) return status;
    if (widen) Narrowed(sized);
    sized.pixel = from.pixel;
    TurnPlane(sized, to, turn.bLeft);
    return kPrimitiveOk;
}

HRESULT TurnFields(const Turn &turn, const Plane &from, const Plane &to, Resizer *resizer) {
    int32_t status = kPrimitiveOk;
    if (!turn.bInterlaced) status = ResizeAndTurn(turn, from, to, resizer);
    for (int32_t parity = 0; turn.bInterlaced && parity < 2; ++parity)
        if (status == kPrimitiveOk) status = ResizeAndTurn(turn, from.Field(parity), to.Field(parity), resizer);
    return status == kPrimitiveNoMemory ? E_OUTOFMEMORY : S_OK;
}

struct Image {
    Plane pixels;
    PixelClass kind;
};

// Planes of 4:2:2, one behind the other from `memory` on.
struct Planes {
    Plane plane[3];
    Planes(uint8_t *memory, int32_t width, int32_t rows) {
        const int32_t half = (width + 1) / 2;
        plane[0] = {memory, width, width, rows, 1};
        plane[1] = {plane[0].p + plane[0].Bytes(), half, half, rows, 1};
        plane[2] = {plane[1].p + plane[1].Bytes(), half, half, rows, 1};
    }
    static size_t Bytes(int32_t width, int32_t rows) {
        return static_cast<size_t>(rows) * (static_cast<size_t>(width) + 2 * ((static_cast<size_t>(width) + 1) / 2));
    }
    uint8_t *Row(int32_t i, int32_t y) const { return plane[i].p + y * plane[i].step; }
};

HRESULT Turn422(const Turn &turn, const Image &from, const Image &to) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    const Plane &a = from.pixels;
    const Plane &b = to.pixels;
    const size_t first = Planes::Bytes(a.width, a.rows);
    const size_t second = Planes::Bytes(b.width, b.rows);
    std::vector<uint8_t> &memory = turn.scratch->planes;
    memory.resize(first + second);
    // Bytes that a turn by fields does not write are 0.
    std::fill(memory.begin() + static_cast<std::ptrdiff_t>(first), memory.end(), uint8_t{0});
    const Planes source(memory.data(), a.width, a.rows);
    const Planes target(memory.data() + first, b.width, b.rows);
    const auto split = from.kind == PixelClass::Uyvy ? k.split_uyvy : k.split_yuy2;
    const auto join = to.kind == PixelClass::Uyvy ? k.join_uyvy : k.join_yuy2;
    const int32_t cbFrom = from.kind == PixelClass::Yvyu ? 2 : 1;
    const int32_t cbTo = to.kind == PixelClass::Yvyu ? 2 : 1;
    for (int32_t y = 0; y < a.rows; ++y)
        split(source.Row(0, y), source.Row(cbFrom, y), source.Row(3 - cbFrom, y), a.p + y * a.step, a.width);
    for (int32_t i = 0; i < 3; ++i) {
        const HRESULT hr = TurnFields(turn, source.plane[i], target.plane[i], &turn.scratch->resizer[i]);
        if (hr != S_OK) return hr;
    }
    // Rows of whole fields only: a last odd row of the target stays as it is.
    const int32_t rows = turn.bInterlaced ? b.rows & ~1 : b.rows;
    for (int32_t y = 0; y < rows; ++y)
        join(b.p + y * b.step, target.Row(0, y), target.Row(cbTo, y), target.Row(3 - cbTo, y), b.width);
    return S_OK;
}

bool Serves(PixelClass kind) { return kind != PixelClass::None && !Is420(kind); }
bool IsRgb(PixelClass kind) { return kind == PixelClass::Rgb24 || kind == PixelClass::Rgb32; }

HRESULT Open(const uint8_t *p, int64_t bytes, const Z_VID_PROPS &props, Image *image) {
    Z_VID_PROPS record = props;
    int64_t offset = 0;
    if (NormaliseRecord(&record, &offset, nullptr) != S_OK || record.nWidth < 1 || record.nHeight == 0) return E_INVALIDARG;
    record.nRowBytes = std::abs(record.nRowBytes);
    image->kind = PixelClassOf(record.fccType);
    if (!Serves(image->kind)) return E_INVALIDARG;
    if (VideoBytesNeeded(record) > bytes) return kVfwEInvalidMediaType;
    image->pixels = {const_cast<uint8_t *>(p), record.nRowBytes, record.nWidth, std::abs(record.nHeight),
                     static_cast<int32_t>(PixelBytes(image->kind))};
    return S_OK;
}

}    // namespace

HRESULT RotateBits(RotateScratch *scratch, const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes,
                   const Z_VID_PROPS *sp, const Z_VID_PROPS *tp, bool bLeft, bool bInterlaced) {
    if (scratch == nullptr || src == nullptr || dst == nullptr || sp == nullptr || tp == nullptr) return E_INVALIDARG;
    Image from = {};
    Image to = {};
    HRESULT hr = Open(src, srcBytes, *sp, &from);
    if (hr == S_OK) hr = Open(dst, dstBytes, *tp, &to);
    if (hr != S_OK) return hr;
    const bool rgb = IsRgb(from.kind);
    if (rgb ? from.kind != to.kind : IsRgb(to.kind)) return E_INVALIDARG;
    const Turn turn = {scratch, bLeft, bInterlaced};
    return Guarded(
        [&] { return rgb ? TurnFields(turn, from.pixels, to.pixels, &scratch->resizer[0]) : Turn422(turn, from, to); });
}

}    // namespace zck
