// 16-bit text: the owning and the borrowed form, counted strings, comparison, UTF-8 and whole numbers.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "zchromakey/holders.h"

namespace zck {

using Text = std::basic_string<OLECHAR>;
using TextView = std::basic_string_view<OLECHAR>;

/// A view of the literal `s` in 16-bit units on either system: `ZCK_TEXT("key")`.
#define ZCK_TEXT(s) (::zck::TextView(::zck::PickLiteral<OLECHAR>(u##s, L##s)))

template <class Unit>
constexpr const Unit *PickLiteral(const char16_t *narrow, const wchar_t *wide) noexcept {
    if constexpr (std::is_same_v<Unit, wchar_t>) {
        return wide;
    } else {
        return narrow;
    }
}

/// The view of a counted string, zeros inside included; empty for null.
inline TextView ViewOf(BSTR text) noexcept { return text != nullptr ? TextView(text, SysStringLen(text)) : TextView(); }

/// `ZBstr` as the library uses it: made from a view, which may hold zeros, and seen as one.
class Bstr : public ZBstr {
public:
    Bstr() noexcept = default;
    /// A copy of the text; throws `std::bad_alloc` when there is no memory.
    explicit Bstr(TextView text);

    TextView view() const noexcept { return ViewOf(get()); }
};

/// Hands out a text as a counted string. `E_POINTER` for a null place, `E_OUTOFMEMORY`.
HRESULT BstrCopyTo(TextView text, BSTR *out) noexcept;

/// Case of the 26 Latin letters; all other units stay.
constexpr OLECHAR AsciiLower(OLECHAR c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<OLECHAR>(c + ('a' - 'A')) : c; }
constexpr OLECHAR AsciiUpper(OLECHAR c) noexcept { return c >= 'a' && c <= 'z' ? static_cast<OLECHAR>(c - ('a' - 'A')) : c; }
/// Below, at or above 0, by the units' numbers after folding the 26 letters.
int CompareNoCase(TextView a, TextView b) noexcept;
bool EqualNoCase(TextView a, TextView b) noexcept;
bool StartsWithNoCase(TextView text, TextView prefix) noexcept;

/// From UTF-8. What is not well-formed becomes U+FFFD, one for each byte that starts nothing.
Text TextFromUtf8(std::string_view utf8);
/// The strict form: false when the bytes are not well-formed UTF-8; `out` is then empty.
bool TextFromUtf8Strict(std::string_view utf8, Text &out);
/// To UTF-8. A surrogate without its partner becomes U+FFFD.
std::string Utf8FromText(TextView text);

/// A decimal at the start of the text: spaces and tabs, a sign, digits. False, and `value` unchanged, without a digit; values
/// out of range take the nearest limit. `used`, when given, takes the units read.
bool ParseInt(TextView text, int32_t &value, size_t *used = nullptr) noexcept;
bool ParseInt64(TextView text, int64_t &value, size_t *used = nullptr) noexcept;

Text TextFromInt(int64_t value);
/// Upper case, no leading zeros.
Text TextFromHex(uint64_t value);

}    // namespace zck
