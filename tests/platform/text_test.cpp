#include "platform/text.h"

#include <gtest/gtest.h>

#include <limits>

namespace zck {
namespace {

Text T(std::string_view utf8) { return TextFromUtf8(utf8); }

TEST(TextTest, LiteralHasTheUnitsOfTheSystem) {
    EXPECT_EQ(ZCK_TEXT("key"), T("key"));
    EXPECT_EQ(ZCK_TEXT("").size(), 0U);
}

TEST(TextTest, Utf8GoesThereAndBack) {
    const std::string all = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC\x7F";
    const Text text = TextFromUtf8(all);
    ASSERT_EQ(text.size(), 6U);
    EXPECT_EQ(text[1], 0xE9);
    EXPECT_EQ(text[2], 0x20AC);
    EXPECT_EQ(text[3], 0xD83C);
    EXPECT_EQ(text[4], 0xDFAC);
    EXPECT_EQ(Utf8FromText(text), all);
}

TEST(TextTest, EveryCodePointGoesThereAndBack) {
    for (uint32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code == 0xD800) code = 0xE000;
        Text text;
        if (code < 0x10000) {
            text.push_back(static_cast<OLECHAR>(code));
        } else {
            text.push_back(static_cast<OLECHAR>(0xD800 + ((code - 0x10000) >> 10)));
            text.push_back(static_cast<OLECHAR>(0xDC00 + (code & 0x3FF)));
        }
        Text back;
        ASSERT_TRUE(TextFromUtf8Strict(Utf8FromText(text), back)) << code;
        ASSERT_EQ(back, text) << code;
    }
}

TEST(TextTest, MalformedUtf8IsReplacedOrRefused) {
    // A tail byte alone, a cut sequence, too long a form, a surrogate, past the last plane, a byte that starts nothing.
    const std::string_view bad[] = {"\x80", "\xC3",    "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                    "\xFF", "\xE2\x82"};
    for (const std::string_view bytes : bad) {
        const Text text = TextFromUtf8(bytes);
        EXPECT_EQ(text, Text(bytes.size(), OLECHAR{0xFFFD}));
        Text out = T("old");
        EXPECT_FALSE(TextFromUtf8Strict(bytes, out));
        EXPECT_TRUE(out.empty());
    }
    EXPECT_EQ(TextFromUtf8("a\xC3z"), Text({'a', OLECHAR{0xFFFD}, 'z'}));
}

TEST(TextTest, LoneSurrogateIsReplaced) {
    EXPECT_EQ(Utf8FromText(Text({OLECHAR{0xD800}, 'x'})), "\xEF\xBF\xBDx");
    EXPECT_EQ(Utf8FromText(Text({OLECHAR{0xDC00}})), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8FromText(Text({OLECHAR{0xD800}})), "\xEF\xBF\xBD");
}

TEST(TextTest, CaseOfLatinLettersOnly) {
    EXPECT_TRUE(EqualNoCase(T("Process.Threads"), T("pROCESS.tHREADS")));
    EXPECT_FALSE(EqualNoCase(T("key"), T("keys")));
    EXPECT_FALSE(EqualNoCase(T("\xC3\xA9"), T("\xC3\x89")));
    EXPECT_FALSE(EqualNoCase(T("@["), T("`{")));
    EXPECT_LT(CompareNoCase(T("ABC"), T("abd")), 0);
    EXPECT_GT(CompareNoCase(T("b"), T("ABC")), 0);
    EXPECT_LT(CompareNoCase(T("ab"), T("ABC")), 0);
    EXPECT_TRUE(StartsWithNoCase(T("Unicode=true"), T("unicode")));
    EXPECT_FALSE(StartsWithNoCase(T("uni"), T("unicode")));
}

TEST(TextTest, ParsesDecimals) {
    int32_t value = -1;
    size_t used = 0;
    EXPECT_TRUE(ParseInt(T(" \t-12px"), value, &used));
    EXPECT_EQ(value, -12);
    EXPECT_EQ(used, 5U);
    EXPECT_TRUE(ParseInt(T("+7"), value));
    EXPECT_EQ(value, 7);
    for (const std::string_view bad : {"", " ", "-", "x1", "+-1", "- 1"}) {
        value = 99;
        EXPECT_FALSE(ParseInt(T(bad), value)) << bad;
        EXPECT_EQ(value, 99);
    }
}

TEST(TextTest, ParsedNumbersStopAtTheLimits) {
    int32_t value = 0;
    EXPECT_TRUE(ParseInt(T("2147483648"), value));
    EXPECT_EQ(value, std::numeric_limits<int32_t>::max());
    EXPECT_TRUE(ParseInt(T("-99999999999999999999"), value));
    EXPECT_EQ(value, std::numeric_limits<int32_t>::min());
    using Wide = std::numeric_limits<int64_t>;
    for (const int64_t limit : {Wide::min(), Wide::min() + 1, Wide::max(), Wide::max() - 1, int64_t{0}}) {
        int64_t wide = 1;
        EXPECT_TRUE(ParseInt64(TextFromInt(limit), wide));
        EXPECT_EQ(wide, limit);
    }
    int64_t wide = 0;
    EXPECT_TRUE(ParseInt64(T("9223372036854775808"), wide));
    EXPECT_EQ(wide, Wide::max());
    EXPECT_TRUE(ParseInt64(T("-9223372036854775809"), wide));
    EXPECT_EQ(wide, Wide::min());
}

TEST(TextTest, PrintsNumbers) {
    EXPECT_EQ(TextFromInt(-42), T("-42"));
    EXPECT_EQ(TextFromHex(0), T("0"));
    EXPECT_EQ(TextFromHex(0xFFFFFFFFDEADBEEFU), T("FFFFFFFFDEADBEEF"));
}

TEST(BstrTest, OwnsAndPassesOn) {
    Bstr text(T(std::string_view("a\0b", 3)));
    EXPECT_EQ(text.view().size(), 3U);
    EXPECT_EQ(SysStringLen(text.get()), 3U);
    Bstr moved(std::move(text));
    EXPECT_FALSE(text);
    BSTR raw = moved.Detach();
    EXPECT_TRUE(moved.view().empty());
    moved.Attach(raw);
    *moved.Put() = SysAllocStringLen(nullptr, 2);
    EXPECT_EQ(moved.view(), TextView(Text(2, OLECHAR{0})));
}

TEST(BstrTest, CopyTo) {
    Bstr text;
    EXPECT_EQ(BstrCopyTo(ZCK_TEXT("checker"), text.Put()), S_OK);
    EXPECT_EQ(text.view(), ZCK_TEXT("checker"));
    EXPECT_EQ(BstrCopyTo(TextView(), text.Put()), S_OK);
    EXPECT_TRUE(text) << "empty text is a string, not null";
    EXPECT_EQ(BstrCopyTo(ZCK_TEXT("x"), nullptr), E_POINTER);
}

}    // namespace
}    // namespace zck
