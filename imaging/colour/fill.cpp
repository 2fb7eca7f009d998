#include "imaging/colour/fill.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "frames/media/format_table.h"
#include "imaging/primitives/arithmetic.h"
#include "imaging/primitives/copy.h"

namespace zck {
namespace {

uint32_t Red(uint32_t colour) { return colour & 0xFF; }
uint32_t Green(uint32_t colour) { return colour >> 8 & 0xFF; }
uint32_t Blue(uint32_t colour) { return colour >> 16 & 0xFF; }

// Thousandths to whole numbers; they are never negative here.
uint32_t Rounded(int32_t thousandths, int32_t low, int32_t high) {
    return static_cast<uint32_t>(std::clamp((thousandths + 500) / 1000, low, high));
}

struct Yuv {
    uint32_t y, cb, cr;
};

Yuv ColorToYuv(uint32_t colour) {
    const auto r = static_cast<int32_t>(Red(colour));
    const auto g = static_cast<int32_t>(Green(colour));
    const auto b = static_cast<int32_t>(Blue(colour));
    return {Rounded(257 * r + 504 * g + 98 * b + 16000, 16, 235), Rounded(-148 * r - 291 * g + 439 * b + 128000, 16, 240),
            Rounded(439 * r - 368 * g - 71 * b + 128000, 16, 240)};
}

// The row of a format that is filled: packed pixels but YVYU. Null for any other.
const FormatRow *FilledFormat(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    if (row == nullptr || !row->bPacked || row->pixels == PixelClass::None || row->pixels == PixelClass::Yvyu) return nullptr;
    return row;
}

// Bytes of the unit that a fill repeats: a pixel, or a pair of 4:2:2. 0: the format is not filled.
int32_t UnitBytes(eZFCC fcc) {
    const FormatRow *row = FilledFormat(fcc);
    return row != nullptr ? row->group.bytes : 0;
}

uint32_t ColorTo(eZFCC fcc, uint32_t colour) {
    const PixelClass pixels = FormatFind(fcc)->pixels;
    if (pixels == PixelClass::Yuy2) return ColorToYUY2(colour);
    return pixels == PixelClass::Uyvy ? ColorToUYVY(colour) : ColorToRGB32(colour);
}

struct Unit {
    uint8_t bytes[4];
};

Unit UnitOf(uint32_t word) {
    return {{static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8), static_cast<uint8_t>(word >> 16),
             static_cast<uint8_t>(word >> 24)}};
}

int32_t FillOpaque(const Unit &unit, int32_t unitBytes, uint8_t *dst, int64_t step, ROI units) {
    return unitBytes == 3 ? Set_8u_C3R(unit.bytes, dst, step, units) : Set_8u_C4R(unit.bytes, dst, step, units);
}

// q of 128 parts of the colour over what was there. `width` is the row in bytes, which may hold half a unit more.
int32_t FillPartly(Unit unit, int32_t unitBytes, uint8_t *dst, int64_t step, ROI units, int32_t width, int32_t q) {
    for (uint8_t &byte : unit.bytes) byte = static_cast<uint8_t>((byte * q) >> 7);
    const int32_t status = MulC_8u_C1IRSfs(static_cast<uint8_t>(128 - q), dst, step, {width, units.height}, 7);
    if (status != kPrimitiveOk || units.width == 0) return status;
    return unitBytes == 3 ? AddC_8u_C3IRSfs(unit.bytes, dst, step, units, 0) : AddC_8u_C4IRSfs(unit.bytes, dst, step, units, 0);
}

}    // namespace

uint32_t ColorToYUY2(uint32_t colour) {
    const Yuv c = ColorToYuv(colour);
    return c.y | c.cb << 8 | c.y << 16 | c.cr << 24;
}

uint32_t ColorToUYVY(uint32_t colour) {
    const Yuv c = ColorToYuv(colour);
    return c.cb | c.y << 8 | c.cr << 16 | c.y << 24;
}

uint32_t ColorToRGB32(uint32_t colour) { return (colour & 0xFF00FF00) | Blue(colour) | Red(colour) << 16; }

void FillPlain(eZFCC fcc, uint8_t *dst, int64_t bytes, uint32_t colour) {
    const int32_t unitBytes = UnitBytes(fcc);
    if (dst == nullptr || unitBytes == 0 || bytes < unitBytes) return;
    const uint32_t word = ColorTo(fcc, colour);
    if (unitBytes == 4) {
        Set_32s(word, dst, bytes / 4);
        return;
    }
    const Unit unit = UnitOf(word);
    constexpr int64_t kMost = 1 << 28;
    for (int64_t left = bytes / 3; left > 0; left -= kMost, dst += 3 * kMost)
        Set_8u_C3R(unit.bytes, dst, 0, {static_cast<int32_t>(std::min(left, kMost)), 1});
}

HRESULT FillImage(const Z_VID_PROPS *props, uint8_t *dst, uint32_t colour, double opacity) {
    if (props == nullptr || dst == nullptr) return E_INVALIDARG;
    // Written so that no number fails it.
    if (!(128 * opacity >= 1)) return S_FALSE;
    const int32_t q = opacity >= 1 ? 128 : static_cast<int32_t>(128 * opacity);
    const int32_t unitBytes = UnitBytes(props->fccType);
    if (unitBytes == 0) return S_FALSE;
    const int64_t height = std::llabs(int64_t{props->nHeight});
    const int64_t pixelBytes = unitBytes / FormatFind(props->fccType)->group.pixels;
    const int64_t width = props->nWidth * pixelBytes;
    if (width < 1 || height < 1 || std::max(width, height) > std::numeric_limits<int32_t>::max()) return E_FAIL;
    const Unit unit = UnitOf(ColorTo(props->fccType, colour));
    const ROI units = {static_cast<int32_t>(width / unitBytes), static_cast<int32_t>(height)};
    int32_t status = kPrimitiveOk;
    if (q < 128)
        status = FillPartly(unit, unitBytes, dst, props->nRowBytes, units, static_cast<int32_t>(width), q);
    else if (units.width != 0)
        status = FillOpaque(unit, unitBytes, dst, props->nRowBytes, units);
    return status == kPrimitiveOk ? S_OK : E_FAIL;
}

}    // namespace zck
