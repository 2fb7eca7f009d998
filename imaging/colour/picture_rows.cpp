#include "imaging/colour/picture_rows.h"

#include <algorithm>
#include <cstring>

#include "imaging/primitives/convert422.h"
#include "imaging/primitives/planar.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

using K = PrimitiveKernels;
using Row = void (*)(uint8_t *dst, const uint8_t *src, int32_t width);

// Even, so that no group is cut; the scratch stays in the first-level cache.
constexpr int32_t kPiece = 512;

int32_t PieceOf(int64_t x, int32_t width) { return static_cast<int32_t>(std::min<int64_t>(kPiece, width - x)); }

template <int kBytes>
void Copy(uint8_t *dst, const RowFrom &src, int32_t width) {
    std::memmove(dst, src.p, static_cast<size_t>(int64_t{width} * kBytes));
}

template <Row K::*kRow>
void Kernel(uint8_t *dst, const RowFrom &src, int32_t width) {
    (PrimitiveKernelsGet().*kRow)(dst, src.p, width);
}

template <Row kRow>
void Packed(uint8_t *dst, const RowFrom &src, int32_t width) {
    kRow(dst, src.p, width);
}

template <void (*K::*kRow)(uint8_t *, const uint8_t *, int32_t, uint8_t)>
void Opaque(uint8_t *dst, const RowFrom &src, int32_t width) {
    (PrimitiveKernelsGet().*kRow)(dst, src.p, width, 255);
}

// Each group of four bytes by a turn of its bytes; widths are even.
void YvyuToUyvy(uint8_t *dst, const uint8_t *src, int32_t width) {
    constexpr uint8_t kOrder[4] = {3, 0, 1, 2};
    PrimitiveKernelsGet().swap4(dst, src, kOrder, width / 2);
}

void UyvyToYvyu(uint8_t *dst, const uint8_t *src, int32_t width) {
    constexpr uint8_t kOrder[4] = {1, 2, 3, 0};
    PrimitiveKernelsGet().swap4(dst, src, kOrder, width / 2);
}

void YvyuToBgr(uint8_t *dst, const uint8_t *src, int32_t width) {
    uint8_t scratch[kPiece * 2];
    for (int64_t x = 0; x < width; x += kPiece) {
        const int32_t n = PieceOf(x, width);
        PrimitiveKernelsGet().swap_chroma(scratch, src + 2 * x, n);
        RowYuy2ToBgr(dst + 3 * x, scratch, n);
    }
}

// The groups are exchanged where they were written.
void BgrToYvyu(uint8_t *dst, const uint8_t *src, int32_t width) {
    RowBgrToYuy2(dst, src, width);
    PrimitiveKernelsGet().swap_chroma(dst, dst, width);
}

void BgraToYvyu(uint8_t *dst, const uint8_t *src, int32_t width) {
    PrimitiveKernelsGet().bgra_to_yuy2(dst, src, width);
    PrimitiveKernelsGet().swap_chroma(dst, dst, width);
}

void PlanesToYvyu(uint8_t *dst, const RowFrom &src, int32_t width) {
    PrimitiveKernelsGet().join_yuy2(dst, src.p, src.cr, src.cb, width);
}

void PlanesToYuy2(uint8_t *dst, const RowFrom &src, int32_t width) {
    PrimitiveKernelsGet().join_yuy2(dst, src.p, src.cb, src.cr, width);
}

void PlanesToUyvy(uint8_t *dst, const RowFrom &src, int32_t width) {
    PrimitiveKernelsGet().join_uyvy(dst, src.p, src.cb, src.cr, width);
}

void PlanesToBgr(uint8_t *dst, const RowFrom &src, int32_t width) { RowPlanesToBgr(dst, src.p, src.cb, src.cr, width); }

void PlanesToBgra(uint8_t *dst, const RowFrom &src, int32_t width) {
    PrimitiveKernelsGet().planes_to_bgra(dst, src.p, src.cb, src.cr, width, 255);
}

void Nv12ToBgra(uint8_t *dst, const RowFrom &src, int32_t width) {
    PrimitiveKernelsGet().nv12_to_bgra(dst, src.p, src.cb, width, 255);
}

// By way of three rows.
template <PackedRow kRow, int kBytes>
void Nv12To(uint8_t *dst, const RowFrom &src, int32_t width) {
    uint8_t chroma[kPiece];
    for (int64_t x = 0; x < width; x += kPiece) {
        const int32_t n = PieceOf(x, width);
        PrimitiveKernelsGet().split_pairs(chroma, chroma + kPiece / 2, src.cb + x, (n + 1) / 2);
        kRow(dst + kBytes * x, {src.p + x, chroma, chroma + kPiece / 2}, n);
    }
}

/// A function of a table. It has no default: a table in which a new class has no entry does not compile.
template <class Function>
struct Entry {
    constexpr Entry(Function function) : call(function) {}
    Function call;
};

// Rows are sources, columns packed targets, both in the order of `PixelClass`.
constexpr int kPackedClasses = static_cast<int>(PixelClass::Planes420);    // the classes before it
constexpr Entry<PackedRow> kPackedRows[kPixelClasses][kPackedClasses] = {
    // The last one reads YVYU as YUY2.
    {Copy<2>, Kernel<&K::swap_chroma>, Packed<YvyuToUyvy>, Packed<YvyuToBgr>, Opaque<&K::yuy2_to_bgra>},
    {Kernel<&K::swap_chroma>, Copy<2>, Kernel<&K::yuy2_to_uyvy>, Packed<RowYuy2ToBgr>, Opaque<&K::yuy2_to_bgra>},
    {Packed<UyvyToYvyu>, Kernel<&K::uyvy_to_yuy2>, Copy<2>, Packed<RowUyvyToBgr>, Opaque<&K::uyvy_to_bgra>},
    {Packed<BgrToYvyu>, Packed<RowBgrToYuy2>, Packed<RowBgrToUyvy>, Copy<3>, Kernel<&K::add_alpha>},
    {Packed<BgraToYvyu>, Kernel<&K::bgra_to_yuy2>, Kernel<&K::bgra_to_uyvy>, Kernel<&K::drop_alpha>, Copy<4>},
    {PlanesToYvyu, PlanesToYuy2, PlanesToUyvy, PlanesToBgr, PlanesToBgra},
    {Nv12To<PlanesToYvyu, 2>, Nv12To<PlanesToYuy2, 2>, Nv12To<PlanesToUyvy, 2>, Nv12To<PlanesToBgr, 3>, Nv12ToBgra}};

using Rows420 = void (*)(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1,
                         int32_t width);

template <Rows420 kRows>
void To420(const RowsTo &dst, const RowFrom &a, const RowFrom &b, int32_t width) {
    kRows(dst.y0, dst.y1, dst.cb, dst.cr, a.p, b.p, width);
}

void YvyuTo420(const RowsTo &dst, const RowFrom &a, const RowFrom &b, int32_t width) {
    RowsYuy2To420(dst.y0, dst.y1, dst.cr, dst.cb, a.p, b.p, width);
}

void BgraTo420(const RowsTo &dst, const RowFrom &a, const RowFrom &b, int32_t width) {
    PrimitiveKernelsGet().bgra_to_420(dst.y0, dst.y1, dst.cb, dst.cr, a.p, b.p, width);
}

// By way of two chroma rows.
template <PlanesRows kRows, int kBytes>
void ToNv12(const RowsTo &dst, const RowFrom &a, const RowFrom &b, int32_t width) {
    uint8_t chroma[kPiece];
    for (int64_t x = 0; x < width; x += kPiece) {
        const int32_t n = PieceOf(x, width);
        kRows({dst.y0 + x, dst.y1 + x, chroma, chroma + kPiece / 2}, {a.p + kBytes * x, nullptr, nullptr},
              {b.p + kBytes * x, nullptr, nullptr}, n);
        PrimitiveKernelsGet().join_pairs(dst.cb + x, chroma, chroma + kPiece / 2, (n + 1) / 2);
    }
}

struct To420Kind {
    Entry<PlanesRows> planes;
    Entry<PlanesRows> nv12;
};
constexpr To420Kind kTo420[kPackedClasses] = {{YvyuTo420, ToNv12<YvyuTo420, 2>},
                                              {To420<RowsYuy2To420>, ToNv12<To420<RowsYuy2To420>, 2>},
                                              {To420<RowsUyvyTo420>, ToNv12<To420<RowsUyvyTo420>, 2>},
                                              {To420<RowsBgrTo420>, ToNv12<To420<RowsBgrTo420>, 3>},
                                              {BgraTo420, ToNv12<BgraTo420, 4>}};

// Grey for a picture that has no chroma.
struct Grey {
    uint8_t samples[kPiece];
    Grey() { std::memset(samples, 128, sizeof(samples)); }
};

uint8_t *At(uint8_t *image, const ImageLayout &l, int plane, int64_t x, int64_t y) {
    return image + l.offset[plane] + y * l.step[plane] + x;
}

const uint8_t *At(const uint8_t *image, const ImageLayout &l, int plane, int64_t x, int64_t y) {
    return image + l.offset[plane] + y * l.step[plane] + x;
}

int64_t ChromaX(const ImageLayout &l, int32_t left) { return l.kind == PixelClass::Nv12 ? left : left / 2; }

class Walk {
public:
    Walk(const uint8_t *src, const ImageLayout &from, uint8_t *dst, const ImageLayout &to, const PicturePart &part)
        : m_src(src), m_from(from), m_dst(dst), m_to(to), m_part(part) {}

    void ToPacked(PackedRow row, bool bSetAlpha) const;
    void ToPlanes(PlanesRows rows) const;
    void PlanesToPlanes() const;

private:
    // The row y of the part. Its chroma row counts from the one at the top of the part.
    RowFrom From(int64_t y) const;
    uint8_t *Target(int64_t y) const { return At(m_dst, m_to, 0, m_part.dstLeft * PixelBytes(m_to.kind), m_part.dstTop + y); }
    void GreyRow(PackedRow row, uint8_t *dst, const uint8_t *luma) const;

    const uint8_t *m_src;
    const ImageLayout &m_from;
    uint8_t *m_dst;
    const ImageLayout &m_to;
    const PicturePart &m_part;
};

RowFrom Walk::From(int64_t y) const {
    const int64_t chroma = m_part.srcTop / 2 + y / 2;
    return PictureRow(m_src, m_from, m_part.srcLeft, static_cast<int32_t>(m_part.srcTop + y), static_cast<int32_t>(chroma));
}

void Walk::GreyRow(PackedRow row, uint8_t *dst, const uint8_t *luma) const {
    static const Grey grey;
    for (int64_t x = 0; x < m_part.width; x += kPiece)
        row(dst + x * PixelBytes(m_to.kind), {luma + x, grey.samples, grey.samples}, PieceOf(x, m_part.width));
}

void Walk::ToPacked(PackedRow row, bool bSetAlpha) const {
    for (int64_t y = 0; y < m_part.rows; ++y) {
        const RowFrom from = From(y);
        uint8_t *const dst = Target(y);
        if (Is420(m_from.kind) && from.cb == nullptr) {
            GreyRow(row, dst, from.p);
            continue;
        }
        row(dst, from, m_part.width);
        if (bSetAlpha) PrimitiveKernelsGet().set_channel(dst + 3, 255, m_part.width);
    }
}

void Walk::ToPlanes(PlanesRows rows) const {
    for (int64_t y = 0; y < m_part.rows; y += 2) {
        const int64_t partner = std::min<int64_t>(y + 1, m_part.rows - 1);
        const int64_t chroma = m_part.dstTop / 2 + y / 2;
        RowsTo to = {Target(y), Target(partner), nullptr, nullptr};
        const RowFrom a = From(y);
        const RowFrom b = From(partner);
        if (chroma < m_to.chromaRows) {
            to.cb = At(m_dst, m_to, 1, ChromaX(m_to, m_part.dstLeft), chroma);
            to.cr = At(m_dst, m_to, 2, ChromaX(m_to, m_part.dstLeft), chroma);
            rows(to, a, b, m_part.width);
            continue;
        }
        // The samples are dropped.
        uint8_t dropped[kPiece * 2];
        for (int64_t x = 0; x < m_part.width; x += kPiece) {
            const int64_t at = x * PixelBytes(m_from.kind);
            rows({to.y0 + x, to.y1 + x, dropped, dropped + kPiece}, {a.p + at, nullptr, nullptr}, {b.p + at, nullptr, nullptr},
                 PieceOf(x, m_part.width));
        }
    }
}

// Chroma rows that both pictures have; one of the pictures alone with pairs: split or joined.
void Walk::PlanesToPlanes() const {
    const K &k = PrimitiveKernelsGet();
    for (int64_t y = 0; y < m_part.rows; ++y) std::memmove(Target(y), From(y).p, static_cast<size_t>(m_part.width));
    const int32_t samples = (m_part.width + 1) / 2;
    const int64_t count = std::min<int64_t>((m_part.rows + 1) / 2, m_to.chromaRows - m_part.dstTop / 2);
    for (int64_t n = 0; n < count; ++n) {
        const RowFrom from = From(2 * n);
        if (from.cb == nullptr) return;
        uint8_t *const cb = At(m_dst, m_to, 1, ChromaX(m_to, m_part.dstLeft), m_part.dstTop / 2 + n);
        uint8_t *const cr = At(m_dst, m_to, 2, ChromaX(m_to, m_part.dstLeft), m_part.dstTop / 2 + n);
        const bool fromPairs = m_from.kind == PixelClass::Nv12;
        const bool toPairs = m_to.kind == PixelClass::Nv12;
        if (fromPairs && toPairs) {
            std::memmove(cb, from.cb, static_cast<size_t>(2 * samples));
        } else if (fromPairs) {
            k.split_pairs(cb, cr, from.cb, samples);
        } else if (toPairs) {
            k.join_pairs(cb, from.cb, from.cr, samples);
        } else {
            std::memmove(cb, from.cb, static_cast<size_t>(samples));
            std::memmove(cr, from.cr, static_cast<size_t>(samples));
        }
    }
}

}    // namespace

RowFrom PictureRow(const uint8_t *image, const ImageLayout &layout, int32_t left, int32_t y, int32_t chromaRow) {
    RowFrom row = {At(image, layout, 0, left * PixelBytes(layout.kind), y), nullptr, nullptr};
    if (layout.chromaRows == 0) return row;
    const int64_t chroma = std::min(chromaRow, layout.chromaRows - 1);
    row.cb = At(image, layout, 1, ChromaX(layout, left), chroma);
    row.cr = At(image, layout, 2, ChromaX(layout, left), chroma);
    return row;
}

PackedRow PackedRowFind(PixelClass from, PixelClass to) {
    if (from == PixelClass::None || to == PixelClass::None || Is420(to)) return nullptr;
    return kPackedRows[static_cast<int>(from)][static_cast<int>(to)].call;
}

PlanesRows PlanesRowsFind(PixelClass from, PixelClass to) {
    if (from == PixelClass::None || Is420(from) || !Is420(to)) return nullptr;
    const To420Kind &kind = kTo420[static_cast<int>(from)];
    return to == PixelClass::Nv12 ? kind.nv12.call : kind.planes.call;
}

void PictureConvert(const uint8_t *src, const ImageLayout &from, uint8_t *dst, const ImageLayout &to, const PicturePart &part,
                    bool bSetAlpha) {
    const Walk walk(src, from, dst, to, part);
    if (const PackedRow row = PackedRowFind(from.kind, to.kind)) {
        walk.ToPacked(row, bSetAlpha);
    } else if (const PlanesRows rows = PlanesRowsFind(from.kind, to.kind)) {
        walk.ToPlanes(rows);
    } else if (Is420(from.kind) && Is420(to.kind)) {
        walk.PlanesToPlanes();
    }
}

}    // namespace zck
