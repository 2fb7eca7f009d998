#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/yuv_planes.h"

namespace zkey {
namespace {

YuvPlanes PlanesOf(const RawSpec &spec, const uint8_t *pixels) {
    const std::ptrdiff_t luma = std::ptrdiff_t{spec.width} * spec.height;
    const std::ptrdiff_t half = (spec.width + 1) / 2;
    const std::ptrdiff_t plane = half * ((spec.height + 1) / 2);
    YuvPlanes p{};
    p.y = pixels;
    p.lumaRow = spec.width;
    p.interlaced = IsInterlaced(spec.scan);
    if (spec.fcc == eZFCC_NV12) {
        p.cb = pixels + luma;
        p.cr = p.cb + 1;
        p.chromaRow = 2 * half;
        p.chromaStep = 2;
        return p;
    }
    p.cb = pixels + luma;
    p.cr = p.cb + plane;
    if (spec.fcc == eZFCC_YV12) std::swap(p.cb, p.cr);
    p.chromaRow = half;
    return p;
}

class RawReader : public MediaReader {
public:
    RawReader(const std::string &path, const RawSpec &spec) : m_spec(spec), m_pipe(path) {
        const NamedFormat *format = FormatTable();
        while (format->fcc != spec.fcc) ++format;
        m_handed = format->handed;
        const int64_t bytes = PipeFrameBytes(spec.fcc, spec.width, spec.height);
        m_frame.resize(static_cast<std::size_t>(bytes));
        m_info.width = spec.width;
        m_info.height = spec.height;
        m_info.rate = spec.rate;
        m_info.timeBase = {spec.rate.den, spec.rate.num};
        m_info.frames = m_pipe.Size() / bytes;
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

    void Store(uint8_t *pixels, const Z_VID_PROPS &props) override {
        const std::ptrdiff_t step = props.nRowBytes;
        if (m_handed == eZFCC_RGB32 && m_spec.fcc != eZFCC_RGB32) {
            PlanesToRgb32(PlanesOf(m_spec, m_frame.data()), MeaningBySize(m_spec.width, m_spec.height), m_spec.width,
                          m_spec.height, pixels, step);
            return;
        }
        const int32_t row = PipeRowBytes(m_spec.fcc, m_spec.width);
        for (int32_t y = 0; y < m_spec.height; ++y) {
            uint8_t *to = pixels + y * step;
            std::memcpy(to, m_frame.data() + std::ptrdiff_t{y} * row, static_cast<std::size_t>(row));
            if (m_spec.fcc != eZFCC_YVYU) continue;
            for (int32_t x = 0; x < row; x += 4) std::swap(to[x + 1], to[x + 3]);
        }
    }

private:
    RawSpec m_spec;
    PipeReader m_pipe;
    eZFCC m_handed;
    SourceInfo m_info;
    std::vector<uint8_t> m_frame;
    int64_t m_next = 0;
};

}    // namespace

std::unique_ptr<MediaReader> OpenRawReader(const std::string &path, const RawSpec &spec) {
    return std::make_unique<RawReader>(path, spec);
}

}    // namespace zkey
