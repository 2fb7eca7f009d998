#include "keying/pipeline/streaming_path.h"

#include <atomic>
#include <cstring>

namespace zck {
namespace {

constexpr int32_t kEdgesMax = 16;    // more rounds need more rows at hand than a cache holds
constexpr int32_t kSides = 2;

std::atomic<bool> g_allowed{true};

// No stage writes or reads a byte of another row. Slices drop such bytes; one slice, or a direct call, puts them there.
bool RowsStandAlone(const RowFrame &frame) {
    const KeyView &view = frame.view;
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

void StreamingPath::Allow(bool allowed) { g_allowed = allowed; }

bool StreamingPath::Serves(const RowFrame &frame) {
    const KeyView &view = frame.view;
    if (!g_allowed) return false;
    if (!view.Is32() || view.rowBytes % 4 != 0 || view.width < 1 || view.height < 1) return false;
    if (view.bounds.alphaBytes < view.stride * view.height) return false;
    if (view.bounds.pixelBytes < view.rowBytes * (view.height - 1) + int64_t{4} * view.width) return false;
    return RowsStandAlone(frame) && SmoothingFits(frame) && RowSpill::Serves(frame);
}

int32_t StreamingPath::Start(const RowFrame &frame, int32_t bands) {
    m_frame = frame;
    m_lines = frame.view.height / frame.fields;
    m_reach = std::max(frame.view.blocks * 8, frame.view.width + 1);
    m_lag = Smooths() ? SmoothStream::LagOf(frame.plan->edges) : 0;
    m_spillReach = RowSpill::ReachOf(frame);
    m_bands = std::min(bands, frame.view.height);
    // A band has whole lines of both fields where the fields are smoothed.
    const int32_t step = Smooths() ? frame.fields : 1;
    const int32_t edge = std::max(m_lag, (m_spillReach + step - 1) / step);
    m_edgeRows = edge * step;
    if (edge == 0) return m_bands;
    m_bands = std::clamp(frame.view.height / step / (2 * edge), 1, bands);
    if (m_bands == 1) return m_bands;
    if (Smooths()) m_edges.Reserve(int64_t{m_bands} * kSides * frame.fields * m_lag, m_reach);
    if (m_spillReach > 0 && !frame.Viewed()) {
        m_rawEdges.Reserve(int64_t{m_bands} * kSides * m_spillReach, int64_t{4} * frame.view.width);
    }
    return m_bands;
}

StreamingPath::Band StreamingPath::BandOf(int32_t band) const {
    const int32_t step = Smooths() ? m_frame.fields : 1;
    const int64_t lines = m_frame.view.height / step;
    const auto row = [&](int32_t i) { return static_cast<int32_t>(lines * i / m_bands) * step; };
    // The odd last row of a frame in fields belongs to neither, and to the last band.
    return {row(band), band == m_bands - 1 ? m_frame.view.height : row(band + 1)};
}

// The row is fetched before the bands are walked.
bool StreamingPath::IsEdge(int32_t band, int32_t row) const {
    const Band own = BandOf(band);
    return (band > 0 && row < own.first + m_edgeRows) || (band < m_bands - 1 && row >= own.end - m_edgeRows);
}

uint8_t *StreamingPath::EdgeRow(int32_t band, int32_t side, int32_t field, int32_t line) const {
    return m_edges.Row((int64_t{band * kSides + side} * m_frame.fields + field) * m_lag + line);
}

uint8_t *StreamingPath::RawEdgeRow(int32_t band, int32_t side, int32_t row) const {
    return m_rawEdges.Row(int64_t{band * kSides + side} * m_spillReach + row);
}

// Pixels as they came, also those of rows that a neighbour has changed already.
const uint8_t *StreamingPath::RawRow(int32_t band, int32_t row) const {
    const Band own = BandOf(band);
    if (m_frame.Viewed() || own.Has(row)) return m_frame.SourceRow(row);
    if (row < own.first) return RawEdgeRow(band - 1, 1, row - (own.first - m_spillReach));
    return RawEdgeRow(band + 1, 0, row - own.end);
}

HRESULT StreamingPath::Fetch(int32_t row) const {
    const RowSource *source = m_frame.source;
    return source != nullptr && source->view == nullptr ? source->fetch(source->context, row, m_frame.PixelRow(row)) : S_OK;
}

// `alpha` has `m_reach` bytes of room.
void StreamingPath::KeyRow(const Worker &worker, int32_t row, uint8_t *alpha) const {
    if (!m_frame.plan->hasAlpha) {
        std::memset(alpha, 255, static_cast<size_t>(m_frame.view.width));
        return;
    }
    // Reads only the row's own bytes; alpha beyond them would be discarded.
    worker.keyer.Key(m_frame.SourceRow(row), m_frame.OwnBytes(row), alpha);
}

// Alpha from the plane into the pixels.
void StreamingPath::IntoPixels(int32_t row) const {
    const KeyingKernels &k = KeyingKernelsGet();
    uint8_t *pixels = m_frame.PixelRow(row);
    const uint8_t *source = m_spillReach > 0 && Keyed(row) ? pixels : m_frame.SourceRow(row);
    const uint8_t *alpha = m_frame.AlphaRowOf(row);
    const int32_t w = m_frame.view.width;
    const bool measured = Smoothed(row) || (Keyed(row) && m_frame.plan->hasAlpha);
    const bool merge = InSeam(row) || (m_frame.merge && measured);
    const bool oneStep = merge && m_frame.premultiply;
    if (source != pixels) {
        // One step writes the row itself, and what stands beside it is copied; otherwise all is.
        const int64_t done = oneStep ? int64_t{4} * w : 0;
        const int64_t bytes = m_frame.OwnBytes(row);
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

HRESULT StreamingPath::PlainRow(const Worker &worker, int32_t band, int32_t row) const {
    const HRESULT hr = IsEdge(band, row) ? S_OK : Fetch(row);
    if (FAILED(hr)) return hr;
    const KeyView &view = m_frame.view;
    const KeyPlan &plan = *m_frame.plan;
    uint8_t *alpha = m_frame.AlphaRowOf(row);
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
    return S_OK;
}

// A row as the smoothing takes it: with slices the row of the plane as they leave it, otherwise a row of scratch.
void StreamingPath::MakeInput(const Worker &worker, int32_t row, uint8_t *dst) const {
    const KeyView &view = m_frame.view;
    const auto measured = static_cast<size_t>(Keyed(row) ? 8 * view.blocks : 0);
    const auto reach = static_cast<size_t>(m_reach);
    if (!m_frame.seam) {
        std::memset(dst + measured, 0, reach - measured);
    } else {
        const auto held = static_cast<size_t>(std::min<int64_t>(m_reach, view.stride));
        if (held > measured) std::memcpy(dst + measured, m_frame.AlphaRowOf(row) + measured, held - measured);
    }
    if (!Keyed(row)) return;
    KeyRow(worker, row, dst);
    const bool invert = m_frame.seam && m_frame.plan->hasAlpha && m_frame.plan->invert;
    if (invert) KeyingKernelsGet().invert(dst, view.width, view.width < view.stride);
}

void StreamingPath::FinishSmooth(const SmoothStream &stream, int32_t line, int32_t row) const {
    const KeyView &view = m_frame.view;
    uint8_t *alpha = m_frame.AlphaRowOf(row);
    stream.Output(line, alpha);
    // Slices measure right in the plane, and their rounded width stays beside the smoothed one.
    const int64_t reach = std::min<int64_t>(m_reach, view.stride);
    if (m_frame.seam && m_frame.plan->hasAlpha && Keyed(row) && reach > view.width) {
        std::memcpy(alpha + view.width, stream.Input(line) + view.width, static_cast<size_t>(reach - view.width));
    }
    if (m_frame.plan->invert) KeyingKernelsGet().invert(alpha, view.width, view.width < view.stride);
}

// A fetched row, `row` counted from the edge's first one, as the neighbour will ask for it.
void StreamingPath::MakeEdge(const Worker &worker, int32_t band, int32_t side, int32_t row) const {
    const Band own = BandOf(band);
    const int32_t at = (side == 0 ? own.first : own.end - m_edgeRows) + row;
    const int32_t line = row / m_frame.fields - (side == 0 ? 0 : m_edgeRows / m_frame.fields - m_lag);
    if (Smooths() && line >= 0 && line < m_lag) MakeInput(worker, at, EdgeRow(band, side, row % m_frame.fields, line));
    const int32_t raw = side == 0 ? row : row - (m_edgeRows - m_spillReach);
    if (m_frame.Viewed() || raw < 0 || raw >= m_spillReach) return;
    std::memcpy(RawEdgeRow(band, side, raw), m_frame.PixelRow(at), 4 * static_cast<size_t>(m_frame.view.width));
}

HRESULT StreamingPath::MakeEdges(int32_t band) {
    Worker &worker = m_workers[static_cast<size_t>(band)];
    const Band own = BandOf(band);
    worker.keyer.Start(m_frame.view, m_frame.plan);
    if (int64_t{m_frame.view.blocks} * 8 > m_frame.view.stride) worker.wide.Reserve(1, m_reach);
    if (m_spillReach > 0) {
        const HRESULT hr = worker.spill.Start(&m_frame, own.first, own.end);
        if (FAILED(hr)) return hr;
    }
    if (m_bands == 1) return S_OK;
    for (int32_t side = 0; side < kSides; ++side) {
        if (side == 0 ? band == 0 : band == m_bands - 1) continue;
        for (int32_t i = 0; i < m_edgeRows; ++i) {
            const HRESULT hr = Fetch((side == 0 ? own.first : own.end - m_edgeRows) + i);
            if (FAILED(hr)) return hr;
            MakeEdge(worker, band, side, i);
        }
    }
    return S_OK;
}

// `measured` tells whether the row was measured just now.
HRESULT StreamingPath::TakeInput(const Worker &worker, int32_t band, int32_t row, uint8_t *dst, bool *measured) const {
    const Band own = BandOf(band);
    const int32_t lagRows = m_lag * m_frame.fields;
    const int32_t field = row % m_frame.fields;
    const auto lines = [&](int32_t from) { return (row - field - from) / m_frame.fields; };
    const uint8_t *edge = nullptr;
    if (row < own.first) {
        edge = EdgeRow(band - 1, 1, field, lines(own.first - lagRows));
    } else if (row >= own.end) {
        edge = EdgeRow(band + 1, 0, field, lines(own.end));
    } else if (band > 0 && row < own.first + lagRows) {
        edge = EdgeRow(band, 0, field, lines(own.first));
    } else if (band < m_bands - 1 && row >= own.end - lagRows) {
        edge = EdgeRow(band, 1, field, lines(own.end - lagRows));
    }
    if (edge != nullptr) {
        std::memcpy(dst, edge, static_cast<size_t>(m_reach));
        return S_OK;
    }
    const HRESULT hr = IsEdge(band, row) ? S_OK : Fetch(row);
    if (FAILED(hr)) return hr;
    MakeInput(worker, row, dst);
    *measured = Keyed(row);
    return S_OK;
}

HRESULT StreamingPath::SmoothStep(const Worker &worker, int32_t band, int32_t row, bool *measured) const {
    const Band own = BandOf(band);
    const int32_t field = row % m_frame.fields;
    const int32_t t = row / m_frame.fields;
    const int32_t first = own.first / m_frame.fields;
    const int32_t end = std::min(own.end / m_frame.fields, m_lines);
    if (t < first - m_lag || t >= end + m_lag) return S_OK;
    const SmoothStream &stream = worker.streams[field];
    if (t < std::min(end + m_lag, m_lines)) {
        const HRESULT hr = TakeInput(worker, band, row, stream.Input(t), measured);
        if (FAILED(hr)) return hr;
    }
    stream.Step(t);
    const int32_t line = t - m_lag;
    if (line >= first) FinishSmooth(stream, line, line * m_frame.fields + field);
    return S_OK;
}

void StreamingPath::SpillStep(Worker &worker, int32_t band, int32_t row, bool measured) const {
    const Band own = BandOf(band);
    if (row < own.first - m_spillReach || row >= own.end + m_spillReach) return;
    const uint8_t *space = nullptr;
    if (worker.spill.Wants(row)) {
        const uint8_t *raw = RawRow(band, row);
        space = measured ? worker.keyer.KeyedSpace(raw) : worker.keyer.Space(raw);
    }
    worker.spill.Step(row, space);
}

// Row by row: each row that goes in lets the smoothing finish the alpha of one above it and the spill the colour of another;
// a row for which both are done takes its alpha.
HRESULT StreamingPath::Walk(int32_t band) {
    Worker &worker = m_workers[static_cast<size_t>(band)];
    const Band own = BandOf(band);
    const int32_t lag = std::max(m_lag * m_frame.fields, m_spillReach);
    if (Smooths()) {
        const SmoothKind kind = m_frame.seam ? SmoothKind::Seam : SmoothKind::Image;
        const int32_t first = std::max(own.first / m_frame.fields - m_lag, 0);
        const int32_t end = std::min(own.end / m_frame.fields + m_lag, m_lines);
        for (int32_t f = 0; f < m_frame.fields; ++f) {
            worker.streams[f].Start(kind, m_frame.view.width, m_lines, m_reach, m_frame.plan->edges, first, end);
        }
    }
    for (int32_t row = std::max(own.first - lag, 0); row < own.end + lag; ++row) {
        bool measured = false;
        HRESULT hr = Smooths() ? SmoothStep(worker, band, row, &measured) : S_OK;
        if (SUCCEEDED(hr) && own.Has(row) && !Smoothed(row)) {
            hr = PlainRow(worker, band, row);
            measured = Keyed(row);
        }
        if (FAILED(hr)) return hr;
        if (m_spillReach > 0) SpillStep(worker, band, row, measured);
        if (own.Has(row - lag)) IntoPixels(row - lag);
    }
    return S_OK;
}

}    // namespace zck
