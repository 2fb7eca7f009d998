#include "imaging/geometry/mirror_bits.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/row_order.h"
#include "imaging/primitives/mirror.h"
#include "platform/status.h"

namespace zck {
namespace {

// A record that describes no picture.
constexpr HRESULT kNoPicture = StatusOf(0x80040200);

constexpr int32_t kAxis[4] = {-1, kMirrorColumns, kMirrorRows, kMirrorBoth};

// Which byte of a pair of pixels comes first and so on, once the pairs are reversed as two words.
constexpr int32_t kChromaFirst[4] = {2, 1, 0, 3};
constexpr int32_t kLumaFirst[4] = {0, 3, 2, 1};

constexpr int32_t kBand = 16;    // rows

struct Image {
    uint8_t *bits;
    int64_t step;
    ROI size;
    eZFCC fcc;
};

bool Is422(eZFCC fcc) { return fcc == eZFCC_UYVY || fcc == eZFCC_HDYC || fcc == eZFCC_YUY2 || fcc == eZFCC_YVYU; }

// In YVYU it is the luma that changes places: Cb and Cr stay exchanged.
int32_t SwapChroma(const Image &image) {
    const ROI pairs = {image.size.width / 2, image.size.height};
    if (pairs.width < 1) return kPrimitiveOk;
    return SwapChannels_8u_C4IR(image.bits, image.step, pairs, image.fcc == eZFCC_YUY2 ? kLumaFirst : kChromaFirst);
}

int32_t Mirror422(const Image &image, int32_t axis) {
    const int32_t status = Mirror_16u_C1IR(image.bits, image.step, image.size, axis);
    return status != kPrimitiveOk || axis == kMirrorRows ? status : SwapChroma(image);
}

int32_t MirrorPixels(const Image &image, int32_t axis) {
    if (image.fcc == eZFCC_RGB24) return Mirror_8u_C3IR(image.bits, image.step, image.size, axis);
    if (!Is422(image.fcc)) return Mirror_8u_C4IR(image.bits, image.step, image.size, axis);
    if (axis != kMirrorColumns) return Mirror422(image, axis);
    // Band by band, so that the second step finds its rows in the cache.
    int32_t status = kPrimitiveOk;
    for (int32_t y = 0; y < image.size.height && status == kPrimitiveOk; y += kBand) {
        const ROI size = {image.size.width, std::min(image.size.height - y, kBand)};
        status = Mirror422({image.bits + y * image.step, image.step, size, image.fcc}, axis);
    }
    return status;
}

// The picture moves up by one row, whatever its row order is; the last row stays.
void MoveUp(const Z_VID_PROPS &props, uint8_t *bits, int64_t bytes, int64_t row) {
    const int64_t whole = std::min<int64_t>(FrameBufferSize(&props), bytes);
    if (whole > row) std::memmove(bits, bits + row, static_cast<size_t>(whole - row));
}

// `bits` may be those of a source that is only read.
HRESULT Open(const uint8_t *bits, int64_t bytes, const Z_VID_PROPS *props, int32_t nIndex, Z_VID_PROPS *record, Image *image) {
    if (bits == nullptr || props == nullptr) return E_POINTER;
    if (nIndex < kMirrorHorz || nIndex > kMirrorHorzVert) return E_INVALIDARG;
    const eZFCC fcc = props->fccType;
    if (!Is422(fcc) && fcc != eZFCC_RGB24 && fcc != eZFCC_RGB32 && fcc != eZFCC_ARGB32) return E_NOTIMPL;
    *record = *props;
    int64_t offset = 0;
    if (NormaliseRecord(record, &offset, nullptr) != S_OK || record->nWidth < 1 || record->nHeight == 0) return kNoPicture;
    record->nRowBytes = std::abs(record->nRowBytes);
    if (VideoBytesNeeded(*record) > bytes) return kVfwEInvalidMediaType;
    *image = {const_cast<uint8_t *>(bits), record->nRowBytes, {record->nWidth, std::abs(record->nHeight)}, fcc};
    return S_OK;
}

void MoveUpFields(const Z_VID_PROPS &record, uint8_t *bits, int64_t bytes, int32_t nIndex) {
    if (nIndex != kMirrorHorz && FieldOrderSign(&record) != 0) MoveUp(record, bits, bytes, record.nRowBytes);
}

Image RowsOf(const Image &image, int32_t y, int32_t count) {
    return {image.bits + y * image.step, image.step, {image.size.width, count}, image.fcc};
}

int32_t MirrorRowsInto(const Image &from, const Image &to, int32_t axis) {
    if (from.fcc == eZFCC_RGB24) return Mirror_8u_C3R(from.bits, from.step, to.bits, to.step, to.size, axis);
    if (!Is422(from.fcc)) return Mirror_8u_C4R(from.bits, from.step, to.bits, to.step, to.size, axis);
    const int32_t status = Mirror_16u_C1R(from.bits, from.step, to.bits, to.step, to.size, axis);
    return status != kPrimitiveOk || axis == kMirrorRows ? status : SwapChroma(to);
}

}    // namespace

HRESULT MirrorBits(uint8_t *bits, int64_t bytes, const Z_VID_PROPS *props, int32_t nIndex) {
    Z_VID_PROPS record;
    Image image;
    const HRESULT hr = Open(bits, bytes, props, nIndex, &record, &image);
    if (hr != S_OK) return hr;
    if (MirrorPixels(image, kAxis[nIndex]) != kPrimitiveOk) return E_FAIL;
    MoveUpFields(record, bits, bytes, nIndex);
    return S_OK;
}

HRESULT MirrorBitsCopy(const uint8_t *src, uint8_t *dst, int64_t bytes, const Z_VID_PROPS *props, int32_t nIndex) {
    if (dst == nullptr) return E_POINTER;
    Z_VID_PROPS record;
    Image from;
    const HRESULT hr = Open(src, bytes, props, nIndex, &record, &from);
    if (hr != S_OK) return hr;
    const Image to = {dst, from.step, from.size, from.fcc};
    const int64_t row = int64_t{from.size.width} * PixelBits(from.fcc) / 8;
    const int32_t rows = from.size.height;
    // What is no pixel keeps its place: the padding of the rows, and what is behind the last one.
    for (int32_t y = 0; y < rows; ++y) {
        const int64_t end = y * from.step + row;
        const int64_t next = y + 1 < rows ? end - row + from.step : bytes;
        if (next > end) std::memcpy(dst + end, src + end, static_cast<size_t>(next - end));
    }
    // Band by band, so that the second step of 4:2:2 finds its rows in the cache.
    for (int32_t y = 0; y < rows; y += kBand) {
        const int32_t count = std::min(rows - y, kBand);
        const int32_t start = nIndex == kMirrorHorz ? y : rows - y - count;
        if (MirrorRowsInto(RowsOf(from, start, count), RowsOf(to, y, count), kAxis[nIndex]) != kPrimitiveOk) return E_FAIL;
    }
    MoveUpFields(record, dst, bytes, nIndex);
    return S_OK;
}

}    // namespace zck
