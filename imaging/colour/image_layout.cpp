#include "imaging/colour/image_layout.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "frames/media/pixel_format.h"

namespace zck {

PixelClass PixelClassOf(eZFCC fcc) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr ? row->pixels : PixelClass::None;
}

int64_t PixelBytes(PixelClass kind) {
    switch (kind) {
        case PixelClass::Yvyu:
        case PixelClass::Yuy2:
        case PixelClass::Uyvy:
            return 2;
        case PixelClass::Rgb24:
            return 3;
        case PixelClass::Rgb32:
            return 4;
        case PixelClass::Planes420:
        case PixelClass::Nv12:
            return 1;
        case PixelClass::None:
            break;
    }
    return 0;
}

int64_t RowBytesOf(const ImgDesc &desc) { return RowBytes(desc.fcc, desc.nRowPixels != 0 ? desc.nRowPixels : desc.nWidth); }

bool ImageLayoutMake(eZFCC fcc, int32_t width, int32_t height, int64_t rowBytes, ImageLayout *layout) {
    *layout = {};
    ImageLayout l;
    l.kind = PixelClassOf(fcc);
    const int64_t rows = std::llabs(int64_t{height});
    if (l.kind == PixelClass::None || width < 1 || rows < 1 || rows > std::numeric_limits<int32_t>::max()) return false;
    l.width = width;
    l.rows = static_cast<int32_t>(rows);
    const int64_t pixels = width * PixelBytes(l.kind);
    if (rowBytes < pixels || rowBytes > std::numeric_limits<int32_t>::max()) return false;
    const bool bottomUp = IsRgbFormat(fcc) && height > 0;
    l.offset[0] = bottomUp ? (rows - 1) * rowBytes : 0;
    l.step[0] = bottomUp ? -rowBytes : rowBytes;
    l.bytes = (rows - 1) * rowBytes + pixels;
    if (Is420(l.kind)) {
        const bool pairs = l.kind == PixelClass::Nv12;
        const bool crFirst = FormatFind(fcc)->bCrFirst;
        l.chromaRows = l.rows / 2;
        const int64_t step = pairs ? rowBytes : rowBytes / 2;
        const int64_t first = rows * rowBytes;
        const int64_t second = first + (pairs ? 0 : step * l.chromaRows);
        l.step[1] = l.step[2] = step;
        l.offset[1] = crFirst ? second : first;
        l.offset[2] = crFirst ? first : second;
        const int64_t chroma = pairs ? width / 2 * 2 : width / 2;
        if (l.chromaRows > 0 && chroma > 0) l.bytes = std::max(l.bytes, second + (l.chromaRows - 1) * step + chroma);
    }
    *layout = l;
    return true;
}

}    // namespace zck
