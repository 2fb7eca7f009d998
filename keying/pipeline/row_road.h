// The pipeline row by row: each row is fetched, measured, smoothed with its neighbours, merged and multiplied while it is in
// the cache, so that the frame is walked once. Gives the same bytes as whole planes and serves the common shapes.
#pragma once

#include <array>

#include "keying/pipeline/image_view.h"
#include "keying/pipeline/plan.h"
#include "keying/pipeline/row_keyer.h"
#include "keying/pipeline/row_source.h"
#include "keying/pipeline/smooth_stream.h"

namespace zck {

/// One frame to be walked. The rows are those of the whole frame, whatever slices they are told to belong to.
struct RowFrame {
    ImageView view;    ///< `blocks` as the slices measure them
    const KeyPlan *plan;
    const RowSource *source;    ///< or null
    int32_t fields;             ///< 2: the fields are smoothed apart
    int32_t keyedRows;          ///< rows from the top that are keyed; the others keep the alpha of the plane
    bool seam;                  ///< several slices: the plane is smoothed and inverted once more after they are done
    bool merge;                 ///< keyed rows get their alpha into the pixels, also without a seam
    bool premultiply;
};

class RowRoad {
public:
    static constexpr int32_t kBandsMax = 16;

    /// The frame has a shape for this road: 32-bit pixels in whole steps, no spill to move, no byte of a row that lands in
    /// another row, not more rounds of smoothing than pay.
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
    /// What one band's thread works with.
    struct Worker {
        RowKeyer keyer;
        SmoothStream streams[2];
        RowMemory wide;
    };
    struct Band {
        int32_t first;    // lines of a field, or rows where nothing is smoothed
        int32_t end;
    };

    Band BandOf(int32_t band) const;
    bool Smooths() const { return m_frame.plan->edges > 0 && (m_frame.seam || m_frame.plan->hasAlpha); }
    bool InSeam(int32_t row) const { return m_frame.seam && row < m_lines * m_frame.fields; }
    bool Keyed(int32_t row) const { return row < m_frame.keyedRows; }
    uint8_t *PixelRow(int32_t row) const { return m_frame.view.pixels + row * m_frame.view.rowBytes; }
    uint8_t *AlphaRowOf(int32_t row) const { return m_frame.view.alpha + row * m_frame.view.stride; }
    uint8_t *EdgeRow(int32_t band, int32_t side, int32_t field, int32_t line) const;

    HRESULT Fetch(int32_t row) const;
    const uint8_t *SourceRow(int32_t row) const;
    void KeyRow(const Worker &worker, int32_t row, uint8_t *alpha) const;
    HRESULT PlainRow(const Worker &worker, int32_t row) const;
    HRESULT MakeInput(const Worker &worker, int32_t row, uint8_t *dst) const;
    HRESULT TakeInput(const Worker &worker, int32_t band, int32_t field, int32_t line, uint8_t *dst) const;
    HRESULT SmoothBand(Worker &worker, int32_t band) const;
    void FinishSmooth(const SmoothStream &stream, int32_t line, int32_t row) const;
    void IntoPixels(int32_t row, const uint8_t *alpha, bool merge) const;

    RowFrame m_frame = {};
    int32_t m_bands = 0;
    int32_t m_lines = 0;    // of a field, or rows of a progressive frame
    int32_t m_lag = 0;
    int32_t m_reach = 0;
    RowMemory m_edges;
    std::array<Worker, kBandsMax> m_workers;
};

}    // namespace zck
