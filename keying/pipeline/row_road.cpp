#include "keying/pipeline/row_road.h"

#include <atomic>

namespace zck {
namespace {

constexpr int32_t kEdgesMax = 16;    // more rounds need more rows at hand than a cache holds
constexpr int32_t kSides = 2;

std::atomic<bool> g_allowed{true};

// No stage writes or reads a byte of another row. Slices drop such bytes; one slice, or a direct call, puts them there.
bool RowsStandAlone(const RowFrame &frame) {
    const ImageView &view = frame.view;
    if (frame.seam) return true;
    const bool slips = view.width % 16 != 0;
    if (int64_t{view.blocks} * 8 > view.stride) return false;
    if (frame.plan->invert && slips && view.width == view.stride) return false;
    return !(frame.plan->hasReverse && slips && view.width == view.stride * frame.fields);
}

bool SmoothingFits(const RowFrame &frame) {
    const int32_t edges = frame.plan->edges;
    if (edges == 0 || (edges < 0 && frame.seam)) return true;
    // A negative count gathers in scratch and never comes back; nothing to walk for.
    if (edges < 0) return !frame.plan->hasAlpha;
    return edges <= kEdgesMax && frame.view.width >= 3 && frame.view.height / frame.fields >= 3;
}

}    // namespace

void RowRoad::Allow(bool allowed) { g_allowed = allowed; }

bool RowRoad::Serves(const RowFrame &frame) {
    const ImageView &view = frame.view;
    if (!g_allowed) return false;
    if (!view.Is32() || view.rowBytes % 4 != 0 || view.width < 1 || view.height < 1 || frame.plan->HasSpill()) return false;
    if (view.bounds.alphaBytes < view.stride * view.height) return false;
    if (view.bounds.pixelBytes < view.rowBytes * (view.height - 1) + int64_t{4} * view.width) return false;
    return RowsStandAlone(frame) && SmoothingFits(frame);
}

int32_t RowRoad::Start(const RowFrame &frame, int32_t bands) {
    m_frame = frame;
    m_lines = frame.view.height / frame.fields;
    m_reach = std::max(frame.view.blocks * 8, frame.view.width + 1);
    m_lag = 0;
    m_bands = std::min(bands, frame.view.height);
    if (Smooths()) {
        m_lag = SmoothStream::LagOf(frame.plan->edges);
        m_bands = std::clamp(m_lines / (2 * m_lag), 1, bands);
        if (m_bands > 1) m_edges.Reserve(int64_t{m_bands} * kSides * frame.fields * m_lag, m_reach);
    }
    return m_bands;
}

RowRoad::Band RowRoad::BandOf(int32_t band) const {
    const int64_t lines = Smooths() ? m_lines : m_frame.view.height;
    return {static_cast<int32_t>(lines * band / m_bands), static_cast<int32_t>(lines * (band + 1) / m_bands)};
}

uint8_t *RowRoad::EdgeRow(int32_t band, int32_t side, int32_t field, int32_t line) const {
    return m_edges.Row((int64_t{band * kSides + side} * m_frame.fields + field) * m_lag + line);
}

// Where a row's pixels are read from: the source itself, if it has them ready.
const uint8_t *RowRoad::SourceRow(int32_t row) const {
    const RowSource *source = m_frame.source;
    return source != nullptr && source->view != nullptr ? source->view(source->context, row) : PixelRow(row);
}

HRESULT RowRoad::Fetch(int32_t row) const {
    const RowSource *source = m_frame.source;
    return source != nullptr && source->view == nullptr ? source->fetch(source->context, row, PixelRow(row)) : S_OK;
}

// `alpha` has `m_reach` bytes of room.
void RowRoad::KeyRow(const Worker &worker, int32_t row, uint8_t *alpha) const {
    const ImageView &view = m_frame.view;
    if (!m_frame.plan->hasAlpha) {
        std::memset(alpha, 255, static_cast<size_t>(view.width));
        return;
    }
    // Of a row no more is read than is its own: what stands beyond belongs to others, and its alpha is dropped.
    const int64_t bytes = std::min(view.rowBytes, view.bounds.pixelBytes - row * view.rowBytes);
    worker.keyer.Key(SourceRow(row), bytes, alpha);
}

void RowRoad::IntoPixels(int32_t row, const uint8_t *alpha, bool merge) const {
    const KeyingKernels &k = KeyingKernelsGet();
    uint8_t *pixels = PixelRow(row);
    const uint8_t *source = SourceRow(row);
    const ImageView &view = m_frame.view;
    const int32_t w = view.width;
    const bool oneStep = merge && m_frame.premultiply;
    if (source != pixels) {
        // One step writes the row itself, and what stands beside it is copied; otherwise all is.
        const int64_t done = oneStep ? int64_t{4} * w : 0;
        const int64_t bytes = std::min(view.rowBytes, view.bounds.pixelBytes - row * view.rowBytes);
        if (bytes > done) std::memcpy(pixels + done, source + done, static_cast<size_t>(bytes - done));
    }
    if (oneStep) {
        k.merge_premultiply(pixels, source, alpha, w);
    } else if (merge) {
        k.merge(pixels, pixels, alpha, w);
    } else if (m_frame.premultiply) {
        k.premultiply(pixels, w);
    }
}

HRESULT RowRoad::PlainRow(const Worker &worker, int32_t row) const {
    const HRESULT hr = Fetch(row);
    if (FAILED(hr)) return hr;
    const ImageView &view = m_frame.view;
    const KeyPlan &plan = *m_frame.plan;
    uint8_t *alpha = AlphaRowOf(row);
    if (Keyed(row)) {
        if (int64_t{view.blocks} * 8 <= view.stride) {
            KeyRow(worker, row, alpha);
        } else {
            // The rounded width is more than the row has: the rest is dropped.
            uint8_t *wide = worker.wide.Row(0);
            std::memcpy(wide, alpha, static_cast<size_t>(view.stride));
            KeyRow(worker, row, wide);
            std::memcpy(alpha, wide, static_cast<size_t>(view.stride));
        }
    }
    // A slice inverts its rows, and the pass after the slices inverts them again.
    const bool keyed = Keyed(row) && plan.hasAlpha;
    if (plan.invert && keyed != InSeam(row)) KeyingKernelsGet().invert(alpha, view.width, view.width < view.stride);
    IntoPixels(row, alpha, (keyed && m_frame.merge) || InSeam(row));
    return S_OK;
}

// A row as the smoothing takes it: with slices the row of the plane as they leave it, otherwise a row of scratch.
HRESULT RowRoad::MakeInput(const Worker &worker, int32_t row, uint8_t *dst) const {
    const HRESULT hr = Fetch(row);
    if (FAILED(hr)) return hr;
    const ImageView &view = m_frame.view;
    const auto measured = static_cast<size_t>(Keyed(row) ? 8 * view.blocks : 0);
    const auto reach = static_cast<size_t>(m_reach);
    if (!m_frame.seam) {
        std::memset(dst + measured, 0, reach - measured);
    } else {
        const auto held = static_cast<size_t>(std::min<int64_t>(m_reach, view.stride));
        if (held > measured) std::memcpy(dst + measured, AlphaRowOf(row) + measured, held - measured);
    }
    if (!Keyed(row)) return S_OK;
    KeyRow(worker, row, dst);
    const bool invert = m_frame.seam && m_frame.plan->hasAlpha && m_frame.plan->invert;
    if (invert) KeyingKernelsGet().invert(dst, view.width, view.width < view.stride);
    return S_OK;
}

void RowRoad::FinishSmooth(const SmoothStream &stream, int32_t line, int32_t row) const {
    const ImageView &view = m_frame.view;
    uint8_t *alpha = AlphaRowOf(row);
    stream.Output(line, alpha);
    // Slices measure right in the plane, and their rounded width stays beside the smoothed one.
    const int64_t reach = std::min<int64_t>(m_reach, view.stride);
    if (m_frame.seam && m_frame.plan->hasAlpha && Keyed(row) && reach > view.width) {
        std::memcpy(alpha + view.width, stream.Input(line) + view.width, static_cast<size_t>(reach - view.width));
    }
    if (m_frame.plan->invert) KeyingKernelsGet().invert(alpha, view.width, view.width < view.stride);
    IntoPixels(row, alpha, m_frame.seam || m_frame.merge);
}

HRESULT RowRoad::MakeEdges(int32_t band) {
    Worker &worker = m_workers[static_cast<size_t>(band)];
    worker.keyer.Start(m_frame.view, m_frame.plan);
    if (int64_t{m_frame.view.blocks} * 8 > m_frame.view.stride) worker.wide.Reserve(1, m_reach);
    if (!Smooths() || m_bands == 1) return S_OK;
    const Band own = BandOf(band);
    for (int32_t side = 0; side < kSides; ++side) {
        if (side == 0 ? band == 0 : band == m_bands - 1) continue;
        const int32_t first = side == 0 ? own.first : own.end - m_lag;
        for (int32_t i = 0; i < m_lag * m_frame.fields; ++i) {
            const int32_t field = i % m_frame.fields;
            const int32_t line = i / m_frame.fields;
            const int32_t row = (first + line) * m_frame.fields + field;
            const HRESULT hr = MakeInput(worker, row, EdgeRow(band, side, field, line));
            if (FAILED(hr)) return hr;
        }
    }
    return S_OK;
}

HRESULT RowRoad::TakeInput(const Worker &worker, int32_t band, int32_t field, int32_t line, uint8_t *dst) const {
    const Band own = BandOf(band);
    const uint8_t *edge = nullptr;
    if (line < own.first) {
        edge = EdgeRow(band - 1, 1, field, line - (own.first - m_lag));
    } else if (line >= own.end) {
        edge = EdgeRow(band + 1, 0, field, line - own.end);
    } else if (band > 0 && line < own.first + m_lag) {
        edge = EdgeRow(band, 0, field, line - own.first);
    } else if (band < m_bands - 1 && line >= own.end - m_lag) {
        edge = EdgeRow(band, 1, field, line - (own.end - m_lag));
    }
    if (edge == nullptr) return MakeInput(worker, line * m_frame.fields + field, dst);
    std::memcpy(dst, edge, static_cast<size_t>(m_reach));
    return S_OK;
}

HRESULT RowRoad::SmoothBand(Worker &worker, int32_t band) const {
    const Band own = BandOf(band);
    const int32_t first = std::max(own.first - m_lag, 0);
    const int32_t end = std::min(own.end + m_lag, m_lines);
    const SmoothKind kind = m_frame.seam ? SmoothKind::Seam : SmoothKind::Image;
    for (int32_t f = 0; f < m_frame.fields; ++f) {
        worker.streams[f].Start(kind, m_frame.view.width, m_lines, m_reach, m_frame.plan->edges, first, end);
    }
    for (int32_t t = first; t < own.end + m_lag; ++t) {
        for (int32_t f = 0; f < m_frame.fields; ++f) {
            const SmoothStream &stream = worker.streams[f];
            if (t < end) {
                const HRESULT hr = TakeInput(worker, band, f, t, stream.Input(t));
                if (FAILED(hr)) return hr;
            }
            stream.Step(t);
            const int32_t line = t - m_lag;
            if (line >= own.first) FinishSmooth(stream, line, line * m_frame.fields + f);
        }
    }
    return S_OK;
}

HRESULT RowRoad::Walk(int32_t band) {
    Worker &worker = m_workers[static_cast<size_t>(band)];
    Band rows = BandOf(band);
    if (Smooths()) {
        const HRESULT hr = SmoothBand(worker, band);
        if (FAILED(hr) || band != m_bands - 1) return hr;
        // The odd last row of a frame in fields belongs to neither.
        rows = {m_lines * m_frame.fields, m_frame.view.height};
    }
    for (int32_t row = rows.first; row < rows.end; ++row) {
        const HRESULT hr = PlainRow(worker, row);
        if (FAILED(hr)) return hr;
    }
    return S_OK;
}

}    // namespace zck
