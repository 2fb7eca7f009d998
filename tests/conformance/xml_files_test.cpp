// Bytes of files as text, and trees in files.
#include <gtest/gtest.h>

#include <random>

#include "tests/conformance/xml_model.h"
#include "tests/support/scratch_folder.h"
#include "xml/decode.h"
#include "xml/document.h"
#include "xml/writer.h"

namespace conformance {
namespace {

using namespace zck::XMLParse;

constexpr HRESULT kBadText = E_INVALIDARG;

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
