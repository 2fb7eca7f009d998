// The reader and the writer of trees, against tables and slow models.
#include <gtest/gtest.h>

#include "tests/conformance/xml_model.h"
#include "tests/support/scratch_folder.h"
#include "xml/attribute_list.h"
#include "xml/decode.h"
#include "xml/document.h"
#include "xml/entities.h"
#include "xml/name_key.h"
#include "xml/parser.h"
#include "xml/writer.h"

namespace conformance {
namespace {

using namespace zck::XMLParse;

constexpr HRESULT kBadText = E_INVALIDARG;

std::string Parsed(std::string_view text, bool noRootTag = false, bool rawText = false) {
    const XMLNodePtr node = CoXMLNode::Create(T("before"));
    const HRESULT hr = ParseXML(*node, T(text), nullptr, noRootTag, rawText);
    return hr == S_OK ? Dump(*node) : hr == kBadText ? "bad" : "?";
}

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

TEST(Lists, Table) {
    const struct {
        const char *text;
        bool any;
        const char *dump;
    } rows[] = {{"", false, "<n></>"},
                {"a=1", true, "<n a={1}></>"},
                {"a=1 b=2", true, "<n a={1} b={2}></>"},
                {"  a \r\n=\t 1  ", true, "<n a={1}></>"},
                {"a='x y' b=\"'q'\"", true, "<n a={x y} b={'q'}></>"},
                {"a='x\"y'b=2", true, "<n a={x\"y} b={2}></>"},
                {"a='open b=2", true, "<n a={open b=2}></>"},
                {"a=x'y z' b=1", true, "<n a={x'y} b={1}></>"},
                {"a=", false, "<n></>"},
                {"a=1 b=", true, "<n a={1}></>"},
                {"a= b=2", true, "<n a={b=2}></>"},
                {"a=''", true, "<n a={}></>"},
                {"=1", false, "<n></>"},
                {"=1 b=2", true, "<n b={2}></>"},
                {"bare", false, "<n></>"},
                {"bare a=1 too", true, "<n a={1}></>"},
                {"bare = 1", true, "<n bare={1}></>"},
                {"a=&lt;&#65;", true, "<n a={&lt;&#65;}></>"},
                {"a=1 A=2", true, "<n a={2}></>"},
                {"a;b=1,2;3", true, "<n a;b={1,2;3}></>"},
                {"a=<b>", true, "<n a={<b>}></>"},
                {"x::y=1", true, "<n x::y={1}></>"},
                {"a=1\xEF\xBB\xBF"
                 "b=2",
                 true, "<n a={1} b={2}></>"}};
    for (const auto &row : rows) {
        const XMLNodePtr node = CoXMLNode::Create(T("n"));
        EXPECT_EQ(ParseAttributes(*node, T(row.text), 1, ListNames::Flat), row.any) << row.text;
        EXPECT_EQ(Dump(*node), row.dump) << row.text;
    }
}

TEST(Lists, Modes) {
    const auto after = [](int32_t mode, ListNames names, std::string_view text, BareNames bare = BareNames::Drop) {
        const XMLNodePtr node = CoXMLNode::Create(T("n"));
        ParseAttributes(*node, T("Old=1 a=2"), 1, ListNames::Flat);
        const bool any = ParseAttributes(*node, T(text), mode, names, bare);
        return (any ? "" : "none ") + Dump(*node);
    };
    EXPECT_EQ(after(0, ListNames::Flat, "old=9 A=9 b=9"), "<n Old={1} a={2} b={9}></>");
    EXPECT_EQ(after(0, ListNames::Flat, "old=9"), "<n Old={1} a={2}></>");
    EXPECT_EQ(after(1, ListNames::Flat, "old=9 b=9"), "<n Old={9} a={2} b={9}></>");
    EXPECT_EQ(after(5, ListNames::Flat, "old=9"), "<n Old={9} a={2}></>");
    EXPECT_EQ(after(2, ListNames::Flat, "b=9"), "<n b={9}></>");
    EXPECT_EQ(after(2, ListNames::Flat, ""), "none <n></>");
    EXPECT_EQ(after(1, ListNames::Paths, "x::y=3 x(1)::z=4 a=5"), "<n Old={1} a={5}><x y={3}></><x z={4}></></>");
    EXPECT_EQ(after(0, ListNames::Paths, "x::y=3 x::Y=4 a=5"), "<n Old={1} a={2}><x y={3}></></>");
    EXPECT_EQ(after(1, ListNames::Flat, "bare", BareNames::Store), "<n Old={1} a={2} bare={}></>");
    EXPECT_EQ(after(1, ListNames::Flat, "bare"), "none <n Old={1} a={2}></>");
    EXPECT_EQ(after(0, ListNames::Flat, "a", BareNames::Store), "<n Old={1} a={2}></>");
    EXPECT_EQ(after(1, ListNames::Paths, "::y=3 b=1"), "<n Old={1} a={2} b={1}></>");
}

TEST(Lists, AsTheModel) {
    std::mt19937 random(43);
    const char *const parts[] = {"a", "B",  "bb",   "=", " = ", "'",    "\"",    "1",       "x y",
                                 " ", "\t", "\r\n", ";", "<",   "a=1 ", "b='2'", "C=\"3\" "};
    for (int i = 0; i < 40000; ++i) {
        const XMLNodePtr node = CoXMLNode::Create(T("n"));
        ModelNode model{T("n"), false, {}, {}};
        std::string s;
        for (int round = 0; round < 2; ++round) {
            s.clear();
            for (size_t k = random() % 9; k-- > 0;) s += OneOf(random, parts);
            const int mode = static_cast<int>(random() % 3);
            const bool bare = random() % 2 == 0;
            ASSERT_EQ(ParseAttributes(*node, T(s), mode, ListNames::Flat, bare ? BareNames::Store : BareNames::Drop),
                      ModelList(model, T(s), mode, bare))
                << s;
            ASSERT_EQ(Dump(*node), Dump(model)) << s;
        }
        const Text list = WriteAttributes(*node, false);
        Text want;
        for (const auto &[name, value] : model.attributes) want += T(" ") + name + T("=") + ModelQuote(value);
        ASSERT_EQ(Say(list), Say(want).substr(want.empty() ? 0 : 1));
    }
}

TEST(Lists, Written) {
    const XMLNodePtr node = CoXMLNode::Create(T("n"));
    EXPECT_EQ(Say(WriteAttributes(*node, true)), "");
    node->AttributeSet(T("a"), TextView(T("1")));
    node->AttributeSet(T("B"), TextView(T("it's \"so\"")));
    node->AttributeSet(T("c"), TextView(T("<&>\"")));
    EXPECT_EQ(Say(WriteAttributes(*node, true)), "a='1' B=\"it's 'so'\" c='<&>\"'");
    EXPECT_EQ(Say(WriteAttributes(*node, false, T("p::"))), "p::a='1' p::B=\"it's 'so'\" p::c='<&>\"'");
    node->TextSet(T("it's"));
    EXPECT_EQ(Say(WriteAttributes(*node, true)), "_node_value=\"it's\" a='1' B=\"it's 'so'\" c='<&>\"'");
    EXPECT_EQ(Say(WriteAttributes(*node, false)), "a='1' B=\"it's 'so'\" c='<&>\"'");
}

TEST(Reader, Table) {
    const struct {
        const char *text, *dump;
    } rows[] = {{"<a><b>1</a>", "<a><b>[1]</></>"},
                {"<A x='1'/>", "<a x={1}></>"},
                {"<A X='1' Yy=2/>", "<a X={1} Yy={2}></>"},
                {"text without tags", "bad"},
                {"", "bad"},
                {"</a></b>", "bad"},
                {"</a><b/>", "<b></>"},
                {"leading text <b/> trailing", "<b></>"},
                {"<a>&#65;</a>", "<a>[A]</>"},
                {"<a>&#x41;</a>", "<a>[A]</>"},
                {"<a> </a>", "<a></>"},
                {"<a>&nbsp;</a>", "<a>[ ]</>"},
                {"<a>\r\n\t</a>", "<a></>"},
                {"<a>\n  t</a>", "<a>[  t]</>"},
                {"<a> t \n</a>", "<a>[ t ]</>"},
                {"<a x='<b>'>1</a>", "<a x={<b>}>[1]</>"},
                {"<br>", "<br></>"},
                {"<br>behind", "<br></>"},
                {"<br x=1>", "<br></>"},
                {"<TAB x=1/>", "<tab></>"},
                {"<a><br></br>x</a>", "<a><br></><br></>[x]</>"},
                {"</br><a/>", "<br></>"},
                {"<a>1<b/>2<b/>3</a>", "<a>[1]<b></>[2]<b></>[3]</>"},
                {"<a>1<!--c-->2</a>", "<a>[12]</>"},
                {"<?xml version='1'?><a/>", "<a></>"},
                {"<!--<b/>--><a/>", "<a></>"},
                {"<a><!--<b/></a>", "<a></>"},
                {"<a><?x</a>", "<a></>"},
                {"<!-->-->x<a/>", "<a></>"},
                {"<a><!--x--><?y?><!--z-->1</a>", "<a>[1]</>"},
                {"<!DOCTYPE x><a/>", "<!doctype><a></></>"},
                {"<a x=12", "<a x={12}></>"},
                {"<br/", "<br></>"},
                {"<a/", "<a></>"},
                {"<a", "<a></>"},
                {"<a>t<b", "<a>[t]<b></></>"},
                {"<a x=1/>", "<a x={1}></>"},
                {"<a x='1/'>t</a>", "<a x={1/}>[t]</>"},
                {"<a x=1 / >t", "<a x={1}></>"},
                {"<a/x=1>t</a>", "<a /x={1}>[t]</>"},
                {"<>", "bad"},
                {"< >", "bad"},
                {"<=1>", "bad"},
                {"<a>1<>2< >3</a>", "<a>[123]</>"},
                {"<a>1</ a>2</a>3", "<a>[12]</>"},
                {"< a >1</a>", "<a>[1]</>"},
                {"<a>1</a >2", "<a>[1]</>"},
                {"<a>1</A>2", "<a>[1]</>"},
                {"<a>1</b>2</a>", "<a>[12]</>"},
                {"<a>1</ab>2", "<a>[12]</>"},
                {"<a>1</a x=1>2", "<a>[1]</>"},
                {"<a>1 < 2</a>", "<a>[1 ]<2></></>"},
                {"<a><![CDATA[x<y>&lt;z]]></a>", "<a>[x<y><z]</>"},
                {"<a><![CDATA[ ]]></a>", "<a></>"},
                {"<a>1<![CDATA[2]]>3</a>", "<a>[123]</>"},
                {"<a><![CDATA[\n2\n]]></a>", "<a>[ 2 ]</>"},
                {"<a><![CDATA[it's > ]]>b</a>", "<a>[it's > b]</>"},
                {"<a><![CDATA[abcdef", "<a>[abc]</>"},
                {"<a><![CDATA[ab", "<a></>"},
                {"<![CDATA[x]]><a/>", "<![CDATA[>[x]</>"},
                {"<a b='>'>t</a>", "<a b={>}>[t]</>"},
                {"<a b='>t</a>", "<a b={>t</a>}></>"},
                {"<a b=\"'>\">t</a>", "<a b={'>}>[t]</>"},
                {"<a><b>1</a>2</b>3</a>", "<a><b>[12]</>[3]</>"},
                {"<a><c>1<c>2</c></a></c>x", "<a><c>[1]<c>[2]</></>[x]</>"},
                {"<a;b>1</a>", "<a>[1]</>"},
                {"<a,x=1>1</a>", "<a ,x={1}>[1]</>"},
                {"<a-b.c:d>1</A-B.C:D>", "<a-b.c:d>[1]</>"},
                {"<a>\xEF\xBB\xBF"
                 "1</a>",
                 "<a>[1]</>"}};
    for (const auto &row : rows) EXPECT_EQ(Parsed(row.text), row.dump) << row.text;
}

TEST(Reader, NamesAreLoweredByTheSystemsRule) {
    EXPECT_EQ(Parsed("<\xC3\x84\xC3\x96 \xC3\x84=1/>"), Say(T("<\xC3\xA4\xC3\xB6 \xC3\x84={1}></>")));
}

TEST(Reader, RawTextKeepsBlanks) {
    EXPECT_EQ(Parsed("<a> </a>", false, true), "<a>[ ]</>");
    EXPECT_EQ(Parsed("<a>\n\tx\n<b/>\n</a>", false, true), "<a>[  x ]<b></>[ ]</>");
    EXPECT_EQ(Parsed("<a>&lt;\r\n</a>", false, true), "<a>[<  ]</>");
    EXPECT_EQ(Parsed("<a><![CDATA[ ]]></a>", false, true), "<a>[ ]</>");
}

TEST(Reader, WithoutARootTag) {
    EXPECT_EQ(Parsed("1<b/>2", true), "<before>[1]<b></>[2]</>");
    EXPECT_EQ(Parsed("text", true), "<before>[text]</>");
    EXPECT_EQ(Parsed("", true), "<before></>");
    EXPECT_EQ(Parsed("1</before>2", true), "<before>[1]</>");
    EXPECT_EQ(Parsed("1</BEFORE>2", true), "<before>[1]</>");
    EXPECT_EQ(Parsed("1</other>2", true), "<before>[12]</>");
    EXPECT_EQ(Parsed("<a/><a/>", true), "<before><a></><a></></>");
    EXPECT_EQ(Parsed("1<![CDATA[2]]>", true), "<before>[12]</>");
}

TEST(Reader, TheEndIsGivenBack) {
    const auto endOf = [](std::string_view text, size_t end) {
        const XMLNodePtr node = CoXMLNode::Create(T("n"));
        EXPECT_EQ(ParseXML(*node, T(text), &end), S_OK);
        return Dump(*node) + " " + std::to_string(end);
    };
    EXPECT_EQ(endOf("<a>1</a><b/>", 12), "<a>[1]</> 8");
    EXPECT_EQ(endOf("<a/><b/>", 8), "<a></> 4");
    EXPECT_EQ(endOf("x</q><a>1<b>2</a>", 17), "<a>[1]<b>[2]</></> 17");
    EXPECT_EQ(endOf("<a>1</a><b/>", 4), "<a>[1]</> 4");    // the text ends there for this call
    EXPECT_EQ(endOf("<a>123</a>", 5), "<a>[12]</> 5");
    EXPECT_EQ(endOf("<![CDATA[x]]> ", 14), "<![CDATA[>[x]</> 13");
}

TEST(Reader, AFailureLeavesAnEmptyNodeOfTheFormerName) {
    const XMLNodePtr node = CoXMLNode::Create(T("n"));
    EXPECT_EQ(ParseXML(*node, T("<x a=1>t<b/></x>")), S_OK);
    EXPECT_EQ(Dump(*node), "<x a={1}>[t]<b></></>");
    EXPECT_EQ(ParseXML(*node, T("nothing")), kBadText);
    EXPECT_EQ(Dump(*node), "<x></>");
    EXPECT_EQ(ParseXML(*node, T("<x a=1>t<b/></x>")), S_OK);
    EXPECT_EQ(ParseXML(*node, TextView()), kBadText);
    EXPECT_EQ(ParseXML(*node, T("<y b=2>u</y>")), S_OK);
    EXPECT_EQ(Dump(*node), "<y b={2}>[u]</>");
}

TEST(Reader, DeepNestingIsCut) {
    const auto chain = [](int levels) {
        std::string s;
        for (int i = 0; i < levels; ++i) s += "<a>";
        return s + "x";
    };
    const auto depth = [](const std::string &dump) {
        int n = 0;
        for (size_t at = 0; (at = dump.find("<a>", at)) != std::string::npos; ++at) ++n;
        return n;
    };
    EXPECT_EQ(depth(Parsed(chain(1000))), 1000);
    EXPECT_EQ(depth(Parsed(chain(1024))), 1024);
    EXPECT_EQ(depth(Parsed(chain(1025))), 1024);
    EXPECT_EQ(depth(Parsed(chain(20000))), 1024);
}

const char *const kPieces[] = {"<a>",
                               "</a>",
                               "<b x=1>",
                               "<B y='q>' />",
                               "</b >",
                               "</B>",
                               "<br>",
                               "</br>",
                               "<tab q=1>",
                               "text",
                               "T",
                               " ",
                               "\r\n\t",
                               "&lt;",
                               "&#65;",
                               "&nbsp;",
                               "<!--c-->",
                               "<?d?>",
                               "<!--<a>",
                               "-->",
                               "<?",
                               "?>",
                               ">",
                               "<",
                               "'",
                               "\"",
                               "/",
                               "=",
                               "<>",
                               "< >",
                               "</>",
                               "</ a>",
                               "<=1>",
                               ";",
                               ",",
                               "<c/>",
                               "<c d=\"",
                               "\">",
                               "<a/>",
                               "<![CDATA[ x<y ]]>",
                               "<![CDATA[]]>",
                               "<![CDATA[z",
                               "]]>",
                               "<a x=/>",
                               "&",
                               "<d",
                               "\\",
                               "<a b=1 B=2>",
                               "</c>",
                               "<c>"};

std::string Pieces(std::mt19937 &random, size_t most) {
    std::string s;
    for (size_t k = random() % most; k-- > 0;) s += OneOf(random, kPieces);
    return s;
}

TEST(Reader, AsTheModel) {
    std::mt19937 random(44);
    int good = 0;
    for (int i = 0; i < 60000; ++i) {
        const std::string s = Pieces(random, 14);
        const bool noRootTag = random() % 5 == 0, rawText = random() % 5 == 0;
        ModelNode model{T("before"), false, {}, {}};
        const Text stripped = ModelStrip(T(s));
        if (stripped.find(T("<!--")) != Text::npos || stripped.find(T("<?")) != Text::npos) continue;
        size_t modelEnd = 0, end = T(s).size();
        const bool ok = ModelParse(model, stripped, modelEnd, noRootTag, rawText);
        const XMLNodePtr node = CoXMLNode::Create(T("before"));
        const HRESULT hr = ParseXML(*node, T(s), &end, noRootTag, rawText);
        ASSERT_EQ(hr, ok ? S_OK : kBadText) << s;
        ASSERT_EQ(Dump(*node), Dump(model)) << "\"" << s << "\" " << noRootTag << rawText;
        ASSERT_TRUE(!ok || stripped != T(s) || end == modelEnd) << "\"" << s << "\" " << end << " " << modelEnd;
        if (!ok) continue;
        ++good;
        ASSERT_EQ(Say(XMLText(*node)), Say(ModelWrite(model))) << s;
        ASSERT_EQ(Say(XMLText(*node, -1)), Say(ModelWrite(model, -1))) << s;
    }
    EXPECT_GT(good, 20000);
}

TEST(Writer, Layout) {
    const XMLNodePtr node = CoXMLNode::Create(T("Root"));
    EXPECT_EQ(Say(XMLText(*node)), "<Root/>");
    node->AttributeSet(T("a"), TextView(T("it's")));
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\"/>");
    node->TextSet(T("x<&>'\""));
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\">x&lt;&amp;&gt;'\"</Root>");
    const XMLNodePtr child = node->ChildAdd(T("c"));
    child->ChildAdd(T("d"))->AttributeSet(T("v"), TextView(T("<>")));
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\">\r\n\tx&lt;&amp;&gt;'\"\r\n\t<c>\r\n\t\t<d v='<>'/>\r\n\t</c>\r\n</Root>");
    EXPECT_EQ(
        Say(XMLText(*node, 2)),
        "\t\t<Root a=\"it's\">\r\n\t\t\tx&lt;&amp;&gt;'\"\r\n\t\t\t<c>\r\n\t\t\t\t<d v='<>'/>\r\n\t\t\t</c>\r\n\t\t</Root>");
    EXPECT_EQ(Say(XMLText(*node, -1)), "<Root a=\"it's\">x&lt;&amp;&gt;'\"<c><d v='<>'/></c></Root>");
    EXPECT_EQ(Say(XMLText(*node, -7)), "<Root a=\"it's\">x&lt;&amp;&gt;'\"<c><d v='<>'/></c></Root>");
    child->CompactOutputSet(true);
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\">\r\n\tx&lt;&amp;&gt;'\"<c><d v='<>'/></c>\r\n</Root>");
    node->CompactOutputSet(true);
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\">\r\n\tx&lt;&amp;&gt;'\"<c><d v='<>'/></c></Root>");
    BSTR out = nullptr;
    EXPECT_EQ(WriteXML(*node, &out), S_OK);
    EXPECT_EQ(Say(out), Say(XMLText(*node)));
    SysFreeString(out);
    EXPECT_EQ(WriteXML(*node, nullptr), E_POINTER);
}

TEST(Writer, AnEmptyTextChildGivesTwoTags) {
    const XMLNodePtr node = CoXMLNode::Create(T("a"));
    node->TextSet(TextView());
    EXPECT_EQ(Say(XMLText(*node)), "<a></a>");
}

TEST(Writer, TabsAreLimited) {
    const XMLNodePtr root = CoXMLNode::Create(T("r"));
    XMLNodePtr node = root;
    for (int i = 0; i < 80; ++i) node = node->ChildAdd(T("n"));
    const std::string text = Say(XMLText(*root));
    EXPECT_NE(text.find("\r\n" + std::string(64, '\t') + "<n>"), std::string::npos);
    EXPECT_EQ(text.find(std::string(65, '\t')), std::string::npos);
    EXPECT_NE(text.find(std::string(64, '\t') + "<n/>\r\n" + std::string(64, '\t') + "</n>"), std::string::npos);
}

TEST(Writer, TextsOfDeepNodesHaveAllTheirTabs) {
    const XMLNodePtr root = CoXMLNode::Create(T("r"));
    XMLNodePtr node = root;
    for (int i = 0; i < 80; ++i) node = node->ChildAdd(T("n"));
    node->TextSet(T("t"));
    node->ChildAdd(T("m"));
    EXPECT_NE(Say(XMLText(*root)).find("\r\n" + std::string(81, '\t') + "t\r\n" + std::string(64, '\t') + "<m/>"),
              std::string::npos);
}

TEST(Writer, WhatIsWrittenIsReadBack) {
    std::mt19937 random(45);
    for (int i = 0; i < 5000; ++i) {
        // Names in lower case, texts without blanks at their ends and never two in a row.
        const auto build = [&](auto &self, const XMLNodePtr &node, int depth) -> void {
            for (size_t k = random() % 4; k-- > 0;)
                node->AttributeSetOwn(T("k" + std::to_string(random() % 5)), zck::TypedValue(T(AnyOf(random, "a <>&'=/", 6))));
            for (size_t k = random() % 4; k-- > 0;) {
                if (random() % 3 == 0) {
                    node->TextAppend(T("t" + AnyOf(random, "<>&'\" x", 6) + "t"));
                } else if (depth < 4) {
                    self(self, node->ChildAdd(T("n" + std::to_string(random() % 3))), depth + 1);
                }
            }
        };
        const XMLNodePtr node = CoXMLNode::Create(T("root"));
        build(build, node, 0);
        const XMLNodePtr back = CoXMLNode::Create(T("x"));
        // The blanks that the layout brings are tabs and line ends, which go again.
        ASSERT_EQ(ParseXML(*back, XMLText(*node)), S_OK);
        ASSERT_EQ(Dump(*back), Dump(*node)) << Say(XMLText(*node));
        ASSERT_EQ(ParseXML(*back, XMLText(*node, -1)), S_OK);
        ASSERT_EQ(Dump(*back), Dump(*node));
    }
}

std::string Units(std::string_view utf8, bool bigEndian, const char *mark = "") {
    std::string bytes(mark);
    for (const OLECHAR c : T(utf8)) {
        const char low = static_cast<char>(c & 0xFF), high = static_cast<char>(c >> 8);
        bytes += bigEndian ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
}

TEST(Bytes, Encodings) {
    using namespace std::string_literals;
    const std::string plain = "<a>\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80</a>";
    const std::string want = plain;
    EXPECT_EQ(Say(DecodeBytes(plain)), want);
    EXPECT_EQ(Say(DecodeBytes("\xEF\xBB\xBF" + plain)), want);
    EXPECT_EQ(Say(DecodeBytes("<?xml encoding='UTF-8'?>" + plain)), "<?xml encoding='UTF-8'?>" + want);
    EXPECT_EQ(Say(DecodeBytes("<?xml encoding='utf-7'?>" + plain)), "<?xml encoding='utf-7'?>" + want);
    EXPECT_EQ(Say(DecodeBytes("<?xml encoding='utf-7'?>+AGE-")), "<?xml encoding='utf-7'?>+AGE-");
    EXPECT_EQ(Say(DecodeBytes(Units(plain, false, "\xFF\xFE"))), want);
    EXPECT_EQ(Say(DecodeBytes(Units(plain, true, "\xFE\xFF"))), want);
    EXPECT_EQ(Say(DecodeBytes(Units(plain, false))), want);
    EXPECT_EQ(Say(DecodeBytes(Units(plain, true))), want);
    EXPECT_EQ(Say(DecodeBytes(Units(plain, false, "\xFF\xFE") + "x")), want);           // an odd byte is dropped
    EXPECT_EQ(Say(DecodeBytes("+/v8-<a>+AOQ-</a>")), "\xEF\xBB\xBF<a>\xC3\xA4</a>");    // the mark is a space
    EXPECT_EQ(Say(DecodeBytes("")), "");
    EXPECT_EQ(Say(DecodeBytes("a")), "a");
    EXPECT_EQ(Say(DecodeBytes("\xFF\xFE"
                              "a\0"s)),
              "a");
    // A zero says 16-bit text, wherever it stands in the first nine tenths.
    EXPECT_EQ(DecodeBytes("abcd\0efgh "s).size(), 5U);
    EXPECT_EQ(DecodeBytes("abc\0"s).size(), 4U);
}

TEST(Bytes, TestOf16BitText) {
    using namespace std::string_literals;
    EXPECT_EQ(Utf16Test("\xFF\xFE"s, 0.9), 2);
    EXPECT_EQ(Utf16Test("\xFE\xFF"s, 0.9), -2);
    EXPECT_EQ(Utf16Test("\xFF"s, 0.9), 0);
    EXPECT_EQ(Utf16Test(""s, 0.9), 0);
    EXPECT_EQ(Utf16Test("a\0b\0c\0"s, 0.9), 1);
    EXPECT_EQ(Utf16Test("\0a\0b\0c"s, 0.9), -1);
    EXPECT_EQ(Utf16Test("\0\0\0\0\0\0"s, 0.9), -1);
    std::mt19937 random(46);
    for (int i = 0; i < 30000; ++i) {
        const std::string s = AnyOf(random, std::string_view("\0abcdefgh\xFF\xFE", i % 2 == 0 ? 11 : 9), 24);
        for (const double ratio : {0.9, 0.5, 1.0, 2.0, 0.0}) ASSERT_EQ(Utf16Test(s, ratio), ModelUtf16Test(s, ratio)) << ratio;
    }
}

class TreeFiles : public testing::Test {
protected:
    std::string Loaded(std::string_view bytes) {
        m_folder.Put("t.xml", bytes);
        const XMLNodePtr node = CoXMLNode::Create(T("n"));
        const HRESULT hr = LoadFile(*node, m_path);
        return hr == S_OK ? Dump(*node) : hr == kBadText ? "bad" : "?";
    }

    const zck::test::ScratchFolder m_folder;
    const Text m_path = T(m_folder.Path("t.xml"));
};

TEST_F(TreeFiles, AreDecodedStrippedAndRead) {
    EXPECT_EQ(Loaded("<a x='1'>t</a>"), "<a x={1}>[t]</>");
    EXPECT_EQ(Loaded("<?xml?>\r\n<!-- c -->\r\n<a>1<!-- d -->2<?e?>3</a>"), "<a>[123]</>");
    EXPECT_EQ(Loaded("<a><!-- no end <b/></a>"), "<a></>");
    EXPECT_EQ(Loaded(Units("<a>\xC3\xA4</a>", false, "\xFF\xFE")), Say(T("<a>[\xC3\xA4]</>")));
    EXPECT_EQ(Loaded(Units("<a>\xC3\xA4</a>", false)), Say(T("<a>[\xC3\xA4]</>")));
    EXPECT_EQ(Loaded(""), "bad");
    EXPECT_EQ(Loaded("no tag"), "bad");
    EXPECT_EQ(Loaded("<a> </a>"), "<a></>");    // both flags off
}

TEST_F(TreeFiles, ReadErrorsAreTheSystems) {
    const XMLNodePtr node = CoXMLNode::Create(T("n"));
    node->AttributeSet(T("a"), TextView(T("1")));
    EXPECT_EQ(LoadFile(*node, m_path), static_cast<HRESULT>(0x80070002));
    EXPECT_EQ(static_cast<uint32_t>(LoadFile(*node, m_path + T("/x/y"))) >> 16, 0x8007U);
    EXPECT_TRUE(FAILED(LoadFile(*node, T(m_folder.Path()))));
    EXPECT_EQ(Dump(*node), "<n a={1}></>");
}

TEST_F(TreeFiles, AreSaved) {
    const XMLNodePtr node = CoXMLNode::Create(T("n"));
    node->ChildAdd(T("c"))->TextSet(T("\xC3\xA4"));
    const std::string text = Say(XMLText(*node));
    BSTR out = nullptr;
    m_folder.Put("t.xml", "something much longer that was there before, which has to go");
    EXPECT_EQ(SaveFile(*node, m_path, true, &out), S_OK);
    EXPECT_EQ(Say(out), text);
    SysFreeString(out);
    EXPECT_EQ(m_folder.Bytes("t.xml"), Units(text, false));
    EXPECT_EQ(SaveFile(*node, m_path, false), S_OK);
    const XMLNodePtr back = CoXMLNode::Create(T("x"));
    EXPECT_EQ(LoadFile(*back, m_path), S_OK);
    EXPECT_EQ(Dump(*back), Dump(*node));
    out = nullptr;
    EXPECT_EQ(SaveFile(*node, TextView(), false, &out), S_OK);    // no path, only the text
    EXPECT_EQ(Say(out), text);
    SysFreeString(out);
}

TEST_F(TreeFiles, AFileThatCannotBeMadeIsNotNoticed) {
    const XMLNodePtr node = CoXMLNode::Create(T("n"));
    BSTR out = nullptr;
    EXPECT_EQ(SaveFile(*node, m_path + T("/x/y.xml"), false, &out), S_OK);
    EXPECT_EQ(Say(out), "<n/>");
    SysFreeString(out);
    EXPECT_EQ(SaveFile(*node, T(m_folder.Path()), true), S_OK);
}

}    // namespace
}    // namespace conformance
