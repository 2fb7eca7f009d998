#include "keying/pipeline/row_spill.h"

#include <cstring>

namespace zck {
namespace {

SpillShape ShapeOf(const RowFrame &frame) {
    const KeyView &view = frame.view;
    return {view.width, frame.keyedRows / frame.combs, view.blocks, frame.combs == 1 && view.stride == view.width};
}

// First line of a comb whose row is not above `row`.
int32_t LineFrom(int32_t row, int32_t comb, int32_t combs) { return row <= comb ? 0 : (row - comb + combs - 1) / combs; }

}    // namespace

bool RowSpill::Serves(const RowFrame &frame) {
    if (!frame.plan->HasSpill()) return true;
    // Without an alpha key the later stages work on the caller's plane, and a mask without size ends the call.
    if (!frame.plan->hasAlpha || frame.view.width < 2 || frame.keyedRows < frame.combs) return false;
    return SpillRows::SideBySide(frame.plan->spill, ShapeOf(frame));
}

HRESULT RowSpill::Start(const RowFrame *frame, int32_t first, int32_t end) {
    m_frame = frame;
    const SpillShape shape = ShapeOf(*frame);
    const HRESULT hr = m_convert.Prepare(frame->view.props->fccType, shape.width);
    if (FAILED(hr)) return hr;
    if (m_combs.size() < static_cast<size_t>(frame->combs)) m_combs.resize(static_cast<size_t>(frame->combs));
    for (int32_t i = 0; i < frame->combs; ++i) {
        Comb &comb = m_combs[static_cast<size_t>(i)];
        const int32_t from = std::min(LineFrom(first, i, frame->combs), shape.height);
        const int32_t to = std::min(LineFrom(end, i, frame->combs), shape.height);
        comb.rows.Start(&frame->plan->spill, shape, true, from, to);
        comb.begin = comb.rows.Begin();
        comb.end = from < to ? to + comb.rows.Lag() : comb.begin;
    }
    return S_OK;
}

void RowSpill::Step(int32_t row, const uint8_t *space) {
    m_comb = row % m_frame->combs;
    m_space = space;
    Comb &comb = m_combs[static_cast<size_t>(m_comb)];
    const int32_t line = row / m_frame->combs;
    if (line >= comb.begin && line < comb.end) comb.rows.Step(line, this);
}

const uint8_t *RowSpill::KeyRow(int32_t, int64_t *bytes) {
    *bytes = int64_t{4} * m_frame->view.width;
    return m_space;
}

uint8_t *RowSpill::Open(int32_t line, uint8_t *room) {
    m_convert.Into(m_frame->SourceRow(RowOf(line)), room);
    return room;
}

void RowSpill::Close(int32_t line, uint8_t *pixels) {
    const int32_t row = RowOf(line);
    uint8_t *dst = m_frame->PixelRow(row);
    m_convert.Back(pixels, dst);
    if (!m_frame->Viewed()) return;
    // The padding beside the picture is copied as well.
    const int64_t width = int64_t{4} * m_frame->view.width;
    const int64_t beside = m_frame->OwnBytes(row) - width;
    if (beside > 0) std::memcpy(dst + width, m_frame->SourceRow(row) + width, static_cast<size_t>(beside));
}

}    // namespace zck
