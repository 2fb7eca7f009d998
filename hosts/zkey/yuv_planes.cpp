#include "hosts/zkey/yuv_planes.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace zkey {
namespace {

/// One row taken apart into arrays of equal length, so that the arithmetic below runs on whole vectors.
struct RowScratch {
    std::vector<int16_t> mixed[2];     ///< chroma after vertical interpolation, times 4, one sample of room on both sides
    std::vector<int16_t> chroma[2];    ///< chroma of each pixel, times 16, less the middle
    std::vector<uint8_t> luma;
    std::vector<uint32_t> pixels;

    RowScratch(int width, int samples) : luma(Size(width)), pixels(Size(width)) {
        for (int c = 0; c < 2; ++c) {
            mixed[c].resize(Size(samples + 2));
            chroma[c].resize(Size(width + 1));
        }
    }
    static std::size_t Size(int n) { return static_cast<std::size_t>(n); }
};

/// The two chroma rows that lie nearest to a picture row; the first counts three times.
struct ChromaRows {
    int first;
    int second;
};

ChromaRows RowsFor(const YuvPlanes &p, int y, int rows) {
    if (p.shiftY == 0) return {y, y};
    if (!p.interlaced) {
        const int first = y >> 1;
        return {first, std::clamp(first + ((y & 1) != 0 ? 1 : -1), 0, rows - 1)};
    }
    // Rows of one field: its own row number, and chroma rows of the same parity.
    const int field = y & 1;
    const int inField = y >> 1;
    const int first = std::min((inField >> 1) * 2 + field, rows - 1);
    const int second = first + ((inField & 1) != 0 ? 2 : -2);
    return {first, second < 0 || second >= rows ? first : second};
}

void MixRows(const uint8_t *first, const uint8_t *second, int step, int samples, int16_t *out) {
    for (int i = 0; i < samples; ++i) {
        out[i + 1] = static_cast<int16_t>(3 * first[std::ptrdiff_t{i} * step] + second[std::ptrdiff_t{i} * step] - 4 * 128);
    }
    out[0] = out[1];
    out[samples + 1] = out[samples];
}

void SpreadRow(const YuvPlanes &p, const int16_t *mixed, int width, int16_t *out) {
    const int16_t *at = mixed + 1;
    if (p.shiftX == 0) {
        for (int x = 0; x < width; ++x) out[x] = static_cast<int16_t>(at[x] * 4);
    } else if (p.leftSited) {
        for (int i = 0; i < (width + 1) / 2; ++i) {
            out[2 * i] = static_cast<int16_t>(at[i] * 4);
            out[2 * i + 1] = static_cast<int16_t>((at[i] + at[i + 1]) * 2);
        }
    } else {
        for (int i = 0; i < (width + 1) / 2; ++i) {
            out[2 * i] = static_cast<int16_t>(3 * at[i] + at[i - 1]);
            out[2 * i + 1] = static_cast<int16_t>(3 * at[i] + at[i + 1]);
        }
    }
}

struct Weights {
    float y, offset, rv, gu, gv, bu;
};

Weights WeightsFor(const YuvMeaning &m) {
    const double kg = 1 - m.kr - m.kb;
    const double luma = m.fullRange ? 1.0 : 255.0 / 219;
    const double chroma = (m.fullRange ? 1.0 : 255.0 / 224) / 16;    // the samples come times 16
    return {static_cast<float>(luma),
            static_cast<float>(m.fullRange ? 0.0 : -16 * luma),
            static_cast<float>(2 * (1 - m.kr) * chroma),
            static_cast<float>(-2 * (1 - m.kb) * m.kb / kg * chroma),
            static_cast<float>(-2 * (1 - m.kr) * m.kr / kg * chroma),
            static_cast<float>(2 * (1 - m.kb) * chroma)};
}

uint32_t ToByte(float v) { return static_cast<uint32_t>(static_cast<int32_t>(std::min(std::max(v + 0.5F, 0.0F), 255.0F))); }

void MatrixRow(const uint8_t *luma, const int16_t *cb, const int16_t *cr, const Weights &w, int width, uint32_t *out) {
    for (int x = 0; x < width; ++x) {
        const float y = static_cast<float>(luma[x]) * w.y + w.offset;
        const auto u = static_cast<float>(cb[x]);
        const auto v = static_cast<float>(cr[x]);
        out[x] = 0xFF000000U | (ToByte(y + w.rv * v) << 16) | (ToByte(y + w.gu * u + w.gv * v) << 8) | ToByte(y + w.bu * u);
    }
}

}    // namespace

YuvMeaning MeaningBySize(int width, int height) { return width >= 1280 || height > 576 ? kBt709 : kBt601; }

void PlanesToRgb32(const YuvPlanes &p, const YuvMeaning &meaning, int width, int height, uint8_t *dst, std::ptrdiff_t step) {
    const int samples = (width + (1 << p.shiftX) - 1) >> p.shiftX;
    const int rows = (height + (1 << p.shiftY) - 1) >> p.shiftY;
    const Weights weights = WeightsFor(meaning);
    RowScratch s(width, samples);
    for (int y = 0; y < height; ++y) {
        const ChromaRows from = RowsFor(p, y, rows);
        const uint8_t *plane[2] = {p.cb, p.cr};
        for (int c = 0; c < 2; ++c) {
            MixRows(plane[c] + from.first * p.chromaRow, plane[c] + from.second * p.chromaRow, p.chromaStep, samples,
                    s.mixed[c].data());
            SpreadRow(p, s.mixed[c].data(), width, s.chroma[c].data());
        }
        const uint8_t *luma = p.y + y * p.lumaRow;
        if (p.lumaStep != 1) {
            for (int x = 0; x < width; ++x) s.luma[static_cast<std::size_t>(x)] = luma[std::ptrdiff_t{x} * p.lumaStep];
            luma = s.luma.data();
        }
        MatrixRow(luma, s.chroma[0].data(), s.chroma[1].data(), weights, width, s.pixels.data());
        std::memcpy(dst + y * step, s.pixels.data(), s.pixels.size() * 4);
    }
}

void PlanesToPacked(const YuvPlanes &p, PairOrder order, int width, int height, uint8_t *dst, std::ptrdiff_t step) {
    const int first = order == PairOrder::LumaFirst ? 0 : 1;    // the byte of the first luma sample
    const int chroma = 1 - first;
    for (int y = 0; y < height; ++y) {
        const uint8_t *luma = p.y + y * p.lumaRow;
        const uint8_t *cb = p.cb + y * p.chromaRow;
        const uint8_t *cr = p.cr + y * p.chromaRow;
        uint8_t *out = dst + y * step;
        for (int i = 0; i < (width + 1) / 2; ++i, out += 4) {
            const int second = 2 * i + 1 < width ? 2 * i + 1 : width - 1;
            out[first] = luma[std::ptrdiff_t{2 * i} * p.lumaStep];
            out[first + 2] = luma[std::ptrdiff_t{second} * p.lumaStep];
            out[chroma] = cb[std::ptrdiff_t{i} * p.chromaStep];
            out[chroma + 2] = cr[std::ptrdiff_t{i} * p.chromaStep];
        }
    }
}

}    // namespace zkey
