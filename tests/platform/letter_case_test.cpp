#include "platform/letter_case.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

std::string Lower(std::string_view utf8) {
    Text text = TextFromUtf8(utf8);
    LowerInPlace(text);
    return Utf8FromText(text);
}

TEST(LetterCase, LettersOfAllScripts) {
    EXPECT_EQ(Lower(""), "");
    EXPECT_EQ(Lower("AZaz09_.@["), "azaz09_.@[");
    EXPECT_EQ(Lower("\u00C0\u00D6\u00D7\u00D8\u00DE\u00DF"), "\u00E0\u00F6\u00D7\u00F8\u00FE\u00DF");
    EXPECT_EQ(Lower("\u0100\u0141\u0178\u017D"), "\u0101\u0142\u00FF\u017E");
    EXPECT_EQ(Lower("\u0386\u0391\u03A9\u0401\u0416\u042F"), "\u03AC\u03B1\u03C9\u0451\u0436\u044F");
    EXPECT_EQ(Lower("\u4E2D\u05D0"), "\u4E2D\u05D0");
    EXPECT_EQ(Lower("\uFF21"), "\uFF41");
}

TEST(LetterCase, TwiceIsOnce) {
    for (uint32_t unit = 1; unit < 0x10000; ++unit) {
        Text once(1, static_cast<OLECHAR>(unit));
        LowerInPlace(once);
        ASSERT_EQ(once.size(), 1U);
        Text twice = once;
        LowerInPlace(twice);
        ASSERT_EQ(once, twice) << unit;
    }
}

}    // namespace
}    // namespace zck
