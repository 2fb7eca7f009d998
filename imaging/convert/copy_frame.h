// `ConvertSameGeometry` on several threads.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Does what `ConvertSameGeometry` does, with its statuses and its bytes. Images whose rows depend on each other, formats of
/// the same bytes (HDYC and UYVY, RGB32 and ARGB32) and small images are done on the calling thread. Others go in up to four
/// bands of rows, never more than the machine has processors, on this thread and those of `WorkerPool::Shared`. Returns when
/// all are done.
HRESULT CopyFrameCC_Thread(const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes, const Z_VID_PROPS *sp,
                           const Z_VID_PROPS *tp);

}    // namespace zck
