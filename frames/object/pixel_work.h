// Pixel work on whole pictures, with the checks that keep it inside their buffers.
#pragma once

#include <cstdint>

#include "frames/media/pixel_format.h"
#include "platform/status.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Formats that are the same bytes: HDYC reads as UYVY, RGB32 as ARGB32.
bool SameBytes(eZFCC a, eZFCC b);

/// The work of a clone in another format.
enum class CloneWork { Plain, Relabel, Convert };
CloneWork CloneWorkOf(const Z_VID_PROPS &source, int32_t videoSize, eZFCC fcc);

/// The record of a picture after conversion: RGB formats with the top row first.
Z_VID_PROPS ConvertedRecord(const Z_VID_PROPS &source, eZFCC fcc);

/// Whether a buffer holds all pixels that a record states, as an operation would read the record. False for a negative width
/// and for planes whose rows are shorter than the picture is wide.
bool PixelsFit(const Z_VID_PROPS &props, uint32_t size);

/// False when the length of the rows is neither told nor known, so that there is nothing to convert.
bool HasRows(const Z_VID_PROPS &props);

/// One conversion. The target's buffer is as large as `FrameBufferSize` of its record.
struct PixelJob {
    Z_VID_PROPS sourceProps{};
    Z_VID_PROPS targetProps{};
    const uint8_t *source = nullptr;
    uint8_t *target = nullptr;
    uint32_t sourceSize = 0;
    uint32_t targetSize = 0;
    bool bZeroed = false;    ///< the target's bytes are 0
};

/// Converts; target bytes that the conversion does not reach are 0. Formats between which there is no conversion (RGB to v210,
/// anything from or to r210 and RGB8) give a picture of zeros.
HRESULT PixelsConvert(const PixelJob &job);

/// Fills a picture with a colour 0xAABBGGRR; formats that cannot be filled stay 0. `bZeroed` as above.
void PixelsFill(const Z_VID_PROPS &props, uint8_t *pixels, uint32_t size, uint32_t color, bool bZeroed);

/// Keeps one field (0: the even rows in memory) of a picture that fits its buffer: each row of the other becomes the mean of
/// its two neighbours, ties to even. The edge row that has only one neighbour stays.
void PixelsKeepField(const Z_VID_PROPS &props, uint8_t *pixels, int32_t field);

/// Turns a picture that fits its buffer upside down, in place.
void PixelsTurn(const Z_VID_PROPS &props, uint8_t *pixels);

}    // namespace zck
