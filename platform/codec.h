// Image files in the formats of the system's codecs: GDI+ on Windows, gdk-pixbuf, libtiff and giflib elsewhere. They are
// loaded with the first image. Any thread.
#pragma once

#include <string>
#include <string_view>

#include "zchromakey/com.h"

namespace zck {

enum class CodecKind { Png, Gif, Tiff, Jpeg, Bmp };

/// Bytes of a pixel in memory: blue, green, red, and alpha, nothing of meaning, or no fourth one.
enum class CodecPixels { Premultiplied, Rgb32, Rgb24 };

/// A picture to encode. Rows are `stride` bytes apart from the top one on; negative for pictures with the bottom row first.
struct CodecSource {
    const uint8_t *top;
    int64_t stride;
    int32_t width;
    int32_t height;
    CodecPixels pixels;
};

/// Takes the pictures of a file.
class CodecSink {
public:
    /// Asked before anything is decoded about what the file states: so many pictures of this size, 0 for what it does not
    /// state. A failure ends the decoding.
    virtual HRESULT Expect(int64_t pictures, int64_t width, int64_t height) = 0;
    /// Asked before a picture is decoded: the memory for `width` * `height` pixels of 4 bytes, the bottom row first. A failure
    /// ends the decoding. `delay` is in hundredths of a second.
    virtual HRESULT Begin(int64_t width, int64_t height, uint16_t delay, uint8_t *&pixels) = 0;
    /// The picture is there; without this call it could not be decoded. False when no other is wanted.
    virtual bool Keep() = 0;

protected:
    ~CodecSink() = default;
};

/// The system has an encoder for this kind.
bool CodecEncodes(CodecKind kind) noexcept;

/// The bytes of an image file. Kinds without an alpha drop it: the colour is what it was before it was multiplied. PNG has it
/// that way too, TIFF has it either way and says which. `E_FAIL` when the codec cannot.
HRESULT CodecEncode(CodecKind kind, const CodecSource &source, std::string &file) noexcept;

/// All pictures of a file as blue, green, red, alpha, with colours multiplied by alpha unless `straight`. Pictures that cannot
/// be decoded are left out. `E_INVALIDARG` for a file that is no image; `E_OUTOFMEMORY`; failures of the sink.
HRESULT CodecDecode(std::string_view file, bool straight, CodecSink &sink) noexcept;

}    // namespace zck
