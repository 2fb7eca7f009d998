// Text that becomes a value of every type, and values that become text. First byte: bit 0 for a text of units instead of
// bytes; bit 1 for the bytes of a value.
#include <algorithm>
#include <cmath>
#include <cstring>

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

/// These are read back to the last bit.
size_t ExactBytes(ValueType type) {
    switch (type) {
        case ValueType::Boolean:
            return 1;
        case ValueType::Integer:
        case ValueType::Hexadecimal:
            return 4;
        case ValueType::LongInteger:
        case ValueType::LongHexadecimal:
            return 8;
        case ValueType::Identifier:
            return 16;
        default:
            return 0;
    }
}

/// Texts in a caller's buffer are those without one, cut.
void WalkBuffers(const ValueData &data, int32_t precision) {
    OLECHAR buffer[kValueBufferText + 1];
    const auto cut = [](const Text &text) { return text.substr(0, kValueBufferText); };
    fuzz::Require(FloatToText(data.real, buffer, precision) == cut(FloatToText(data.real, precision)), "a real is cut");
    fuzz::Require(ColorToText(data.number32, buffer) == cut(ColorToText(data.number32)), "a colour is cut");
    for (const bool timeOnly : {false, true}) {
        fuzz::Require(TimeToText(data.time, buffer, timeOnly) == cut(TimeToText(data.time, timeOnly)), "a time is cut");
    }
}

void WalkValue(const uint8_t *bytes, size_t size) {
    uint8_t block[sizeof(ValueData) + 2] = {};
    std::memcpy(block, bytes, std::min(size, sizeof(block)));
    ValueData data;
    std::memcpy(&data, block, sizeof(data));
    for (int32_t code = 1; code <= 11; ++code) {
        const ValueType type = static_cast<ValueType>(code);
        ValueData one = data;
        if (type == ValueType::Boolean) one.boolean = (block[0] & 1) != 0;
        const Text written = ValueToText(type, one);
        fuzz::Require(!written.empty(), "a value has a text");
        const ValueData back = ValueFromText(type, written);
        fuzz::Require(std::memcmp(&back, &one, ExactBytes(type)) == 0, "a value comes back");
        TypedValue value(type, one);
        fuzz::Require(value.TextForm() == written && value.GetText() == written, "a value's text is its own");
        Walk(written);
    }
    const Text color = ColorToText(data.number32);
    if (color.front() != '#') fuzz::Require(ColorFromText(color, ~data.number32) == data.number32, "a named colour comes back");
    WalkBuffers(data, static_cast<int16_t>(block[16] | block[17] << 8));
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    if ((data[0] & 2) != 0) {
        zck::WalkValue(data + 1, size - 1);
        return 0;
    }
    const bool units = (data[0] & 1) != 0;
    zck::Walk(units ? zck::fuzz::TextOfUnits(data + 1, size - 1) : zck::fuzz::TextOfBytes(data + 1, size - 1));
    return 0;
}
