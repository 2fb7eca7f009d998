// Which source rows make a target row of `Scale_Dyn`, and with what weights.
#pragma once

#include <cstdint>
#include <vector>

#include "zchromakey/com.h"

namespace zck {

constexpr int32_t kTapsMax = 12;

/// The taps of one target row: the first `nUsed` count, 8-bit weights that sum to 255. Without any, the row is a copy of source
/// row 0. A tap behind the used ones repeats the row before it with weight 0.
struct TapRow {
    int32_t nUsed;
    int32_t nSrcRow[kTapsMax];
    uint8_t nWeight[kTapsMax];
};

/// The tables of both field parities for one pair of heights. Rows of usual pictures are kept; those of very high ones are
/// made when they are asked for, so that a table never outgrows its picture.
class TapTables {
public:
    /// Makes the tables for `nSource` and `nTarget` rows; `nTaps` (1 to `kTapsMax`) is the most that a row may have. S_OK when
    /// they were made anew; `S_FALSE` when heights, field mode and factor are those of the tables as they are; `E_INVALIDARG`
    /// for a height below 1, and the tables stay; `E_OUTOFMEMORY`, and there are no tables until the next success.
    HRESULT Init(int64_t nSource, int64_t nTarget, int32_t nMode, int32_t nTaps, double dblFactor);

    /// Row `i` of the table of even (0) or odd (1) rows, 0 to `Rows() - 1`. Good until the next call of either function.
    const TapRow &Row(int32_t nParity, int64_t i);

    /// Rows of one table: target rows of one field (or of a progressive picture) plus one.
    int64_t Rows() const { return m_nRows; }

private:
    struct Key {
        int64_t nSource = 0;
        int64_t nTarget = 0;
        int32_t nMode = 0;
        double dblFactor = 0;
        bool operator==(const Key &) const = default;
    };
    void MakeRow(int64_t i, TapRow *even, TapRow *odd) const;
    double Weight(double distance) const;

    Key m_key;
    int64_t m_nRows = 0;
    int32_t m_nTaps = 0;
    int32_t m_nTargetStep = 1;    // target rows from row to row of one table
    int32_t m_nSourceStep = 1;
    double m_dblRatio = 1;
    double m_dblScale = 1;    // of distances
    double m_dblPeak = 0;
    double m_dblFall = 0;    // 0: a triangle
    std::vector<TapRow> m_kept[2];
    TapRow m_made[2] = {};
    int64_t m_nMade = -1;
};

}    // namespace zck
