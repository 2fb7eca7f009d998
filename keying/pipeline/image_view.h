// One image and its alpha plane with the limits of what may be touched, as both paths of the pipeline take them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "keying/kernels/kernels.h"
#include "keying/pipeline/pipeline.h"

namespace zck {

struct KeyView {
    uint8_t *pixels;
    uint8_t *alpha;
    const Z_VID_PROPS *props;
    int32_t width;
    int32_t height;      ///< row count, never negative
    int64_t rowBytes;    ///< of the pixels
    int64_t stride;      ///< of the alpha plane
    int32_t blocks;      ///< of 8 pixels that are measured in a row
    KeyBounds bounds;

    /// Pixels have four bytes, so that alpha can be written into them.
    bool Is32() const { return Is32BitFormat(props->fccType); }
    /// Bytes of an alpha row that the stages work on, with the rounded width and the inversion's late byte.
    int32_t AlphaReach() const { return std::max(blocks * 8, width + 1); }
};

/// Blocks that are measured in a row; rows `stride` bytes apart.
inline int32_t BlocksOf(int32_t width, int64_t stride) {
    return DistanceBlocks(width, static_cast<int32_t>(std::min<int64_t>(stride, INT32_MAX)));
}

/// The view of props that were found sound by `CheckProps`.
inline KeyView MakeView(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, int64_t stride, const KeyBounds &bounds) {
    const auto height = static_cast<int32_t>(RowCount(props->nHeight));
    const auto stride32 = static_cast<int32_t>(std::min<int64_t>(stride, INT32_MAX));
    return {pixels, alpha, props, props->nWidth, height, props->nRowBytes, stride, DistanceBlocks(props->nWidth, stride32),
            bounds};
}

/// An alpha row to work on in place. Where the plane or the row ends before the row's reach, the work is done in a copy, and
/// only what belongs to the row is stored back.
class AlphaRow {
public:
    AlphaRow(const KeyView &view, int64_t row, std::vector<uint8_t> *scratch) {
        const int64_t offset = row * view.stride;
        m_room = std::clamp<int64_t>(std::min(view.bounds.alphaRow, view.bounds.alphaBytes - offset), 0, view.AlphaReach());
        if (m_room > 0) m_home = view.alpha + offset;
        m_row = m_home;
        if (m_room == view.AlphaReach()) return;
        scratch->assign(static_cast<size_t>(view.AlphaReach()) + 32, 0);
        m_row = scratch->data();
        if (m_room > 0) std::memcpy(m_row, m_home, static_cast<size_t>(m_room));
    }
    ~AlphaRow() {
        if (m_row != m_home && m_room > 0) std::memcpy(m_home, m_row, static_cast<size_t>(m_room));
    }
    AlphaRow(const AlphaRow &) = delete;
    AlphaRow &operator=(const AlphaRow &) = delete;

    uint8_t *Get() const { return m_row; }

private:
    uint8_t *m_home = nullptr;
    uint8_t *m_row = nullptr;
    int64_t m_room = 0;
};

/// Measures a row of which `bytes` bytes may be read; pixels beyond count as 0.
inline void DistanceRow(const KeyingKernels &k, uint8_t *dst, const uint8_t *src, int64_t bytes, int32_t blocks,
                        const DistanceKey &key) {
    const auto whole = static_cast<int32_t>(std::clamp<int64_t>(bytes / 32, 0, blocks));
    k.distance(dst, src, whole, &key);
    for (int32_t i = whole; i < blocks; ++i) {
        uint8_t tail[32] = {};
        const int64_t rest = std::clamp<int64_t>(bytes - int64_t{i} * 32, 0, 32);
        if (rest > 0) std::memcpy(tail, src + int64_t{i} * 32, static_cast<size_t>(rest));
        k.distance(dst + int64_t{i} * 8, tail, 1, &key);
    }
}

/// `S_OK` if the props describe an image: sizes that are not negative, rows that hold their pixels.
HRESULT CheckProps(const Z_VID_PROPS &props);

}    // namespace zck
