// `TypedValue`: a text and what it means, each made from the other on demand.
#pragma once

#include "props/values/colors.h"
#include "props/values/formats.h"
#include "props/values/identifiers.h"
#include "props/values/numbers.h"
#include "props/values/sizes.h"
#include "props/values/times.h"

namespace zck {

enum class ValueType : int32_t {
    Text = 0,               ///< nothing but the text
    Boolean = 1,            ///< "true", "false"
    Integer = 2,            ///< 32-bit, decimal
    Hexadecimal = 3,        ///< 32-bit, "0x%08X"; read in the automatic base
    LongInteger = 4,        ///< 64-bit, decimal; read in the automatic base
    LongHexadecimal = 5,    ///< 64-bit, "0x%016X"; read in the automatic base
    Size = 6,
    Float = 7,    ///< "%f" without zeros at the end
    Identifier = 8,
    PixelFormat = 9,
    Colour = 10,    ///< 0xAABBGGRR; text that is no colour is 0
    DateTime = 11,
};

/// The typed side of a value; the value's type tells which member is meant.
union ValueData {
    ValueData() noexcept : identifier() {}

    GUID identifier;
    bool boolean;
    int32_t integer;
    uint32_t number32;    ///< `Hexadecimal` and `Colour`
    int64_t integer64;
    uint64_t number64;    ///< `LongHexadecimal`
    SizeValue size;
    double real;
    eZFCC format;
    TimeFields time;
};
static_assert(sizeof(ValueData) == 16);

/// The value of a text read as `type`; an empty text is all zero. For `Text` the result says nothing.
ValueData ValueFromText(ValueType type, TextView text);
Text ValueToText(ValueType type, const ValueData &data);

/// Holds a text, a typed value, or both. The text that was set stays as it is, however it is read, until a typed value is
/// stored: "0012" is the integer 12, still the text "0012", and then the hexadecimal 10.
///
/// The non-const readers keep what they parsed or wrote, so that the next one of the same type costs nothing; `Read` and
/// `TextForm` give the same results without a change, for readers that share the value. Not locked.
class TypedValue {
public:
    TypedValue() = default;
    explicit TypedValue(TextView text) : m_text(text) {}
    TypedValue(ValueType type, const ValueData &data) : m_textValid(type == ValueType::Text), m_type(type), m_data(data) {}

    ValueType Type() const noexcept { return m_type; }
    bool TextValid() const noexcept { return m_textValid; }

    void SetText(TextView text);
    void SetBool(bool value) noexcept;
    void SetInt(int32_t value) noexcept;
    void SetHex32(uint32_t value) noexcept;
    void SetInt64(int64_t value) noexcept;
    void SetHex64(uint64_t value) noexcept;
    void SetSize(const SizeValue &value) noexcept;
    void SetFloat(double value) noexcept;
    void SetIdentifier(const GUID &value) noexcept;
    void SetFormat(eZFCC value) noexcept;
    void SetColor(uint32_t value) noexcept;
    void SetTime(const TimeFields &value) noexcept;

    /// Brings the text up to date. The view lives until the value is changed.
    TextView GetText();
    bool GetBool() { return Convert(ValueType::Boolean).boolean; }
    int32_t GetInt() { return Convert(ValueType::Integer).integer; }
    uint32_t GetHex32() { return Convert(ValueType::Hexadecimal).number32; }
    int64_t GetInt64() { return Convert(ValueType::LongInteger).integer64; }
    uint64_t GetHex64() { return Convert(ValueType::LongHexadecimal).number64; }
    SizeValue GetSize() { return Convert(ValueType::Size).size; }
    double GetFloat() { return Convert(ValueType::Float).real; }
    GUID GetIdentifier() { return Convert(ValueType::Identifier).identifier; }
    eZFCC GetFormat() { return Convert(ValueType::PixelFormat).format; }
    uint32_t GetColor() { return Convert(ValueType::Colour).number32; }
    TimeFields GetTime() { return Convert(ValueType::DateTime).time; }

    /// Makes the value one of this type, out of its text.
    const ValueData &Convert(ValueType type);
    ValueData Read(ValueType type) const;
    Text TextForm() const;
    /// Shows the text form to `visit`; it is written for that only where there is none yet.
    template <class Visit>
    void VisitText(Visit visit) const {
        m_textValid ? visit(TextView(m_text)) : visit(TextView(ValueToText(m_type, m_data)));
    }

private:
    void Store(ValueType type) noexcept {
        m_type = type;
        m_textValid = false;
    }

    Text m_text;
    bool m_textValid = true;
    ValueType m_type = ValueType::Text;
    ValueData m_data;
};

}    // namespace zck
