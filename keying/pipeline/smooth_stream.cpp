#include "keying/pipeline/smooth_stream.h"

#include <bit>
#include <cstring>

namespace zck {
namespace {

constexpr int32_t kStageRows = 4;    // three that a filter reads, one that is written

}    // namespace

void SmoothStream::Start(SmoothKind kind, int32_t width, int32_t height, int32_t reach, int32_t edges, int32_t first,
                         int32_t end) {
    m_kernels = &KeyingKernelsGet();
    m_kind = kind;
    m_width = width;
    m_height = height;
    m_first = first;
    m_end = end;
    m_stages = 2 * (edges - 1);
    const auto inputRows = static_cast<int32_t>(std::bit_ceil(static_cast<uint32_t>(Lag() + 2)));
    m_inputMask = inputRows - 1;
    m_rows.Reserve(inputRows + int64_t{kStageRows} * m_stages, reach);
}

// Stage 0 is the input; odd stages are erosions, even ones the end of a round.
uint8_t *SmoothStream::StageSlot(int32_t stage, int32_t row) const {
    return m_rows.Row(m_inputMask + 1 + (stage - 1) * kStageRows + (row & (kStageRows - 1)));
}

const uint8_t *SmoothStream::StageRow(int32_t stage, int32_t row) const {
    return stage == 0 ? Input(row) : StageSlot(stage, row);
}

void SmoothStream::Step(int32_t t) const {
    for (int32_t stage = 1; stage <= m_stages; ++stage) {
        const int32_t row = t - stage;
        // Inside a plane each stage loses a row at both ends of the band; the plane's own borders are copied.
        const int32_t low = m_first == 0 ? 0 : m_first + stage;
        const int32_t high = m_end == m_height ? m_height : m_end - stage;
        if (row < low || row >= high) continue;
        if (stage % 2 != 0) {
            Erode(stage, row);
        } else {
            Box(stage, row);
        }
    }
}

void SmoothStream::Erode(int32_t stage, int32_t row) const {
    uint8_t *dst = StageSlot(stage, row);
    const uint8_t *src = StageRow(stage - 1, row);
    if (IsBorder(row)) {
        std::memcpy(dst, src, static_cast<size_t>(m_width));
        return;
    }
    const uint8_t *above = StageRow(stage - 1, row - 1);
    const uint8_t *below = StageRow(stage - 1, row + 1);
    m_kernels->erode(dst + 1, above + 1, src + 1, below + 1, m_width - 2);
    dst[0] = src[0];
    dst[m_width - 1] = src[m_width - 1];
}

void SmoothStream::Box(int32_t stage, int32_t row) const {
    uint8_t *dst = StageSlot(stage, row);
    const uint8_t *origin = Input(row);
    const int32_t last = m_width - 1;
    if (IsBorder(row)) {
        std::memcpy(dst, origin, static_cast<size_t>(m_width));
    } else {
        const uint8_t *src = StageRow(stage - 1, row) + 1;
        m_kernels->box(dst + 1, StageRow(stage - 1, row - 1) + 1, src, StageRow(stage - 1, row + 1) + 1, m_width - 2);
        dst[0] = origin[0];
        dst[last] = origin[last];
        // Within one image the plane to join with is the erosion's own in the first, third, ... round, and in the others it is
        // the one that the box filter has just gone into.
        if (m_kind == SmoothKind::Seam) {
            m_kernels->join(dst, origin, m_width, 0);
        } else if (stage % 4 == 2) {
            m_kernels->join(dst, StageRow(stage - 1, row), m_width, 0);
        }
    }
    if (m_kind == SmoothKind::Image && stage == 2) {
        // The second plane starts with an opaque border, and the first join reaches its whole blocks only.
        const int32_t joined = m_width / 16 * 16;
        if (IsBorder(row)) std::memset(dst + joined, 255, static_cast<size_t>(m_width - joined));
        if (joined == 0) dst[0] = 255;
        if (joined <= last) dst[last] = 255;
    }
}

void SmoothStream::Output(int32_t row, uint8_t *dst) const {
    const uint8_t *origin = Input(row);
    if (IsBorder(row)) {
        std::memcpy(dst, origin, static_cast<size_t>(m_width));
        return;
    }
    const uint8_t *middle = StageRow(m_stages, row) + 1;
    m_kernels->gauss(dst + 1, StageRow(m_stages, row - 1) + 1, middle, StageRow(m_stages, row + 1) + 1, m_width - 2);
    dst[0] = origin[0];
    dst[m_width - 1] = origin[m_width - 1];
}

}    // namespace zck
