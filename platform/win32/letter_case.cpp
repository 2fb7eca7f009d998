#include "platform/letter_case.h"

namespace zck {

void LowerInPlace(Text &text) noexcept { CharLowerBuffW(text.data(), static_cast<DWORD>(text.size())); }

}    // namespace zck
