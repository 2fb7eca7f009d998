// The text form of a channel map: numbers of channels, apart by anything else, such as "1,0".
#pragma once

#include <vector>

#include "platform/text.h"

namespace zck {

/// The numbers of a map. An item is a run of digits, '-' and '.'; its value is an optional leading '-' and the digits behind
/// it, saturated to 32 bits, and 0 without a digit. At most 128 items count. May throw `std::bad_alloc`.
std::vector<int32_t> ChannelMapParse(TextView text);

}    // namespace zck
