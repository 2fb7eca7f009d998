// Configurations: the framing of saving and loading, keys as trees, texts in streams.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "props/persist/key_tree.h"
#include "props/persist/persist_impl.h"
#include "tests/conformance/answers.h"
#include "tests/conformance/key_model.h"
#include "tests/conformance/memory_stream.h"
#include "tests/support/scratch_folder.h"
#include "xml/parser.h"
#include "xml/writer.h"

namespace conformance {
namespace {

using namespace zck::XMLParse;
using zck::ComPtr;

constexpr CLSID kClass = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

// Says what its transfer was given, and saves a little.
class Object final : public zck::IZPersistImpl<Object, XMLNodePtr> {
public:
    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override {
        *ppv = riid == IID_IZPersist || riid == IID_IUnknown ? static_cast<IZPersist *>(this) : PersistViewFind(riid);
        return *ppv != nullptr ? (AddRef(), S_OK) : E_NOINTERFACE;
    }
    ULONG Z_STDCALL AddRef() override { return ++m_refs; }
    ULONG Z_STDCALL Release() override { return --m_refs; }

    HRESULT PersistTransfer(zck::Transfer way, TextView object, const XMLNodePtr &root, TextView path,
                            const XMLNodePtr &param) {
        m_log += (way == zck::Transfer::Save ? "save " : "load ") + Say(object) + " " + Dump(*root) + " path=" + Say(path) +
                 " " + Dump(*param) + "\n";
        if (way == zck::Transfer::Save) root->AttributeSet(T("a"), TextView(T("\xC3\xA4")));
        return m_status;
    }
    static const CLSID &PersistClassId() { return kClass; }
    IZPersist *operator->() { return this; }
    IPersistStream *Stream() { return this; }

    std::string m_log;
    HRESULT m_status = S_OK;

private:
    ULONG m_refs = 1;
};

class Persist : public testing::Test {
protected:
    void Put(std::string_view bytes) const { m_folder.Put("t.xml", bytes); }
    std::string Get() const { return m_folder.Bytes("t.xml"); }
    std::string Log() { return std::exchange(o.m_log, ""); }

    const zck::test::ScratchFolder m_folder;
    const std::string m_file = m_folder.Path("t.xml");
    Object o;
};

TEST_F(Persist, ATextIsSaved) {
    EXPECT_EQ(o->PersistSaveToString(B("obj").get(), nullptr, nullptr), E_POINTER);
    EXPECT_EQ(Log(), "");
    EXPECT_TEXT(o->PersistSaveToString(B("obj").get(), out, B("path='p q' x::y=1 unicode").get()), S_OK,
                "<m_config a='\xC3\xA4'/>");
    EXPECT_EQ(Log(), "save obj <m_config></> path=p q <param path={p q}><x y={1}></></>\n");
    EXPECT_TEXT(o->PersistSaveToString(nullptr, out, nullptr), S_OK, "<m_config a='\xC3\xA4'/>");
    EXPECT_EQ(Log(), "save  <m_config></> path= <param></>\n");
    o.m_status = E_UNEXPECTED;
    EXPECT_TEXT(o->PersistSaveToString(nullptr, out, nullptr), E_UNEXPECTED, "<null>");
}

TEST_F(Persist, AFileIsSaved) {
    EXPECT_EQ(o->PersistSaveToFile(nullptr, B("").get(), nullptr), E_INVALIDARG);
    EXPECT_EQ(o->PersistSaveToFile(nullptr, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(o->PersistSaveToFile(B("obj").get(), B(m_file).get(), nullptr), S_OK);
    EXPECT_EQ(Log(), "save obj <m_config></> path=" + m_file + " <param path={" + m_file + "}></>\n");
    const std::string narrow = Get();
    EXPECT_EQ(o->PersistSaveToFile(nullptr, B(m_file).get(), B("unicode").get()), S_OK);
    EXPECT_EQ(Get(), narrow);    // a bare name says nothing
    Log();
    EXPECT_EQ(o->PersistSaveToFile(nullptr, B(m_file).get(), B("unicode=yes path=other").get()), S_OK);
    EXPECT_EQ(Log(), "save  <m_config></> path=other <param unicode={yes} path={other}></>\n");
    std::string wide;
    for (const OLECHAR c : T("<m_config a='\xC3\xA4'/>")) wide += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    EXPECT_EQ(Get(), wide);                                                               // no mark in front
    EXPECT_EQ(o->PersistSaveToFile(nullptr, B(m_file + "/x/y").get(), nullptr), S_OK);    // not noticed
    o.m_status = E_FAIL;
    std::filesystem::remove(m_file);
    EXPECT_EQ(o->PersistSaveToFile(nullptr, B(m_file).get(), nullptr), E_FAIL);
    EXPECT_FALSE(std::filesystem::exists(m_file));
}

TEST_F(Persist, ATextIsLoaded) {
    EXPECT_EQ(o->PersistLoad(nullptr, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(o->PersistLoad(nullptr, B("").get(), nullptr), E_INVALIDARG);
    EXPECT_EQ(o->PersistLoad(nullptr, B("no tag").get(), nullptr), E_INVALIDARG);
    EXPECT_EQ(o->PersistLoad(nullptr, B(m_file).get(), nullptr), E_INVALIDARG);    // no such file: taken for XML
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(o->PersistLoad(B("obj").get(), B("<Any x='1'><b/></any>").get(), nullptr), S_OK);
    EXPECT_EQ(Log(), "load obj <any x={1}><b></></> path= <param></>\n");
    EXPECT_EQ(o->PersistLoad(nullptr, B("<a/>").get(), B("path=p").get()), S_OK);
    EXPECT_EQ(Log(), "load  <a></> path=p <param path={p}></>\n");
    for (const HRESULT status : {S_FALSE, E_UNEXPECTED}) {
        o.m_status = status;
        EXPECT_EQ(o->PersistLoad(nullptr, B("<a/>").get(), nullptr), status);
    }
}

TEST_F(Persist, AFileIsLoaded) {
    Put("<?xml?><A x='1'>t</A>");
    EXPECT_EQ(o->PersistLoad(B("obj").get(), B(m_file).get(), B("k=v").get()), S_OK);
    EXPECT_EQ(Log(), "load obj <a x={1}>[t]</> path=" + m_file + " <param k={v} path={" + m_file + "}></>\n");
    EXPECT_EQ(o->PersistLoad(nullptr, B(m_file).get(), B("path=mine").get()), S_OK);
    EXPECT_EQ(Log(), "load  <a x={1}>[t]</> path=" + m_file + " <param path={mine}></>\n");
    Put("no tag");
    EXPECT_EQ(o->PersistLoad(nullptr, B(m_file).get(), nullptr), E_INVALIDARG);
    Put("");
    EXPECT_EQ(o->PersistLoad(nullptr, B(m_file).get(), nullptr), E_INVALIDARG);
    const HRESULT folder = o->PersistLoad(nullptr, B(m_folder.Path()).get(), nullptr);
    EXPECT_EQ(static_cast<uint32_t>(folder) >> 16, 0x8007U);    // it exists, and cannot be read
    EXPECT_NE(folder, E_INVALIDARG);
    EXPECT_EQ(Log(), "");
}

TEST_F(Persist, Streams) {
    ComPtr<IPersistStream> view;
    ASSERT_EQ(o->QueryInterface(IID_IPersistStream, view.PutVoid()), S_OK);
    CLSID id = {};
    EXPECT_EQ(view->GetClassID(&id), S_OK);
    EXPECT_TRUE(id == kClass);
    EXPECT_EQ(view->GetClassID(nullptr), E_POINTER);
    EXPECT_EQ(view->IsDirty(), S_FALSE);
    ULARGE_INTEGER size;
    EXPECT_EQ(view->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, 2U * T("<m_config a='\xC3\xA4'/>").size() + 16);
    EXPECT_EQ(view->GetSizeMax(nullptr), E_POINTER);
    Log();

    MemoryStream stream;
    stream.m_bytes = "before";
    stream.m_at = 6;
    for (const BOOL clear : {0, 1}) {
        EXPECT_EQ(view->Save(&stream, clear), S_OK);
        EXPECT_EQ(view->IsDirty(), S_FALSE);
        EXPECT_EQ(Log(), "save  <m_config></> path= <param></>\n");
    }
    const Text text = T("<m_config a='\xC3\xA4'/>");
    const std::string once = TextBytes(text);
    EXPECT_EQ(stream.m_bytes, "before" + once + once);
    stream.m_at = 6;
    EXPECT_EQ(view->Load(&stream), S_OK);
    EXPECT_EQ(stream.m_at, 6 + once.size());
    EXPECT_EQ(Log(), Say(T("load  <m_config a={\xC3\xA4}></> path= <param></>\n")));
    o.m_status = E_UNEXPECTED;
    stream.m_at = 0;
    stream.m_bytes.clear();
    EXPECT_EQ(view->Save(&stream, 1), E_UNEXPECTED);
    EXPECT_EQ(stream.m_bytes, "");
}

TEST_F(Persist, BadTextsInStreams) {
    const auto load = [&](const std::string &bytes) {
        MemoryStream stream;
        stream.m_bytes = "xyz" + bytes;
        stream.m_at = 3;
        const HRESULT hr = o.Stream()->Load(&stream);
        EXPECT_TRUE((hr != E_FAIL && hr != E_ACCESSDENIED) || stream.m_at == 3) << stream.m_at;
        return hr;
    };
    const std::string good = TextBytes(T("<a/>"));
    EXPECT_EQ(load(good), S_OK);
    EXPECT_EQ(load(good + "more"), S_OK);
    Log();
    for (size_t cut = 0; cut < good.size(); ++cut) EXPECT_EQ(load(good.substr(0, cut)), E_FAIL) << cut;
    EXPECT_EQ(load(Count(1) + std::string(4, '\0')), E_FAIL);
    EXPECT_EQ(load(Count(9) + good.substr(4)), E_FAIL);
    EXPECT_EQ(load(Count(3) + std::string(8, '\0')), E_FAIL);
    EXPECT_EQ(load(Count(8) + good.substr(4)), E_FAIL);    // its last unit is not zero
    std::string high = good;
    high.back() = 1;
    EXPECT_EQ(load(high), E_FAIL);
    EXPECT_EQ(load(Count(0)), E_INVALIDARG);                           // no text
    EXPECT_EQ(load(Count(2) + std::string(2, '\0')), E_INVALIDARG);    // an empty one
    EXPECT_EQ(load(Count(0x100001) + std::string(0x100010, '\0')), E_ACCESSDENIED);
    EXPECT_EQ(load(Count(0x100002) + std::string(0x100010, '\0')), E_ACCESSDENIED);
    EXPECT_EQ(load(Count(0xFFFFFFFF) + good), E_ACCESSDENIED);
    EXPECT_EQ(load(Count(0x100000) + good), E_FAIL);
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(load(TextBytes(T("<a/>" + std::string(0x80000 - 5, ' ')))), S_OK);    // as many as there may be
    EXPECT_EQ(o.Stream()->Load(nullptr), E_POINTER);
    EXPECT_EQ(o.Stream()->Save(nullptr, 0), E_POINTER);
}

TEST(KeyTrees, AnExample) {
    CHROMA_KEY_RAW raw = {};
    raw.eType = eCKT_HLS;
    raw.nKeysUsed = 1;
    raw.nMinTransparent = 102;
    raw.nMaxTransparent = 230;
    raw.nEdgesSmooth = 3;
    raw.arrKeys[0].nValue = static_cast<int32_t>(0xFF3C8040);
    raw.arrKeys[0].nDelta = 0x2A2A2A05;
    raw.arrKeys[0].nSmoothRange = 26;
    const XMLNodePtr root = CoXMLNode::Create(T("m_config"));
    zck::KeyToTree(raw, ModelAdjustDefaults(), *root);
    EXPECT_EQ(Say(XMLText(*root)),
              "<m_config type='3' keys='1' transparent.min='102' transparent.max='230' edges_smooth='3' color_cancel='false' "
              "interlaced='0' inverse='0'>\r\n"
              "\t<key value='0xFF3C8040' delta='0x2A2A2A05' smooth='26' alpha='0' cancel.range='0' cancel.power='0' "
              "cancel.chroma='0' "
              "cancel.luma='0' cancel.alpha='0' reverse_key='0'/>\r\n"
              "\t<adjust power='0.0' transparent='0.05' colors='0.0' smooth='0.25' min_trans='0.4' max_trans='0.9' "
              "exc_power='0.0'>\r\n"
              "\t\t<color range='1.0' power='0.3' chroma='-0.25' luma='-0.05' alpha='-0.05'/>\r\n"
              "\t\t<range rhy='0.66' glu='0.66' bsv='0.66'/>\r\n"
              "\t</adjust>\r\n"
              "</m_config>");
}

TEST(KeyTrees, WrittenAsTheModel) {
    std::mt19937 random(71);
    for (int i = 0; i < 500; ++i) {
        const CHROMA_KEY_RAW raw = NoiseKey(random);
        const CK_ADJUST adjust = NoiseAdjust(random);
        const XMLNodePtr root = CoXMLNode::Create(T("m_config"));
        zck::KeyToTree(raw, adjust, *root);
        const std::string text = Say(XMLText(*root));
        ASSERT_EQ(text, ModelKeyText(raw, adjust));
        // And back: all of the record but the entries that are not in use; a boolean is a boolean.
        const XMLNodePtr back = CoXMLNode::Create(T("x"));
        ASSERT_EQ(ParseXML(*back, T(text)), S_OK);
        CHROMA_KEY_RAW want = raw;
        want.nKeysUsed = std::min(raw.nKeysUsed, 16);
        want.bColorCancel = raw.bColorCancel != 0;
        for (int32_t k = std::max(want.nKeysUsed, 0); k < 16; ++k) want.arrKeys[k] = {};
        ASSERT_TRUE(Same(zck::KeyFromTree(*back), want)) << text;
        CK_ADJUST loaded = {};
        zck::AdjustFromTree(*back, loaded);
        CK_ADJUST saved = adjust;
        saved.dblTransparent = adjust.dblExclTransparent;
        ASSERT_TRUE(Same(loaded, saved)) << text;
    }
}

CHROMA_KEY_RAW Loaded(std::string_view text) {
    const XMLNodePtr root = CoXMLNode::Create(T("ov-root"));
    EXPECT_EQ(ParseXML(*root, T(text)), S_OK);
    return zck::KeyFromTree(*root);
}

TEST(KeyTrees, EntriesAreTakenByPosition) {
    CHROMA_KEY_RAW raw = Loaded("<m_config keys='2'><key value='0x00FF00FF' alpha='7'/></m_config>");
    EXPECT_EQ(raw.nKeysUsed, 2);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(raw.arrKeys[i].nValue, 0xFF00FF);    // the last child again
    EXPECT_EQ(raw.arrKeys[2].nValue, 0);
    raw = Loaded("<m_config keys='2'><key value='16711935'/><adjust/></m_config>");
    EXPECT_EQ(raw.arrKeys[0].nValue, 0xFF00FF);
    EXPECT_EQ(raw.arrKeys[1].nValue, 0);    // position 1 is no key
    raw = Loaded("<m_config keys='1'><adjust/><key value='1'/></m_config>");
    EXPECT_EQ(raw.arrKeys[0].nValue, 0);
    raw = Loaded("<m_config keys='2'>text<KEY value='1'/></m_config>");
    EXPECT_EQ(raw.arrKeys[0].nValue, 0);    // a text has a position too
    EXPECT_EQ(raw.arrKeys[1].nValue, 1);
    raw = Loaded("<m_config keys='99'><key value='1'/></m_config>");
    EXPECT_EQ(raw.nKeysUsed, 16);
    EXPECT_EQ(raw.arrKeys[15].nValue, 1);
    raw = Loaded("<m_config keys='-3'><key value='1'/></m_config>");
    EXPECT_EQ(raw.nKeysUsed, -3);
    EXPECT_EQ(raw.arrKeys[0].nValue, 0);
    EXPECT_TRUE(Same(Loaded("<anything/>"), CHROMA_KEY_RAW{}));
}

TEST(KeyTrees, ReadAsTheModel) {
    std::mt19937 random(72);
    for (int i = 0; i < 4000; ++i) {
        const std::string s = EditedKeyText(random);
        const XMLNodePtr root = CoXMLNode::Create(T("ov-root"));
        ASSERT_EQ(ParseXML(*root, T(s)), S_OK);
        ModelNode model;
        size_t end = 0;
        ASSERT_TRUE(ModelParse(model, T(s), end, false, false));
        ASSERT_TRUE(Same(zck::KeyFromTree(*root), ModelKeyFromTree(model))) << s;
        CK_ADJUST got = NoiseAdjust(random), want = got;
        zck::AdjustFromTree(*root, got);
        ModelAdjustFromTree(model, want);
        ASSERT_TRUE(Same(got, want)) << s;
    }
}

}    // namespace
}    // namespace conformance
