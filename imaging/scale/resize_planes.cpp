#include "imaging/scale/resize_planes.h"

#include <algorithm>
#include <cstring>

#include "imaging/primitives/planar.h"
#include "imaging/primitives/row_kernels.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr uint8_t kBlackLuma = 16;
constexpr uint8_t kNoColour = 128;

bool Same(const PlaneArea &a, const PlaneArea &b) { return a.width == b.width && a.rows == b.rows; }
bool Empty(const PlaneArea &a) { return a.width < 1 || a.rows < 1; }

HRESULT StatusOfResize(int32_t status) {
    if (status == kPrimitiveOk) return S_OK;
    return status == kPrimitiveNoMemory ? E_OUTOFMEMORY : E_FAIL;
}

}    // namespace

// The rows of a plane's rectangle.
struct PlaneScaler::Reader {
    PlaneScaler *scaler;
    int32_t plane;

    const uint8_t *Row(int32_t y) const {
        const Part &part = scaler->m_part[plane];
        return scaler->m_rows.Row(plane, part.source.top + y) + int64_t{part.pixel} * part.source.left;
    }
    static const uint8_t *Of(void *owner, int32_t y) { return static_cast<const Reader *>(owner)->Row(y); }
};

HRESULT PlaneScaler::PreparePart(int32_t plane, int32_t quality) {
    Part &part = m_part[plane];
    part.source = m_source.part[plane];
    part.target = m_target.part[plane];
    part.whole = m_target.Whole(plane);
    part.pixel = m_bPixels ? 4 : 1;
    part.fill = m_bPixels ? 0 : plane == 0 ? kBlackLuma : kNoColour;
    part.copy = Same(part.source, part.target);
    if (part.copy) return S_OK;
    if (Empty(part.source) || Empty(part.target)) return E_FAIL;
    const bool grows = part.target.width > part.source.width || part.target.rows > part.source.rows;
    const ResizeShape shape = {{part.source.width, part.source.rows},
                               {part.target.width, part.target.rows},
                               part.pixel,
                               quality == kResizeSuper && grows ? kResizeCubic : quality};
    return StatusOfResize(part.resizer.Prepare(shape));
}

HRESULT PlaneScaler::Prepare(const ScaleImage &source, const ScaleImage &target, int32_t nLuma, int32_t nChroma) {
    if (source.kind == PixelClass::None || target.kind == PixelClass::None) return kVfwEInvalidSubtype;
    m_source = source;
    m_target = target;
    m_bPixels = source.Rgb() && target.Rgb();
    int32_t atOnce = 1;
    for (int32_t i = 0; i < (m_bPixels ? 1 : 3); ++i) {
        const HRESULT hr = PreparePart(i, i == 0 ? nLuma : nChroma);
        if (hr != S_OK) return hr;
        if (!m_part[i].copy) atOnce = std::max(atOnce, m_part[i].resizer.RowsAtOnce());
    }
    return Guarded([&] {
        // Chroma of 4:2:0 lags behind the luma of its two rows, hence twice as many.
        m_rows.Open(source, m_bPixels ? ReadAs::Pixels : ReadAs::Planes, 2 * atOnce);
        const int64_t row = (int64_t{target.width} * (m_bPixels ? 4 : 1) + 63) & ~int64_t{63};
        m_out.resize(static_cast<size_t>(3 * row));
        for (int64_t i = 0; i < 3; ++i) m_outPlane[i] = m_out.data() + i * row;
        return S_OK;
    });
}

// Row `y` of the target's plane, borders included.
void PlaneScaler::MakeRow(int32_t plane, int32_t y, uint8_t *dst) {
    Part &part = m_part[plane];
    const int64_t pixel = part.pixel;
    const auto bytes = [pixel](int64_t n) { return static_cast<size_t>(std::max<int64_t>(n, 0) * pixel); };
    const int32_t row = y - part.target.top;
    const bool inside = row >= 0 && row < part.target.rows;
    if (!Same(part.target, part.whole)) std::memset(dst, part.fill, bytes(part.whole.width));
    if (!inside || Empty(part.target)) return;
    uint8_t *const to = dst + pixel * part.target.left;
    Reader reader = {this, plane};
    if (part.copy)
        std::memcpy(to, reader.Row(row), bytes(part.target.width));
    else
        part.resizer.Row(row, {Reader::Of, &reader}, to);
}

void PlaneScaler::RgbRow(int32_t y) {
    uint8_t *const dst = m_target.plane[0] + y * m_target.step[0];
    if (m_target.kind == PixelClass::Rgb32) return MakeRow(0, y, dst);
    MakeRow(0, y, m_out.data());
    PrimitiveKernelsGet().drop_alpha(dst, m_out.data(), m_target.width);
}

void PlaneScaler::PackedRow(int32_t y) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    for (int32_t i = 0; i < 3; ++i) MakeRow(i, y, m_outPlane[i]);
    const auto [luma, cb, cr] = m_outPlane;
    uint8_t *const dst = m_target.plane[0] + y * m_target.step[0];
    const int32_t even = m_target.width & ~1;
    switch (m_target.kind) {
        case PixelClass::Uyvy:
            return k.join_uyvy(dst, luma, cb, cr, even);
        case PixelClass::Yuy2:
            return k.join_yuy2(dst, luma, cb, cr, even);
        case PixelClass::Yvyu:
            return k.join_yuy2(dst, luma, cr, cb, even);
        case PixelClass::Rgb24:
            return RowPlanesToBgr(dst, luma, cb, cr, even);
        default:
            return k.planes_to_bgra(dst, luma, cb, cr, even, 255);
    }
}

void PlaneScaler::ChromaRow420(int32_t y) {
    if (m_target.kind == PixelClass::Planes420) {
        for (int32_t i = 1; i < 3; ++i) MakeRow(i, y, m_target.plane[i] + y * m_target.step[i]);
        return;
    }
    for (int32_t i = 1; i < 3; ++i) MakeRow(i, y, m_outPlane[i]);
    uint8_t *const pairs = m_target.plane[1] + y * m_target.step[1];
    PrimitiveKernelsGet().join_pairs(pairs, m_outPlane[1], m_outPlane[2], m_part[1].whole.width);
}

void PlaneScaler::Run(int32_t y0, int32_t y1) {
    for (int32_t y = std::max(y0, 0); y < std::min(y1, m_target.rows); ++y) {
        if (m_bPixels) {
            RgbRow(y);
        } else if (!Is420(m_target.kind)) {
            PackedRow(y);
        } else {
            MakeRow(0, y, m_target.plane[0] + y * m_target.step[0]);
            if (y % 2 == 0 && y / 2 < m_part[1].whole.rows) ChromaRow420(y / 2);
        }
    }
}

HRESULT ResizePlanes(PlaneScaler *scaler, const ScaleImage &source, const ScaleImage &target, int32_t nLuma, int32_t nChroma) {
    if (scaler == nullptr) return E_POINTER;
    const HRESULT hr = scaler->Prepare(source, target, nLuma, nChroma);
    if (hr == S_OK) scaler->Run(0, scaler->Rows());
    return hr;
}

}    // namespace zck
