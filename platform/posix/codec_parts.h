// The codecs of single kinds. Statuses as in codec.h; they may throw `std::bad_alloc`. A library that is not there makes
// `...There` false and every call a failure.
#pragma once

#include "platform/codec.h"

namespace zck {

bool PixbufThere();
/// PNG and JPEG.
HRESULT PixbufEncode(CodecKind kind, const CodecSource &source, std::string &file);
/// PNG, JPEG and BMP.
HRESULT PixbufDecode(CodecKind kind, std::string_view file, bool straight, CodecSink &sink);

bool TiffThere();
HRESULT TiffEncode(const CodecSource &source, std::string &file);
HRESULT TiffDecode(std::string_view file, bool straight, CodecSink &sink);

bool GifThere();
HRESULT GifEncode(const CodecSource &source, std::string &file);
HRESULT GifDecode(std::string_view file, CodecSink &sink);

HRESULT BmpEncode(const CodecSource &source, std::string &file);

}    // namespace zck
