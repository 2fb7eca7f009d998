// Text at the border of the library: UTF-8 here, counted 16-bit strings there.
#pragma once

#include <string>
#include <string_view>

#include "zchromakey/com.h"

namespace zkey {

/// Owns a counted string.
class Counted {
public:
    Counted() = default;
    explicit Counted(std::string_view utf8);
    ~Counted() { SysFreeString(m_text); }
    Counted(const Counted &) = delete;
    Counted &operator=(const Counted &) = delete;

    BSTR get() const { return m_text; }
    BSTR *Put();
    std::string Utf8() const;

private:
    BSTR m_text = nullptr;
};

/// ASCII letters are compared without regard to case.
bool SameWord(std::string_view a, std::string_view b);
/// A whole text as a number, decimal or 0x hexadecimal. False when anything is left over or out of range.
bool ParseWhole(std::string_view text, int32_t &value);
/// A whole text as a real number of 0 or more.
bool ParseReal(std::string_view text, double &value);
/// The text as JSON has it, in quotes.
std::string JsonText(const std::string &text);
/// The last extension with its dot in small letters, or nothing.
std::string ExtensionOf(const std::string &path);

}    // namespace zkey
