// Bitmap files, read as they stand.
#pragma once

#include "platform/text.h"

namespace zck {

/// Reads the header of a bitmap file and its rows, `biSizeImage` bytes in a block of the task allocator that the caller frees;
/// a size that the file leaves out is worked out. Pixels have 16, 24 or 32 bits or a code of the format table. The sign of the
/// height says the row order, positive with the bottom row first. Bytes come as they stand: alpha is what the fourth byte
/// says, also where it is 0 in the whole file.
///
/// `E_INVALIDARG` without name or header, `E_POINTER` without a place for the block; the system's status for a file that
/// cannot be opened or read; `E_FAIL` for a file that is none of these, or does not hold what it states; `E_OUTOFMEMORY`.
HRESULT ReadBmp(TextView name, BITMAPINFOHEADER *header, uint8_t **pixels) noexcept;

}    // namespace zck
