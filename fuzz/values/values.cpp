// Text that becomes a value of every type. First byte: whether the rest is bytes or units.
#include <cmath>

#include "fuzz/support/foreign_text.h"
#include "props/values/typed_value.h"

namespace zck {
namespace {

/// These forms are read back as they were written.
bool ComesBack(ValueType type, const ValueData &data) {
    switch (type) {
        case ValueType::Size:
            return std::isfinite(data.size.value);
        case ValueType::Float:
            return std::isfinite(data.real);
        case ValueType::PixelFormat:
        case ValueType::Colour:
        case ValueType::DateTime:
        case ValueType::Text:
            return false;
        default:
            return true;
    }
}

void Walk(TextView text) {
    TypedValue value(text);
    for (int32_t code = 1; code <= 11; ++code) {
        const ValueType type = static_cast<ValueType>(code);
        const ValueData data = ValueFromText(type, text);
        const Text written = ValueToText(type, data);
        fuzz::Require(!written.empty(), "a value has a text");
        if (ComesBack(type, data)) {
            fuzz::Require(ValueToText(type, ValueFromText(type, written)) == written, "a written text comes back");
        }
        value.Convert(type);
        fuzz::Require(value.GetText() == text, "reading does not change the text");
    }
    const TimeFields time = TimeFromText(text, false);
    fuzz::Require(time.hour < 24 && time.minute < 60 && time.second < 60 && time.millisecond <= 1000, "a time is in range");
    OLECHAR buffer[kValueBufferText + 1];
    fuzz::Require(TextView(ColorToText(ColorFromText(text, 0), buffer)).size() <= 20, "a colour is short");
    FloatToText(FloatFromText(text), buffer, -1);
    TimeToText(time, buffer, true);
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const bool units = (data[0] & 1) != 0;
    zck::Walk(units ? zck::fuzz::TextOfUnits(data + 1, size - 1) : zck::fuzz::TextOfBytes(data + 1, size - 1));
    return 0;
}
