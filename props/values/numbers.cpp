#include "props/values/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace zck {
namespace {

constexpr size_t kMostDigits = 800;
constexpr int32_t kMostFraction = 1100;

size_t SkipSpace(TextView text) noexcept {
    size_t at = 0;
    while (at < text.size() && IsNumberSpace(text[at])) ++at;
    return at;
}

/// True for "-"; steps over either sign.
bool TakeSign(TextView text, size_t &at) noexcept {
    const bool negative = at < text.size() && text[at] == '-';
    if (negative || (at < text.size() && text[at] == '+')) ++at;
    return negative;
}

/// The significant digits of a decimal. A real is decided by its first 767 digits and by whether anything follows, so more
/// than `kMostDigits` are never kept.
struct Decimal {
    char digits[kMostDigits + 32];
    size_t count = 0;
    int64_t exponent = 0;    ///< of ten, behind the last kept digit
    bool dropped = false;    ///< a digit other than 0 was not kept

    void Add(int digit, bool fraction) noexcept {
        const bool leadingZero = count == 0 && digit == 0;
        if (leadingZero || count == kMostDigits) {
            dropped = dropped || digit != 0;
            if (leadingZero == fraction) exponent += fraction ? -1 : 1;
            return;
        }
        digits[count++] = static_cast<char>('0' + digit);
        if (fraction) --exponent;
    }
};

/// Reads an exponent at `at` when it is whole; otherwise nothing is taken.
int64_t TakeExponent(TextView text, size_t &at) noexcept {
    if (at >= text.size() || AsciiLower(text[at]) != 'e') return 0;
    size_t end = at + 1;
    const bool negative = TakeSign(text, end);
    if (end >= text.size() || !IsDigit(text[end])) return 0;
    int64_t exponent = 0;
    // Beyond this no text of any length in memory can bring the value back into range.
    constexpr int64_t kFar = int64_t{1} << 40;
    for (; end < text.size() && IsDigit(text[end]); ++end) exponent = std::min(exponent * 10 + (text[end] - '0'), kFar);
    at = end;
    return negative ? -exponent : exponent;
}

double DecimalToReal(Decimal &decimal) noexcept {
    if (decimal.count == 0) return 0.0;
    if (decimal.dropped) {
        decimal.digits[decimal.count++] = '1';
        --decimal.exponent;
    }
    const int64_t leading = decimal.exponent + static_cast<int64_t>(decimal.count);
    if (leading > 400) return std::numeric_limits<double>::infinity();
    if (leading < -400) return 0.0;
    char *end = decimal.digits + decimal.count;
    *end++ = 'e';
    end = std::to_chars(end, decimal.digits + sizeof(decimal.digits), decimal.exponent).ptr;
    double value = 0.0;
    if (std::from_chars(decimal.digits, end, value).ec != std::errc()) {
        return leading > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return value;
}

template <class Number>
Text PaddedText(Number value, int base, int32_t width) {
    char digits[72];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value, base).ptr;
    const size_t count = static_cast<size_t>(end - digits);
    const size_t wanted = static_cast<size_t>(std::max(width, 0));
    Text text(wanted > count ? wanted - count : 0, static_cast<OLECHAR>('0'));
    for (const char *at = digits; at != end; ++at) text.push_back(AsciiUpper(static_cast<OLECHAR>(*at)));
    return text;
}

}    // namespace

int32_t IntFromText(TextView text) noexcept {
    int32_t value = 0;
    ParseInt(text.substr(SkipSpace(text)), value);
    return value;
}

AutoNumber AutoNumberFromText(TextView text) noexcept {
    AutoNumber number;
    size_t at = SkipSpace(text);
    number.negative = TakeSign(text, at);
    uint64_t base = 10;
    if (at < text.size() && text[at] == '0') {
        base = 8;
        if (at + 2 < text.size() && AsciiLower(text[at + 1]) == 'x' && HexDigit(text[at + 2]) >= 0) {
            base = 16;
            at += 2;
        }
    }
    constexpr uint64_t kMost = std::numeric_limits<uint64_t>::max();
    const size_t firstDigit = at;
    for (; at < text.size(); ++at) {
        const int digit = HexDigit(text[at]);
        if (digit < 0 || static_cast<uint64_t>(digit) >= base) break;
        const uint64_t add = static_cast<uint64_t>(digit);
        number.tooLarge = number.tooLarge || number.magnitude > (kMost - add) / base;
        number.magnitude = number.tooLarge ? kMost : number.magnitude * base + add;
    }
    if (at == firstDigit) return AutoNumber();
    number.used = at;
    return number;
}

uint32_t Hex32FromText(TextView text) noexcept {
    const AutoNumber number = AutoNumberFromText(text);
    constexpr uint32_t kMost = std::numeric_limits<uint32_t>::max();
    if (number.magnitude > kMost) return kMost;
    const uint32_t value = static_cast<uint32_t>(number.magnitude);
    return number.negative ? 0U - value : value;
}

uint64_t Hex64FromText(TextView text) noexcept {
    const AutoNumber number = AutoNumberFromText(text);
    return number.negative && !number.tooLarge ? 0U - number.magnitude : number.magnitude;
}

int64_t Int64FromText(TextView text) noexcept {
    const AutoNumber number = AutoNumberFromText(text);
    constexpr uint64_t kMost = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    if (!number.negative) return static_cast<int64_t>(std::min(number.magnitude, kMost));
    if (number.magnitude > kMost) return std::numeric_limits<int64_t>::min();
    return -static_cast<int64_t>(number.magnitude);
}

bool BoolFromText(TextView text) noexcept {
    for (const TextView word : {ZCK_TEXT("0"), ZCK_TEXT("false")}) {
        if (EqualNoCase(text, word)) return false;
    }
    for (const TextView word :
         {ZCK_TEXT("1"), ZCK_TEXT("true"), ZCK_TEXT("yes"), ZCK_TEXT("only"), ZCK_TEXT("on"), ZCK_TEXT("y")}) {
        if (EqualNoCase(text, word)) return true;
    }
    const AutoNumber number = AutoNumberFromText(text);
    return !number.negative && number.magnitude > 0;
}

double RealFromText(TextView text, size_t *used) noexcept {
    if (used != nullptr) *used = 0;
    size_t at = SkipSpace(text);
    const bool negative = TakeSign(text, at);
    Decimal decimal;
    bool digits = false;
    bool fraction = false;
    for (; at < text.size(); ++at) {
        if (IsDigit(text[at])) {
            digits = true;
            decimal.Add(text[at] - '0', fraction);
        } else if (text[at] == '.' && !fraction) {
            fraction = true;
        } else {
            break;
        }
    }
    if (!digits) return 0.0;
    decimal.exponent += TakeExponent(text, at);
    if (used != nullptr) *used = at;
    const double value = DecimalToReal(decimal);
    return negative ? -value : value;
}

double FloatFromText(TextView text) noexcept {
    size_t used = 0;
    const double value = RealFromText(text, &used);
    return used < text.size() && text[used] == '%' ? value / 100.0 : value;
}

Text FixedToText(double value, int32_t precision) {
    // Sign, 309 digits before the point, the point.
    char digits[320 + kMostFraction];
    const int places = std::clamp(precision, 0, kMostFraction);
    const auto end = std::to_chars(digits, digits + sizeof(digits), value, std::chars_format::fixed, places).ptr;
    return Text(digits, end);
}

Text FloatToText(double value, int32_t precision) {
    Text text = FixedToText(value, precision < 0 ? 6 : precision);
    const size_t point = text.find(static_cast<OLECHAR>('.'));
    if ((precision >= 0 && precision <= 2) || point == Text::npos) return text;
    const size_t keep = std::max<size_t>(point + 2, 2);
    while (text.size() > keep && text.back() == '0') text.pop_back();
    return text;
}

OLECHAR *FloatToText(double value, OLECHAR *buffer, int32_t precision) {
    return CopyToBuffer(FloatToText(value, precision), buffer);
}

int32_t RoundToInt(double value) noexcept {
    using Limits = std::numeric_limits<int32_t>;
    if (std::isnan(value)) return 0;
    // Not `std::round`: that of MinGW adds a half, and makes 1 of the last real below 0.5.
    double whole = std::trunc(value);
    if (std::fabs(value - whole) >= 0.5) whole += std::copysign(1.0, value);
    return static_cast<int32_t>(std::clamp(whole, double{Limits::min()}, double{Limits::max()}));
}

Text IntToText(int64_t value, int32_t width) {
    if (value >= 0) return PaddedText(value, 10, width);
    Text text = PaddedText(0U - static_cast<uint64_t>(value), 10, width - 1);
    text.insert(text.begin(), static_cast<OLECHAR>('-'));
    return text;
}

Text HexToText(uint64_t value, int32_t width) { return PaddedText(value, 16, width); }

OLECHAR *CopyToBuffer(TextView text, OLECHAR *buffer) noexcept {
    if (buffer == nullptr) return nullptr;
    const size_t count = std::min(text.size(), kValueBufferText);
    std::copy_n(text.data(), count, buffer);
    buffer[count] = 0;
    return buffer;
}

}    // namespace zck
