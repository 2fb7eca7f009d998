#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/hand_over.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/system.h"

namespace zkey {
namespace {

YuvPlanes PlanarSamples(const RawSpec &spec, const uint8_t *pixels) {
    const std::ptrdiff_t luma = std::ptrdiff_t{spec.width} * spec.height;
    const std::ptrdiff_t half = (spec.width + 1) / 2;
    const std::ptrdiff_t plane = half * ((spec.height + 1) / 2);
    YuvPlanes p{};
    p.y = pixels;
    p.lumaRow = spec.width;
    p.interlaced = IsInterlaced(spec.scan);
    p.arranged = spec.fcc;
    p.cb = pixels + luma;
    if (spec.fcc == eZFCC_NV12) {
        p.cr = p.cb + 1;
        p.chromaRow = 2 * half;
        p.chromaStep = 2;
        return p;
    }
    p.cr = p.cb + plane;
    if (spec.fcc == eZFCC_YV12) std::swap(p.cb, p.cr);
    p.chromaRow = half;
    return p;
}

YuvPlanes PackedSamples(eZFCC fcc, const uint8_t *pixels, std::ptrdiff_t row) {
    const int luma = fcc == eZFCC_YUY2 || fcc == eZFCC_YVYU ? 0 : 1;
    YuvPlanes p{pixels + luma, pixels + 1 - luma, pixels + 3 - luma, row, row, 2, 4};
    p.shiftY = 0;
    if (fcc == eZFCC_YVYU) std::swap(p.cb, p.cr);
    if (luma == 0) p.arranged = eZFCC_YUY2;
    return p;
}

/// Rounded to 8 bits, which is what the library has for the matrices and ranges that it does not read as v210.
void UnpackV210(const uint8_t *from, std::ptrdiff_t fromRow, int32_t samples, int32_t rows, uint8_t *to) {
    for (int32_t y = 0; y < rows; ++y, from += fromRow) {
        for (int32_t i = 0; i < samples; ++i) {
            uint32_t word = 0;
            std::memcpy(&word, from + std::ptrdiff_t{i / 3} * 4, 4);
            *to++ = static_cast<uint8_t>(std::min((((word >> (10 * (i % 3))) & 0x3FF) + 2) >> 2, 255U));
        }
    }
}

class RawReader : public MediaReader {
public:
    RawReader(const std::string &path, const RawSpec &spec) : m_spec(spec), m_meaning(spec.Meaning()), m_pipe(path) {
        const int64_t bytes = PipeFrameBytes(spec.fcc, spec.width, spec.height);
        m_frame.resize(static_cast<std::size_t>(bytes));
        m_info.width = spec.width;
        m_info.height = spec.height;
        m_info.rate = spec.rate;
        m_info.timeBase = {spec.rate.den, spec.rate.num};
        m_info.frames = m_pipe.Size() / bytes;
        m_asIs = IsRgb(spec.fcc) || (spec.fcc == eZFCC_v210 && m_meaning.IsBt601());
        if (spec.fcc == eZFCC_v210 && !m_asIs) {
            m_unpacked.resize(static_cast<std::size_t>(PipeFrameBytes(eZFCC_UYVY, spec.width, spec.height)));
        }
        m_handed = m_asIs ? spec.fcc : HandOverFormat(Samples(), m_meaning, spec.width, spec.height);
    }

    const SourceInfo &Info() const override { return m_info; }

    bool Next(Arrival &arrival) override {
        const std::size_t got = m_pipe.Read(m_frame.data(), m_frame.size());
        if (got < m_frame.size()) {
            if (got != 0 && !Interrupted()) {
                Fail(m_pipe.Name() + " ends in the middle of frame " + std::to_string(m_next + 1) + ": " + std::to_string(got) +
                     " of " + std::to_string(m_frame.size()) + " bytes");
            }
            return false;
        }
        arrival = {m_handed, m_spec.scan, m_next++};
        return true;
    }

    bool JumpTo(int64_t picture) override {
        m_next = picture;
        return m_pipe.Seek(picture * static_cast<int64_t>(m_frame.size()));
    }

    void Store(uint8_t *pixels, const Z_VID_PROPS &props) override {
        const std::ptrdiff_t row = PipeRowBytes(m_spec.fcc, m_spec.width);
        if (m_asIs || m_handed == m_spec.fcc) {
            if (!IsPlanar(m_handed)) return CopyRows(row, pixels, props.nRowBytes);
        } else if (m_spec.fcc == eZFCC_v210) {
            UnpackV210(m_frame.data(), row, (m_spec.width + 1) / 2 * 4, m_spec.height, m_unpacked.data());
        }
        HandOver(Samples(), m_meaning, m_spec.width, m_spec.height, pixels, props);
    }

private:
    /// Samples of 8 bits.
    YuvPlanes Samples() const {
        if (IsPlanar(m_spec.fcc)) return PlanarSamples(m_spec, m_frame.data());
        if (m_spec.fcc == eZFCC_v210) {
            return PackedSamples(eZFCC_UYVY, m_unpacked.data(), PipeRowBytes(eZFCC_UYVY, m_spec.width));
        }
        return PackedSamples(m_spec.fcc, m_frame.data(), PipeRowBytes(m_spec.fcc, m_spec.width));
    }

    void CopyRows(std::ptrdiff_t row, uint8_t *to, std::ptrdiff_t step) const {
        for (int32_t y = 0; y < m_spec.height; ++y, to += step) {
            std::memcpy(to, m_frame.data() + y * row, static_cast<std::size_t>(row));
        }
    }

    RawSpec m_spec;
    YuvMeaning m_meaning;
    PipeReader m_pipe;
    bool m_asIs = false;    ///< neither samples nor their meaning are looked at
    eZFCC m_handed = eZFCC_Default;
    SourceInfo m_info;
    std::vector<uint8_t> m_frame;
    std::vector<uint8_t> m_unpacked;    ///< v210 in 8 bits
    int64_t m_next = 0;
};

}    // namespace

std::unique_ptr<MediaReader> OpenRawReader(const std::string &path, const RawSpec &spec) {
    return std::make_unique<RawReader>(path, spec);
}

}    // namespace zkey
