// In which format 8-bit samples go over to the library, and how they get into its frame.
#pragma once

#include "hosts/zkey/yuv_planes.h"
#include "zchromakey/media_types.h"

namespace zkey {

/// As they are where the library shows them rightly: 4:2:2 by its matrix as UYVY, YUY2 (BT.601) or HDYC (BT.709), and
/// progressive BT.601 4:2:0 of even size as I420, YV12 or NV12. All else becomes RGB32: full range, other matrices, 4:2:0 whose
/// chroma rows belong to fields (the library pairs neighbours), and samplings that it has no format for.
eZFCC HandOverFormat(const YuvPlanes &planes, const YuvMeaning &meaning, int width, int height);

/// Writes the samples into a frame of that format, of at least this size.
void HandOver(const YuvPlanes &planes, const YuvMeaning &meaning, int width, int height, uint8_t *pixels,
              const Z_VID_PROPS &props);

}    // namespace zkey
