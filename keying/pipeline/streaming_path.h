// The pipeline row by row: each row is fetched, measured, smoothed with its neighbours, merged and multiplied while it is in
// the cache, so that the frame is walked once. Gives the same bytes as whole planes and serves the common shapes.
#pragma once

#include <array>

#include "keying/pipeline/row_frame.h"
#include "keying/pipeline/row_keyer.h"
#include "keying/pipeline/row_spill.h"
#include "keying/pipeline/smooth_stream.h"

namespace zck {

class StreamingPath {
public:
    static constexpr int32_t kBandsMax = 16;

    /// The frame has a shape for this path: 32-bit pixels in whole steps, no byte of a row that lands in another row, not
    /// more rounds of smoothing than pay.
    static bool Serves(const RowFrame &frame);

    /// For tests and benchmarks: with false no frame is served from now on.
    static void Allow(bool allowed);

    /// Takes a frame and cuts it into at most `bands` bands. Returns the count, which may be less. What the frame points at
    /// must stay until the bands are walked.
    int32_t Start(const RowFrame &frame, int32_t bands);

    /// First half of a band: the rows that its neighbours need as well. All bands must have ended it before any band goes on.
    HRESULT MakeEdges(int32_t band);

    /// Second half of a band: all of it.
    HRESULT Walk(int32_t band);

private:
    /// The scratch of one band's thread.
    struct Worker {
        RowKeyer keyer;
        SmoothStream streams[2];
        RowSpill spill;
        RowMemory wide;
    };
    struct Band {
        int32_t first;
        int32_t end;
        bool Has(int32_t row) const { return row >= first && row < end; }
    };

    Band BandOf(int32_t band) const;
    bool Smooths() const { return m_frame.plan->edges > 0 && (m_frame.seam || m_frame.plan->hasAlpha); }
    bool InFields(int32_t row) const { return row < m_lines * m_frame.fields; }
    bool Smoothed(int32_t row) const { return Smooths() && InFields(row); }
    bool InSeam(int32_t row) const { return m_frame.seam && InFields(row); }
    bool Keyed(int32_t row) const { return row < m_frame.keyedRows; }
    bool IsEdge(int32_t band, int32_t row) const;
    uint8_t *EdgeRow(int32_t band, int32_t side, int32_t field, int32_t line) const;
    uint8_t *RawEdgeRow(int32_t band, int32_t side, int32_t row) const;
    const uint8_t *RawRow(int32_t band, int32_t row) const;

    HRESULT Fetch(int32_t row) const;
    void KeyRow(const Worker &worker, int32_t row, uint8_t *alpha) const;
    void MakeEdge(const Worker &worker, int32_t band, int32_t side, int32_t row) const;
    void MakeInput(const Worker &worker, int32_t row, uint8_t *dst) const;
    HRESULT TakeInput(const Worker &worker, int32_t band, int32_t row, uint8_t *dst, bool *measured) const;
    HRESULT SmoothStep(const Worker &worker, int32_t band, int32_t row, bool *measured) const;
    void FinishSmooth(const SmoothStream &stream, int32_t line, int32_t row) const;
    HRESULT PlainRow(const Worker &worker, int32_t band, int32_t row) const;
    void SpillStep(Worker &worker, int32_t band, int32_t row, bool measured) const;
    void IntoPixels(int32_t row) const;

    RowFrame m_frame = {};
    int32_t m_bands = 0;
    int32_t m_lines = 0;    // of a field, or rows of a progressive frame
    int32_t m_lag = 0;      // lines of a field
    int32_t m_reach = 0;
    int32_t m_spillReach = 0;    // rows
    int32_t m_edgeRows = 0;      // that a band makes for a neighbour
    RowMemory m_edges;
    RowMemory m_rawEdges;
    std::array<Worker, kBandsMax> m_workers;
};

}    // namespace zck
