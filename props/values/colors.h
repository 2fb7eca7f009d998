// A colour as text. Values are 0xAABBGGRR.
#pragma once

#include "platform/text.h"

namespace zck {

/// A name of the table or "#RRGGBB", and "(alpha)" behind it when the alpha is not 255.
Text ColorToText(uint32_t color);
/// The same into a buffer of at least 64 characters. Gives the buffer, null for null.
OLECHAR *ColorToText(uint32_t color, OLECHAR *buffer);

/// A name, "Default", "Transparent", or a number that reads RRGGBB, RGB or AARRGGBB; "(alpha)" may follow.
///
/// Hexadecimal digits count in upper case only, with or without "0x" in front, and "#" ends the text, so what
/// `ColorToText` writes with "#" reads back as `fallback`. A point ends the text too: "Red(0.5)" has the alpha 0. Text with
/// no number gives `fallback` whole, its alpha included; a view of nothing does so too.
uint32_t ColorFromText(TextView text, uint32_t fallback);

}    // namespace zck
