// Options of the factory's creating operations: name=value pairs in one text, values optionally quoted.
#pragma once

#include "platform/text.h"

namespace zck {

/// The value of a name (case ignored), without its quotes; the last one when the name stands more than once. Pairs are set
/// apart by blanks, tabs and line ends, which may also stand around "=". False when the name is not there.
bool OptionFind(TextView options, TextView name, TextView &value);

/// A whole number; `fallback` when the name is missing or its value does not start with a number.
int32_t OptionInt(TextView options, TextView name, int32_t fallback);

/// A colour 0xAABBGGRR. Forms: a name such as "Red", the digits RRGGBB, a number with "0x" (read RRGGBB too), each with an
/// optional alpha behind it: "Red(128)". Text that is no colour gives the fallback.
uint32_t OptionColor(TextView options, TextView name, uint32_t fallback);

/// The colour that a text stands for.
uint32_t ColorFromText(TextView text, uint32_t fallback);

}    // namespace zck
