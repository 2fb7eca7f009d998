#include "keying/pipeline/plane_path.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "frames/media/pixel_format.h"
#include "keying/kernels/filter_plane.h"
#include "keying/pipeline/smooth_plane.h"
#include "keying/pipeline/to_rgb32.h"
#include "keying/spill/spill.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr int64_t kSlack = 64;    // rounded widths and late bytes of a plane's last row
constexpr int64_t kBytesMax = int64_t{1} << 40;

struct FreeBlock {
    void operator()(uint8_t *p) const { std::free(p); }
};
using Block = std::unique_ptr<uint8_t, FreeBlock>;

// Scratch reads as 0 until something is written.
Block ZeroBlock(int64_t bytes) { return Block(static_cast<uint8_t *>(std::calloc(1, static_cast<size_t>(bytes + kSlack)))); }

/// The image that distances are measured in.
struct KeySpace {
    const uint8_t *pixels;
    int64_t stride;
    int64_t bytes;    // readable from `pixels` on
    int64_t row;      // readable from a row's start on
};

class WholePlanePath {
public:
    WholePlanePath(const KeyView &view, const KeyPlan &plan, bool writeAlpha)
        : m_view(view), m_plan(plan), m_writeAlpha(writeAlpha), m_kernels(KeyingKernelsGet()) {}

    HRESULT Run() {
        if (!m_plan.hasAlpha) {
            FillOpaque();
            if (!m_plan.HasSpill()) return S_FALSE;
        }
        HRESULT hr = Allocate();
        if (SUCCEEDED(hr)) hr = MakeKeySpace();
        if (SUCCEEDED(hr)) hr = Measure();
        if (SUCCEEDED(hr)) hr = MoveSpill();
        if (FAILED(hr)) return hr;
        Threshold();
        hr = Smooth();
        if (FAILED(hr)) return hr;
        Invert();
        Merge();
        return S_OK;
    }

private:
    template <class Work>
    void ForAlphaRows(Work &&work) {
        for (int64_t y = 0; y < m_view.height; ++y) {
            const AlphaRow row(m_view, y, &m_rowScratch);
            work(row.Get(), y);
        }
    }

    // The rows of the plane in which alpha is gathered: the caller's, or scratch when it is smoothed later.
    template <class Work>
    void ForGatherRows(Work &&work) {
        if (m_gather == nullptr) return ForAlphaRows(work);
        for (int64_t y = 0; y < m_view.height; ++y) work(m_gather + y * m_view.stride, y);
    }

    void FillOpaque() {
        ForAlphaRows([&](uint8_t *row, int64_t) { std::memset(row, 255, static_cast<size_t>(m_view.width)); });
    }

    HRESULT Allocate() {
        const int64_t plane = m_view.stride * m_view.height;
        if (plane > kBytesMax) return E_OUTOFMEMORY;
        m_planeBytes = 4 * plane;
        m_block = ZeroBlock(4 * m_planeBytes);
        if (!m_block) return E_OUTOFMEMORY;
        for (int i = 0; i < 4; ++i) m_planes[i] = m_block.get() + i * m_planeBytes;
        return S_OK;
    }

    // The roles of the planes move as the stages swap them: what one stage leaves in a plane, a later one may read.
    HRESULT MakeKeySpace() {
        KeySpace current{m_view.pixels, m_view.rowBytes, m_view.bounds.pixelBytes, m_view.bounds.pixelRow};
        if (!m_view.Is32()) {
            const HRESULT hr =
                ToRgb32(m_view.pixels, m_view.bounds.pixelBytes, m_planes[1], m_planeBytes, *m_view.props, m_view.stride);
            if (FAILED(hr)) return hr;
            std::swap(m_planes[0], m_planes[1]);
            current = ScratchSpace(m_planes[0]);
        }
        m_space = current;
        if (m_plan.type == eCKT_RGB) {
            m_space.stride = 4 * m_view.stride;
        } else {
            const auto convert = m_plan.type == eCKT_HLS ? m_kernels.to_hls : m_kernels.to_yuv;
            for (int64_t y = 0; y < m_view.height; ++y) {
                const int64_t pixels = ReadableBytes(current, y) / 4;
                convert(m_planes[1] + y * 4 * m_view.stride, current.pixels + y * current.stride,
                        static_cast<int32_t>(std::min<int64_t>(pixels, m_view.width)));
            }
            m_space = ScratchSpace(m_planes[1]);
            std::swap(m_planes[0], m_planes[1]);
        }
        if (m_plan.edges != 0 && m_plan.hasAlpha) m_gather = m_planes[1];
        return S_OK;
    }

    KeySpace ScratchSpace(const uint8_t *plane) const { return {plane, 4 * m_view.stride, m_planeBytes, m_planeBytes}; }

    static int64_t ReadableBytes(const KeySpace &space, int64_t y) {
        return std::max<int64_t>(std::min(space.row, space.bytes - y * space.stride), 0);
    }

    void DistanceOf(uint8_t *dst, int64_t y, const PlanEntry &entry) {
        const int64_t bytes = ReadableBytes(m_space, y);
        const uint8_t *src = bytes > 0 ? m_space.pixels + y * m_space.stride : m_space.pixels;
        DistanceRow(m_kernels, dst, src, bytes, m_view.blocks, entry.distance);
    }

    HRESULT Measure() {
        int alphaKeys = 0;
        int reverseKeys = 0;
        for (int32_t i = 0; i < m_plan.count; ++i) {
            const PlanEntry &entry = m_plan.entries[i];
            if (entry.reverse) {
                const HRESULT hr = MeasureReverse(entry, reverseKeys++ == 0);
                if (FAILED(hr)) return hr;
            } else {
                MeasureAlpha(entry, alphaKeys++ == 0);
            }
        }
        if (reverseKeys > 0) Protect();
        return S_OK;
    }

    void MeasureAlpha(const PlanEntry &entry, bool first) {
        const int32_t w = m_view.width;
        if (first) {
            ForGatherRows([&](uint8_t *row, int64_t y) { DistanceOf(row, y, entry); });
            if (entry.nAlpha != 0) ForGatherRows([&](uint8_t *row, int64_t) { m_kernels.add_const(row, w, entry.nAlpha); });
            return;
        }
        for (int64_t y = 0; y < m_view.height; ++y) DistanceOf(m_planes[2] + y * m_view.stride, y, entry);
        ForGatherRows([&](uint8_t *row, int64_t y) { m_kernels.join(row, m_planes[2] + y * m_view.stride, w, entry.nAlpha); });
    }

    HRESULT MeasureReverse(const PlanEntry &entry, bool first) {
        const int64_t plane = m_view.stride * m_view.height;
        if (first) {
            m_reverse = ZeroBlock(2 * plane);
            if (!m_reverse) return E_OUTOFMEMORY;
        }
        uint8_t *target = m_reverse.get() + (first ? 0 : plane);
        for (int64_t y = 0; y < m_view.height; ++y) {
            uint8_t *row = target + y * m_view.stride;
            DistanceOf(row, y, entry);
            if (!first) m_kernels.join(m_reverse.get() + y * m_view.stride, row, m_view.width, 0);
        }
        return S_OK;
    }

    void Protect() {
        for (int64_t y = 0; y < m_view.height; ++y) {
            m_kernels.invert(m_reverse.get() + y * m_view.stride, m_view.width, true);
        }
        ForGatherRows(
            [&](uint8_t *row, int64_t y) { m_kernels.add_plane(row, m_reverse.get() + y * m_view.stride, m_view.width); });
        m_reverse.reset();
    }

    // Measures the key space as it is, and changes the caller's picture.
    HRESULT MoveSpill() const {
        return SpillCancel({m_view.pixels, m_view.bounds.pixelBytes, m_view.props, m_view.stride, m_space.pixels,
                            m_space.stride, m_space.bytes, m_space.row},
                           m_plan.spill);
    }

    void Threshold() {
        if (m_plan.low <= 0 && m_plan.high >= 255) return;
        ForGatherRows([&](uint8_t *row, int64_t) { m_kernels.threshold(row, m_view.width, m_plan.low, m_plan.high); });
    }

    HRESULT Smooth() {
        if (m_plan.edges <= 0) return S_OK;
        const int32_t w = m_view.width;
        if (w < 3 || m_view.height < 3) return StatusOf(0x80000000U | static_cast<uint32_t>(kFilterSizeError));
        uint8_t *gather = m_gather;
        if (gather == nullptr) {
            // Without an alpha key the caller's plane is smoothed in itself. All that is left of the rounds there is the
            // last filter's interior, so that a copy serves.
            gather = m_planes[3];
            ForAlphaRows(
                [&](uint8_t *row, int64_t y) { std::memcpy(gather + y * m_view.stride, row, static_cast<size_t>(w)); });
        }
        const uint8_t *last =
            SmoothRounds(SmoothKind::Image, gather, m_planes[2], nullptr, m_view.stride, w, m_view.height, m_plan.edges - 1);
        ForAlphaRows([&](uint8_t *row, int64_t y) {
            const uint8_t *border = gather + y * m_view.stride;
            if (y == 0 || y == m_view.height - 1) {
                std::memcpy(row, border, static_cast<size_t>(w));
                return;
            }
            const uint8_t *middle = last + y * m_view.stride + 1;
            m_kernels.gauss(row + 1, middle - m_view.stride, middle, middle + m_view.stride, w - 2);
            row[0] = border[0];
            row[w - 1] = border[w - 1];
        });
        return S_OK;
    }

    void Invert() {
        if (!m_plan.invert) return;
        ForAlphaRows([&](uint8_t *row, int64_t) { m_kernels.invert(row, m_view.width, true); });
    }

    void Merge() {
        const eZFCC fcc = m_view.props->fccType;
        if (!HasAlpha(fcc) && !(m_writeAlpha && m_view.Is32())) return;
        ForAlphaRows([&](uint8_t *row, int64_t y) {
            if (m_view.bounds.pixelBytes - y * m_view.rowBytes < int64_t{4} * m_view.width) return;
            uint8_t *pixels = m_view.pixels + y * m_view.rowBytes;
            m_kernels.merge(pixels, pixels, row, m_view.width);
        });
    }

    const KeyView &m_view;
    const KeyPlan &m_plan;
    const bool m_writeAlpha;
    const KeyingKernels &m_kernels;
    std::vector<uint8_t> m_rowScratch;
    Block m_block;
    Block m_reverse;
    int64_t m_planeBytes = 0;
    uint8_t *m_planes[4] = {};
    uint8_t *m_gather = nullptr;
    KeySpace m_space = {};
};

}    // namespace

HRESULT KeyByPlanes(const KeyView &view, const KeyPlan &plan, bool writeAlpha) {
    return WholePlanePath(view, plan, writeAlpha).Run();
}

}    // namespace zck
