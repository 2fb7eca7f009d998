#include "keying/spill/spill_mask.h"

#include <algorithm>
#include <cstring>

namespace zck {

void SpillMask::Start(const SpillShape &shape, const DistanceKey &key, bool invert, uint8_t *scratch, int64_t pitch) {
    m_kernels = &KeyingKernelsGet();
    m_shape = shape;
    m_key = key;
    m_invert = invert;
    m_scratch = scratch;
    m_pitch = pitch;
}

bool SpillMask::IsInner(int32_t row) const {
    return row > 0 && row < m_shape.height - 1 && m_shape.width >= 3 && m_shape.height >= 3;
}

void SpillMask::Measure(uint8_t *dst, const uint8_t *space, int64_t bytes) const {
    const auto whole = static_cast<int32_t>(std::clamp<int64_t>(bytes / 32, 0, m_shape.blocks));
    m_kernels->distance(dst, space, whole, &m_key);
    for (int32_t i = whole; i < m_shape.blocks; ++i) {
        uint8_t tail[32] = {};
        const int64_t rest = std::clamp<int64_t>(bytes - int64_t{i} * 32, 0, 32);
        if (rest > 0) std::memcpy(tail, space + int64_t{i} * 32, static_cast<size_t>(rest));
        m_kernels->distance(dst + int64_t{i} * 8, tail, 1, &m_key);
    }
}

void SpillMask::Put(int32_t t, const uint8_t *space, int64_t bytes, const uint8_t *before) {
    uint8_t *row = Measured(t);
    const int32_t measured = 8 * m_shape.blocks;
    if (measured < m_shape.width) {
        const auto rest = static_cast<size_t>(m_shape.width - measured);
        if (before != nullptr) {
            std::memcpy(row + measured, before + measured, rest);
        } else {
            std::memset(row + measured, 0, rest);
        }
    }
    Measure(row, space, bytes);
    if (!m_invert) return;
    // The row before has inverted this row's first byte once already.
    if (m_shape.slips && t > 0 && m_shape.width % 16 != 0) row[0] = static_cast<uint8_t>(255 - row[0]);
    m_kernels->invert(row, m_shape.width, false);
}

void SpillMask::Widen(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below) const {
    const int32_t w = m_shape.width;
    m_kernels->dilate(dst + 1, above + 1, middle + 1, below + 1, w - 2);
    dst[0] = middle[0];
    dst[w - 1] = middle[w - 1];
}

void SpillMask::Step(int32_t t) {
    const auto bytes = static_cast<size_t>(m_shape.width);
    const int32_t one = t - 1;
    if (IsInner(one)) {
        Widen(WidenedOnce(one), Measured(one - 1), Measured(one), Measured(one + 1));
    } else if (one >= 0 && one < m_shape.height) {
        std::memcpy(WidenedOnce(one), Measured(one), bytes);
    }
    const int32_t two = t - 2;
    uint8_t *out = Slot(kScratchRows - 1);
    if (IsInner(two)) {
        Widen(out, WidenedOnce(two - 1), WidenedOnce(two), WidenedOnce(two + 1));
    } else if (two >= 0 && two < m_shape.height) {
        std::memcpy(out, WidenedOnce(two), bytes);
    }
}

}    // namespace zck
