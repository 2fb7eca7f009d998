#include "imaging/scale/resizer.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <numeric>

#include "imaging/primitives/mirror.h"
#include "imaging/scale/resize_taps.h"
#include "imaging/scale/scale_kernels.h"

namespace zck {
namespace {

// Columns that the tables hold: longer rows must not bring tables far above their own size.
constexpr int32_t kColumnsAtOnce = 32768;

// Rows whose taps are kept, likewise.
constexpr int32_t kRowsKept = 8192;

// Elements between the first output and another one of four that lie close together.
constexpr uint32_t kMostApart = 6;

bool Filters(int32_t code) { return code == kResizeBSpline || code == kResizeSoftCubic; }

int32_t Check(const ResizeShape &s) {
    for (const ROI size : {s.source, s.target})
        if (size.width < 1 || size.height < 1) return kPrimitiveBadSize;
    const bool grows = s.target.width > s.source.width || s.target.height > s.source.height;
    const bool known = ResizeCodeKnown(s.code) && (s.channels == 1 || s.channels == 4);
    return !known || (s.code == kResizeSuper && grows) ? kPrimitiveBadArgument : kPrimitiveOk;
}

bool Summed(const ResizeShape &s) {
    const auto strong = [](int64_t source, int64_t target) { return source > kMostFixedReduction * target; };
    return s.code == kResizeSuper && (strong(s.source.width, s.target.width) || strong(s.source.height, s.target.height));
}

// The most samples that a column touches, rounded up to pairs.
int32_t TapsOfColumns(const ResizeShape &s) {
    switch (s.code) {
        case kResizeNearest:
            return 0;
        case kResizeLinear:
            return 2;
        case kResizeLanczos:
            return 6;
        case kResizeSuper: {
            // Columns start and end at multiples of 1/q of a sample and are p/q samples wide.
            const int32_t common = std::gcd(s.source.width, s.target.width);
            const int64_t p = s.source.width / common;
            const int64_t q = s.target.width / common;
            return static_cast<int32_t>((p + q - 2) / q + 2) & ~1;
        }
        default:
            return 4;
    }
}

}    // namespace

int32_t Resizer::Prepare(const ResizeShape &shape) {
    if (shape == m_shape) return kPrimitiveOk;
    m_shape = {};
    const int32_t status = Check(shape);
    if (status != kPrimitiveOk) return status;
    m_bSummed = Summed(shape);
    m_bColumns = shape.source.width != shape.target.width || Filters(shape.code);
    try {
        const auto columns = static_cast<size_t>(shape.target.width) * static_cast<size_t>(shape.channels);
        m_shape = shape;
        if (m_bSummed) m_sums.resize(columns);
        if (!m_bSummed) SizeColumns();
        if (!m_bSummed) SizeRows();
    } catch (const std::bad_alloc &) {
        m_shape = {};
        return kPrimitiveNoMemory;
    }
    return kPrimitiveOk;
}

void Resizer::SizeColumns() {
    const int64_t source = m_shape.source.width;
    m_nTaps = TapsOfColumns(m_shape);
    const auto columns = static_cast<size_t>(m_bColumns ? std::min(m_shape.target.width, kColumnsAtOnce) : 0);
    m_nMade = -1;
    m_first.resize(columns);
    m_weights.resize(columns * static_cast<size_t>(m_nTaps));
    m_places.resize(m_shape.channels == 1 && m_nTaps > 0 ? columns : 0);
    m_mid.assign(static_cast<size_t>(source + m_nTaps) * static_cast<size_t>(m_shape.channels) + kColumnSlack, 0);
}

void Resizer::SizeRows() {
    const int32_t rows = m_shape.target.height;
    m_rowTaps.resize(rows <= kRowsKept ? static_cast<size_t>(rows) : 1);
    for (int32_t y = 0; m_rowTaps.size() > 1 && y < rows; ++y) MakeRowTaps(y, &m_rowTaps[static_cast<size_t>(y)]);
}

void Resizer::MakeColumns(int32_t x) {
    if (m_nMade == x) return;
    m_nMade = x;
    const int32_t count = std::min(m_shape.target.width - x, kColumnsAtOnce);
    std::fill(m_weights.begin(), m_weights.end(), static_cast<int16_t>(0));
    ResizeTaps taps = {};
    for (int32_t i = 0; i < count; ++i) {
        ResizeTapsMake(m_shape.code, m_shape.source.width, m_shape.target.width, int64_t{x} + i, &taps);
        m_first[static_cast<size_t>(i)] = taps.first;
        for (int32_t t = 0; t < (m_nTaps > 0 ? taps.count : 0); ++t)
            m_weights[2 * (static_cast<size_t>(t / 2) * m_first.size() + static_cast<size_t>(i)) + static_cast<size_t>(t % 2)] =
                taps.weight[t];
    }
    MakePlaces(m_places.empty() ? 0 : count);
}

void Resizer::MakePlaces(int32_t count) {
    m_bClose = count > 0;
    for (int32_t i = 0; i < count; ++i) {
        const auto at = static_cast<size_t>(i);
        const auto apart = static_cast<uint32_t>(m_first[at] - m_first[at & ~size_t{3}]);
        m_bClose = m_bClose && apart <= kMostApart;
        m_places[at] = apart * 0x02020202U + 0x03020100U;
    }
}

int32_t Resizer::RowsAtOnce() const {
    if (m_bSummed || m_shape.code == kResizeNearest) return 1;
    if (m_shape.code == kResizeSuper) return m_shape.source.height / m_shape.target.height + 2;
    return m_shape.code == kResizeLanczos ? 6 : 4;
}

// One row to its columns: of `row` with nearest neighbour, else of the row between the directions.
void Resizer::Columns(const uint8_t *row, uint8_t *dst) {
    const ScaleKernels &k = ScaleKernelsGet();
    const int32_t pixel = m_shape.channels;
    const auto columns = pixel == 1 ? k.columns1 : k.columns4;
    for (int32_t x = 0, count = 0; x < m_shape.target.width; x += count, dst += int64_t{pixel} * count) {
        count = std::min(m_shape.target.width - x, kColumnsAtOnce);
        MakeColumns(x);
        if (m_shape.code != kResizeNearest) {
            columns(dst, m_mid.data(),
                    {m_first.data(), m_weights.data(), m_bClose ? m_places.data() : nullptr, m_nTaps,
                     static_cast<int32_t>(m_first.size())},
                    count);
        } else if (pixel == 1) {
            for (int32_t i = 0; i < count; ++i) dst[i] = row[m_first[static_cast<size_t>(i)]];
        } else {
            for (int32_t i = 0; i < count; ++i) std::memcpy(dst + 4 * i, row + int64_t{4} * m_first[static_cast<size_t>(i)], 4);
        }
    }
}

// Areas in units of 1/target of a source sample, in both directions. The largest sum, 255 times the area of the source, is
// far below 64 bits for anything that has memory.
void Resizer::SummedRow(int32_t y, const RowsOnDemand &source, uint8_t *dst) {
    const auto [sw, sh] = m_shape.source;
    const auto [tw, th] = m_shape.target;
    const int64_t pixel = m_shape.channels;
    const auto share = [](int64_t i, int64_t from, int64_t to, int64_t target) {
        return static_cast<uint64_t>(std::min(to, (i + 1) * target) - std::max(from, i * target));
    };
    std::fill(m_sums.begin(), m_sums.end(), 0);
    const int64_t top = int64_t{y} * sh;
    for (int64_t r = top / th; r * th < top + sh; ++r) {
        const uint8_t *const row = source.row(source.owner, static_cast<int32_t>(r));
        const uint64_t high = share(r, top, top + sh, th);
        for (int64_t x = 0; x < tw; ++x) {
            const int64_t left = x * sw;
            for (int64_t i = left / tw; i * tw < left + sw; ++i) {
                const uint64_t area = high * share(i, left, left + sw, tw);
                for (int64_t c = 0; c < pixel; ++c) m_sums[static_cast<size_t>(pixel * x + c)] += area * row[pixel * i + c];
            }
        }
    }
    const uint64_t area = static_cast<uint64_t>(sw) * static_cast<uint64_t>(sh);
    for (size_t i = 0; i < m_sums.size(); ++i) dst[i] = static_cast<uint8_t>((2 * m_sums[i] + area) / (2 * area));
}

void Resizer::MakeRowTaps(int32_t y, ResizeTaps *taps) const {
    *taps = {y, 1, {1 << kWeightBits}};
    if (m_shape.source.height != m_shape.target.height || Filters(m_shape.code))
        ResizeTapsMake(m_shape.code, m_shape.source.height, m_shape.target.height, y, taps);
}

const ResizeTaps &Resizer::RowTaps(int32_t y) {
    if (m_rowTaps.size() > 1) return m_rowTaps[static_cast<size_t>(y)];
    MakeRowTaps(y, m_rowTaps.data());
    return m_rowTaps[0];
}

void Resizer::FilteredRow(int32_t y, const RowsOnDemand &source, uint8_t *dst) {
    const ResizeTaps &taps = RowTaps(y);
    const uint8_t *rows[kResizeTapsMax];
    for (int32_t t = 0; t < taps.count; ++t) rows[t] = source.row(source.owner, taps.first + t);
    const int32_t channels = m_shape.channels;
    if (taps.count == 1 && !m_bColumns) {
        std::memcpy(dst, rows[0], static_cast<size_t>(m_shape.target.width) * static_cast<size_t>(channels));
        return;
    }
    const ScaleKernels &k = ScaleKernelsGet();
    if (m_shape.code != kResizeNearest)
        k.mix_rows(m_mid.data(), rows, taps.weight, taps.count, m_shape.source.width * channels);
    if (m_bColumns)
        Columns(rows[0], dst);
    else
        k.narrow(dst, m_mid.data(), m_shape.target.width * channels);
}

void Resizer::Row(int32_t y, const RowsOnDemand &source, uint8_t *dst) {
    if (m_bSummed)
        SummedRow(y, source, dst);
    else
        FilteredRow(y, source, dst);
}

namespace {

struct SteppedRows {
    const uint8_t *first;
    int64_t step;
    static const uint8_t *Row(void *owner, int32_t y) {
        const auto *rows = static_cast<const SteppedRows *>(owner);
        return rows->first + y * rows->step;
    }
};

}    // namespace

int32_t ResizeImage(Resizer *resizer, const ResizeShape &shape, const uint8_t *src, int64_t srcStep, uint8_t *dst,
                    int64_t dstStep) {
    if (src == nullptr || dst == nullptr) return kPrimitiveNull;
    const int32_t status = resizer->Prepare(shape);
    SteppedRows rows = {src, srcStep};
    for (int32_t y = 0; status == kPrimitiveOk && y < shape.target.height; ++y)
        resizer->Row(y, {SteppedRows::Row, &rows}, dst + y * dstStep);
    return status;
}

}    // namespace zck
