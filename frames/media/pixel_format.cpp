#include "frames/media/pixel_format.h"

#include <algorithm>
#include <limits>

namespace zck {
namespace {

// Until the first row that no bitmap header describes.
constexpr int32_t HeaderRows() {
    int32_t n = 0;
    while (n < kFormatRows && kFormatTable[n].nBits != 0) ++n;
    return n;
}
static_assert(HeaderRows() == kPixelFormatRows);

int32_t Clamp32(int64_t n) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(n, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

}    // namespace

int32_t PixelBits(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr ? row->nPixelBits : 0;
}

bool IsPlanarFormat(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr && row->bPlanar;
}

bool IsPackedFormat(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr && row->bPacked;
}

bool IsRgbFormat(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr && row->bRgb;
}

eZFCC PlainFormat(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr ? row->fccPlain : fcc;
}

bool Is422Format(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr && row->Is422();
}

bool IsTenBitFormat(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr && row->IsTenBit();
}

bool Is32BitFormat(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr && row->Is32();
}

bool HasAlpha(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr && row->bAlpha;
}

int32_t RowBytes(eZFCC fcc, int32_t width) {
    const FormatRow *row = FormatFind(fcc);
    if (row == nullptr) return 0;
    if (row->bPlanar) return width;
    const int64_t w = width;
    const PixelGroup &group = row->rowGroup;
    if (group.pixels != 0) return Clamp32((w + group.pixels - 1) / group.pixels * group.bytes);
    return Clamp32((((w * row->nPixelBits) >> 3) + 3) & ~int64_t{3});
}

int32_t RowPixels(eZFCC fcc, int32_t rowBytes) {
    const FormatRow *row = FormatFind(fcc);
    if (row == nullptr || row->nPixelBits == 0) return 0;
    if (row->bPlanar) return rowBytes;
    const PixelGroup &group = row->rowGroup;
    if (group.pixels != 0) return rowBytes / group.bytes * group.pixels;
    return Clamp32(int64_t{rowBytes} * 8 / row->nPixelBits);
}

const FormatRow *PixelFormatTable() { return kFormatTable; }

const FormatRow *PixelFormatFind(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr && row->nBits != 0 ? row : nullptr;
}

}    // namespace zck
