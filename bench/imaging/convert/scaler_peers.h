// Other scalers, for comparison.
#pragma once

#include "bench/measure.h"
#include "zchromakey/media_types.h"

namespace zck {

/// A frame of 1920 by 1080 to `width` by `height` on one thread. Empty where the library is not there or does not do it.
/// libswscale, with its nearest kernel and exact chroma, from packed to packed.
bench::FrameWork SwscaleWork(eZFCC from, eZFCC to, int32_t width, int32_t height, int32_t quality);
/// zimg, with its nearest kernel, from planes to planes: it packs nothing. RGB of three planes stands for 4-byte pixels.
bench::FrameWork ZimgWork(eZFCC from, eZFCC to, int32_t width, int32_t height, int32_t quality);

}    // namespace zck
