// Files by 16-bit paths. On systems with byte paths the path is UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "platform/text.h"

namespace zck {

constexpr HRESULT kErrorInvalidName = static_cast<HRESULT>(0x8007007B);     ///< a path with a zero inside
constexpr HRESULT kErrorFileTooLarge = static_cast<HRESULT>(0x800700DF);    ///< more bytes than the caller takes

/// The whole file, which others may read and write meanwhile. Statuses of the system; `kErrorFileTooLarge` for a file of more
/// than `bytesMax`; a folder cannot be read. `out` is empty after a failure.
HRESULT FileRead(TextView path, size_t bytesMax, std::string &out) noexcept;

/// Creates the file, or empties an old one, and writes the bytes.
HRESULT FileWrite(TextView path, std::string_view bytes) noexcept;

/// Something has this path, be it a file or a folder.
bool FileExists(TextView path) noexcept;

}    // namespace zck
