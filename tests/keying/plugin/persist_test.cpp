// The key of the plug-in as a saved configuration, and its adjustment on the way.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "frames/factory/factory.h"
#include "keying/key/key.h"
#include "keying/plugin/chroma_key.h"
#include "tests/support/sample_key.h"
#include "zchromakey/module.h"

namespace zck {
namespace {

using test::kSampleRecord;
using test::SampleKey;

class PluginPersist : public ::testing::Test {
protected:
    PluginPersist() {
        EXPECT_EQ(CreateObject<CCoZChromaKey>(nullptr, IID_IZChromaKey, m_key.PutVoid()), S_OK);
        m_persist = QueryFor<IZPersist>(m_key.get());
    }

    std::string Saved() {
        Bstr text;
        EXPECT_EQ(m_persist->PersistSaveToString(nullptr, text.Put(), nullptr), S_OK);
        return Utf8FromText(text.view());
    }
    HRESULT Load(std::string_view text) { return m_persist->PersistLoad(nullptr, Bstr(TextFromUtf8(text)).get(), nullptr); }

    ComPtr<IZChromaKey> m_key;
    ComPtr<IZPersist> m_persist;
};

constexpr const char *kTail =
    "\t\t<color range='1.0' power='0.3' chroma='-0.25' luma='-0.05' alpha='-0.05'/>\r\n"
    "\t\t<range rhy='0.0' glu='0.0' bsv='0.0'/>\r\n"
    "\t</adjust>\r\n"
    "</m_config>";

TEST_F(PluginPersist, AFreshPluginSavesAnEmptyKeyWithTheDefaults) {
    EXPECT_EQ(Saved(),
              "<m_config type='0' keys='0' transparent.min='0' transparent.max='0' edges_smooth='0' color_cancel='false' "
              "interlaced='0' inverse='0'>\r\n"
              "\t<adjust power='0.0' transparent='0.05' colors='0.0' smooth='0.25' min_trans='0.4' max_trans='0.9' "
              "exc_power='0.0'>\r\n"
              "\t\t<color range='1.0' power='0.3' chroma='-0.25' luma='-0.05' alpha='-0.05'/>\r\n"
              "\t\t<range rhy='0.66' glu='0.66' bsv='0.66'/>\r\n"
              "\t</adjust>\r\n"
              "</m_config>");
}

TEST_F(PluginPersist, ARawKeyBringsTheAdjustmentThatItTells) {
    CHROMA_KEY_RAW raw = SampleKey();
    EXPECT_EQ(m_key->KeyRawSet(&raw), S_OK);
    EXPECT_EQ(Saved(), kSampleRecord +
                           "\t<adjust power='0.0' transparent='0.0' colors='0.0' smooth='0.3' min_trans='0.4' "
                           "max_trans='0.901961' exc_power='0.0'>\r\n" +
                           kTail);
    CHROMA_KEY_RAW back = {};
    EXPECT_EQ(m_key->KeyRawGet(&back), S_OK);
    EXPECT_EQ(std::memcmp(&back, &raw, sizeof(raw)), 0);
    EXPECT_EQ(m_key->KeyRawSet(nullptr), E_POINTER);
    EXPECT_EQ(m_key->KeyRawGet(nullptr), E_POINTER);
}

TEST_F(PluginPersist, AResetKeyHasTheDefaultsAgain) {
    const std::string fresh = Saved();
    CHROMA_KEY_RAW raw = SampleKey();
    EXPECT_EQ(m_key->KeyRawSet(&raw), S_OK);
    EXPECT_NE(Saved(), fresh);
    EXPECT_EQ(m_key->KeySet(nullptr), S_OK);
    EXPECT_EQ(Saved(), fresh);
}

TEST_F(PluginPersist, LoadingGivesTheRecordAndThenTheAdjustment) {
    EXPECT_EQ(Load(kSampleRecord + "<adjust transparent='0.25' smooth='0.5'><range glu='0.125'/></adjust></m_config>"), S_OK);
    CHROMA_KEY_RAW back = {};
    const CHROMA_KEY_RAW raw = SampleKey();
    EXPECT_EQ(m_key->KeyRawGet(&back), S_OK);
    EXPECT_EQ(std::memcmp(&back, &raw, sizeof(raw)), 0);
    const std::string saved = Saved();
    // What the text does not tell is what the record tells, not what was there before.
    EXPECT_NE(saved.find("<adjust power='0.0' transparent='0.25' colors='0.0' smooth='0.5' min_trans='0.4' "
                         "max_trans='0.901961' exc_power='0.0'>"),
              std::string::npos)
        << saved;
    EXPECT_NE(saved.find("<range rhy='0.0' glu='0.125' bsv='0.0'/>"), std::string::npos) << saved;
    EXPECT_EQ(Load(saved), S_OK);
    EXPECT_EQ(Saved(), saved);
}

TEST_F(PluginPersist, AFailedLoadingLeavesTheKey) {
    CHROMA_KEY_RAW raw = SampleKey();
    EXPECT_EQ(m_key->KeyRawSet(&raw), S_OK);
    const std::string before = Saved();
    EXPECT_EQ(Load("no tags"), E_INVALIDARG);
    EXPECT_EQ(Load("no/such/file.xml"), E_INVALIDARG);
    EXPECT_EQ(Load(""), E_INVALIDARG);
    EXPECT_EQ(Saved(), before);
    EXPECT_EQ(Load("<x/>"), S_OK);
    EXPECT_NE(Saved(), before);
}

TEST_F(PluginPersist, StreamsAreAnsweredToo) {
    const auto stream = QueryFor<IPersistStream>(m_key.get());
    ASSERT_TRUE(stream);
    CLSID id = {};
    EXPECT_EQ(stream->GetClassID(&id), S_OK);
    EXPECT_TRUE(id == CLSID_ZChromaKey);
    EXPECT_EQ(stream->IsDirty(), S_FALSE);
    ULARGE_INTEGER size = {};
    EXPECT_EQ(stream->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, 2 * Saved().size() + 16);
    EXPECT_TRUE(QueryFor<IUnknown>(stream.get()) == QueryFor<IUnknown>(m_key.get()));
}

TEST_F(PluginPersist, ASavingSeesAKeyAndItsOwnAdjustment) {
    // A number that takes long to read stands between the record and the last value.
    const std::string slow = "<adjust power='0." + std::string(50000, '1') + "'>";
    const std::string one = "<c keys='1' inverse='1'><key/>" + slow + "<range bsv='1'/></adjust></c>";
    const std::string two = "<c keys='1' inverse='2'><key/>" + slow + "<range bsv='2'/></adjust></c>";
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (int i = 0; i < 200; ++i) Load(i % 2 != 0 ? one : two);
        done = true;
    });
    while (!done) {
        const std::string saved = Saved();
        const bool first = saved.find("inverse='1'") != std::string::npos;
        EXPECT_EQ(saved.find("bsv='1.0'") != std::string::npos, first) << saved;
    }
    writer.join();
}

}    // namespace
}    // namespace zck
