#include "imaging/engines/img_planes.h"

#include <algorithm>
#include <cstring>

#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

int32_t Width(const tagRECT &rc) { return static_cast<int32_t>(rc.right - rc.left); }
int32_t Rows(const tagRECT &rc) { return static_cast<int32_t>(rc.bottom - rc.top); }

uint8_t *At(const uint8_t *image, const ImageLayout &l, int32_t plane, int64_t x, int64_t y) {
    return const_cast<uint8_t *>(image) + l.offset[plane] + y * l.step[plane] + x;
}

// The two rows that make a chroma row; the same twice where one stands alone.
struct Pair {
    int32_t first;
    int32_t second;
};

Pair RowsOfChroma(int32_t c, ChromaRows chroma, int32_t rows) {
    const int32_t first = chroma == ChromaRows::Progressive ? 2 * c : 4 * (c / 2) + c % 2;
    const int32_t second = first + (chroma == ChromaRows::Progressive ? 1 : 2);
    // A chroma row may have none at all under ByField; it then takes the picture's last row.
    const int32_t last = rows - 1;
    return {std::min(first, last), second <= last ? second : std::min(first, last)};
}

int32_t ChromaOfRow(int32_t y, ChromaRows chroma, int32_t rows) {
    return std::min(chroma == ChromaRows::Progressive ? y / 2 : 2 * (y / 4) + y % 2, rows - 1);
}

void Split(const ImageLayout &l, uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    if (l.kind == PixelClass::Uyvy) return k.split_uyvy(y, cb, cr, src, width);
    if (l.kind == PixelClass::Yvyu) std::swap(cb, cr);
    k.split_yuy2(y, cb, cr, src, width);
}

void Join(const ImageLayout &l, uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    if (l.kind == PixelClass::Uyvy) return k.join_uyvy(dst, y, cb, cr, width);
    if (l.kind == PixelClass::Yvyu) std::swap(cb, cr);
    k.join_yuy2(dst, y, cb, cr, width);
}

uint8_t *Row(const ImgPlane &plane, int32_t y) { return plane.p + y * plane.step; }

}    // namespace

ImgPlanes ScratchPlanes(std::vector<uint8_t> *scratch, int32_t width, int32_t rows, bool half) {
    const int32_t chromaRows = half ? (rows + 1) / 2 : rows;
    const auto step = [](int32_t w) { return (int64_t{w} + 3) & ~int64_t{3}; };
    ImgPlanes planes;
    planes.plane[0] = {nullptr, step(width), width, rows};
    planes.plane[1] = planes.plane[2] = {nullptr, step(width / 2), width / 2, chromaRows};
    size_t bytes = 0;
    for (const ImgPlane &p : planes.plane) bytes += static_cast<size_t>(p.step * p.rows);
    scratch->assign(bytes + 2 * static_cast<size_t>(planes.plane[0].step), 0);
    uint8_t *at = scratch->data();
    for (ImgPlane &p : planes.plane) {
        p.p = at;
        at += p.step * p.rows;
    }
    return planes;
}

ImgPlanes PlanesOf422(const uint8_t *image, const ImageLayout &layout, const tagRECT &rc, bool half, ChromaRows chroma,
                      std::vector<uint8_t> *scratch) {
    const int32_t width = Width(rc);
    const int32_t rows = Rows(rc);
    const ImgPlanes planes = ScratchPlanes(scratch, width, rows, half);
    const auto source = [&](int32_t y) { return At(image, layout, 0, int64_t{2} * rc.left, int64_t{rc.top} + y); };
    if (!half) {
        for (int32_t y = 0; y < rows; ++y)
            Split(layout, Row(planes.plane[0], y), Row(planes.plane[1], y), Row(planes.plane[2], y), source(y), width);
        return planes;
    }
    uint8_t *const cb = planes.plane[2].p + planes.plane[2].step * planes.plane[2].rows;
    uint8_t *const cr = cb + width / 2;
    uint8_t *const unused = cr + width / 2;
    for (int32_t y = 0; y < rows; ++y) Split(layout, Row(planes.plane[0], y), cb, cr, source(y), width);
    for (int32_t c = 0; c < planes.plane[1].rows; ++c) {
        const auto [first, second] = RowsOfChroma(c, chroma, rows);
        Split(layout, unused, Row(planes.plane[1], c), Row(planes.plane[2], c), source(first), width);
        Split(layout, unused, cb, cr, source(second), width);
        PrimitiveKernelsGet().mean(Row(planes.plane[1], c), Row(planes.plane[1], c), cb, width / 2);
        PrimitiveKernelsGet().mean(Row(planes.plane[2], c), Row(planes.plane[2], c), cr, width / 2);
    }
    return planes;
}

ImgPlanes PlanesOf420(const uint8_t *image, const ImageLayout &layout, const tagRECT &rc, std::vector<uint8_t> *scratch) {
    const auto left = static_cast<int32_t>(rc.left / 2);
    const auto top = static_cast<int32_t>(rc.top / 2);
    const int32_t width = static_cast<int32_t>(rc.right / 2) - left;
    const int32_t rows = std::min(static_cast<int32_t>(rc.bottom / 2), layout.chromaRows) - top;
    ImgPlanes planes;
    planes.plane[0] = {At(image, layout, 0, rc.left, rc.top), layout.step[0], Width(rc), Rows(rc)};
    if (layout.kind != PixelClass::Nv12) {
        for (int32_t i = 1; i < 3; ++i) planes.plane[i] = {At(image, layout, i, left, top), layout.step[i], width, rows};
        return planes;
    }
    const ImgPlanes chroma = ScratchPlanes(scratch, 2 * width, std::max(rows, 0), false);
    for (int32_t i = 1; i < 3; ++i) planes.plane[i] = chroma.plane[i];
    for (int32_t y = 0; y < rows; ++y)
        PrimitiveKernelsGet().split_pairs(Row(planes.plane[1], y), Row(planes.plane[2], y),
                                          At(image, layout, 1, int64_t{2} * left, int64_t{top} + y), width);
    return planes;
}

void PackPlanes422(const ImgPlanes &planes, bool half, ChromaRows chroma, uint8_t *image, const ImageLayout &layout,
                   const tagRECT &rc) {
    for (int32_t y = 0; y < Rows(rc); ++y) {
        const int32_t c = half ? ChromaOfRow(y, chroma, planes.plane[1].rows) : y;
        Join(layout, At(image, layout, 0, int64_t{2} * rc.left, int64_t{rc.top} + y), Row(planes.plane[0], y),
             Row(planes.plane[1], c), Row(planes.plane[2], c), Width(rc));
    }
}

void JoinNv12(const ImgPlanes &planes, uint8_t *image, const ImageLayout &layout, const tagRECT &rc) {
    if (layout.kind != PixelClass::Nv12) return;
    for (int32_t y = 0; y < planes.plane[1].rows; ++y)
        PrimitiveKernelsGet().join_pairs(At(image, layout, 1, rc.left, rc.top / 2 + y), Row(planes.plane[1], y),
                                         Row(planes.plane[2], y), planes.plane[1].width);
}

}    // namespace zck
