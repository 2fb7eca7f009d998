#include "frames/media/picture.h"

#include <cstdlib>
#include <limits>

namespace zck {
namespace {

// The chroma planes behind the luma plane of a picture that starts at offset 0.
void AddChroma(PictureGeometry &g, int64_t rowBytes) {
    const bool pairs = g.format->pixels == PixelClass::Nv12;
    const int64_t stride = pairs ? rowBytes : rowBytes / 2;
    const int64_t first = g.rows * rowBytes;
    const int64_t second = first + (pairs ? 0 : stride * (g.rows / 2));
    g.plane[1] = g.plane[2] = {first, stride, g.width / 2, g.rows / 2};
    g.plane[g.format->bCrFirst ? 1 : 2].offset = second;
}

bool HasChroma(const PictureGeometry &g) { return g.format->bPlanar; }

int64_t ChromaBytes(const PictureGeometry &g) { return g.format->pixels == PixelClass::Nv12 ? 2 : 1; }

int64_t ColumnOffset(const PictureGeometry &g, int32_t left) {
    const PixelGroup &group = g.format->group;
    return group.bytes == 0 ? int64_t{left} * g.format->nPixelBits / 8 : int64_t{left} / group.pixels * group.bytes;
}

int64_t ExtentOf(const PlaneGeometry &plane, int64_t rowBytes) {
    return plane.rows < 1 ? 0 : std::max(plane.RowOffset(0), plane.RowOffset(plane.rows - 1)) + rowBytes;
}

}    // namespace

bool PictureGeometryMake(eZFCC fcc, int32_t width, int32_t height, int64_t rowBytes, PictureGeometry *geometry) {
    *geometry = {};
    const FormatRow *format = FormatFind(fcc);
    if (format == nullptr || format->nPixelBits == 0 || width < 1) return false;
    if (format->bPlanar && format->pixels == PixelClass::None) return false;
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
    const int64_t rows = std::llabs(int64_t{height});
    if (rows < 1 || rows > kMost) return false;
    if (rowBytes < format->PixelRowBytes(width) || rowBytes > kMost) return false;
    PictureGeometry g;
    g.format = format;
    g.width = width;
    g.rows = static_cast<int32_t>(rows);
    g.plane[0] = {0, rowBytes, g.width, g.rows};
    if (HasChroma(g)) AddChroma(g, rowBytes);
    *geometry = format->bRgb && height > 0 ? g.Turned() : g;
    return true;
}

int64_t PictureGeometry::Extent(int64_t rowBytes) const {
    int64_t end = ExtentOf(plane[0], rowBytes);
    for (int32_t i = 1; i < Planes(); ++i) {
        if (plane[i].width > 0) end = std::max(end, ExtentOf(plane[i], plane[i].width * ChromaBytes(*this)));
    }
    return end;
}

PictureGeometry PictureGeometry::Comb(int32_t first, int32_t n) const {
    PictureGeometry comb = *this;
    comb.rows /= n;
    for (PlaneGeometry &p : comb.plane) {
        p.offset += first * p.stride;
        p.stride *= n;
        p.rows /= n;
    }
    return comb;
}

PictureGeometry PictureGeometry::Part(int32_t left, int32_t top, int32_t partWidth, int32_t partRows) const {
    PictureGeometry part = *this;
    part.width = partWidth;
    part.rows = partRows;
    part.plane[0] = {plane[0].RowOffset(top) + ColumnOffset(*this, left), plane[0].stride, partWidth, partRows};
    if (!HasChroma(*this)) return part;
    // An odd last column or row shares the chroma of the next one, if the picture has that.
    const auto half = [](int32_t n) { return n / 2 + (n & 1); };
    for (int32_t i = 1; i < 3; ++i) {
        const PlaneGeometry &whole = plane[i];
        part.plane[i] = {whole.RowOffset(top / 2) + left / 2 * ChromaBytes(*this), whole.stride,
                         std::min(half(partWidth), whole.width - left / 2), std::min(half(partRows), whole.rows - top / 2)};
    }
    return part;
}

PictureGeometry PictureGeometry::Turned() const {
    PictureGeometry turned = *this;
    for (PlaneGeometry &p : turned.plane) {
        p.offset = p.RowOffset(std::max(p.rows, 1) - 1);
        p.stride = -p.stride;
    }
    return turned;
}

}    // namespace zck
