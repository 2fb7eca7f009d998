// Byte streams in memory of our own making, on every system.
#pragma once

#include "zchromakey/com.h"

namespace zck {

/// A new, empty stream that grows with what is written, up to 4 GiB, and frees its bytes with itself. Its position may stand
/// behind its end; nothing is read there. Free-threaded.
HRESULT ByteStreamCreate(IStream **out) noexcept;

}    // namespace zck
