#include "imaging/scale/tap_table.h"

#include <algorithm>
#include <cmath>

#include "imaging/scale/scale_options.h"
#include "platform/status.h"

namespace zck {
namespace {

// 64 bytes a row and parity: 2 MB.
constexpr int64_t kKeptRows = 16384;

struct RawRow {
    int32_t nTaps = 0;
    int64_t row[kTapsMax];
    double weight[kTapsMax];

    void Add(int64_t r, double w) {
        row[nTaps] = r;
        weight[nTaps++] = w;
    }
};

// Where a target row falls on the source, and to which side the second nearest row lies.
struct Centre {
    explicit Centre(double place) : place(place), row(std::llround(place)), side(static_cast<double>(row) > place ? 1 : -1) {}

    double place;
    int64_t row;
    int64_t side;
};

// To 8 bits, in the order of the list. The excess over 255 is taken from the tap that passes it, what is missing goes to the
// first tap.
void Normalise(const RawRow &raw, int32_t nTaps, TapRow *out) {
    *out = {};
    double total = 0;
    for (int32_t j = 0; j < raw.nTaps; ++j) total += raw.weight[j];
    const bool any = total > 0 && std::isfinite(total);
    int64_t sum = 0;
    for (int32_t j = 0; j < nTaps; ++j) {
        if (j >= raw.nTaps || !any || sum >= 255) {
            out->nSrcRow[j] = j > 0 ? out->nSrcRow[j - 1] : 0;
            continue;
        }
        const auto weight = std::min<int64_t>(std::llround(255 * raw.weight[j] / total), 255 - sum);
        sum += weight;
        out->nSrcRow[j] = static_cast<int32_t>(raw.row[j]);
        out->nWeight[j] = static_cast<uint8_t>(weight);
        out->nUsed = j + 1;
    }
    if (sum > 0 && sum < 255) out->nWeight[0] = static_cast<uint8_t>(out->nWeight[0] + 255 - sum);
}

}    // namespace

HRESULT TapTables::Init(int64_t nSource, int64_t nTarget, int32_t nMode, int32_t nTaps, double dblFactor) {
    if (nSource < 1 || nTarget < 1) return E_INVALIDARG;
    const Key key = {nSource, nTarget, nMode, dblFactor};
    if (key == m_key) return S_FALSE;
    m_key = {};
    m_nMade = -1;
    m_nTaps = std::clamp(nTaps, 1, kTapsMax);
    m_nTargetStep = nMode == kScaleBothFields ? 2 : 1;
    m_nSourceStep = nMode == kScaleProgressive ? 1 : 2;
    m_nRows = nTarget / m_nTargetStep + 1;
    m_dblRatio = static_cast<double>(nSource) / static_cast<double>(nTarget);
    m_dblScale = m_nTargetStep == 1 && m_nSourceStep == 2 ? 2.0 : 1.0;
    m_dblFall = 0;
    m_dblPeak = m_nSourceStep;
    if (dblFactor > 0) {
        double sigma = m_dblRatio > 1 ? m_dblRatio * dblFactor / 1.2 : m_dblRatio * dblFactor * 1.5;
        if (m_nTargetStep == 1 || m_nSourceStep == 1) sigma /= 2;
        m_dblPeak = 1 / (std::sqrt(6.283185307179586) * sigma);
        m_dblFall = 1 / (2 * (sigma * sigma));
    }
    return Guarded([&] {
        const bool keep = m_nRows <= kKeptRows;
        for (std::vector<TapRow> &table : m_kept) table.resize(keep ? static_cast<size_t>(m_nRows) : 0);
        m_key = key;
        for (size_t i = 0; i < m_kept[0].size(); ++i) MakeRow(static_cast<int64_t>(i), &m_kept[0][i], &m_kept[1][i]);
        return S_OK;
    });
}

const TapRow &TapTables::Row(int32_t nParity, int64_t i) {
    if (!m_kept[0].empty()) return m_kept[nParity][static_cast<size_t>(i)];
    if (m_nMade != i) MakeRow(i, &m_made[0], &m_made[1]);
    m_nMade = i;
    return m_made[nParity];
}

double TapTables::Weight(double distance) const {
    if (m_dblFall > 0) return m_dblPeak * std::exp(-distance * distance * m_dblFall);
    return std::max(0.0, m_dblPeak - std::abs(distance));
}

void TapTables::MakeRow(int64_t i, TapRow *even, TapRow *odd) const {
    const int64_t a = m_nTargetStep;
    const int64_t b = m_nSourceStep;
    const Centre first(static_cast<double>(i * a) * m_dblRatio);
    const Centre second(static_cast<double>(a * (i + 1) - 1) * m_dblRatio);
    const int64_t lastRow = m_key.nSource - 1;
    // Progressive pictures, too: the last row of an even height is never read.
    const int64_t lastEven = lastRow & ~int64_t{1};
    RawRow raw[2];
    const auto full = [&](int32_t t) { return raw[t].nTaps >= m_nTaps; };
    for (int64_t k = 0; k <= m_nTaps * b * 2 && !(full(0) && (full(1) || b == 1)); ++k) {
        const int64_t offset = k % 2 == 0 ? k / 2 : k / 2 - k;
        int64_t r = first.row + first.side * offset;
        if (r >= 0 && r <= lastEven && r % b == 0 && !full(0))
            raw[0].Add(r, Weight((static_cast<double>(r) - first.place) * m_dblScale));
        r = second.row + second.side * offset;
        if (b > 1 && r >= 1 && r <= lastRow && r % b == 1 && !full(1))
            raw[1].Add(r, Weight((static_cast<double>(r) - second.place) * m_dblScale));
    }
    Normalise(raw[0], m_nTaps, even);
    Normalise(raw[1], m_nTaps, odd);
}

}    // namespace zck
