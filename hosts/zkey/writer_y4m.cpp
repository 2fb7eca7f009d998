#include <cmath>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/yuv_planes.h"

namespace zkey {
namespace {

/// Coefficients in 1/65536 for 8-bit samples between 16 and 235 or 240.
struct Coefficients {
    int32_t y[3], cb[3], cr[3];    ///< for red, green, blue

    explicit Coefficients(const YuvMeaning &m) {
        const double weight[3] = {m.kr, 1 - m.kr - m.kb, m.kb};
        for (int i = 0; i < 3; ++i) {
            y[i] = Fixed(weight[i] * 219 / 255);
            cb[i] = Fixed(((i == 2 ? 1 : 0) - weight[i]) / (2 * (1 - m.kb)) * 224 / 255);
            cr[i] = Fixed(((i == 0 ? 1 : 0) - weight[i]) / (2 * (1 - m.kr)) * 224 / 255);
        }
    }
    static int32_t Fixed(double v) { return static_cast<int32_t>(std::lround(v * 65536)); }
};

uint8_t Sum(const int32_t (&c)[3], const uint8_t *bgra, int32_t base) {
    return static_cast<uint8_t>((c[0] * bgra[2] + c[1] * bgra[1] + c[2] * bgra[0] + (base << 16) + 32768) >> 16);
}

class Y4mWriter : public MediaWriter {
public:
    explicit Y4mWriter(const Delivery &d)
        : m_path(d.path),
          m_pipe(d.path),
          m_matte(d.finish == Finish::Matte),
          m_coefficients(MeaningBySize(d.source.width, d.source.height)) {
        const SourceInfo &s = d.source;
        const std::size_t pixels = static_cast<std::size_t>(s.width) * static_cast<std::size_t>(s.height);
        m_planes.resize(pixels * (m_matte ? 1 : 3));
        const std::string head = "YUV4MPEG2 W" + std::to_string(s.width) + " H" + std::to_string(s.height) + " F" +
                                 std::to_string(s.rate.num) + ":" + std::to_string(s.rate.den) +
                                 (s.scan == eZI_Field1First   ? " It A"
                                  : s.scan == eZI_Field2First ? " Ib A"
                                                              : " Ip A") +
                                 std::to_string(s.pixelAspect.num) + ":" + std::to_string(s.pixelAspect.den) +
                                 (m_matte ? " Cmono XCOLORRANGE=FULL\n" : " C444 XCOLORRANGE=LIMITED\n");
        m_pipe.Write(head.data(), head.size());
    }

    void Write(const ImageView &picture, int64_t) override {
        const std::size_t pixels = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
        std::size_t at = 0;
        for (int y = 0; y < picture.height; ++y) {
            const uint8_t *p = picture.Row(y);
            for (int x = 0; x < picture.width; ++x, p += 4, ++at) {
                m_planes[at] = m_matte ? p[0] : Sum(m_coefficients.y, p, 16);
                if (m_matte) continue;
                m_planes[pixels + at] = Sum(m_coefficients.cb, p, 128);
                m_planes[2 * pixels + at] = Sum(m_coefficients.cr, p, 128);
            }
        }
        m_pipe.Write("FRAME\n", 6);
        m_pipe.Write(m_planes.data(), m_planes.size());
    }

    void Close() override { m_pipe.Close(); }

    std::string Unfinished() const override { return m_path; }

private:
    std::string m_path;
    PipeWriter m_pipe;
    bool m_matte;
    Coefficients m_coefficients;
    std::vector<uint8_t> m_planes;
};

}    // namespace

std::unique_ptr<MediaWriter> OpenY4mWriter(const Delivery &delivery) {
    if (delivery.finish != Finish::Matte && delivery.finish != Finish::Over) {
        FailUsage("a YUV4MPEG2 clip has no alpha: use --over, --matte or -f raw");
    }
    return std::make_unique<Y4mWriter>(delivery);
}

}    // namespace zkey
