// A text in a stream: a 32-bit count of bytes, then 16-bit units and a zero unit, all low byte first. The count includes the
// zero; a count of 0 is no text.
#pragma once

#include "platform/text.h"

namespace zck {

/// Most bytes that such a count may tell.
constexpr uint32_t kStreamTextBytesMax = 0x100000;

/// `E_ACCESSDENIED` for a larger count; `E_FAIL` for an odd count, too few bytes, or no zero at the end; failures of the
/// stream. After a failure the stream stands where it stood, and `text` is as it was.
HRESULT StreamTextRead(IStream *stream, Text &text) noexcept;

/// `E_ACCESSDENIED` for a text that could not be read back, `E_FAIL` when the stream takes less than all. After a failure the
/// stream stands where it stood.
HRESULT StreamTextWrite(IStream *stream, TextView text) noexcept;

}    // namespace zck
