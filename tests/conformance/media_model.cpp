#include "tests/conformance/media_model.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace conformance {
namespace {

constexpr double k29 = 29.970029970029973;
constexpr double k23 = 23.976023976023978;
constexpr double k59 = 59.940059940059946;

int64_t Magnitude(int64_t v) { return v < 0 ? -v : v; }

int32_t Clamped(int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); }

bool RateFits(const Z_VID_PROPS &p, int32_t format) { return std::fabs(p.dblRate - FormatOf(format).rate) < 0.01; }

bool Fits(const Z_VID_PROPS &p, int32_t format) {
    return RateFits(p, format) && (p.eInterlace == 0 || p.eInterlace == FormatOf(format).scan);
}

int32_t FirstOf(const Z_VID_PROPS &p, std::initializer_list<int32_t> order) {
    for (const int32_t f : order)
        if (Fits(p, f)) return f;
    return 0;
}

int32_t FoundInRows(const Z_VID_PROPS &p) {
    const int64_t w = p.nWidth, h = Magnitude(p.nHeight);
    const int32_t stereo = p.e3DFormat & 0x600;
    if (w == 720 && h >= 576 && h <= 615 && RateFits(p, eZVF_PAL)) return Aspect(&p) > 1.4 ? eZVF_PAL_16x9 : eZVF_PAL;
    if (w == 720 && h >= 480 && h <= 519) {
        if (RateFits(p, eZVF_NTSC)) return Aspect(&p) > 1.4 ? eZVF_NTSC_16x9 : eZVF_NTSC;
        if (RateFits(p, eZVF_NTSC_2398)) return eZVF_NTSC_2398;
    }
    if (w == 1280 && h >= 720 && h <= 750)
        for (const int32_t f : {7, 8, 6})
            if (RateFits(p, f)) return f | stereo;
    if (w == 1920 && h >= 1080 && h <= 1125)
        if (const int32_t f = FirstOf(p, {9, 10, 14, 11, 15, 12, 16, 13, 17, 18, 19})) return f | stereo;
    if (w == 3840 && h >= 2160)
        if (const int32_t f = FirstOf(p, {26, 27, 28, 29, 30, 23, 24, 25})) return f;
    if (w == 4096 && h >= 2160)
        if (const int32_t f = FirstOf(p, {31, 32, 33})) return f;
    return 0;
}

int32_t Stacked(Z_VID_PROPS half, int32_t flags) {
    half.e3DFormat = eZ3D_None;
    const int32_t f = Found(&half);
    return f != 0 && (f & 0x600) == 0 ? f | flags : 0;
}

}    // namespace

const std::vector<eZFCC> &AllCodes() {
    static const std::vector<eZFCC> codes = {
        eZFCC_Default,    eZFCC_r210,       eZFCC_v210,      eZFCC_I420,      eZFCC_YV12,      eZFCC_NV12,      eZFCC_YUY2,
        eZFCC_HDYC,       eZFCC_YVYU,       eZFCC_UYVY,      eZFCC_RGB24,     eZFCC_RGB32,     eZFCC_ARGB32,    eZFCC_RGB8,
        eZFCC_GPU_YUV422, eZFCC_GPU_RGB444, Fcc(0x39555659), Fcc(0x32555949), Fcc(0x32323459), Fcc(0x34343459), Fcc(0xE436EB7B),
        Fcc(0xE436EB7C),  Fcc(0x297C55AF),  Fcc(0x6E6415E6), Fcc(0xE436EB78), Fcc(0xE436EB79), Fcc(0xE436EB7F), Fcc(1),
        Fcc(2),           Fcc(3),           Fcc(0x41424344)};
    return codes;
}

FormatRow FormatOf(int32_t format) {
    const int32_t base = format & 0xFF;
    if (base == 1) return {720, 486, k29, 2, 4, 3};
    if (base == 2) return {720, 486, k23, 3, 4, 3};
    if (base == 3) return {720, 486, k29, 2, 16, 9};
    if (base == 4) return {720, 576, 25.0, 1, 4, 3};
    if (base == 5) return {720, 576, 25.0, 1, 16, 9};
    if (base == 6) return {1280, 720, 50.0, 3, 16, 9};
    if (base == 7) return {1280, 720, k59, 3, 16, 9};
    if (base == 8) return {1280, 720, 60.0, 3, 16, 9};
    if (base == 9) return {1920, 1080, k23, 3, 16, 9};
    if (base == 10) return {1920, 1080, 24.0, 3, 16, 9};
    if (base == 11) return {1920, 1080, 25.0, 3, 16, 9};
    if (base == 12) return {1920, 1080, k29, 3, 16, 9};
    if (base == 13) return {1920, 1080, 30.0, 3, 16, 9};
    if (base == 14) return {1920, 1080, 25.0, 1, 16, 9};
    if (base == 15) return {1920, 1080, k29, 1, 16, 9};
    if (base == 16) return {1920, 1080, 30.0, 1, 16, 9};
    if (base == 17) return {1920, 1080, 50.0, 3, 16, 9};
    if (base == 18) return {1920, 1080, k59, 3, 16, 9};
    if (base == 19) return {1920, 1080, 60.0, 3, 16, 9};
    if (base == 20) return {2048, 1556, k23, 3, 239, 100};
    if (base == 21) return {2048, 1556, 24.0, 3, 239, 100};
    if (base == 22) return {2048, 1556, 25.0, 3, 239, 100};
    if (base == 23) return {3840, 2160, 25.0, 1, 16, 9};
    if (base == 24) return {3840, 2160, k29, 1, 16, 9};
    if (base == 25) return {3840, 2160, 30.0, 1, 16, 9};
    if (base == 26) return {3840, 2160, k23, 3, 16, 9};
    if (base == 27) return {3840, 2160, 24.0, 3, 16, 9};
    if (base == 28) return {3840, 2160, 25.0, 3, 16, 9};
    if (base == 29) return {3840, 2160, k29, 3, 16, 9};
    if (base == 30) return {3840, 2160, 30.0, 3, 16, 9};
    if (base == 31) return {4096, 2160, k23, 3, 256, 135};
    if (base == 32) return {4096, 2160, 24.0, 3, 256, 135};
    if (base == 33) return {4096, 2160, 25.0, 3, 256, 135};
    return {};
}

int32_t MarginOf(int32_t format) {
    const int32_t base = format & 0xFF;
    if (base >= 1 && base <= 3) return 39;
    if (base == 4 || base == 5) return 49;
    if (base >= 6 && base <= 8) return 30;
    return base >= 9 && base <= 19 ? 45 : 0;
}

bool Rgb(eZFCC fcc) { return (fcc >= 0xE436EB7AU && fcc <= 0xE436EB7EU) || fcc == eZFCC_ARGB32 || fcc == eZFCC_r210; }

bool Planar(eZFCC fcc) {
    return fcc == eZFCC_NV12 || fcc == eZFCC_YV12 || fcc == eZFCC_I420 || fcc == Fcc(0x32323459) || fcc == Fcc(0x34343459);
}

bool Packed(eZFCC fcc) {
    for (const eZFCC f : {eZFCC_r210, eZFCC_v210, eZFCC_YUY2, eZFCC_HDYC, eZFCC_YVYU, eZFCC_UYVY, eZFCC_ARGB32, eZFCC_RGB8,
                          eZFCC_RGB24, eZFCC_RGB32})
        if (f == fcc) return true;
    return false;
}

int32_t Bits(eZFCC fcc) {
    switch (static_cast<uint32_t>(fcc)) {
        case 0x39555659:
            return 9;
        case eZFCC_I420:
        case eZFCC_YV12:
            return 12;
        case eZFCC_v210:
            return 20;
        case eZFCC_NV12:
        case 0x32323459:
        case eZFCC_YUY2:
        case eZFCC_HDYC:
        case eZFCC_YVYU:
        case eZFCC_UYVY:
        case 0xE436EB7B:
        case 0xE436EB7C:
            return 16;
        case 0x32555949:
        case 0x34343459:
        case eZFCC_RGB24:
            return 24;
        case eZFCC_r210:
        case eZFCC_ARGB32:
        case eZFCC_RGB32:
            return 32;
        case eZFCC_RGB8:
            return 8;
        default:
            return 0;
    }
}

int64_t Row(eZFCC fcc, int64_t width) {
    int64_t row;
    if (fcc == eZFCC_v210)
        row = (width + 47) / 48 * 128;
    else if (fcc == eZFCC_r210)
        row = (width + 63) / 64 * 256;
    else if (Planar(fcc))
        row = width;
    else
        row = (((width * Bits(fcc)) >> 3) + 3) & ~int64_t{3};
    return Clamped(row);
}

int64_t Pixels(eZFCC fcc, int64_t rowBytes) {
    if (fcc == eZFCC_v210) return rowBytes / 128 * 48;
    if (fcc == eZFCC_r210) return rowBytes / 256 * 64;
    if (Planar(fcc)) return rowBytes;
    return Bits(fcc) == 0 ? 0 : rowBytes * 8 / Bits(fcc);
}

Z_VID_PROPS FromFormat(int32_t format, eZFCC fcc) {
    Z_VID_PROPS p = {};
    const int32_t base = format & 0xFF;
    const FormatRow row = FormatOf(format);
    p.eVideoFormat = static_cast<eZVideoFormat>(format);
    if (fcc == eZFCC_Default) fcc = base >= 1 && base <= 5 ? eZFCC_UYVY : eZFCC_HDYC;
    p.fccType = fcc;
    p.nWidth = row.width * ((format & 4096) != 0 && (format & 512) != 0 ? 2 : 1);
    p.nHeight = row.height * ((format & 4096) != 0 && (format & 1024) != 0 ? 2 : 1);
    if (Rgb(fcc)) p.nHeight = -p.nHeight;
    p.dblRate = row.rate;
    p.eInterlace = static_cast<eZInterlace>(row.scan);
    p.nAspectX = static_cast<int16_t>(row.aspectX);
    p.nAspectY = static_cast<int16_t>(row.aspectY);
    p.nRowBytes = static_cast<int32_t>(Row(fcc, p.nWidth));
    p.e3DFormat = static_cast<eZ3DFormat>(format & 0x1600);
    return p;
}

int32_t Found(const Z_VID_PROPS *props) {
    if (props == nullptr) return 0;
    if (const int32_t f = FoundInRows(*props)) return f;
    if (props->nHeight >= 1440) {
        Z_VID_PROPS half = *props;
        half.nHeight /= 2;
        return Stacked(half, 0x1400);
    }
    if (props->nWidth >= 2560 && props->nRowBytes < 2 * Row(props->fccType, props->nWidth)) {
        Z_VID_PROPS half = *props;
        half.nWidth /= 2;
        return Stacked(half, 0x200);
    }
    return 0;
}

int32_t Update(Z_VID_PROPS *p, bool trust) {
    if (p == nullptr) return 0;
    if (p->eVideoFormat == 34) return 34;
    if (p->nAspectX == 0 || p->nAspectY == 0) p->nAspectX = p->nAspectY = 0;
    if (p->eVideoFormat != 0) {
        const Z_VID_PROPS nominal = FromFormat(p->eVideoFormat, p->fccType);
        if (nominal.dblRate == 0) return 0;
        Z_VID_PROPS s = nominal;
        s.eScaleType = p->eScaleType;
        const int32_t tall = static_cast<int32_t>(Magnitude(s.nHeight));
        if (trust) {
            if (p->nHeight != 0) s.nHeight = p->nHeight < 0 ? -tall : tall;
        } else {
            if (p->nRowBytes != 0) s.nRowBytes = p->nRowBytes;
            if (p->nAspectX != 0 && p->nAspectY != 0) {
                s.nAspectX = p->nAspectX;
                s.nAspectY = p->nAspectY;
            }
            if (Magnitude(p->nHeight) >= 2)
                s.nHeight = p->nHeight;
            else if (p->nHeight != 0)
                s.nHeight = p->nHeight < 0 ? -tall : tall;
            if (p->nWidth != 0) {
                s.nWidth = p->nWidth;
                if (p->nRowBytes == 0) s.nRowBytes = static_cast<int32_t>(Row(s.fccType, s.nWidth));
            }
            if (p->eInterlace != 0) s.eInterlace = p->eInterlace;
            const bool nominalSize = s.nWidth == nominal.nWidth && Magnitude(s.nHeight) == Magnitude(nominal.nHeight);
            if (!nominalSize || s.eInterlace != nominal.eInterlace) s.eVideoFormat = static_cast<eZVideoFormat>(Found(&s));
        }
        *p = s;
    }
    if (p->eVideoFormat == 0) p->eVideoFormat = static_cast<eZVideoFormat>(Found(p));
    if ((p->eVideoFormat & 0x600) != 0) p->e3DFormat = static_cast<eZ3DFormat>(p->eVideoFormat & 0x1600);
    if (trust && p->nWidth >= 1 && p->nHeight != 0) {
        if (p->eInterlace != eZI_Progressive && p->eInterlace != eZI_Field1First) p->eInterlace = eZI_Progressive;
        if (p->fccType == eZFCC_Default) p->fccType = Magnitude(p->nHeight) < 626 ? eZFCC_UYVY : eZFCC_HDYC;
    }
    const int64_t least = Packed(p->fccType) ? Row(p->fccType, p->nWidth) : 0;
    if (p->nRowBytes < least) p->nRowBytes = static_cast<int32_t>(least);
    return p->eVideoFormat;
}

bool Valid(const Z_VID_PROPS *p) {
    if (p == nullptr) return false;
    return p->eVideoFormat != 0 || (p->nWidth >= 1 && p->nHeight != 0 && p->nRowBytes != 0 && p->fccType != 0);
}

int32_t BufferSize(const Z_VID_PROPS *props) {
    if (props == nullptr) return 0;
    Z_VID_PROPS p = *props;
    if (p.nHeight == 0 || p.nRowBytes == 0) Update(&p, false);
    int64_t size = Magnitude(p.nHeight) * Magnitude(p.nRowBytes);
    if (Planar(p.fccType)) size = size > INT32_MAX ? size : size * 3 / 2;
    return size > INT32_MAX ? 0 : static_cast<int32_t>(size);
}

int32_t OrderSign(const Z_VID_PROPS *p) {
    if (p == nullptr) return 0;
    const int32_t order = p->eInterlace != 0 ? p->eInterlace : FormatOf(p->eVideoFormat).scan;
    return order == 1 ? 1 : order == 2 ? -1 : 0;
}

double Aspect(const Z_VID_PROPS *p) {
    if (p == nullptr) return 1.0;
    if (p->nAspectX > 0 && p->nAspectY > 0) return static_cast<double>(p->nAspectX) / p->nAspectY;
    if (p->nHeight >= 1) return static_cast<double>(p->nWidth) / p->nHeight;
    return 1.7777777777777777;
}

int64_t Need(const Z_VID_PROPS &p) {
    if (Planar(p.fccType)) return BufferSize(&p);
    int64_t last = (static_cast<int64_t>(p.nWidth) * Bits(p.fccType) + 7) / 8;
    if (p.fccType == eZFCC_v210) last = (static_cast<int64_t>(p.nWidth) + 5) / 6 * 16;
    return (Magnitude(p.nHeight) - 1) * Magnitude(p.nRowBytes) + last;
}

std::string Words(const Z_VID_PROPS &p) {
    std::ostringstream out;
    out.precision(17);
    out << "format " << p.eVideoFormat << " fcc " << std::hex << static_cast<uint32_t>(p.fccType) << std::dec << " size "
        << p.nWidth << "x" << p.nHeight << " row " << p.nRowBytes << " scan " << p.eInterlace << " aspect " << p.nAspectX << ":"
        << p.nAspectY << " rate " << p.dblRate << " scale " << p.eScaleType << " 3d " << p.e3DFormat;
    return out.str();
}

Z_VID_PROPS Picture(eZFCC fcc, int32_t width, int32_t height) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = width;
    p.nHeight = height;
    p.nRowBytes = static_cast<int32_t>(Row(fcc, width));
    p.eInterlace = eZI_Progressive;
    p.dblRate = 10.0;
    return p;
}

}    // namespace conformance
