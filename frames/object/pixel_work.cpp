#include "frames/object/pixel_work.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frames/media/video_props.h"
#include "imaging/colour/convert.h"
#include "imaging/colour/fill.h"
#include "imaging/convert/copy_frame.h"
#include "imaging/convert/img_convert.h"

namespace zck {
namespace {

// Clears what is not sure to be written of each row: buffers come from the pool with the pixels of an earlier frame in them.
// Rows of a format without such a promise are cleared whole.
void UnsureBytesClear(const Z_VID_PROPS &props, uint8_t *pixels, int64_t size) {
    const int64_t step = std::max<int64_t>(std::abs(static_cast<int64_t>(props.nRowBytes)), 1);
    const FormatRow *format = FormatFind(props.fccType);
    const int64_t sure = std::clamp<int64_t>(format != nullptr ? format->SureRowBytes(props.nWidth) : 0, 0, step);
    if (sure == step) return;
    for (int64_t row = 0; row < size; row += step) {
        if (row + sure < size) std::memset(pixels + row + sure, 0, static_cast<size_t>(std::min(step, size - row) - sure));
    }
}

// For what has no direct route. Formats that are not served at all give a picture of zeros, and that is a success.
HRESULT ConvertOtherwise(const PixelJob &job) {
    const bool whole = job.targetProps.nWidth % 2 == 0 && ColorConvertServes(job.sourceProps.fccType, job.targetProps.fccType);
    if (!job.bZeroed && !whole) std::memset(job.target, 0, job.targetSize);
    ImgScaleState state;
    const HRESULT hr =
        ImgConvert(&state, job.source, job.sourceSize, job.target, job.targetSize, &job.sourceProps, &job.targetProps);
    return SUCCEEDED(hr) ? S_OK : hr;
}

// The record as an operation on pixels reads it.
Z_VID_PROPS RecordUsed(const Z_VID_PROPS &props) {
    Z_VID_PROPS used = props;
    VideoPropsUpdate(&used, false);
    // One line with row bytes is one line; the update takes it for a request for a sign.
    if (std::abs(static_cast<int64_t>(props.nHeight)) == 1 && props.nRowBytes != 0) used.nHeight = props.nHeight;
    return used;
}

// Rows are never shorter than their pixels, as in a record that has been normalised.
int64_t UsedRowBytes(const Z_VID_PROPS &props) {
    return std::max<int64_t>(props.nRowBytes, IsPackedFormat(props.fccType) ? RowBytes(props.fccType, props.nWidth) : 0);
}

}    // namespace

bool SameBytes(eZFCC a, eZFCC b) { return PlainFormat(a) == PlainFormat(b); }

CloneWork CloneWorkOf(const Z_VID_PROPS &source, int32_t videoSize, eZFCC fcc) {
    if (fcc == eZFCC_Default || videoSize <= 0) return CloneWork::Plain;
    // A bottom-up picture is always turned over by a conversion into the RGB family.
    const bool turns = IsRgbFormat(fcc) && source.nHeight >= 1;
    if (!SameBytes(source.fccType, fcc) || turns) return CloneWork::Convert;
    return source.fccType == fcc ? CloneWork::Plain : CloneWork::Relabel;
}

Z_VID_PROPS ConvertedRecord(const Z_VID_PROPS &source, eZFCC fcc) {
    Z_VID_PROPS target = source;
    const int64_t rows = std::min<int64_t>(std::abs(static_cast<int64_t>(source.nHeight)), INT32_MAX);
    target.fccType = fcc;
    target.nRowBytes = RowBytes(fcc, source.nWidth);
    target.nHeight = static_cast<int32_t>(IsRgbFormat(fcc) ? -rows : rows);
    return target;
}

bool PixelsFit(const Z_VID_PROPS &props, uint32_t size) {
    const Z_VID_PROPS used = RecordUsed(props);
    if (props.nWidth < 0 || VideoBytesNeeded(used) > size) return false;
    // Rows of planes are as long as the record says, and it may say anything.
    return !IsPlanarFormat(used.fccType) || used.nRowBytes >= used.nWidth;
}

bool HasRows(const Z_VID_PROPS &props) { return RecordUsed(props).nRowBytes != 0; }

HRESULT PixelsConvert(const PixelJob &job) {
    if (!PixelsFit(job.sourceProps, job.sourceSize) || !PixelsFit(job.targetProps, job.targetSize))
        return kVfwEInvalidMediaType;
    if (!job.bZeroed) UnsureBytesClear(job.targetProps, job.target, job.targetSize);
    const bool tenBit = IsTenBitFormat(job.sourceProps.fccType) || IsTenBitFormat(job.targetProps.fccType);
    const HRESULT hr =
        tenBit
            ? CopyFrameCC_Thread(job.source, job.sourceSize, job.target, job.targetSize, &job.sourceProps, &job.targetProps)
            : ConvertSameGeometry(job.source, job.sourceSize, job.target, job.targetSize, &job.sourceProps, &job.targetProps);
    return SUCCEEDED(hr) ? hr : ConvertOtherwise(job);
}

void PixelsFill(const Z_VID_PROPS &props, uint8_t *pixels, uint32_t size, uint32_t color, bool bZeroed) {
    if (!bZeroed) std::memset(pixels, 0, size);
    if (!PixelsFit(props, size)) return;
    // Rows of a negative length lie in the block like all others; a fill from its start would run out of it.
    Z_VID_PROPS rows = props;
    rows.nRowBytes = std::abs(rows.nRowBytes);
    FillImage(&rows, pixels, color, 1.0);
}

void PixelsKeepField(const Z_VID_PROPS &props, uint8_t *pixels, int32_t field) {
    const int64_t rows = std::abs(static_cast<int64_t>(props.nHeight));
    const int64_t step = UsedRowBytes(props);
    // Planes have one byte a pixel, whatever all planes together take.
    const int64_t pixelBytes = IsPlanarFormat(props.fccType) ? 1 : PixelBits(props.fccType) / 8;
    const int64_t bytes = props.nWidth * pixelBytes;
    for (int64_t pair = 0; pair < rows / 2 - 1; ++pair) {
        uint8_t *row = pixels + (2 * pair + 1 + field) * step;
        for (int64_t x = 0; x < bytes; ++x) {
            const uint32_t sum = static_cast<uint32_t>(row[x - step]) + row[x + step];
            const uint32_t half = sum >> 1;
            row[x] = static_cast<uint8_t>(half + (sum & half & 1));
        }
    }
}

void PixelsTurn(const Z_VID_PROPS &props, uint8_t *pixels) {
    const int64_t rows = std::abs(static_cast<int64_t>(props.nHeight));
    const int64_t step = UsedRowBytes(props);
    const int64_t bytes = (static_cast<int64_t>(props.nWidth) * PixelBits(props.fccType) + 7) / 8;
    for (int64_t row = 0; row < rows / 2; ++row) {
        std::swap_ranges(pixels + row * step, pixels + row * step + bytes, pixels + (rows - 1 - row) * step);
    }
}

}    // namespace zck
