#include "keyobject/block_scan.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "keying/kernels/kernels.h"

namespace zck {
namespace {

constexpr double kLeastDelta = 0.00392156862745098;    // 1 / 255
constexpr uint8_t kPaint = 0x40;

/// Ranges over hue, lightness, saturation, alpha in the order of a pixel's bytes, which is not that of detected ranges.
constexpr KeyRange kScreens[] = {
    {{125.0 / 360.0, 0.5, 0.6, 0.5}, {30.0 / 360.0, 0.4, 0.8, 3.0}, 0},    // green
    {{230.0 / 360.0, 0.5, 0.6, 0.5}, {25.0 / 360.0, 0.4, 0.8, 3.0}, 0},    // blue
};

/// A vector of the compiler's: bytes are compared 16 at a time on every processor that the library runs on.
using FourPixels = uint8_t __attribute__((vector_size(16)));

FourPixels LoadFour(const uint8_t *pixels) {
    FourPixels four;
    std::memcpy(&four, pixels, sizeof(four));
    return four;
}

/// A pixel four times.
FourPixels Repeated(const uint8_t *pixel) {
    using FourWords = uint32_t __attribute__((vector_size(16)));
    uint32_t word;
    std::memcpy(&word, pixel, sizeof(word));
    return reinterpret_cast<FourPixels>(FourWords{word, word, word, word});
}

/// The smallest and the greatest of each of the four bytes of some pixels.
class ByteBox {
public:
    struct Corners {
        uint8_t low[4];
        uint8_t high[4];
    };

    explicit ByteBox(const uint8_t *pixel) : m_low(Repeated(pixel)), m_high(m_low) {}

    void Include(const uint8_t *pixels, int32_t count) {
        for (; count >= 4; count -= 4, pixels += sizeof(FourPixels)) Include(LoadFour(pixels));
        for (; count > 0; --count, pixels += 4) Include(Repeated(pixels));
    }
    Corners Ends() const {
        Corners ends;
        for (size_t i = 0; i < 4; ++i) {
            ends.low[i] = std::min({m_low[i], m_low[i + 4], m_low[i + 8], m_low[i + 12]});
            ends.high[i] = std::max({m_high[i], m_high[i + 4], m_high[i + 8], m_high[i + 12]});
        }
        return ends;
    }

private:
    void Include(FourPixels four) {
        m_low = four < m_low ? four : m_low;
        m_high = four > m_high ? four : m_high;
    }

    FourPixels m_low;
    FourPixels m_high;
};

/// Which screens each byte of an HLS pixel admits, a bit each; alpha admits all.
struct ScreenTable {
    uint8_t admits[3][256];

    ScreenTable() : admits{} {
        for (int32_t channel = 0; channel < 3; ++channel) {
            for (int32_t value = 0; value < 256; ++value) {
                for (uint32_t screen = 0; screen < 2; ++screen) {
                    KeyRange probe = {{}, {}, 0};
                    std::copy_n(kScreens[screen].centre, 4, probe.centre);
                    probe.centre[channel] = value / 255.0;
                    if (RangeContains(kScreens[screen], probe)) admits[channel][value] |= static_cast<uint8_t>(1U << screen);
                }
            }
        }
    }
    bool AdmitsBox(const ByteBox::Corners &box) const { return (Screens(box.low) & Screens(box.high)) != 0; }
    bool Admits(const uint8_t *hls) const { return Screens(hls) != 0; }

private:
    uint32_t Screens(const uint8_t *hls) const { return admits[0][hls[0]] & admits[1][hls[1]] & admits[2][hls[2]]; }
};

/// No distance is above 195075, so that from 256 on nothing is rejected.
int32_t ThresholdOf(int32_t threshold) { return static_cast<int32_t>(std::min<int64_t>(std::abs(int64_t{threshold}), 256)); }

class Scanner {
public:
    Scanner(const WorkingImage &image, const BlockScan &scan, KeyRangeSet *ranges)
        : m_image(image),
          m_scan(scan),
          m_ranges(*ranges),
          m_width(image.Width() / scan.blocks),
          m_height(image.Rows() / scan.blocks),
          m_square(3 * ThresholdOf(scan.threshold) * ThresholdOf(scan.threshold)),
          m_hls(image.Space() == KeySpace::Hls ? 0 : static_cast<size_t>(m_width) * 4) {}

    void Run() {
        if (m_height > 0) {
            for (int64_t by = 0; by < m_scan.blocks; ++by) Row(by);
        } else if (m_width > 0) {
            // All rows of blocks are the same row.
            Repeat(m_scan.blocks, [this] { Row(0); });
        } else {
            Repeat(int64_t{m_scan.blocks} * m_scan.blocks, [this] { Block(0, 0); });
        }
    }

private:
    void Row(int64_t by) {
        if (m_width > 0) {
            for (int64_t bx = 0; bx < m_scan.blocks; ++bx) Block(bx, by);
        } else {
            Repeat(m_scan.blocks, [&] { Block(0, by); });
        }
    }

    /// Runs `round` that often. A round that changes nothing but the hits of the first range will do the same ever after: the
    /// rest only counts.
    template <class Round>
    void Repeat(int64_t times, Round round) {
        for (int64_t left = times - 1; left >= 0; --left) {
            const KeyRangeSet before = m_ranges;
            round();
            const double hits = m_ranges.ranges[0].weight - before.ranges[0].weight;
            if (!SameButHits(before)) continue;
            // Counting one by one ends where a real has no room for one more.
            constexpr double kMostHits = 9007199254740992.0;
            m_ranges.ranges[0].weight = std::min(m_ranges.ranges[0].weight + hits * static_cast<double>(left), kMostHits);
            return;
        }
    }

    bool SameButHits(const KeyRangeSet &before) const {
        KeyRangeSet now = m_ranges;
        now.ranges[0].weight = before.ranges[0].weight;
        return now.count == before.count && std::memcmp(now.ranges, before.ranges, sizeof(now.ranges)) == 0;
    }

    void Block(int64_t bx, int64_t by) {
        KeyRange range;
        if (!Analyse(bx, by, &range)) return;
        const bool hls = m_image.Space() == KeySpace::Hls;
        if (RangeSetAdd(m_ranges, range, m_scan.diff, hls) == RangeResult::Refused || !m_scan.paint) return;
        for (int64_t y = 0; y < m_height; ++y) std::memset(Pixel(bx, by, y), kPaint, static_cast<size_t>(m_width) * 4);
    }

    uint8_t *Pixel(int64_t bx, int64_t by, int64_t y) const { return m_image.Row(by * m_height + y) + bx * m_width * 4; }

    bool Analyse(int64_t bx, int64_t by, KeyRange *range) {
        const uint8_t *first = Pixel(bx, by, 0);
        ByteBox block(first);
        for (int32_t y = 0; y < m_height; ++y) {
            const uint8_t *row = Pixel(bx, by, y);
            const uint8_t *above = y > 0 ? row - m_image.RowBytes() : row;
            // The first column is compared with and takes no part otherwise.
            if (!m_kernels.flat(row + 4, above + 4, m_width - 1, first, m_square) || !RowIsScreen(row)) return false;
            block.Include(row + 4, m_width - 1);
        }
        const ByteBox::Corners ends = block.Ends();
        *range = RangeOf(ends.low, ends.high);
        return true;
    }

    bool RowIsScreen(const uint8_t *row) {
        static const ScreenTable table;
        if (m_width < 2) return true;
        const uint8_t *hls = HlsOf(row);
        ByteBox box(hls + 4);
        box.Include(hls + 8, m_width - 2);
        // Screens are boxes: one that admits both corners admits all between them.
        if (table.AdmitsBox(box.Ends())) return true;
        for (int32_t x = 1; x < m_width; ++x) {
            if (!table.Admits(hls + x * 4)) return false;
        }
        return true;
    }

    const uint8_t *HlsOf(const uint8_t *row) {
        if (m_image.Space() == KeySpace::Hls) return row;
        const uint8_t *rgb = row;
        if (m_image.Space() == KeySpace::Yuv) {
            m_kernels.from_yuv(m_hls.data(), row, m_width);
            rgb = m_hls.data();
        }
        m_kernels.to_hls(m_hls.data(), rgb, m_width);
        return m_hls.data();
    }

    static KeyRange RangeOf(const uint8_t (&low)[4], const uint8_t (&high)[4]) {
        constexpr int32_t kBytes[4] = {2, 1, 0, 3};
        KeyRange range = {};
        for (int32_t i = 0; i < 4; ++i) {
            const int32_t b = kBytes[i];
            range.centre[i] = (high[b] + low[b]) / 510.0;
            range.delta[i] = std::max((high[b] - low[b]) / 510.0, kLeastDelta);
        }
        return range;
    }

    const WorkingImage &m_image;
    const BlockScan &m_scan;
    KeyRangeSet &m_ranges;
    const int32_t m_width;     // of a block
    const int32_t m_height;    // of a block
    const int32_t m_square;    // the threshold as a squared distance
    const KeyingKernels &m_kernels = KeyingKernelsGet();
    std::vector<uint8_t> m_hls;
};

}    // namespace

void ScanBlocks(const WorkingImage &image, const BlockScan &scan, KeyRangeSet *ranges) {
    if (scan.blocks >= 1) Scanner(image, scan, ranges).Run();
}

}    // namespace zck
