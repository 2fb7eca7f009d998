#include "tests/conformance/convert_model.h"

#include <algorithm>
#include <cmath>

#include "tests/conformance/media_model.h"

namespace conformance {
namespace {

int64_t Magnitude(int64_t v) { return v < 0 ? -v : v; }

uint8_t Byte(int64_t v) { return static_cast<uint8_t>(std::clamp<int64_t>(v, 0, 255)); }

// The nearest whole number of v / unit, ties up.
int64_t Nearest(int64_t v, int64_t unit) {
    const int64_t doubled = 2 * v + unit, whole = 2 * unit;
    return doubled >= 0 ? doubled / whole : -((-doubled + whole - 1) / whole);
}

// One image: memory, where the first row starts, how far apart rows are.
struct View {
    int64_t start;
    int64_t step;
    int32_t width;
    int64_t height;
};

bool Normalise(Z_VID_PROPS &p, View &view) {
    const int32_t given = p.nHeight;
    const bool single = Magnitude(given) == 1 && p.nRowBytes != 0;
    Update(&p, false);
    if (single) p.nHeight = given;
    if (p.nRowBytes == 0) return false;
    view = {0, p.nRowBytes, p.nWidth, Magnitude(p.nHeight)};
    if (Rgb(p.fccType) && p.nHeight >= 1) {
        view.start = Magnitude(p.nRowBytes) * (p.nHeight - 1);
        view.step = -Magnitude(p.nRowBytes);
    }
    return view.width >= 1 && view.height != 0;
}

int32_t ClassOf(eZFCC fcc) {
    switch (fcc) {
        case eZFCC_RGB32:
        case eZFCC_ARGB32:
            return 0;
        case eZFCC_RGB24:
            return 1;
        case eZFCC_UYVY:
            return 2;
        case eZFCC_HDYC:
            return 3;
        case eZFCC_YUY2:
            return 4;
        case eZFCC_v210:
            return 5;
        default:
            return -1;
    }
}

// The rows of one conversion. Positions count from the start of a memory.
class Rows {
public:
    Rows(const Bytes &src, Bytes &dst) : m_src(src), m_dst(dst) {}

    bool Has(int64_t at) const { return at >= 0 && at < static_cast<int64_t>(m_src.size()); }
    int Get(int64_t at) const { return Has(at) ? m_src[static_cast<size_t>(at)] : 0; }
    void Put(int64_t at, int64_t value) {
        if (at >= 0 && at < static_cast<int64_t>(m_dst.size())) m_dst[static_cast<size_t>(at)] = static_cast<uint8_t>(value);
    }

    // False when there is no such route.
    bool Row(int32_t from, int32_t to, int64_t s, int64_t d, int32_t w, eZFCC target) {
        static_cast<void>(target);
        switch (from * 6 + to) {
            case 0:
                return Copy(s, d, w * 4LL);
            case 1:
                return Repack(s, d, w, 4, 3);
            case 2:
                return Down(s, d, w, 4, 1, 0, 2);
            case 3:
                return Encode([&](int64_t i) { return EncoderPixel(s, i); }, d, w);
            case 4:
                return Down(s, d, w, 4, 0, 1, 3);
            case 6:
                return Repack(s, d, w, 3, 4);
            case 7:
                return Copy(s, d, w * 3LL);
            case 8:
                return Down(s, d, w, 3, 1, 0, 2);
            case 9:
                return Encode([&](int64_t i) { return ScratchPixel(s, i, w); }, d, w);
            case 10:
                return Down(s, d, w, 3, 0, 1, 3);
            case 12:
                return Up([&](int64_t i) { return Get(s + i); }, d, w, 1, 0, 2, 4);
            case 13:
                return Up([&](int64_t i) { return Get(s + i); }, d, w, 1, 0, 2, 3);
            case 14:
            case 15:
            case 20:
            case 21:
            case 28:
                return Copy(s, d, w * 2LL);
            case 16:
            case 22:
            case 26:
            case 27:
                return Swap([&](int64_t i) { return Get(s + i); }, d, w);
            case 17:
            case 23:
                return Pack(s, d, w, false);
            case 18:
            case 19:
                return Decode(s, d, w);
            case 24:
                return Up([&](int64_t i) { return Get(s + i); }, d, w, 0, 1, 3, 4);
            case 25:
                return Up([&](int64_t i) { return Get(s + i); }, d, w, 0, 1, 3, 3);
            case 29:
                return Pack(s, d, w, true);
            case 30:
            case 31: {
                const Bytes line = Unpacked(s, w);
                return Up([&](int64_t i) { return static_cast<int>(line[static_cast<size_t>(i)]); }, d, w, 1, 0, 2,
                          to == 0 ? 4 : 3);
            }
            case 32:
            case 33: {
                const Bytes line = Unpacked(s, w);
                for (int64_t i = 0; i < UnpackedBytes(w); ++i) Put(d + i, line[static_cast<size_t>(i)]);
                return true;
            }
            case 34: {
                const Bytes line = Unpacked(s, w);
                return Swap([&](int64_t i) { return static_cast<int>(line[static_cast<size_t>(i)]); }, d, w);
            }
            case 35:
                return Copy(s, d, (w + 47LL) / 48 * 128);
            default:
                return false;
        }
    }

private:
    struct Pixel {
        int b, g, r;
    };

    bool Copy(int64_t s, int64_t d, int64_t n) {
        for (int64_t i = 0; i < n; ++i)
            if (Has(s + i)) Put(d + i, Get(s + i));
        return true;
    }

    bool Repack(int64_t s, int64_t d, int32_t w, int from, int to) {
        for (int64_t x = 0; x < w; ++x) {
            for (int c = 0; c < 3; ++c) Put(d + x * to + c, Get(s + x * from + c));
            if (to == 4) Put(d + x * 4 + 3, 255);
        }
        return true;
    }

    // To 4:2:2: positions of luma, Cb and Cr in the group.
    bool Down(int64_t s, int64_t d, int32_t w, int size, int y, int cb, int cr) {
        for (int64_t x = 0; x < w; x += 2) {
            Pixel sum = {0, 0, 0};
            const int count = x + 1 < w ? 2 : 1;
            for (int i = 0; i < count; ++i) {
                const int64_t at = s + (x + i) * size;
                const Pixel p = {Get(at), Get(at + 1), Get(at + 2)};
                Put(d + x * 2 + y + 2 * i, Luma601(p.b, p.g, p.r));
                sum = {sum.b + p.b, sum.g + p.g, sum.r + p.r};
            }
            Put(d + x * 2 + cb, Cb601(sum.b, sum.g, sum.r, count));
            Put(d + x * 2 + cr, Cr601(sum.b, sum.g, sum.r, count));
        }
        return true;
    }

    template <class Read>
    bool Up(Read &&read, int64_t d, int32_t w, int y, int cb, int cr, int size) {
        for (int64_t x = 0; x < w; ++x) {
            const int64_t group = x / 2 * 4;
            uint8_t bgr[3];
            Rgb601(read(group + y + x % 2 * 2), read(group + cb), read(group + cr), bgr);
            for (int c = 0; c < 3; ++c) Put(d + x * size + c, bgr[c]);
            if (size == 4) Put(d + x * 4 + 3, 255);
        }
        return true;
    }

    // Neighbouring bytes change places. The second luma byte of an odd width is left alone.
    template <class Read>
    bool Swap(Read &&read, int64_t d, int32_t w) {
        for (int64_t x = 0; x < w; x += 2)
            for (int64_t i = 0; i < 4; ++i) {
                const int64_t from = x * 2 + (i ^ 1);
                const bool secondLuma = m_yuyTarget ? i == 2 : i == 3;
                if (x + 1 < w || !secondLuma) Put(d + x * 2 + i, read(from));
            }
        return true;
    }

    Pixel EncoderPixel(int64_t s, int64_t i) const {
        const int64_t at = s + i * 4;
        return {Get(at), Get(at + 1), Get(at + 2)};
    }

    // What stands behind the row in its padded scratch is 0.
    Pixel ScratchPixel(int64_t s, int64_t i, int32_t w) const {
        const int64_t at = s + i * 3;
        return i < w ? Pixel{Get(at), Get(at + 1), Get(at + 2)} : Pixel{0, 0, 0};
    }

    template <class Read>
    bool Encode(Read &&read, int64_t d, int32_t w) {
        const int64_t blocked = w / 4 * 4;
        for (int64_t x = 0; x < blocked; x += 2) {
            int64_t cb = 0, cr = 0;
            for (int i = 0; i < 2; ++i) {
                const Pixel p = read(x + i);
                Put(d + x * 2 + 1 + 2 * i, Byte((16 * p.b + 157 * p.g + 49 * p.r + 4080) >> 8));
                cb += 112 * p.b - 87 * p.g - 26 * p.r + 32895;
                cr += -10 * p.b - 102 * p.g + 112 * p.r + 32895;
            }
            Put(d + x * 2, Byte(cb >> 9));
            Put(d + x * 2 + 2, Byte(cr >> 9));
        }
        if (w % 4 == 0) return true;
        const Pixel p = read(blocked);
        const Pixel q = m_second(blocked) ? read(blocked + 1) : p;
        Put(d + blocked * 2 + 1, Byte(((16 * p.b + 157 * p.g + 49 * p.r) >> 8) + 16));
        Put(d + blocked * 2 + 3, Byte(((16 * q.b + 157 * q.g + 49 * q.r) >> 8) + 16));
        const int b = p.b + q.b, g = p.g + q.g, r = p.r + q.r;
        Put(d + blocked * 2, Byte(((112 * b - 87 * g - 26 * r) >> 9) + 128));
        Put(d + blocked * 2 + 2, Byte(((-10 * b - 102 * g + 112 * r) >> 9) + 128));
        return true;
    }

    bool Decode(int64_t s, int64_t d, int32_t w) {
        // The blocks, and then as many whole pairs as pixels are left.
        const int64_t pairs = w / 4 * 2, rest = w % 4;
        for (int64_t i = 0; i < pairs + rest; ++i) {
            if (i >= pairs && !Has(s + i * 4 + 3)) continue;
            const int u = Get(s + i * 4) - 128, v = Get(s + i * 4 + 2) - 128;
            for (int k = 0; k < 2; ++k) {
                const int y = 298 * (Get(s + i * 4 + 1 + 2 * k) - 16);
                Put(d + i * 8 + k * 4, Byte((y + 542 * u) >> 8));
                Put(d + i * 8 + k * 4 + 1, Byte((y - 55 * u - 137 * v) >> 8));
                Put(d + i * 8 + k * 4 + 2, Byte((y + 459 * v) >> 8));
                Put(d + i * 8 + k * 4 + 3, 255);
            }
        }
        return true;
    }

    bool Pack(int64_t s, int64_t d, int32_t w, bool yuy) {
        for (int64_t block = 0; block < (w + 5) / 6; ++block)
            for (int64_t word = 0; word < 4; ++word) {
                uint32_t bits = 0;
                for (int64_t i = 0; i < 3; ++i) {
                    const int64_t n = word * 3 + i;
                    const int64_t at = s + block * 12 + (yuy ? n ^ 1 : n);
                    bits |= static_cast<uint32_t>(Get(at)) << 2 << (10 * i);
                }
                for (int64_t i = 0; i < 4; ++i) Put(d + block * 16 + word * 4 + i, bits >> (8 * i) & 255);
            }
        return true;
    }

    static int64_t UnpackedBytes(int32_t w) {
        const int32_t rest = w % 6;
        return w / 6 * 12LL + (rest >= 4 ? 8 : rest >= 2 ? 4 : 0);
    }

    Bytes Unpacked(int64_t s, int32_t w) const {
        Bytes line(static_cast<size_t>(w) * 2 + 16, 0);
        for (int64_t i = 0; i < UnpackedBytes(w); ++i) {
            const int64_t block = i / 12, n = i % 12, word = s + block * 16 + n / 3 * 4;
            uint32_t bits = 0;
            for (int64_t k = 3; k >= 0; --k) bits = bits << 8 | static_cast<uint32_t>(Get(word + k));
            line[static_cast<size_t>(i)] = static_cast<uint8_t>(bits >> (10 * (n % 3)) >> 2);
        }
        return line;
    }

    const Bytes &m_src;
    Bytes &m_dst;

public:
    bool m_yuyTarget = false;
    // Whether there is a pixel in memory behind the first of the encoder's rest.
    struct {
        bool scratch = false;
        int64_t row = 0, size = 0;
        bool operator()(int64_t first) const { return scratch || row + (first + 1) * 4 + 4 <= size; }
    } m_second;
};

}    // namespace

uint8_t Luma601(int b, int g, int r) { return Byte(Nearest(257 * r + 504 * g + 98 * b + 16000, 1000)); }
uint8_t Cb601(int b, int g, int r, int count) {
    return Byte(Nearest(-148 * r - 291 * g + 439 * b + 128000 * count, 1000 * count));
}
uint8_t Cr601(int b, int g, int r, int count) {
    return Byte(Nearest(439 * r - 368 * g - 71 * b + 128000 * count, 1000 * count));
}
void Rgb601(int y, int cb, int cr, uint8_t *bgr) {
    bgr[0] = Byte(Nearest(1164 * (y - 16) + 2017 * (cb - 128), 1000));
    bgr[1] = Byte(Nearest(1164 * (y - 16) - 813 * (cr - 128) - 392 * (cb - 128), 1000));
    bgr[2] = Byte(Nearest(1164 * (y - 16) + 1596 * (cr - 128), 1000));
}

Converted ConvertModel(const Bytes &src, Bytes &dst, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp) {
    Z_VID_PROPS sn = sp, tn = tp;
    View s, t;
    if (!Normalise(sn, s) || !Normalise(tn, t)) return {E_UNEXPECTED, false};
    const int32_t from = ClassOf(sn.fccType), to = ClassOf(tn.fccType);
    if (from < 0 || to < 0) return {static_cast<HRESULT>(0x80040201), false};
    if (Need(sn) > static_cast<int64_t>(src.size()) || Need(tn) > static_cast<int64_t>(dst.size()))
        return {static_cast<HRESULT>(0x80040248), false};
    const int32_t width = std::min(s.width, t.width);
    const int64_t whole = std::min(s.height, t.height);
    int64_t height = whole;

    const int32_t si = OrderSign(&sp), ti = OrderSign(&tp);
    const int32_t sign = Rgb(tn.fccType) && tn.nHeight > 0 ? -1 : 1;
    const int32_t d = si != 0 && ti != 0 && whole >= 2 ? (si - ti) * sign : 0;
    int64_t sRow = s.start, tRow = t.start;
    if (d < 0) tRow += t.step;
    if (d > 0) sRow += s.step;
    if (d != 0) --height;

    Rows rows(src, dst);
    rows.m_yuyTarget = to == 4;
    bool ok = true;
    for (int64_t y = 0; y < height; ++y) {
        rows.m_second.scratch = from == 1;
        rows.m_second.row = sRow + y * s.step;
        rows.m_second.size = static_cast<int64_t>(src.size());
        ok = rows.Row(from, to, sRow + y * s.step, tRow + y * t.step, width, tn.fccType);
    }
    if (d != 0) {
        const int64_t good = t.start + (d < 0 ? 1 : whole - 2) * t.step, bad = t.start + (d < 0 ? 0 : whole - 1) * t.step;
        const int64_t size = static_cast<int64_t>(dst.size());
        for (int64_t i = 0; i < Magnitude(t.step); ++i)
            if (good + i < size && bad + i < size) dst[static_cast<size_t>(bad + i)] = dst[static_cast<size_t>(good + i)];
    }
    const bool rgbFrom = from <= 1, rgbTo = to <= 1;
    const bool hd = (from == 3 && rgbTo) || (rgbFrom && to == 3);
    return {ok ? S_OK : E_FAIL, rgbFrom != rgbTo && !hd};
}

Yuv FillYuv(uint32_t colour) {
    const int r = colour & 255, g = colour >> 8 & 255, b = colour >> 16 & 255;
    const int64_t y = Nearest(257 * r + 504 * g + 98 * b + 16000, 1000);
    const int64_t cb = Nearest(-148 * r - 291 * g + 439 * b + 128000, 1000);
    const int64_t cr = Nearest(439 * r - 368 * g - 71 * b + 128000, 1000);
    return {static_cast<uint8_t>(std::clamp<int64_t>(y, 16, 235)), static_cast<uint8_t>(std::clamp<int64_t>(cb, 16, 240)),
            static_cast<uint8_t>(std::clamp<int64_t>(cr, 16, 240))};
}

HRESULT FillModel(const Z_VID_PROPS &p, Bytes &memory, uint32_t colour, double opacity) {
    if (!(opacity > 0)) return S_FALSE;
    const int32_t q = opacity >= 1.0 ? 128 : static_cast<int32_t>(128 * opacity);
    if (q <= 0) return S_FALSE;
    const Yuv yuv = FillYuv(colour);
    uint8_t pixel[4] = {static_cast<uint8_t>(colour >> 16), static_cast<uint8_t>(colour >> 8), static_cast<uint8_t>(colour),
                        static_cast<uint8_t>(colour >> 24)};
    int32_t size;    // bytes of a unit of `pixels` pixels
    int32_t pixels = 1;
    if (p.fccType == eZFCC_RGB32 || p.fccType == eZFCC_ARGB32) {
        size = 4;
    } else if (p.fccType == eZFCC_RGB24) {
        size = 3;
    } else if (p.fccType == eZFCC_YUY2) {
        size = 4, pixels = 2;
        pixel[0] = pixel[2] = yuv.y, pixel[1] = yuv.cb, pixel[3] = yuv.cr;
    } else if (p.fccType == eZFCC_UYVY || p.fccType == eZFCC_HDYC) {
        size = 4, pixels = 2;
        pixel[1] = pixel[3] = yuv.y, pixel[0] = yuv.cb, pixel[2] = yuv.cr;
    } else {
        return S_FALSE;
    }
    for (int64_t y = 0; y < Magnitude(p.nHeight); ++y) {
        uint8_t *row = memory.data() + y * p.nRowBytes;
        const int32_t bytes = p.nWidth * size / pixels, coloured = p.nWidth / pixels * size;
        for (int32_t i = 0; i < bytes; ++i) {
            const int32_t c = pixel[i % size];
            if (q == 128) {
                if (i < coloured) row[i] = static_cast<uint8_t>(c);
                continue;
            }
            const int32_t product = row[i] * (128 - q), floor = product / 128, rest = product % 128;
            const int32_t scaled = floor + (rest > 64 || (rest == 64 && floor % 2 != 0) ? 1 : 0);
            row[i] = i < coloured ? Byte(scaled + ((c * q) >> 7)) : static_cast<uint8_t>(scaled);
        }
    }
    return S_OK;
}

}    // namespace conformance
