#include "keyobject/key_value.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/settings.h"
#include "tests/support/outer.h"
#include "tests/support/settings_place.h"
#include "zchromakey/module.h"

namespace zck {
namespace {

class KeyValue : public testing::Test {
protected:
    void SetUp() override {
        m_objects = ModuleCount::Get();
        ASSERT_EQ(CreateObject<CCoZKeyValue>(nullptr, IID_IZKey, m_key.PutVoid()), S_OK);
        m_props = QueryFor<IZProps>(m_key.get());
        m_persist = QueryFor<IZPersist>(m_key.get());
        ASSERT_TRUE(m_props && m_persist);
    }
    void TearDown() override {
        m_key.Reset();
        m_props.Reset();
        m_persist.Reset();
        EXPECT_EQ(ModuleCount::Get(), m_objects);
    }

    static Bstr Of(const char *text) { return Bstr(TextFromUtf8(text)); }
    std::string Get(const char *name) {
        Bstr value;
        const HRESULT hr = m_props->PropsGet(Of(name).get(), value.Put());
        return hr == S_OK ? Utf8FromText(value.view()) : "status " + std::to_string(hr);
    }

    ComPtr<IZKey> m_key;
    ComPtr<IZProps> m_props;
    ComPtr<IZPersist> m_persist;
    int32_t m_objects = 0;
};

TEST_F(KeyValue, EveryViewLeadsToEveryOther) {
    const IID *views[] = {&IID_IUnknown, &IID_IZKey, &IID_IZProps, &IID_IZPersist, &IID_IPersist, &IID_IPersistStream};
    const ComPtr<IUnknown> identity = QueryFor<IUnknown>(m_key.get());
    for (const IID *from : views) {
        ComPtr<IUnknown> a;
        ASSERT_EQ(m_key->QueryInterface(*from, a.PutVoid()), S_OK);
        for (const IID *to : views) {
            ComPtr<IUnknown> b;
            ASSERT_EQ(a->QueryInterface(*to, b.PutVoid()), S_OK);
            EXPECT_EQ(QueryFor<IUnknown>(b.get()).get(), identity.get());
        }
    }
    void *nothing = &views;
    EXPECT_EQ(m_key->QueryInterface(IID_IZFrame, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing, nullptr);
}

TEST_F(KeyValue, StartsWithoutPropertiesAndTakesAny) {
    int32_t count = -1;
    ASSERT_EQ(m_props->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Get(""), "<z-props/>");
    EXPECT_EQ(Get("detect.blocks"), "status 1");
    ASSERT_EQ(m_props->PropsSet(Of("detect.blocks").get(), Of("12").get()), S_OK);
    EXPECT_EQ(Get("Detect.Blocks"), "12");
    EXPECT_NE(Get("dll-version"), "status 1");
}

TEST_F(KeyValue, StoredPropertiesAreTheKeyersOnly) {
    const test::SettingsPlace place(ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey"));
    ASSERT_EQ(SettingsSave(place.Key(), {{TextFromUtf8("detect.blocks"), TextFromUtf8("7")}}), S_OK);
    ComPtr<IZProps> props;
    ASSERT_EQ(CreateObject<CCoZKeyValue>(nullptr, IID_IZProps, props.PutVoid()), S_OK);
    int32_t count = -1;
    ASSERT_EQ(props->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 0);
}

TEST_F(KeyValue, ItsConfigurationIsAnEmptyElement) {
    ASSERT_EQ(m_props->PropsSet(Of("a").get(), Of("1").get()), S_OK);
    Bstr text;
    ASSERT_EQ(m_persist->PersistSaveToString(nullptr, text.Put(), nullptr), S_OK);
    EXPECT_EQ(Utf8FromText(text.view()), "<m_config/>");
    EXPECT_EQ(m_persist->PersistLoad(nullptr, Of("<m_config a='2' type='3'><key/></m_config>").get(), nullptr), S_OK);
    EXPECT_EQ(Get("a"), "1");
    EXPECT_EQ(m_persist->PersistLoad(nullptr, Of("no tag").get(), nullptr), E_INVALIDARG);
}

TEST_F(KeyValue, AStreamKnowsItsClass) {
    const ComPtr<IPersistStream> stream = QueryFor<IPersistStream>(m_key.get());
    ASSERT_TRUE(stream);
    CLSID clsid = {};
    EXPECT_EQ(stream->GetClassID(&clsid), S_OK);
    EXPECT_TRUE(clsid == CLSID_ZKey);
    EXPECT_EQ(stream->IsDirty(), S_FALSE);
    ULARGE_INTEGER size = {};
    EXPECT_EQ(stream->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, 2 * std::strlen("<m_config/>") + 16);
}

TEST_F(KeyValue, MayBeAPartOfAnOuterObject) {
    test::Outer outer;
    void *nothing = nullptr;
    EXPECT_EQ(CreateObject<CCoZKeyValue>(&outer, IID_IZKey, &nothing), CLASS_E_NOAGGREGATION);
    ASSERT_EQ(CreateObject<CCoZKeyValue>(&outer, IID_IUnknown, reinterpret_cast<void **>(&outer.inner)), S_OK);
    {
        ComPtr<IPersistStream> stream;
        ASSERT_EQ(outer.QueryInterface(IID_IPersistStream, stream.PutVoid()), S_OK);
        EXPECT_EQ(QueryFor<IUnknown>(stream.get()).get(), &outer);
    }
    EXPECT_EQ(outer.count, 1u);
    outer.inner->Release();
}

}    // namespace
}    // namespace zck
