#include "tests/imaging/colour/planes_model.h"

#include <algorithm>
#include <random>

#include "frames/media/pixel_format.h"

namespace zck::test {
namespace {

int64_t BytesOfPixel(const PlanarPicture &p) {
    if (p.Is420()) return 1;
    if (p.fcc == eZFCC_RGB24) return 3;
    return p.IsRgb() ? 4 : 2;
}

uint8_t Nearest(int64_t n, int64_t d) {
    int64_t q = n / d;
    int64_t rest = n % d;
    if (rest < 0) {
        rest += d;
        --q;
    }
    if (2 * rest >= d) ++q;
    return static_cast<uint8_t>(std::clamp<int64_t>(q, 0, 255));
}

struct Colour {
    int32_t b = 0, g = 0, r = 0, count = 0;
    void Add(PlanarPicture &p, int32_t x, int32_t y) {
        b += p.At(0, x, y);
        g += p.At(1, x, y);
        r += p.At(2, x, y);
        ++count;
    }
    uint8_t Y() const { return Nearest(257 * r + 504 * g + 98 * b + 16000 * count, 1000 * count); }
    uint8_t Cb() const { return Nearest(-148 * r - 291 * g + 439 * b + 128000 * count, 1000 * count); }
    uint8_t Cr() const { return Nearest(439 * r - 368 * g - 71 * b + 128000 * count, 1000 * count); }
};

void ToRgb(PlanarPicture &dst, int32_t x, int32_t y, int32_t luma, int32_t cb, int32_t cr) {
    const int64_t scaled = 1164 * (luma - 16);
    dst.At(0, x, y) = Nearest(scaled + 2017 * (cb - 128), 1000);
    dst.At(1, x, y) = Nearest(scaled - 813 * (cr - 128) - 392 * (cb - 128), 1000);
    dst.At(2, x, y) = Nearest(scaled + 1596 * (cr - 128), 1000);
    if (dst.fcc != eZFCC_RGB24) dst.At(3, x, y) = 255;
}

// Y, Cb, Cr at a pixel of the part; chroma rows of 4:2:0 count from the top of the part.
uint8_t Component(PlanarPicture &p, int component, int32_t left, int32_t top, int32_t x, int32_t y) {
    if (component == 0 || !p.Is420()) return p.At(component, left + x, top + y);
    if (p.Rows() < 2) return 128;
    return p.Chroma(component, left + x, std::min(top / 2 + y / 2, p.Rows() / 2 - 1));
}

}    // namespace

ImageView PlanarPicture::View() const { return {{fcc, width, height, 0}, rowBytes, static_cast<int64_t>(memory.size())}; }

Z_VID_PROPS PlanarPicture::Props() const {
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = width;
    props.nHeight = height;
    props.nRowBytes = static_cast<int32_t>(rowBytes);
    props.eInterlace = eZI_Progressive;
    return props;
}

uint8_t &PlanarPicture::Chroma(int component, int32_t x, int32_t chromaRow) {
    const int64_t luma = Rows() * rowBytes;
    if (fcc == eZFCC_NV12) return memory[static_cast<size_t>(luma + chromaRow * rowBytes + x / 2 * 2 + (component - 1))];
    const int64_t plane = rowBytes / 2 * (Rows() / 2);
    const bool second = (component == 2) == (fcc == eZFCC_I420);
    return memory[static_cast<size_t>(luma + (second ? plane : 0) + chromaRow * (rowBytes / 2) + x / 2)];
}

uint8_t &PlanarPicture::At(int component, int32_t x, int32_t y) {
    const int64_t row = IsRgb() && height > 0 ? height - 1 - y : y;
    const int64_t start = row * rowBytes;
    if (Is420()) return memory[static_cast<size_t>(start + x)];
    if (IsRgb()) return memory[static_cast<size_t>(start + x * BytesOfPixel(*this) + component)];
    const bool lumaFirst = fcc == eZFCC_YUY2 || fcc == eZFCC_YVYU;
    int64_t at = start + x / 2 * 4;
    if (component == 0) {
        at += x % 2 * 2 + (lumaFirst ? 0 : 1);
    } else {
        const bool second = (component == 2) != (fcc == eZFCC_YVYU);
        at += (second ? 2 : 0) + (lumaFirst ? 1 : 0);
    }
    return memory[static_cast<size_t>(at)];
}

PlanarPicture MakePlanarPicture(eZFCC fcc, int32_t width, int32_t height, int32_t padding, uint32_t seed) {
    PlanarPicture p;
    p.fcc = fcc;
    p.width = width;
    p.height = height;
    // 4:2:2 is stored in whole groups.
    const int64_t pixels = p.Is420() || p.IsRgb() ? width : (width + 1) / 2 * 2;
    p.rowBytes = pixels * BytesOfPixel(p) + padding;
    int64_t bytes = (p.Rows() - 1) * p.rowBytes + pixels * BytesOfPixel(p);
    if (p.Is420()) bytes = p.Rows() * p.rowBytes + (fcc == eZFCC_NV12 ? p.rowBytes : p.rowBytes / 2 * 2) * (p.Rows() / 2);
    p.memory.resize(static_cast<size_t>(bytes));
    std::mt19937 random(seed);
    for (uint8_t &b : p.memory) b = static_cast<uint8_t>(random() >> 8);
    return p;
}

void ModelColorConvert(PlanarPicture &src, int32_t srcLeft, int32_t srcTop, PlanarPicture &dst, int32_t dstLeft, int32_t dstTop,
                       int32_t columns, int32_t rows) {
    const auto from = [&](int component, int32_t x, int32_t y) { return Component(src, component, srcLeft, srcTop, x, y); };
    for (int32_t y = 0; y < rows; ++y)
        for (int32_t x = 0; x < columns; ++x) {
            const int32_t dx = dstLeft + x, dy = dstTop + y;
            if (dst.IsRgb() && src.IsRgb()) {
                for (int i = 0; i < 3; ++i) dst.At(i, dx, dy) = src.At(i, srcLeft + x, srcTop + y);
                if (dst.fcc == eZFCC_RGB24) continue;
                const bool keeps = src.fcc != eZFCC_RGB24 && (src.fcc == dst.fcc || dst.fcc == eZFCC_RGB32);
                dst.At(3, dx, dy) = keeps ? src.At(3, srcLeft + x, srcTop + y) : uint8_t{255};
                continue;
            }
            if (dst.IsRgb()) {
                const bool exchanged = src.fcc == eZFCC_YVYU && dst.fcc != eZFCC_RGB24;
                ToRgb(dst, dx, dy, from(0, x, y), from(exchanged ? 2 : 1, x, y), from(exchanged ? 1 : 2, x, y));
                continue;
            }
            Colour one, pair, four;
            const int32_t below = std::min(y / 2 * 2 + 1, rows - 1);
            if (src.IsRgb()) {
                one.Add(src, srcLeft + x, srcTop + y);
                for (int32_t i = 0; i < 2; ++i) {
                    pair.Add(src, srcLeft + x / 2 * 2 + i, srcTop + y);
                    four.Add(src, srcLeft + x / 2 * 2 + i, srcTop + y / 2 * 2);
                    four.Add(src, srcLeft + x / 2 * 2 + i, srcTop + below);
                }
            }
            dst.At(0, dx, dy) = src.IsRgb() ? one.Y() : from(0, x, y);
            if (!dst.Is420()) {
                dst.At(1, dx, dy) = src.IsRgb() ? pair.Cb() : from(1, x, y);
                dst.At(2, dx, dy) = src.IsRgb() ? pair.Cr() : from(2, x, y);
                continue;
            }
            const int32_t chromaRow = dstTop / 2 + y / 2;
            if (chromaRow >= dst.Rows() / 2 || (src.Is420() && src.Rows() < 2)) continue;
            for (int i = 1; i < 3; ++i) {
                uint8_t &sample = dst.Chroma(i, dx, chromaRow);
                if (src.IsRgb()) {
                    sample = i == 1 ? four.Cb() : four.Cr();
                } else if (src.Is420()) {
                    sample = from(i, x, y / 2 * 2);
                } else {
                    sample = static_cast<uint8_t>((from(i, x, y / 2 * 2) + from(i, x, below) + 1) / 2);
                }
            }
        }
}

}    // namespace zck::test
