#include "props/persist/persist_impl.h"

#include "tests/props/persist/persist_object.h"

namespace zck {
namespace {

TEST_F(PersistTest, NothingIsSavedOrLoadedWithoutAPlace) {
    EXPECT_EQ(SaveTo(""), E_INVALIDARG);
    EXPECT_EQ(m_persist->PersistSaveToFile(nullptr, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_persist->PersistSaveToString(nullptr, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(LoadFrom(""), E_INVALIDARG);
    EXPECT_EQ(m_persist->PersistLoad(nullptr, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(Calls(), "");
}

TEST_F(PersistTest, TheTransferLearnsWhatTheCallSaid) {
    const std::string file = Path("a.xml");
    EXPECT_EQ(SaveTo(file, "unicode=false a='b c' bare", "name"), S_OK);
    EXPECT_EQ(Calls(), "save name|m_config|" + file + "|param(unicode='false' a='b c' path='" + file + "');");
    EXPECT_EQ(SaveTo(file, "path=elsewhere"), S_OK);
    EXPECT_EQ(Calls(), "save |m_config|elsewhere|param(path='elsewhere');");
    EXPECT_EQ(LoadFrom(file, "path=elsewhere", "other"), S_OK);
    EXPECT_EQ(Calls(), "load other|m_config|" + file + "|param(path='elsewhere');");
    EXPECT_EQ(LoadFrom(file), S_OK);
    EXPECT_EQ(Calls(), "load |m_config|" + file + "|param(path='" + file + "');");
    EXPECT_EQ(LoadFrom("<Whatever/>", "path=elsewhere"), S_OK);
    EXPECT_EQ(Calls(), "load |whatever|elsewhere|param(path='elsewhere');");
    EXPECT_EQ(LoadFrom("<whatever/>"), S_OK);
    EXPECT_EQ(Calls(), "load |whatever||param();");
    SaveText();
    EXPECT_EQ(Calls(), "save |m_config||param();");
    Bstr text;
    EXPECT_EQ(m_persist->PersistSaveToString(Arg("o").get(), text.Put(), Arg("path=p n::m=1").get()), S_OK);
    EXPECT_EQ(Calls(), "save o|m_config|p|param(path='p');");    // "n" is a node of the parameters by then
}

TEST_F(PersistTest, AFailedTransferEndsTheCall) {
    m_object->m_status = kErrorTimeout;
    EXPECT_EQ(SaveTo(Path("a.xml")), kErrorTimeout);
    EXPECT_FALSE(FileExists(In(Path("a.xml"))));
    Bstr text(In("before"));
    BSTR out = text.get();
    EXPECT_EQ(m_persist->PersistSaveToString(nullptr, &out, nullptr), kErrorTimeout);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(LoadFrom("<a/>"), kErrorTimeout);
}

TEST_F(PersistTest, AFileIsWrittenInTheCodePageOrInUnits) {
    m_object->m_raw = SampleKey();
    EXPECT_EQ(SaveTo(Path("bytes.xml")), S_OK);
    EXPECT_EQ(Bytes("bytes.xml"), kSampleText);
    std::string units;
    for (const char c : kSampleText) units += {c, '\0'};
    EXPECT_EQ(SaveTo(Path("units.xml"), "unicode=1"), S_OK);
    EXPECT_EQ(Bytes("units.xml"), units);
    EXPECT_EQ(SaveTo(Path("true.xml"), "unicode='true'"), S_OK);
    EXPECT_EQ(Bytes("true.xml"), units);
    EXPECT_EQ(SaveTo(Path("bare.xml"), "unicode"), S_OK);    // a bare name says nothing
    EXPECT_EQ(Bytes("bare.xml"), kSampleText);
    EXPECT_EQ(SaveTo(Path("false.xml"), "unicode=false"), S_OK);
    EXPECT_EQ(Bytes("false.xml"), kSampleText);
    EXPECT_EQ(SaveText(), kSampleText);
    for (const char *name : {"bytes.xml", "units.xml"}) {
        m_object->m_raw = {};
        EXPECT_EQ(LoadFrom(Path(name)), S_OK);
        EXPECT_EQ(Difference(m_object->m_raw, SampleKey()), "") << name;
    }
}

TEST_F(PersistTest, AFileThatCannotBeCreatedIsNotNoticed) {
    EXPECT_EQ(SaveTo(Path("no_such_folder/a.xml")), S_OK);
    EXPECT_FALSE(FileExists(In(Path("no_such_folder/a.xml"))));
}

TEST_F(PersistTest, AFailedLoadingChangesNothing) {
    m_object->m_raw = SampleKey();
    EXPECT_EQ(LoadFrom(Path("missing.xml")), E_INVALIDARG);    // the path is taken for XML
    EXPECT_EQ(LoadFrom("text without tags"), E_INVALIDARG);
    const HRESULT folder = LoadFrom(Path(""));
    EXPECT_TRUE(FAILED(folder));
    EXPECT_NE(folder, E_INVALIDARG);
    EXPECT_EQ(static_cast<uint32_t>(folder) & 0xFFFF0000, 0x80070000u);
    Put("empty.xml", "");
    EXPECT_EQ(LoadFrom(Path("empty.xml")), E_INVALIDARG);
    Put("plain.xml", "no tags here");
    EXPECT_EQ(LoadFrom(Path("plain.xml")), E_INVALIDARG);
    EXPECT_EQ(Calls(), "");
    EXPECT_EQ(Difference(m_object->m_raw, SampleKey()), "");
}

TEST_F(PersistTest, TooManyParametersAreRefused) {
    std::string list;
    for (size_t i = 0; i <= XMLParse::kItemsMax; ++i) list += "a=1 ";
    EXPECT_EQ(SaveTo(Path("a.xml"), list), XMLParse::kErrorTooLarge);
    EXPECT_EQ(LoadFrom("<a/>", list), XMLParse::kErrorTooLarge);
    Bstr text;
    EXPECT_EQ(m_persist->PersistSaveToString(nullptr, text.Put(), Arg(list).get()), XMLParse::kErrorTooLarge);
    EXPECT_EQ(Calls(), "");
}

TEST_F(PersistTest, AClassMayGiveANodeOfItsOwn) {
    m_object->m_node = XMLParse::CoXMLNode::Create(In("mine"));
    EXPECT_EQ(SaveText().substr(0, 5), "<mine");
    EXPECT_EQ(LoadFrom("<theirs x='1'/>"), S_OK);
    EXPECT_EQ(Line(m_object->m_node), "<theirs x='1'/>");
}

}    // namespace
}    // namespace zck
