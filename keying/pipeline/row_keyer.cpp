#include "keying/pipeline/row_keyer.h"

#include <cstring>

namespace zck {

void RowKeyer::Start(const KeyView &view, const KeyPlan *plan) {
    m_kernels = &KeyingKernelsGet();
    m_plan = plan;
    m_width = view.width;
    m_blocks = view.blocks;
    m_reach = view.AlphaReach();
    const int64_t rowBytes = plan->type == eCKT_RGB ? m_reach : int64_t{4} * m_reach;
    m_rows.Reserve(kRows, rowBytes + 32);
    // Bytes that no conversion writes read as 0: pixels right of the width, and the fourth bytes.
    if (plan->type != eCKT_RGB) std::memset(m_rows.Row(kSpace), 0, static_cast<size_t>(4 * m_reach));
}

const uint8_t *RowKeyer::KeyedSpace(const uint8_t *pixels) const {
    return m_plan->type == eCKT_RGB ? pixels : m_rows.Row(kSpace);
}

const uint8_t *RowKeyer::Space(const uint8_t *pixels) const {
    if (m_plan->type == eCKT_HLS) m_kernels->to_hls(m_rows.Row(kSpace), pixels, m_width);
    if (m_plan->type == eCKT_YUV) m_kernels->to_yuv(m_rows.Row(kSpace), pixels, m_width);
    return KeyedSpace(pixels);
}

void RowKeyer::Key(const uint8_t *pixels, int64_t bytes, uint8_t *alpha) const {
    const KeyingKernels &k = *m_kernels;
    pixels = Space(pixels);
    if (m_plan->type != eCKT_RGB) bytes = int64_t{4} * m_reach;
    bool firstAlpha = true;
    bool firstReverse = true;
    for (int32_t i = 0; i < m_plan->count; ++i) {
        const PlanEntry &entry = m_plan->entries[i];
        bool &first = entry.reverse ? firstReverse : firstAlpha;
        uint8_t *gather = entry.reverse ? m_rows.Row(kReverse) : alpha;
        uint8_t *target = first ? gather : m_rows.Row(entry.reverse ? kOtherReverse : kOther);
        DistanceRow(k, target, pixels, bytes, m_blocks, entry.distance);
        if (!first) {
            k.join(gather, target, m_width, entry.reverse ? 0 : entry.nAlpha);
        } else if (!entry.reverse && entry.nAlpha != 0) {
            k.add_const(alpha, m_width, entry.nAlpha);
        }
        first = false;
    }
    if (m_plan->hasReverse) Protect(alpha);
    if (m_plan->low > 0 || m_plan->high < 255) k.threshold(alpha, m_width, m_plan->low, m_plan->high);
}

void RowKeyer::Protect(uint8_t *alpha) const {
    uint8_t *reverse = m_rows.Row(kReverse);
    // Each row of the plane starts as 0 right of the last block.
    const int32_t measured = 8 * m_blocks;
    std::memset(reverse + measured, 0, static_cast<size_t>(m_reach - measured));
    m_kernels->invert(reverse, m_width, true);
    m_kernels->add_plane(alpha, reverse, m_width);
}

}    // namespace zck
