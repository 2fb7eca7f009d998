// A dull conversion between parts of two pictures, sample by sample: every packed format of eight bits and the three 4:2:0
// formats. Nothing here is shared with the library but the public records and the arithmetic of convert_model.h.
#pragma once

#include <cstdint>

#include "tests/conformance/convert_model.h"
#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace conformance {

// A picture in a memory of its own.
struct Shape {
    eZFCC fcc;
    int32_t width;
    int32_t height;    // signed: above 0 an RGB picture has its last row first
    int64_t row;       // bytes

    int32_t Rows() const { return height < 0 ? -height : height; }
};
inline Shape ShapeOf(const Z_VID_PROPS &p) { return {p.fccType, p.nWidth, p.nHeight, p.nRowBytes}; }

bool Is420(eZFCC fcc);
bool IsGroups(eZFCC fcc);    // packed 4:2:2 of eight bits
bool IsPixels(eZFCC fcc);    // RGB24, RGB32, ARGB32
bool IsServed(eZFCC fcc);    // any of these

// All bytes of a picture: whole rows and whole planes.
size_t BytesOf(const Shape &shape);

struct Rects {
    HRESULT hr;
    tagRECT src;
    tagRECT dst;
};

// Both rectangles cut to what both pictures have.
Rects RectsModel(const Shape &src, const Shape &dst, bool proportional, const tagRECT *inSrc, const tagRECT *inDst);

// One size, two corners; both pictures have all of it.
struct Part {
    int32_t srcLeft, srcTop, dstLeft, dstTop, width, rows;
};

// Converts a part. Memories hold `BytesOf` each.
void PartModel(const Bytes &src, const Shape &from, Bytes &dst, const Shape &to, const Part &part);

// All of the general conversion behind the checks of missing arguments.
HRESULT PictureModel(const Bytes &src, const Shape &from, Bytes &dst, const Shape &to, const tagRECT *inSrc,
                     const tagRECT *inDst);

// Reads and writes of single samples. `x` counts pixels, `y` rows from the top of the picture.
class Samples {
public:
    Samples(Bytes &memory, const Shape &shape) : m_memory(memory), m_shape(shape) {}

    uint8_t &Pixel(int32_t x, int32_t y, int32_t channel);
    uint8_t &Luma(int32_t x, int32_t y);
    // Chroma 0 is Cb, 1 is Cr; `row` counts rows of chroma, in 4:2:2 those of the picture.
    uint8_t &Chroma(int32_t which, int32_t column, int32_t row);
    int32_t ChromaRows() const { return Is420(m_shape.fcc) ? m_shape.Rows() / 2 : m_shape.Rows(); }

private:
    uint8_t &At(int64_t place) { return m_memory.at(static_cast<size_t>(place)); }
    int64_t RowStart(int32_t y) const;

    Bytes &m_memory;
    Shape m_shape;
};

}    // namespace conformance
