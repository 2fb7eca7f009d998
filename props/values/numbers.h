// Whole numbers, reals and truth values as text. A text that is no number reads as 0; nothing here fails.
//
// A point is a point and digits are ASCII, whatever the user's locale. Parses look at the text once and take no memory.
#pragma once

#include "platform/text.h"

namespace zck {

/// The longest text that a caller's buffer takes, without the zero behind it.
constexpr size_t kValueBufferText = 63;

/// Blank, TAB, LF, VT, FF and CR: what a number may have in front.
constexpr bool IsNumberSpace(OLECHAR c) noexcept { return c == ' ' || (c >= 9 && c <= 13); }
constexpr bool IsDigit(OLECHAR c) noexcept { return c >= '0' && c <= '9'; }
/// 0 to 15, or -1.
constexpr int HexDigit(OLECHAR c) noexcept {
    return IsDigit(c) ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// A decimal with leading space and a sign; stops at the first foreign character and saturates at the limits.
int32_t IntFromText(TextView text) noexcept;

/// A number in the base that its text tells: "0x" hexadecimal, a leading 0 octal, otherwise decimal.
struct AutoNumber {
    uint64_t magnitude = 0;    ///< saturates at the largest value
    bool tooLarge = false;     ///< it did
    bool negative = false;
    size_t used = 0;    ///< characters read, leading space and sign included; 0 when there was no digit
};
/// "0x" without a digit behind it is the digit 0.
AutoNumber AutoNumberFromText(TextView text) noexcept;

/// In the automatic base. A "-" negates modulo the width; what is too large becomes the largest value.
uint32_t Hex32FromText(TextView text) noexcept;
uint64_t Hex64FromText(TextView text) noexcept;
/// In the automatic base; saturates at both limits.
int64_t Int64FromText(TextView text) noexcept;

/// "0" and "false" are false; "1", "true", "yes", "only", "on" and "y" are true, without regard to case. Any other text is
/// true when its number in the automatic base is above 0. The words are not trimmed: "true " is no word, and false.
bool BoolFromText(TextView text) noexcept;

/// The decimal real at the start of the text: space, sign, digits, point, digits, exponent. Exact to the last bit. `used`,
/// when given, takes the characters read, 0 without a digit. What is too large becomes infinite.
double RealFromText(TextView text, size_t *used = nullptr) noexcept;

/// As `RealFromText`; a "%" directly behind the number divides it by 100.
double FloatFromText(TextView text) noexcept;

/// "%f" with a negative precision, else that many digits behind the point. With a negative precision or one above 2,
/// zeros at the end are dropped from a text of more than three characters, but one digit stays behind the point.
Text FloatToText(double value, int32_t precision);
/// The same into a buffer of at least 64 characters, cut to 63. Gives the buffer, null for null.
OLECHAR *FloatToText(double value, OLECHAR *buffer, int32_t precision);

/// Rounded half away from zero; out of range becomes the nearest limit, no number 0.
int32_t RoundToInt(double value) noexcept;

/// "%.*f" without any trimming. At most 1100 digits behind the point: no real has more that are not 0.
Text FixedToText(double value, int32_t precision);
/// At least `width` digits, filled with zeros; the sign counts as one.
Text IntToText(int64_t value, int32_t width = 1);
/// Upper case, at least `width` digits.
Text HexToText(uint64_t value, int32_t width = 1);
/// Copies at most `kValueBufferText` characters and a zero. Gives `buffer`, null for null.
OLECHAR *CopyToBuffer(TextView text, OLECHAR *buffer) noexcept;

}    // namespace zck
