#include "props/values/typed_value.h"

namespace zck {

ValueData ValueFromText(ValueType type, TextView text) {
    ValueData data;
    switch (type) {
        case ValueType::Text:
            break;
        case ValueType::Boolean:
            data.boolean = BoolFromText(text);
            break;
        case ValueType::Integer:
            data.integer = IntFromText(text);
            break;
        case ValueType::Hexadecimal:
            data.number32 = Hex32FromText(text);
            break;
        case ValueType::LongInteger:
            data.integer64 = Int64FromText(text);
            break;
        case ValueType::LongHexadecimal:
            data.number64 = Hex64FromText(text);
            break;
        case ValueType::Size:
            data.size = SizeFromText(text);
            break;
        case ValueType::Float:
            data.real = FloatFromText(text);
            break;
        case ValueType::Identifier:
            data.identifier = IdentifierFromText(text);
            break;
        case ValueType::PixelFormat:
            data.format = FormatFromText(text);
            break;
        case ValueType::Colour:
            data.number32 = ColorFromText(text, 0);
            break;
        case ValueType::DateTime:
            data.time = TimeFromText(text, false);
            break;
    }
    return data;
}

Text ValueToText(ValueType type, const ValueData &data) {
    switch (type) {
        case ValueType::Text:
            break;
        case ValueType::Boolean:
            return Text(data.boolean ? ZCK_TEXT("true") : ZCK_TEXT("false"));
        case ValueType::Integer:
            return IntToText(data.integer);
        case ValueType::Hexadecimal:
            return Text(ZCK_TEXT("0x")).append(HexToText(data.number32, 8));
        case ValueType::LongInteger:
            return IntToText(data.integer64);
        case ValueType::LongHexadecimal:
            return Text(ZCK_TEXT("0x")).append(HexToText(data.number64, 16));
        case ValueType::Size:
            return SizeToText(data.size);
        case ValueType::Float:
            return FloatToText(data.real, -1);
        case ValueType::Identifier:
            return IdentifierToText(data.identifier);
        case ValueType::PixelFormat:
            return FormatToText(data.format);
        case ValueType::Colour:
            return ColorToText(data.number32);
        case ValueType::DateTime:
            return TimeToText(data.time, false);
    }
    return Text();
}

void TypedValue::SetText(TextView text) {
    m_text = text;
    m_textValid = true;
    m_type = ValueType::Text;
}

void TypedValue::SetBool(bool value) noexcept {
    m_data.boolean = value;
    Store(ValueType::Boolean);
}

void TypedValue::SetInt(int32_t value) noexcept {
    m_data.integer = value;
    Store(ValueType::Integer);
}

void TypedValue::SetHex32(uint32_t value) noexcept {
    m_data.number32 = value;
    Store(ValueType::Hexadecimal);
}

void TypedValue::SetInt64(int64_t value) noexcept {
    m_data.integer64 = value;
    Store(ValueType::LongInteger);
}

void TypedValue::SetHex64(uint64_t value) noexcept {
    m_data.number64 = value;
    Store(ValueType::LongHexadecimal);
}

void TypedValue::SetSize(const SizeValue &value) noexcept {
    m_data.size = value;
    Store(ValueType::Size);
}

void TypedValue::SetFloat(double value) noexcept {
    m_data.real = value;
    Store(ValueType::Float);
}

void TypedValue::SetIdentifier(const GUID &value) noexcept {
    m_data.identifier = value;
    Store(ValueType::Identifier);
}

void TypedValue::SetFormat(eZFCC value) noexcept {
    m_data.format = value;
    Store(ValueType::PixelFormat);
}

void TypedValue::SetColor(uint32_t value) noexcept {
    m_data.number32 = value;
    Store(ValueType::Colour);
}

void TypedValue::SetTime(const TimeFields &value) noexcept {
    m_data.time = value;
    Store(ValueType::DateTime);
}

TextView TypedValue::GetText() {
    if (!m_textValid) {
        m_text = ValueToText(m_type, m_data);
        m_textValid = true;
    }
    return m_text;
}

const ValueData &TypedValue::Convert(ValueType type) {
    if (type != m_type) {
        m_data = ValueFromText(type, GetText());
        m_type = type;
    }
    return m_data;
}

ValueData TypedValue::Read(ValueType type) const {
    if (type == m_type) return m_data;
    return m_textValid ? ValueFromText(type, m_text) : ValueFromText(type, ValueToText(m_type, m_data));
}

Text TypedValue::TextForm() const { return m_textValid ? m_text : ValueToText(m_type, m_data); }

}    // namespace zck
