#include "frames/media/pixel_format.h"

#include <algorithm>
#include <limits>

namespace zck {
namespace {

constexpr PixelFormatRow kTable[kPixelFormatRows] = {
    {eZFCC_YUY2, 16, 2, 1, {0, 1, 3}, {2, 4, 4}, false, true},   {eZFCC_UYVY, 16, 2, 1, {1, 0, 2}, {2, 4, 4}, false, true},
    {eZFCC_YV12, 12, 2, 2, {0, 0, 0}, {1, 1, 1}, true, true},    {eZFCC_YVYU, 16, 2, 1, {0, 3, 1}, {2, 4, 4}, false, true},
    {eZFCC_I420, 12, 2, 2, {0, 0, 0}, {1, 1, 1}, true, true},    {kFccIyu2, 24, 1, 1, {2, 1, 0}, {3, 3, 3}, false, true},
    {eZFCC_RGB32, 32, 1, 1, {2, 1, 0}, {4, 4, 4}, false, false}, {eZFCC_ARGB32, 32, 1, 1, {2, 1, 0}, {4, 4, 4}, false, false},
    {eZFCC_RGB24, 24, 1, 1, {2, 1, 0}, {3, 3, 3}, false, false}, {kFccRgb565, 16, 1, 1, {1, 0, 0}, {2, 2, 2}, false, false},
    {kFccRgb555, 16, 1, 1, {1, 0, 0}, {2, 2, 2}, false, false},  {eZFCC_HDYC, 16, 2, 1, {1, 0, 2}, {2, 4, 4}, false, true},
    {eZFCC_v210, 20, 2, 1, {1, 0, 2}, {2, 4, 4}, false, true},   {eZFCC_r210, 32, 1, 1, {0, 1, 2}, {4, 4, 4}, false, false},
    {eZFCC_NV12, 12, 2, 2, {0, 0, 0}, {1, 1, 1}, true, true},
};

int32_t Clamp32(int64_t n) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(n, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

}    // namespace

int32_t PixelBits(eZFCC fcc) {
    switch (static_cast<uint32_t>(fcc)) {
        case kFccYvu9:
            return 9;
        case eZFCC_I420:
        case eZFCC_YV12:
            return 12;
        case eZFCC_v210:
            return 20;
        case eZFCC_NV12:
        case kFccY422:
        case eZFCC_YUY2:
        case eZFCC_HDYC:
        case eZFCC_YVYU:
        case eZFCC_UYVY:
        case kFccRgb565:
        case kFccRgb555:
            return 16;
        case kFccIyu2:
        case kFccY444:
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

bool IsPlanarFormat(eZFCC fcc) {
    return fcc == eZFCC_NV12 || fcc == eZFCC_YV12 || fcc == eZFCC_I420 || fcc == kFccY422 || fcc == kFccY444;
}

bool IsPackedFormat(eZFCC fcc) {
    switch (static_cast<uint32_t>(fcc)) {
        case eZFCC_r210:
        case eZFCC_v210:
        case eZFCC_YUY2:
        case eZFCC_HDYC:
        case eZFCC_YVYU:
        case eZFCC_UYVY:
        case eZFCC_ARGB32:
        case eZFCC_RGB8:
        case eZFCC_RGB24:
        case eZFCC_RGB32:
            return true;
        default:
            return false;
    }
}

bool IsRgbFormat(eZFCC fcc) { return (fcc >= eZFCC_RGB8 && fcc <= eZFCC_RGB32) || fcc == eZFCC_ARGB32 || fcc == eZFCC_r210; }

int32_t RowBytes(eZFCC fcc, int32_t width) {
    const int64_t w = width;
    if (fcc == eZFCC_v210) return Clamp32((w + 47) / 48 * 128);
    if (fcc == eZFCC_r210) return Clamp32((w + 63) / 64 * 256);
    if (IsPlanarFormat(fcc)) return width;
    return Clamp32((((w * PixelBits(fcc)) >> 3) + 3) & ~int64_t{3});
}

int32_t RowPixels(eZFCC fcc, int32_t rowBytes) {
    if (fcc == eZFCC_v210) return rowBytes / 128 * 48;
    if (fcc == eZFCC_r210) return rowBytes / 256 * 64;
    if (IsPlanarFormat(fcc)) return rowBytes;
    const int64_t bits = PixelBits(fcc);
    return bits != 0 ? Clamp32(int64_t{rowBytes} * 8 / bits) : 0;
}

const PixelFormatRow *PixelFormatTable() { return kTable; }

const PixelFormatRow *PixelFormatFind(eZFCC fcc) {
    const auto *end = kTable + kPixelFormatRows;
    const auto *row = std::find_if(kTable, end, [fcc](const PixelFormatRow &r) { return r.fcc == fcc; });
    return row != end ? row : nullptr;
}

}    // namespace zck
