// Pictures as image files.
#pragma once

#include "imaging/colour/image_desc.h"
#include "platform/text.h"

namespace zck {

constexpr HRESULT kCoENotSupported = static_cast<HRESULT>(0x80004021);    ///< no encoder, or none for this format

/// Saves a picture as the kind of file that the name's extension asks for, replacing an old one: .png, .gif, .tif, .tiff, .jpg,
/// .jpeg, and BMP for .bmp, for every other extension and for none. ARGB32 goes into a .bmp by `WriteBmp`, as it stands; any
/// other file is the codec's, which takes ARGB32 as premultiplied and keeps alpha in PNG and TIFF. In the others alpha is
/// dropped and the colour is what it was before it was multiplied.
///
/// Rows are `nWidth` times 4 bytes apart, whatever `nRowPixels` says, also in RGB24. A height below 1 is that of a picture
/// with the top row first.
///
/// `E_UNEXPECTED` without bytes or description; 0x80004021 when there is no encoder, and for formats other than ARGB32, RGB32
/// and RGB24; those of `WriteBmp`; `E_FAIL` for whatever else fails.
HRESULT SaveImageFile(const uint8_t *bytes, const ImgDesc *desc, TextView name) noexcept;

}    // namespace zck
