#include "tests/conformance/spill_model.h"

#include <algorithm>
#include <cmath>

#include "tests/conformance/media_model.h"

namespace conformance {
namespace {

int32_t ByteOf(int32_t word, int i) { return static_cast<int32_t>(static_cast<uint32_t>(word) >> (8 * i) & 255); }

int32_t Word(int32_t b0, int32_t b1, int32_t b2, int32_t b3) {
    return static_cast<int32_t>(static_cast<uint32_t>(b0) | static_cast<uint32_t>(b1) << 8 | static_cast<uint32_t>(b2) << 16 |
                                static_cast<uint32_t>(b3) << 24);
}

int32_t Exchanged(int32_t word) { return Word(ByteOf(word, 2), ByteOf(word, 1), ByteOf(word, 0), ByteOf(word, 3)); }

int32_t Sat16(int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, -32768, 32767)); }
uint8_t Byte(int64_t v) { return static_cast<uint8_t>(std::clamp<int64_t>(v, 0, 255)); }

// Products and sums of 32 bits that wrap.
int32_t Times(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }
int32_t Plus(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }

// One output of hue, lightness, saturation, from its angle.
uint8_t OfAngle(float x, float m1, float m2) {
    float f;
    if (x < 60.0F)
        f = m1 + (m2 - m1) * x / 60.0F;
    else if (x < 180.0F)
        f = m2;
    else if (x < 240.0F)
        f = m1 + (m2 - m1) * (240.0F - x) / 60.0F;
    else
        f = m1;
    return static_cast<uint8_t>(static_cast<int32_t>(f * 255.0F + 0.5F));
}

uint32_t HlsToRgb(int32_t value) {
    const float h = static_cast<float>(ByteOf(value, 0)) * 360.0F / 255.0F;
    const float l = static_cast<float>(ByteOf(value, 1)) / 255.0F;
    const float s = static_cast<float>(ByteOf(value, 2)) / 255.0F;
    if (s == 0.0F) {
        const uint32_t grey = static_cast<uint8_t>(static_cast<int32_t>(l * 255.0F + 0.5F));
        return grey | grey << 8 | grey << 16;
    }
    const float m2 = l <= 0.5F ? (1.0F + s) * l : l + s - s * l;
    const float m1 = 2.0F * l - m2;
    float up = h + 120.0F, down = h - 120.0F;
    if (up > 360.0F) up -= 360.0F;
    if (down < 0.0F) down += 360.0F;
    return uint32_t{OfAngle(up, m1, m2)} | uint32_t{OfAngle(h, m1, m2)} << 8 | uint32_t{OfAngle(down, m1, m2)} << 16;
}

uint32_t YuvToRgb(int32_t value) {
    const int32_t y = ByteOf(value, 0) << 16, u = ByteOf(value, 1) - 128, v = ByteOf(value, 2) - 128;
    const uint32_t b0 = Byte((y + 74711 * v) >> 16), b1 = Byte((y - 25821 * u - 38076 * v) >> 16);
    const uint32_t b2 = Byte((y + 133169 * u) >> 16);
    return b2 | b1 << 8 | b0 << 16;
}

uint8_t Studio(double v, int32_t most) {
    const int32_t whole = static_cast<int32_t>(v < 0 ? v - 0.5 : v + 0.5);
    return static_cast<uint8_t>(std::clamp(whole, 16, most));
}

// A byte plane, with room for what is written past its end.
struct Plane {
    Bytes bytes;
    int64_t stride;
    Plane(int64_t s, int64_t rows) : bytes(static_cast<size_t>(s * rows + 64), 0), stride(s) {}
    uint8_t &At(int64_t x, int64_t y) { return bytes[static_cast<size_t>(y * stride + x)]; }
};

void InvertRows(Plane &c, int32_t width, int32_t height) {
    for (int32_t y = 0; y < height; ++y) {
        const int32_t blocks = width / 16 * 16;
        for (int32_t x = 0; x < blocks; ++x) c.At(x, y) = static_cast<uint8_t>(255 - c.At(x, y));
        for (int32_t x = blocks + 1; x <= blocks + width % 16; ++x) c.At(x, y) = static_cast<uint8_t>(255 - c.At(x, y));
    }
}

void WidenOnce(Plane &c, int32_t width, int32_t height) {
    Plane old = c;
    for (int32_t y = 1; y < height - 1; ++y)
        for (int32_t x = 1; x < width - 1; ++x) {
            uint8_t most = 0;
            for (int32_t dy = -1; dy <= 1; ++dy)
                for (int32_t dx = -1; dx <= 1; ++dx) most = std::max(most, old.At(x + dx, y + dy));
            c.At(x, y) = most;
        }
}

// Centre to centre, exact, ties up.
void Halve(Plane &m, Plane &c, int32_t width, int32_t height) {
    const int64_t w = width / 2;
    for (int32_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < w; ++x) {
            const int64_t at = (2 * x + 1) * width - w, unit = 2 * w, left = at / unit, part = at % unit;
            const int64_t sum = c.At(left, y) * (unit - part) + (part != 0 ? c.At(left + 1, y) * part : 0);
            m.At(x, y) = static_cast<uint8_t>((2 * sum + unit) / (2 * unit));
        }
}

struct Places {
    int chroma[2], luma[2];
};

void BlockRow(uint8_t *row, Plane &mask, int32_t y, int32_t width, const SINGLE_KEY &key, const Places &at, const Yuv &c) {
    const int64_t pl = Sat16(key.nCancelLuma), pc = Sat16(2 * int64_t{key.nCancelChroma});
    const int64_t py = Sat16(-int64_t{key.nCancelPower} / 4), pp = Sat16(key.nCancelPower);
    const uint8_t kc[2] = {c.cb, c.cr};
    for (int32_t x = 0; x < width / 2 / 8 * 8; ++x) {
        uint8_t *const p = row + 4 * x;
        const int64_t m = mask.At(x, y);
        const auto amount = [m](int64_t strength) { return Sat16(m * strength) >> 7; };
        for (const int i : at.luma) {
            const int64_t gain = std::max(127 + amount(pl), 0);
            p[i] = Byte(Sat16((p[i] - (Sat16(amount(py) * int64_t{c.y}) >> 7)) * gain) >> 7);
        }
        for (int n = 0; n < 2; ++n) {
            const int i = at.chroma[n];
            const int64_t gain = std::max(127 + amount(pc), 0);
            p[i] = Byte((Sat16((p[i] - 128 - (Sat16(amount(pp) * (int64_t{kc[n]} - 128)) >> 7)) * gain) >> 7) + 128);
        }
    }
}

void PixelRow(uint8_t *row, Plane &mask, int32_t y, int32_t width, const SINGLE_KEY &key, const Places &at, const Yuv &colour,
              int32_t mode) {
    for (int32_t x = 0; x < width / 2; ++x) {
        uint8_t *const p = row + 4 * x;
        const int32_t m = mask.At(x, y), rest = 255 - m;
        int32_t c[2] = {p[at.chroma[0]], p[at.chroma[1]]};
        const int32_t kc[2] = {colour.cb, colour.cr};
        if (mode == 1) {
            c[0] = 255 - (((255 - c[0]) * m) >> 8);
            c[1] = (((c[1] - 128) * m) >> 8) + 128;
        } else {
            c[0] = (c[0] * m) >> 8;
            c[1] = (c[1] * m) >> 8;
        }
        const int32_t power = Times(key.nCancelPower, rest) >> 6;
        for (int i = 0; i < 2; ++i) {
            const int32_t t = Plus(c[i] - 128, -(Plus(Times(kc[i] - 128, power), 255) >> 8));
            c[i] = std::clamp(t, -128, 127) + 128;
        }
        if (mode == 0) {
            const int32_t g = std::max(Plus(Times(key.nCancelChroma, rest) >> 6, 255), 0);
            for (int32_t &v : c) v = std::clamp(Plus(Times(v - 128, g), 255) >> 8, -128, 127) + 128;
            const int32_t gl = std::max(Plus(Times(key.nCancelLuma, rest) >> 6, 255), 0);
            for (const int i : at.luma) p[i] = Byte(Plus(Times(p[i], gl), 255) >> 8);
        } else {
            const int32_t e = Times(key.nCancelChroma, rest) >> 7;
            for (int32_t &v : c) {
                const int32_t t = v - 128, a = std::clamp(Plus(std::abs(t), e), 0, 255);
                v = std::clamp(t < 0 ? -a : a, -128, 127) + 128;
            }
            const int32_t el = Times(key.nCancelLuma, rest) >> 6;
            for (const int i : at.luma) p[i] = Byte(Plus(p[i], el));
        }
        p[at.chroma[0]] = static_cast<uint8_t>(c[0]);
        p[at.chroma[1]] = static_cast<uint8_t>(c[1]);
    }
}

bool Cancels(const SINGLE_KEY &k) {
    return k.nCancelPower != 0 || k.nCancelChroma != 0 || k.nCancelLuma != 0 || k.nCancelAlpha != 0;
}

}    // namespace

int64_t StrideOf(const Z_VID_PROPS &p) { return Pixels(p.fccType, p.nRowBytes); }

void DistanceModel(Bytes &alpha, const Bytes &space, int32_t value, int32_t delta, int32_t smooth, int32_t width,
                   int32_t height, int64_t stride) {
    int64_t d[3], k[3], w[3];
    for (int i = 0; i < 3; ++i) {
        d[i] = std::max(ByteOf(delta, i), 1);
        k[i] = std::clamp(ByteOf(value, i), 1, 254);
    }
    const uint64_t p = static_cast<uint64_t>(d[0] * d[0] * d[1] * d[1] * d[2] * d[2]);
    uint64_t q[3];
    double f = static_cast<double>(p >> 1) / 1073741822.0;
    for (int i = 0; i < 3; ++i) {
        q[i] = p / static_cast<uint64_t>(d[i] * d[i]);
        f = std::max(f, static_cast<double>(q[i]) / 16382.0);
    }
    if (f < 0.001) f = 0.001;
    const uint64_t scaled = static_cast<uint64_t>(static_cast<double>(p) / f + 0.5);
    uint64_t surface = 0;
    for (int i = 0; i < 3; ++i) {
        w[i] = static_cast<int64_t>(static_cast<double>(q[i]) / f + 0.5);
        const int32_t reach = Plus(static_cast<int32_t>(d[i]), smooth);
        surface += static_cast<uint64_t>(int64_t{Times(reach, reach)} * w[i]);
    }
    const float x = 2.0F * (static_cast<float>(surface / 3) - static_cast<float>(scaled));
    float divisor = x >= 0.0F ? std::sqrt(x) / 512.0F : 0.0F;
    if (!(divisor > 0.0F)) divisor = 0.001F;
    const int64_t off = static_cast<int64_t>(scaled >> 1);

    const int64_t rounded = std::min<int64_t>((width + 3) / 4 * 4, stride);
    for (int64_t y = 0; y < height; ++y)
        for (int64_t column = 0; column < rounded / 8 * 8; ++column) {
            int64_t v = -off;
            for (int i = 0; i < 3; ++i) {
                const int64_t e = space.at(static_cast<size_t>((y * stride + column) * 4 + i)) - k[i];
                v += (e * e >> 1) * w[i];
            }
            float a = v < 0 ? 0.0F : std::sqrt(static_cast<float>(v)) / divisor;
            if (a > 255.0F) a = 255.0F;
            alpha.at(static_cast<size_t>(y * stride + column)) = static_cast<uint8_t>(std::nearbyint(a));
        }
}

uint32_t SpillRgb(const CHROMA_KEY_RAW &key) {
    const int32_t value = key.arrKeys[0].nValue;
    if (key.eType == eCKT_HLS) return HlsToRgb(value);
    if (key.eType == eCKT_YUV) return YuvToRgb(value);
    return static_cast<uint32_t>(value) & 0xFFFFFF;
}

Yuv SpillYuv(uint32_t rgb) {
    const double r = rgb & 255, g = rgb >> 8 & 255, b = rgb >> 16 & 255;
    return {Studio(0.257 * r + 0.504 * g + 0.098 * b + 16, 235), Studio(-0.148 * r - 0.291 * g + 0.439 * b + 128, 240),
            Studio(0.439 * r - 0.368 * g - 0.071 * b + 128, 240)};
}

HRESULT SpillModel(Bytes &pixels, const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key, const Bytes &space) {
    const int32_t used = std::min(key.nKeysUsed, 16);
    bool wanted = false;
    for (int32_t i = 0; i < used; ++i) {
        const SINGLE_KEY &k = key.arrKeys[i];
        wanted = wanted || (k.nDelta != 0 && k.nReverseKey <= 0 && Cancels(k));
    }
    if (key.bColorCancel == 0 || !wanted) return S_OK;

    const int32_t width = props.nWidth, height = props.nHeight < 0 ? -props.nHeight : props.nHeight;
    const int64_t stride = StrideOf(props);
    const uint32_t rgb = SpillRgb(key);
    const Yuv colour = SpillYuv(rgb);
    const int32_t mode = key.bColorCancel != 2 ? -1 : (rgb >> 8 & 255) > (rgb >> 16 & 255) ? 1 : 0;

    const bool foreign = Rgb(props.fccType) || Planar(props.fccType);
    Z_VID_PROPS own = props, image = props;
    own.nHeight = -height;
    Bytes scratch;
    if (foreign) {
        image = own;
        image.fccType = eZFCC_YUY2;
        image.nRowBytes = static_cast<int32_t>(Row(eZFCC_YUY2, stride));
        scratch.assign(static_cast<size_t>(image.nRowBytes) * static_cast<size_t>(height), 0);
        const HRESULT hr = ConvertModel(pixels, scratch, own, image).hr;
        if (FAILED(hr)) return hr;
    }
    Bytes &spill = foreign ? scratch : pixels;
    // Rows of packed YUV are twice the stride apart, also where the record says otherwise.
    const int64_t step = foreign ? image.nRowBytes : 2 * stride;
    const bool lumaFirst = image.fccType == eZFCC_YUY2 || image.fccType == eZFCC_YVYU;
    const Places at = lumaFirst ? Places{{1, 3}, {0, 2}} : Places{{0, 2}, {1, 3}};

    Plane c(stride, height), m(std::max<int64_t>(stride / 2, 1), height);
    for (int32_t i = 0; i < used; ++i) {
        const SINGLE_KEY &k = key.arrKeys[i];
        if (k.nDelta == 0 || k.nReverseKey > 0) continue;
        if (!Cancels(k) && key.bColorCancel != 2) continue;
        const int32_t delta = key.eType == eCKT_RGB ? Exchanged(k.nDelta) : k.nDelta;
        const int32_t value = key.eType == eCKT_RGB ? Exchanged(k.nValue) : k.nValue;
        const auto wide = [&](int n) {
            return static_cast<int32_t>(std::clamp<int64_t>(int64_t{ByteOf(delta, n)} + k.nCancelRange, 0, 255));
        };
        DistanceModel(c.bytes, space, value, Word(wide(0), wide(1), wide(2), wide(3)), 10, width, height, stride);
        if ((key.nInverseKey & 2) == 0) InvertRows(c, width, height);
        WidenOnce(c, width, height);
        WidenOnce(c, width, height);
        if (width < 2 || height < 1) return static_cast<HRESULT>(0xFFFFFFFA);
        Halve(m, c, width, height);
        for (int32_t y = 0; y < height; ++y) {
            uint8_t *const row = spill.data() + y * step;
            if (mode < 0)
                BlockRow(row, m, y, width, k, at, colour);
            else
                PixelRow(row, m, y, width, k, at, colour, mode);
        }
    }
    return foreign ? ConvertModel(scratch, pixels, image, own).hr : S_OK;
}

}    // namespace conformance
