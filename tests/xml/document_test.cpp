#include "xml/document.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files.h"
#include "platform/status.h"
#include "tests/support/sample_key.h"
#include "tests/support/scratch_folder.h"
#include "tests/xml/say.h"
#include "xml/limits.h"

namespace zck::XMLParse {
namespace {

using test::kSampleText;

class Document : public testing::Test {
protected:
    Text Path(std::string_view name) const { return In(m_folder.Path(name)); }
    std::string Bytes(std::string_view name) const { return m_folder.Bytes(name); }

    const test::ScratchFolder m_folder;
};

/// The settings of the sample key, as a host keeps them.
XMLNodePtr KeySettings() {
    const XMLNodePtr root = CoXMLNode::Create(In("m_config"));
    root->IntSet(In("type"), 3);
    root->IntSet(In("keys"), 1);
    const XMLNodePtr key = root->ChildAdd(In("key"));
    key->Hex32Set(In("value"), 0xFF3C8040);
    key->Hex32Set(In("delta"), 0x2A2A2A05);
    key->IntSet(In("smooth"), 26);
    for (const char *name :
         {"alpha", "cancel.range", "cancel.power", "cancel.chroma", "cancel.luma", "cancel.alpha", "reverse_key"})
        key->IntSet(In(name), 0);
    root->IntSet(In("transparent.min"), 102);
    root->IntSet(In("transparent.max"), 230);
    root->IntSet(In("edges_smooth"), 3);
    root->BoolSet(In("color_cancel"), false);
    root->IntSet(In("interlaced"), 0);
    root->IntSet(In("inverse"), 0);
    const XMLNodePtr adjust = root->ChildAdd(In("adjust"));
    const struct {
        const char *name;
        double value;
    } steps[] = {{"power", 0.0},          {"transparent", 0.75}, {"colors", 0.0},          {"smooth", 0.25},
                 {"min_trans", 0.4},      {"max_trans", 0.9},    {"exc_power", 0.0},       {"transparent", 0.05},
                 {"color::range", 1.0},   {"color::power", 0.3}, {"color::chroma", -0.25}, {"color::luma", -0.05},
                 {"color::alpha", -0.05}, {"range::rhy", 0.66},  {"range::glu", 0.66},     {"range::bsv", 0.66}};
    for (const auto &step : steps) adjust->FloatSet(In(step.name), step.value);
    return root;
}

TEST_F(Document, SettingsOfAKeyAreWrittenByteForByte) {
    Bstr text;
    EXPECT_EQ(SaveFile(*KeySettings(), Path("key.xml"), false, text.Put()), S_OK);
    EXPECT_EQ(Bytes("key.xml"), kSampleText);
    EXPECT_EQ(Say(text.view()), kSampleText);
}

TEST_F(Document, UnicodeIsLowByteFirstWithoutAMark) {
    EXPECT_EQ(SaveFile(*KeySettings(), Path("key.xml"), true), S_OK);
    std::string expected;
    for (const char c : kSampleText) {
        expected.push_back(c);
        expected.push_back('\0');
    }
    EXPECT_EQ(Bytes("key.xml"), expected);
}

TEST_F(Document, BothFormsAreReadBack) {
    for (const bool unicode : {false, true}) {
        const XMLNodePtr node = CoXMLNode::Create(In("ov-root"));
        EXPECT_EQ(SaveFile(*KeySettings(), Path("key.xml"), unicode), S_OK);
        EXPECT_EQ(LoadFile(*node, Path("key.xml")), S_OK);
        EXPECT_EQ(Say(XMLText(*node)), kSampleText);
        EXPECT_EQ(node->Hex32Get(In("key::value")), 0xFF3C8040U);
        EXPECT_EQ(node->FloatGet(In("adjust::color::chroma")), -0.25);
        EXPECT_FALSE(node->BoolGet(In("color_cancel"), true));
    }
}

TEST_F(Document, AnOldFileIsReplaced) {
    EXPECT_EQ(FileWrite(Path("x"), std::string(1000, 'x')), S_OK);
    EXPECT_EQ(SaveFile(*Tree("<a/>"), Path("x"), false), S_OK);
    EXPECT_EQ(Bytes("x"), "<a/>");
}

TEST_F(Document, NamesOfFilesAreOfAnyScript) {
    EXPECT_EQ(SaveFile(*Tree("<a/>"), Path("\u00E4\u4E2D.xml"), false), S_OK);
    EXPECT_TRUE(std::filesystem::exists(m_folder.File("\u00E4\u4E2D.xml")));
    EXPECT_EQ(LoadFile(*CoXMLNode::Create(In("n")), Path("\u00E4\u4E2D.xml")), S_OK);
}

TEST_F(Document, AFileThatCannotBeCreatedIsNotNoticed) {
    Bstr text;
    EXPECT_EQ(SaveFile(*Tree("<a/>"), Path("no/such/folder/x"), false, text.Put()), S_OK);
    EXPECT_EQ(Say(text.view()), "<a/>");
}

TEST_F(Document, AnEmptyTextIsUnexpectedBehindTheFile) {
    const XMLNodePtr text = CoXMLNode::CreateText(In(""));
    EXPECT_EQ(SaveFile(*text, Path("empty"), false), E_UNEXPECTED);
    EXPECT_EQ(Bytes("empty"), "");
    EXPECT_EQ(SaveFile(*text, In(""), false), E_UNEXPECTED);
    BSTR out = reinterpret_cast<BSTR>(&out);
    EXPECT_EQ(SaveFile(*text, In(""), false, &out), E_UNEXPECTED);
    EXPECT_EQ(out, nullptr);
}

TEST_F(Document, WithoutAPathOnlyTheTextIsGiven) {
    Bstr text;
    EXPECT_EQ(SaveFile(*Tree("<a/>"), In(""), true, text.Put()), S_OK);
    EXPECT_EQ(Say(text.view()), "<a/>");
    EXPECT_EQ(SaveFile(*Tree("<a/>"), In(""), true), S_OK);
}

TEST_F(Document, AFileThatCannotBeReadLeavesTheNode) {
    const XMLNodePtr node = Tree("<a x='1'/>");
    EXPECT_EQ(LoadFile(*node, Path("missing")), kErrorFileNotFound);
    EXPECT_TRUE(FAILED(LoadFile(*node, Path("."))));
    EXPECT_EQ(Line(node), "<a x='1'/>");
}

TEST_F(Document, AFileWithoutATagIsInvalid) {
    EXPECT_EQ(FileWrite(Path("empty"), ""), S_OK);
    EXPECT_EQ(LoadFile(*CoXMLNode::Create(In("n")), Path("empty")), E_INVALIDARG);
    EXPECT_EQ(FileWrite(Path("text"), "no tag"), S_OK);
    EXPECT_EQ(LoadFile(*CoXMLNode::Create(In("n")), Path("text")), E_INVALIDARG);
}

TEST_F(Document, CommentsOfAFileVanish) {
    EXPECT_EQ(FileWrite(Path("c"), "<?xml version='1.0'?>\n<a>1<!-- <b/> -->2</a>"), S_OK);
    const XMLNodePtr node = CoXMLNode::Create(In("n"));
    EXPECT_EQ(LoadFile(*node, Path("c")), S_OK);
    EXPECT_EQ(Line(node), "<a>12</a>");
}

TEST_F(Document, AHugeFileIsRefused) {
    EXPECT_EQ(FileWrite(Path("huge"), std::string(kFileBytesMax + 1, ' ')), S_OK);
    EXPECT_EQ(LoadFile(*CoXMLNode::Create(In("n")), Path("huge")), kErrorTooLarge);
}

}    // namespace
}    // namespace zck::XMLParse
