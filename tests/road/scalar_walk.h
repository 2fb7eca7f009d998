// A plain walk through the keying of one 32-bit frame: byte by byte, plane by plane, with no code of the engine in it.
// It is the witness against which whole keyed frames are compared; it knows nothing of bands, vectors or threads.
#pragma once

#include <cstdint>
#include <vector>

#include "zchromakey/key_types.h"
#include "zchromakey/media_types.h"

namespace zck::walk {

/// Keys `pixels` (rows of `props.nRowBytes` bytes, 4 bytes a pixel, `eZFCC_ARGB32`) in place as `threads` slices do, and
/// premultiplies it. `alpha` is the plane that a keyer keeps from frame to frame, |nHeight| rows of nRowBytes / 4 bytes.
/// Returns the status of the keying. Keys that cancel spill are not handled.
HRESULT KeyFrame(std::vector<uint8_t> &pixels, std::vector<uint8_t> &alpha, const Z_VID_PROPS &props, CHROMA_KEY_RAW key,
                 int threads);

}    // namespace zck::walk
