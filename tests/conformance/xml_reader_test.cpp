// The reader of trees, against a table and a slow model.
#include <gtest/gtest.h>

#include <random>

#include "tests/conformance/xml_model.h"
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

}    // namespace
}    // namespace conformance
