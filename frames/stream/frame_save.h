// A frame as bytes: the block form, for one process to hand to another, and the stream form, which also carries objects.
#pragma once

#include "frames/stream/frame_content.h"

namespace zck {

/// Writes the block form into a block of the task allocator. `size` is the used size rounded up to 32 bytes; the bytes behind
/// the used ones are 0. Texts end at their first zero. `E_OUTOFMEMORY` above 0x7FFFFFFF bytes. Calls nothing of others, so
/// that it may run under locks.
HRESULT FrameSaveBlock(const FrameContent &content, int32_t &size, void *&block);

/// Writes the stream form at the stream's position. Only the mark, the sound and the values of data have to succeed: small
/// writes to a healthy stream do not fail. A write of fewer bytes than asked for is a failure. No lock may be held.
HRESULT FrameSaveStream(const FrameContent &content, IStream *stream);

/// Bytes of the stream form without its objects.
uint64_t FrameStreamBytes(const FrameContent &content);

}    // namespace zck
