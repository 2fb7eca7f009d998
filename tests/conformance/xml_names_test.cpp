// Keys of names and characters that stand for others, against tables and slow models.
#include <gtest/gtest.h>

#include <random>

#include "tests/conformance/xml_model.h"
#include "xml/decode.h"
#include "xml/entities.h"
#include "xml/name_key.h"

namespace conformance {
namespace {

using namespace zck::XMLParse;

TEST(NameKeys, WorkedKeys) {
    const struct {
        const char *name;
        uint64_t key;
    } rows[] = {{"a", 0xBB27B42661A3B565},        {"key", 0x35D7399D6FAC81ED},
                {"adjust", 0x6E5048DE4D3C4FD0},   {"transparent", 0x2155902AEE0CCF2F},
                {"abcdefgh", 0x538D846062406DF0}, {"abcdefghijklmnopqrstuvwx", 0x591744612FA1E72C},
                {"", 0xD5CE0FC12638C9AC}};
    for (const auto &row : rows) {
        EXPECT_EQ(ModelKey(T(row.name)), row.key) << row.name;
        EXPECT_EQ(NameKey(T(row.name)), row.key) << row.name;
    }
}

TEST(NameKeys, AsTheModel) {
    std::mt19937 random(41);
    for (int i = 0; i < 20000; ++i) {
        Text name(random() % 60, 0);
        for (OLECHAR &c : name) c = static_cast<OLECHAR>(random());
        ASSERT_EQ(NameKey(name), ModelKey(name));
        Text other = name;
        for (OLECHAR &c : other) c = static_cast<OLECHAR>((c ^ 0x20 * (random() % 2)) + 0x100 * (random() % 5));
        ASSERT_EQ(NameKey(name), NameKey(other));    // the low byte with bit 5 set is all that counts
    }
    EXPECT_EQ(NameKey(T("Name@[_")), NameKey(T("nAME`{\x7F")));
    EXPECT_NE(NameKey(T("a")), NameKey(T("b")));
    EXPECT_NE(NameKey(T("a")), NameKey(T("a ")));
}

TEST(Entities, Table) {
    const struct {
        const char *text, *decoded;
    } rows[] = {{"&lt;", "<"},
                {"&gt;", ">"},
                {"&amp;", "&"},
                {"&apos;", "'"},
                {"&nbsp;", " "},
                {"&copy;", "\xC2\xA9"},
                {"&reg;", "\xC2\xAE"},
                {"&quot;", "\""},
                {"&lo;x", "<x"},
                {"&cost;", "\xC2\xA9"},
                {"&cost;y", "\xC2\xA9y"},
                {"&lx", "<"},
                {"&l", "<"},
                {"&lt;&gt;", "<>"},
                {"&g123", ">3"},
                {"&amx12", "&2"},
                {"&a12", "12"},
                {"&apx;;z", "'z"},
                {"&n12", "12"},
                {"&red;z", "\xC2\xAEz"},
                {"&rx", "x"},
                {"&q12", "12"},
                {"&L;x", ";x"},
                {"&AMP;", "MP;"},
                {"R&D", "R"},
                {"a & b", "a b"},
                {"x&l", "x<"},
                {"&", ""},
                {"&&lt;", "lt;"},
                {"&#65;", "A"},
                {"&#x41;", "A"},
                {"&#65x", "A"},
                {"&#65", "A"},
                {"&#0101;", "A"},
                {"&#08;z", ";z"},
                {"&#;", ";"},
                {"&#x;", "x;"},
                {"&#xZ;", "xZ;"},
                {"&#X41;", "X41;"},
                {"&#-5;", "-5;"},
                {"&# 5;", " 5;"},
                {"&#0;z", "z"},
                {"&#x10041;", "A"},
                {"&#65601;", "A"},
                {"&#x99999999999999999999;", "\xEF\xBF\xBF"},
                {"&#x20AC;", "\xE2\x82\xAC"},
                {"&#x20acx!", "\xE2\x82\xAC!"},
                {"&#32;", ""},
                {" ", ""},
                {"\t\r\n", ""},
                {"", ""},
                {"&nbsp; ", "  "},
                {"a\tb\r\nc", "a b  c"},
                {"&#13;", "\r"},
                {"&#9;x", "\tx"},
                {"&amp;lt;", "&lt;"}};
    for (const auto &row : rows) EXPECT_EQ(Say(DecodeText(T(row.text), false)), row.decoded) << row.text;
    EXPECT_EQ(Say(DecodeText(T(" "), true)), " ");
    EXPECT_EQ(Say(DecodeText(T("\t&#32;"), true)), "  ");
    EXPECT_EQ(Say(DecodeText(T("&nb"), false)), " ");
    // The third letter of "&amp;" and "&reg;" counts by its low byte, that of the others whole.
    EXPECT_EQ(Say(DecodeText(T("&a\xC5\xAD"
                               "12x"),
                             false)),
              "&x");
    EXPECT_EQ(Say(DecodeText(T("&r\xC5\xA5"
                               "12x"),
                             false)),
              "\xC2\xAEx");
    EXPECT_EQ(Say(DecodeText(T("&a\xC5\xB0"
                               "12x"),
                             false)),
              Say(T("\xC5\xB0"
                    "12x")));
}

TEST(Entities, AsTheModel) {
    std::mt19937 random(42);
    const char *const parts[] = {
        "&l",   "&lt;",   "&gt;", "&am",   "&amp;", "&ap",    "&apos;", "&nb", "&nbsp;",
        "&co",  "&copy;", "&re",  "&reg;", "&qu",   "&quot;", "&#",     "&#x", "65",
        "0101", "4F",     ";",    " ",     "\t",    "&",      "a",      "#",   "&#99999999999999999999",
        "&n",   "&r",     "&c",   "&q",    "&a",    "\r\n",   "z",      "-",   "&#32;",
        "09",   "&#x0;"};
    for (int i = 0; i < 60000; ++i) {
        std::string s;
        for (size_t k = random() % 7; k-- > 0;) s += OneOf(random, parts);
        const bool keep = random() % 2 == 0;
        ASSERT_EQ(Say(DecodeText(T(s), keep)), Say(ModelDecode(T(s), keep))) << "\"" << s << "\" " << keep;
    }
}

}    // namespace
}    // namespace conformance
