// `ConvertSameGeometry` on several threads.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Does what `ConvertSameGeometry` does, with its statuses and its bytes. Images whose rows depend on each other, formats of
/// the same bytes (HDYC and UYVY, RGB32 and ARGB32) and small images are done on the calling thread; of others, up to four
/// threads take a band of rows each, never more than the machine has processors. Returns when all are done; a thread that
/// cannot be started leaves its band to the caller.
HRESULT CopyFrameCC_Thread(const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes, const Z_VID_PROPS *sp,
                           const Z_VID_PROPS *tp);

}    // namespace zck
