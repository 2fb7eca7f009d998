// A size with its unit, as text.
#pragma once

#include "platform/text.h"

namespace zck {

enum class SizeUnit : int32_t { None = 0, Percent = 1, Pixels = 2, Points = 3 };

struct SizeValue {
    double value = 0.0;
    SizeUnit unit = SizeUnit::None;
};

/// "12.50", "50.000%", "12px", "12pt"; pixels and points are rounded half away from zero. An unknown unit is none.
Text SizeToText(const SizeValue &size);
/// A decimal and directly behind it "%", "px" or "pt", in lower case and with anything behind. A percentage is not divided.
SizeValue SizeFromText(TextView text) noexcept;

}    // namespace zck
