// A quarter turn that keeps the picture's place in its rows.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/scale/resizer.h"
#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Scratch that a turn keeps from frame to frame.
struct RotateScratch {
    Resizer resizer[3];
    std::vector<uint8_t> planes;
    std::vector<uint8_t> widened;
    std::vector<uint8_t> resized;
};

/// Turns `src` left (counter-clockwise in the order of the rows in memory: bottom-up images turn the other way on the screen)
/// or right into `dst`. The picture is first resized, linear, to the exchanged size of the target, and then turned exactly;
/// with exchanged sizes RGB and luma are turned alone. Interlaced pictures go field by field, each into the rows of its own
/// parity; a last odd source row is not used, a last odd target row not written.
///
/// S_OK; `E_INVALIDARG` without image or record, for a size below 1, for two families, and for formats other than UYVY, HDYC,
/// YUY2, YVYU, RGB24, RGB32 and ARGB32; 0x80040248 when a memory does not hold its image; `E_OUTOFMEMORY`.
HRESULT RotateBits(RotateScratch *scratch, const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes,
                   const Z_VID_PROPS *sp, const Z_VID_PROPS *tp, bool bLeft, bool bInterlaced);

}    // namespace zck
