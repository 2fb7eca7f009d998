// Reading a stored frame. Nothing of the frame that it is for is touched: what was read is told in a `FrameLoad`.
#pragma once

#include "frames/stream/frame_content.h"

namespace zck {

/// Brings pixels in from a section. Its failure ends the load.
class PixelOpener {
public:
    /// `size` bytes from the section of this number; neither is 0.
    virtual HRESULT Open(uint64_t section, uint32_t size) = 0;

protected:
    ~PixelOpener() = default;
};

/// Reads what `load.flags` choose, which should be what the writer chose: without any media bits the reader does not step over
/// the media that are there, and reads on at the wrong place. After a failure `load` tells what came before it.
///
/// The block form: fields that are cut have the bytes that are there; the first entry that is cut ends the load, and that is
/// no failure. `kErrorHandleEof` for a block without its first word.
HRESULT FrameLoadBlock(const uint8_t *block, uint32_t size, PixelOpener &pixels, FrameLoad &load);

/// The stream form, at the stream's position: what is cut fails with `kErrorHandleEof`, text with `E_FAIL`. `E_FAIL` for what
/// does not begin with the mark. No lock may be held.
HRESULT FrameLoadStream(IStream *stream, PixelOpener &pixels, FrameLoad &load);

}    // namespace zck
