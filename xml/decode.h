// Bytes of a file as text.
#pragma once

#include <string_view>

#include "platform/text.h"

namespace zck::XMLParse {

/// By byte order mark, by the "<?...?>" declaration, by zero bytes between the characters, and else by what the bytes can be:
/// UTF-8, then the system's code page, then UTF-7. No bytes are an empty text. Throws `std::bad_alloc`.
///
/// A declaration of "utf-7" is taken for UTF-8, and bytes that are not well-formed UTF-8 for the code page, whatever they say.
Text DecodeBytes(std::string_view bytes);

/// Whether bytes are 16-bit text: 2 and -2 for a byte order mark, 1 and -1 for a zero byte in a first part of the bytes,
/// 0 for no sign of it. Negative when the high byte comes first.
int Utf16Test(std::string_view bytes, double ratio) noexcept;

}    // namespace zck::XMLParse
