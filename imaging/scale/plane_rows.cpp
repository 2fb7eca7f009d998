#include "imaging/scale/plane_rows.h"

#include "imaging/primitives/planar.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

int64_t Padded(int64_t bytes) { return (bytes + 63) & ~int64_t{63}; }

}    // namespace

bool PlaneRows::Direct(int32_t plane) const {
    const PixelClass kind = m_image.kind;
    if (m_as == ReadAs::Pixels) return kind == PixelClass::Rgb32;
    return kind == PixelClass::Planes420 || (kind == PixelClass::Nv12 && plane == 0);
}

void PlaneRows::Open(const ScaleImage &image, ReadAs as, int32_t rowsAtOnce) {
    m_image = image;
    m_as = as;
    size_t slots = 1;
    while (slots < static_cast<size_t>(rowsAtOnce)) slots *= 2;
    const int64_t luma = as == ReadAs::Pixels ? int64_t{4} * image.width : image.width;
    const int64_t chroma = as == ReadAs::Pixels ? 0 : (int64_t{image.width} + 1) / 2;
    m_offset[0] = 0;
    m_offset[1] = Padded(luma);
    m_offset[2] = m_offset[1] + Padded(chroma);
    m_nSlot = m_offset[2] + Padded(chroma);
    const bool none = Direct(0) && Direct(1);
    if (!none) m_ring.resize(slots * static_cast<size_t>(m_nSlot));
    m_held.assign(slots, -1);
}

const uint8_t *PlaneRows::Row(int32_t plane, int32_t y) {
    if (Direct(plane)) return m_image.plane[plane] + y * m_image.step[plane];
    const size_t slot = static_cast<size_t>(y) & (m_held.size() - 1);
    uint8_t *const rows = m_ring.data() + static_cast<int64_t>(slot) * m_nSlot;
    if (m_held[slot] != y) Unpack(rows, y);
    m_held[slot] = y;
    return rows + m_offset[plane];
}

void PlaneRows::Unpack(uint8_t *slot, int32_t y) const {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    const int32_t width = m_image.width;
    const uint8_t *const src = m_image.plane[0] + y * m_image.step[0];
    uint8_t *const luma = slot;
    uint8_t *const cb = slot + m_offset[1];
    uint8_t *const cr = slot + m_offset[2];
    if (m_as == ReadAs::Pixels) return k.add_alpha(luma, src, width);
    // An odd last pixel of RGB makes a chroma sample that no plane counts; of 4:2:2 only its luma byte is sure to be there.
    if (m_image.kind == PixelClass::Rgb24) return RowBgrToPlanes422(luma, cb, cr, src, width);
    if (m_image.kind == PixelClass::Rgb32) return RowBgraToPlanes422(luma, cb, cr, src, width);
    if (m_image.kind == PixelClass::Nv12) return k.split_pairs(cb, cr, m_image.plane[1] + y * m_image.step[1], width / 2);
    const bool uyvy = m_image.kind == PixelClass::Uyvy;
    const bool crFirst = m_image.kind == PixelClass::Yvyu;
    (uyvy ? k.split_uyvy : k.split_yuy2)(luma, crFirst ? cr : cb, crFirst ? cb : cr, src, width & ~1);
    if (width % 2 != 0) luma[width - 1] = src[int64_t{2} * (width - 1) + (uyvy ? 1 : 0)];
}

}    // namespace zck
