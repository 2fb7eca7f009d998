#include "tests/imaging/colour/model.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>

namespace zck::test {
namespace {

struct Pixel {
    int32_t b, g, r, a;
};

struct Group {
    int32_t y0, cb, y1, cr;
};

// A row: reads past the end of the memory give 0, writes there are dropped.
struct Row {
    const Bytes &memory;
    int64_t at;

    bool Has(int64_t i, int64_t n) const { return at + i + n <= static_cast<int64_t>(memory.size()); }
    int32_t operator[](int64_t i) const { return Has(i, 1) ? memory[static_cast<size_t>(at + i)] : 0; }
};

struct Target {
    Bytes &memory;
    int64_t at;

    void Put(int64_t i, int64_t v) const {
        if (at + i < static_cast<int64_t>(memory.size())) memory[static_cast<size_t>(at + i)] = static_cast<uint8_t>(v);
    }
};

int64_t Clamp(int64_t v) { return std::clamp<int64_t>(v, 0, 255); }
int64_t Floor(int64_t a, int64_t b) { return (a - ((a % b) + b) % b) / b; }
int64_t Round(int64_t thousandths, int64_t n) { return Clamp(Floor(2 * thousandths + 1000 * n, 2000 * n)); }

bool IsRgb32(eZFCC f) { return f == eZFCC_RGB32 || f == eZFCC_ARGB32; }
bool Is422(eZFCC f) { return f == eZFCC_UYVY || f == eZFCC_HDYC || f == eZFCC_YUY2; }

// Places of Y0, Cb, Y1, Cr.
std::array<int64_t, 4> Order(eZFCC f) {
    return f == eZFCC_YUY2 ? std::array<int64_t, 4>{0, 1, 2, 3} : std::array<int64_t, 4>{1, 0, 3, 2};
}

Pixel RgbAt(const Row &row, eZFCC f, int64_t x) {
    const int64_t n = f == eZFCC_RGB24 ? 3 : 4;
    return {row[n * x], row[n * x + 1], row[n * x + 2], n == 4 ? row[n * x + 3] : 255};
}

void PutRgb(const Target &row, eZFCC f, int64_t x, const Pixel &p) {
    const int64_t n = f == eZFCC_RGB24 ? 3 : 4;
    const int32_t bytes[] = {p.b, p.g, p.r, p.a};
    for (int64_t j = 0; j < n; ++j) row.Put(n * x + j, bytes[j]);
}

Group GroupAt(const Row &row, eZFCC f, int64_t x) {
    const auto o = Order(f);
    const int64_t at = 4 * (x / 2);
    return {row[at + o[0]], row[at + o[1]], row[at + o[2]], row[at + o[3]]};
}

void PutGroup(const Target &row, eZFCC f, int64_t x, const Group &g, bool second) {
    const auto o = Order(f);
    const int64_t at = 4 * (x / 2);
    row.Put(at + o[0], g.y0);
    row.Put(at + o[1], g.cb);
    if (second) row.Put(at + o[2], g.y1);
    row.Put(at + o[3], g.cr);
}

Group Encode601(const Pixel &p, const Pixel &q) {
    const auto luma = [](const Pixel &c) { return Round(257 * c.r + 504 * c.g + 98 * c.b + 16000, 1); };
    const int64_t b = p.b + q.b, g = p.g + q.g, r = p.r + q.r;
    return {static_cast<int32_t>(luma(p)), static_cast<int32_t>(Round(-148 * r - 291 * g + 439 * b + 256000, 2)),
            static_cast<int32_t>(luma(q)), static_cast<int32_t>(Round(439 * r - 368 * g - 71 * b + 256000, 2))};
}

Pixel Decode601(int64_t y, int64_t cb, int64_t cr) {
    const int64_t l = 1164 * (y - 16);
    return {static_cast<int32_t>(Round(l + 2017 * (cb - 128), 1)),
            static_cast<int32_t>(Round(l - 813 * (cr - 128) - 392 * (cb - 128), 1)),
            static_cast<int32_t>(Round(l + 1596 * (cr - 128), 1)), 255};
}

// The rounds that are left behind the blocks clamp before they shift.
Pixel Decode709(int32_t y, int32_t cb, int32_t cr, bool inBlock) {
    const int32_t l = 298 * (y - 16), u = cb - 128, v = cr - 128;
    const auto byte = [inBlock](int32_t n) {
        return inBlock ? static_cast<int32_t>(Clamp(n >> 8)) : std::clamp(n, 0, 65535) >> 8;
    };
    return {byte(l + 542 * u), byte(l - 55 * u - 137 * v), byte(l + 459 * v), 255};
}

void Decode709Row(const Row &src, const Target &dst, int32_t width) {
    const int64_t blocked = 2 * (width / 4);
    for (int64_t pair = 0; pair < blocked + (width & 3); ++pair) {
        const bool inBlock = pair < blocked;
        if (!inBlock && !src.Has(4 * pair, 4)) continue;
        const Group g = GroupAt(src, eZFCC_HDYC, 2 * pair);
        PutRgb(dst, eZFCC_RGB32, 2 * pair, Decode709(g.y0, g.cb, g.cr, inBlock));
        PutRgb(dst, eZFCC_RGB32, 2 * pair + 1, Decode709(g.y1, g.cb, g.cr, inBlock));
    }
}

int32_t Luma709(const Pixel &p) { return 16 * p.b + 157 * p.g + 49 * p.r; }
int32_t Cb709(const Pixel &p) { return 112 * p.b - 87 * p.g - 26 * p.r; }
int32_t Cr709(const Pixel &p) { return -10 * p.b - 102 * p.g + 112 * p.r; }

void Encode709Row(const Row &src, const Target &dst, int32_t width) {
    int64_t x = 0;
    for (; x + 4 <= width; x += 4)
        for (int64_t i = x; i < x + 4; i += 2) {
            const Pixel p = RgbAt(src, eZFCC_RGB32, i), q = RgbAt(src, eZFCC_RGB32, i + 1);
            const Group g = {static_cast<int32_t>(Clamp((Luma709(p) + 16 * 255) >> 8)),
                             static_cast<int32_t>(Clamp((Cb709(p) + Cb709(q) + 2 * 129 * 255) >> 9)),
                             static_cast<int32_t>(Clamp((Luma709(q) + 16 * 255) >> 8)),
                             static_cast<int32_t>(Clamp((Cr709(p) + Cr709(q) + 2 * 129 * 255) >> 9))};
            PutGroup(dst, eZFCC_HDYC, i, g, true);
        }
    for (int32_t round = 0; round < (width & 3); ++round) {
        const Pixel p = RgbAt(src, eZFCC_RGB32, x);
        const Pixel q = src.Has(4 * (x + 1), 4) ? RgbAt(src, eZFCC_RGB32, x + 1) : p;
        const Group g = {static_cast<int32_t>(Clamp((Luma709(p) >> 8) + 16)),
                         static_cast<int32_t>(Clamp(((Cb709(p) + Cb709(q)) >> 9) + 128)),
                         static_cast<int32_t>(Clamp((Luma709(q) >> 8) + 16)),
                         static_cast<int32_t>(Clamp(((Cr709(p) + Cr709(q)) >> 9) + 128))};
        PutGroup(dst, eZFCC_HDYC, x, g, true);
    }
}

void PackRow(const Row &src, eZFCC from, const Target &dst, int32_t width) {
    for (int64_t block = 0; block < (width + 5) / 6; ++block)
        for (int64_t w = 0; w < 4; ++w) {
            uint32_t bits = 0;
            for (int64_t j = 0; j < 3; ++j) {
                const int64_t i = 12 * block + 3 * w + j;
                bits |= static_cast<uint32_t>(src[from == eZFCC_YUY2 ? i ^ 1 : i]) << (2 + 10 * j);
            }
            for (int64_t j = 0; j < 4; ++j) dst.Put(16 * block + 4 * w + j, bits >> (8 * j) & 255);
        }
}

void UnpackRow(const Row &src, const Target &dst, int32_t width) {
    const int64_t rest = width % 6;
    const int64_t bytes = width / 6 * 12 + (rest >= 4 ? 8 : rest >= 2 ? 4 : 0);
    for (int64_t i = 0; i < bytes; ++i) {
        const int64_t at = i / 12 * 16 + i % 12 / 3 * 4;
        uint32_t word = 0;
        for (int64_t j = 0; j < 4; ++j) word |= static_cast<uint32_t>(src[at + j]) << (8 * j);
        dst.Put(i, word >> (2 + 10 * (i % 3)) & 255);
    }
}

void ConvertRow(const Row &src, eZFCC from, const Target &dst, eZFCC to, int32_t width);

// By way of an image of its own whose rows are padded to 16 bytes.
void TwoSteps(const Row &src, eZFCC from, eZFCC middle, const Target &dst, eZFCC to, int32_t width) {
    const int32_t pixelBytes = IsRgb32(middle) ? 4 : 2;
    Bytes scratch(static_cast<size_t>((width * pixelBytes + 15) & ~15));
    ConvertRow(src, from, {scratch, 0}, middle, width);
    ConvertRow({scratch, 0}, middle, dst, to, width);
}

void RgbTo422(const Row &src, eZFCC from, const Target &dst, eZFCC to, int32_t width) {
    for (int64_t x = 0; x < width; x += 2) {
        const bool second = x + 1 < width;
        const Pixel p = RgbAt(src, from, x);
        PutGroup(dst, to, x, Encode601(p, second ? RgbAt(src, from, x + 1) : p), second);
    }
}

void RgbFrom422(const Row &src, eZFCC from, const Target &dst, eZFCC to, int32_t width) {
    for (int64_t x = 0; x < width; ++x) {
        const Group g = GroupAt(src, from, x);
        PutRgb(dst, to, x, Decode601(x % 2 == 0 ? g.y0 : g.y1, g.cb, g.cr));
    }
}

void Between422(const Row &src, eZFCC from, const Target &dst, eZFCC to, int32_t width) {
    if (Order(from) == Order(to)) {
        for (int64_t i = 0; i < 2 * width; ++i) dst.Put(i, src[i]);
        return;
    }
    for (int64_t x = 0; x < width; x += 2) PutGroup(dst, to, x, GroupAt(src, from, x), x + 1 < width);
}

void BetweenRgb(const Row &src, eZFCC from, const Target &dst, eZFCC to, int32_t width) {
    for (int64_t x = 0; x < width; ++x) PutRgb(dst, to, x, RgbAt(src, from, x));
}

void From422(const Row &src, eZFCC from, const Target &dst, eZFCC to, int32_t width) {
    if (to == eZFCC_v210) return PackRow(src, from, dst, width);
    if (Is422(to)) return Between422(src, from, dst, to, width);
    if (from == eZFCC_HDYC) return Decode709Row(src, dst, width);
    RgbFrom422(src, from, dst, to, width);
}

void FromV210(const Row &src, const Target &dst, eZFCC to, int32_t width) {
    if (to == eZFCC_v210) {
        for (int64_t i = 0; i < (width + 47) / 48 * 128; ++i)
            if (src.Has(i, 1)) dst.Put(i, src[i]);
    } else if (to == eZFCC_UYVY || to == eZFCC_HDYC) {
        UnpackRow(src, dst, width);
    } else {
        TwoSteps(src, eZFCC_v210, eZFCC_UYVY, dst, to, width);
    }
}

void ConvertRow(const Row &src, eZFCC from, const Target &dst, eZFCC to, int32_t width) {
    if (from == eZFCC_v210) return FromV210(src, dst, to, width);
    if (Is422(from)) return From422(src, from, dst, to, width);
    if (to == eZFCC_v210) return;
    if (!Is422(to)) return BetweenRgb(src, from, dst, to, width);
    if (to != eZFCC_HDYC) return RgbTo422(src, from, dst, to, width);
    if (from == eZFCC_RGB24) return TwoSteps(src, from, eZFCC_RGB32, dst, to, width);
    Encode709Row(src, dst, width);
}

int64_t PixelBytes(eZFCC fcc, int64_t width) {
    if (fcc == eZFCC_v210) return (width + 5) / 6 * 16;
    if (Is422(fcc)) return (width + 1) / 2 * 4;
    return width * (fcc == eZFCC_RGB24 ? 3 : 4);
}

}    // namespace

void ModelConvert(const Picture &src, Picture &dst, int32_t width, int32_t rows) {
    for (int32_t y = 0; y < rows; ++y)
        ConvertRow({src.memory, src.first + y * src.step}, src.fcc, {dst.memory, dst.first + y * dst.step}, dst.fcc, width);
}

Z_VID_PROPS ModelRecord(eZFCC fcc, int32_t width, int32_t height, int32_t padding) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = width;
    p.nHeight = height;
    const int64_t row = fcc == eZFCC_v210 ? (width + 47) / 48 * 128 : (PixelBytes(fcc, width) + 3) / 4 * 4;
    p.nRowBytes = static_cast<int32_t>(row) + padding;
    return p;
}

Picture ModelPicture(const Z_VID_PROPS &props, uint32_t seed, bool cut) {
    std::mt19937 random(seed);
    const int64_t rows = std::abs(props.nHeight);
    const int64_t last = cut ? PixelBytes(props.fccType, props.nWidth) : props.nRowBytes;
    Picture p = {props.fccType, Bytes(static_cast<size_t>((rows - 1) * props.nRowBytes + last)), 0, props.nRowBytes};
    for (uint8_t &b : p.memory) b = static_cast<uint8_t>(random() >> 8);
    const bool rgb = IsRgb32(props.fccType) || props.fccType == eZFCC_RGB24;
    if (rgb && props.nHeight > 0) {
        p.first = (rows - 1) * props.nRowBytes;
        p.step = -p.step;
    }
    return p;
}

}    // namespace zck::test
