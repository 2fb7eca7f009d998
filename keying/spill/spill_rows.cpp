#include "keying/spill/spill_rows.h"

#include <algorithm>

namespace zck {

void SpillRows::Start(const SpillPlan *plan, const SpillShape &shape, bool lumaFirst, int32_t first, int32_t end) {
    m_kernels = &SpillKernelsGet();
    m_plan = plan;
    m_shape = shape;
    m_first = first;
    m_end = end;
    m_behind = SideBySide(*plan, shape) ? 0 : SpillMask::kLag;
    m_opens = m_behind * (plan->count - 1) + 1;
    m_lag = SpillMask::kLag + m_opens - 1;
    m_begin = std::max(first - m_lag, 0);
    // Rows start at different places of the cache's sets, so that neighbours do not push each other out.
    m_pitch = (2 * int64_t{shape.width} + 40 + 127) / 64 * 64 + 64;
    const int64_t masks = int64_t{SpillMask::kScratchRows} * plan->count;
    const auto bytes = static_cast<size_t>((masks + m_opens + 1) * m_pitch);
    if (m_scratch.size() < bytes) m_scratch.resize(bytes);
    for (int32_t i = 0; i < plan->count; ++i) {
        Entry &entry = m_entries[static_cast<size_t>(i)];
        entry.mask.Start(shape, plan->entries[i].distance, plan->invert, Scratch(int64_t{SpillMask::kScratchRows} * i),
                         m_pitch);
        entry.block = SpillBlockKeyOf(*plan, plan->entries[i], lumaFirst);
        entry.pixel = SpillPixelKeyOf(*plan, plan->entries[i], lumaFirst);
    }
}

void SpillRows::Correct(int32_t entry, uint8_t *pixels) {
    uint8_t *mask = Scratch(int64_t{SpillMask::kScratchRows} * m_plan->count + m_opens);
    const Entry &e = m_entries[static_cast<size_t>(entry)];
    m_kernels->scale(mask, e.mask.Row(), m_shape.width);
    const int32_t half = m_shape.width / 2;
    if (m_plan->perPixel) {
        m_kernels->pixel(pixels, mask, half, &e.pixel);
    } else {
        m_kernels->block(pixels, mask, half / 8, &e.block);
    }
}

void SpillRows::Step(int32_t t, SpillSource *source) {
    const uint8_t *before = nullptr;
    for (int32_t i = 0; i < m_plan->count; ++i) {
        SpillMask &mask = m_entries[static_cast<size_t>(i)].mask;
        const int32_t in = t - m_behind * i;
        if (in < m_begin) return;
        if (in < m_shape.height && in < m_end + Lag()) {
            int64_t bytes = 0;
            const uint8_t *space = source->KeyRow(in, &bytes);
            mask.Put(in, space, bytes, before);
        }
        mask.Step(in);
        before = mask.Row();
        const int32_t row = in - SpillMask::kLag;
        if (!IsChanged(row)) continue;
        uint8_t *&pixels = m_open[static_cast<size_t>(row % m_opens)];
        if (i == 0) {
            const int64_t slot = int64_t{SpillMask::kScratchRows} * m_plan->count + row % m_opens;
            pixels = source->Open(row, Scratch(slot));
        }
        Correct(i, pixels);
        if (i == m_plan->count - 1) source->Close(row, pixels);
    }
}

}    // namespace zck
