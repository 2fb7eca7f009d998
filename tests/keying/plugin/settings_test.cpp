#include <gtest/gtest.h>

#include "frames/factory/factory.h"
#include "keying/plugin/chroma_key.h"
#include "platform/status.h"

namespace zck {
namespace {

class Settings : public ::testing::Test {
protected:
    void SetUp() override {
        m_objects = ModuleCount::Get();
        ASSERT_EQ(CreateObject<CCoZChromaKey>(nullptr, IID_IZProps, reinterpret_cast<void **>(m_props.Put())), S_OK);
    }
    void TearDown() override {
        m_props.Reset();
        EXPECT_EQ(ModuleCount::Get(), m_objects);
    }

    std::string Get(const char *name) {
        BSTR value = nullptr;
        const HRESULT hr = m_props->PropsGet(Bstr(TextFromUtf8(name)).get(), &value);
        std::string text = hr == S_OK ? Utf8FromText(ViewOf(value)) : "status " + std::to_string(hr);
        SysFreeString(value);
        return text;
    }

    ComPtr<IZProps> m_props;
    int32_t m_objects = 0;
};

TEST_F(Settings, TheDefaultsAreThereInTheirOrder) {
    const char *names[] = {"background",      "detect.blocks", "detect.threshold", "detect.key_diff",
                           "detect.max_keys", "output.thread", "process.threads",  "keying.borders"};
    int32_t count = 0;
    ASSERT_EQ(m_props->PropsGetCount(nullptr, &count), S_OK);
    ASSERT_EQ(count, 8);
    for (int32_t i = 0; i < count; ++i) {
        BSTR name = nullptr;
        int32_t node = 1;
        ASSERT_EQ(m_props->PropsGetByIndex(nullptr, i, &name, nullptr, &node), S_OK);
        EXPECT_EQ(Utf8FromText(ViewOf(name)), names[i]);
        EXPECT_EQ(node, 0);
        SysFreeString(name);
    }
    EXPECT_EQ(Get("background"), "checker");
    EXPECT_EQ(Get("detect.blocks"), "48");
    EXPECT_EQ(Get("detect.threshold"), "16");
    EXPECT_EQ(Get("detect.key_diff"), "1.0");
    EXPECT_EQ(Get("detect.max_keys"), "1");
    EXPECT_EQ(Get("output.thread"), "true");
    EXPECT_EQ(Get("process.threads"), "2");
    EXPECT_EQ(Get("keying.borders"), "");
}

TEST_F(Settings, NamesAreComparedWithoutCase) {
    EXPECT_EQ(m_props->PropsSet(Bstr(TextFromUtf8("Process.Threads")).get(), Bstr(TextFromUtf8("4")).get()), S_OK);
    EXPECT_EQ(Get("process.THREADS"), "4");
    int32_t count = 0;
    m_props->PropsGetCount(nullptr, &count);
    EXPECT_EQ(count, 8);
}

TEST_F(Settings, WhatIsMissingIsToldApartFromAFailure) {
    EXPECT_EQ(Get("nothing"), "status 1");
    EXPECT_EQ(m_props->PropsRemove(Bstr(TextFromUtf8("nothing")).get()), E_INVALIDARG);
    EXPECT_EQ(m_props->PropsRemove(Bstr(TextFromUtf8("background")).get()), S_OK);
    EXPECT_EQ(Get("background"), "status 1");
    EXPECT_EQ(m_props->PropsSet(nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_props->PropsGet(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_props->PropsGetCount(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_props->PropsGetByIndex(nullptr, -1, nullptr, nullptr, nullptr), kErrorInvalidIndex);
    EXPECT_EQ(m_props->PropsGetByIndex(nullptr, 8, nullptr, nullptr, nullptr), kErrorInvalidIndex);
}

TEST_F(Settings, TheTreeIsOneText) {
    EXPECT_EQ(Get(""),
              "<z-props background='checker' detect.blocks='48' detect.threshold='16' detect.key_diff='1.0' "
              "detect.max_keys='1' output.thread='true' process.threads='2' keying.borders=''/>");
    EXPECT_EQ(m_props->PropsSet(nullptr, Bstr(TextFromUtf8("detect.blocks=8 mine=1")).get()), S_OK);
    EXPECT_EQ(Get("detect.blocks"), "8");
    EXPECT_EQ(Get("mine"), "1");
}

TEST_F(Settings, ThePropertiesOfTheModuleAreThere) {
    EXPECT_NE(Get("dll-path"), "status 1");
    EXPECT_NE(Get("DLL-version"), "status 1");
    EXPECT_NE(Get("dll-file-version"), "status 1");
    EXPECT_NE(Get("dll-date"), "status 1");
}

TEST_F(Settings, NothingIsDescribed) {
    const Bstr name(TextFromUtf8("process.threads"));
    Bstr text;
    EXPECT_EQ(m_props->PropsInfoGet(name.get(), eZIT_Help, text.Put()), S_FALSE);
    int32_t count = -1;
    EXPECT_EQ(m_props->PropsOptionGetCount(name.get(), &count), S_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(m_props->PropsOptionGetByIndex(name.get(), 0, text.Put(), nullptr), kErrorInvalidIndex);
    EXPECT_EQ(m_props->PropsOptionSetByIndex(name.get(), 0), kErrorInvalidIndex);
    EXPECT_EQ(m_props->PropsOptionGet(name.get(), &count, text.Put(), nullptr), S_OK);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(Utf8FromText(text.view()), "2");
}

TEST_F(Settings, EveryViewLeadsToEveryOther) {
    const IID *views[] = {&IID_IUnknown, &IID_IZChromaKey, &IID_IZPlugin, &IID_IZFProcess, &IID_IZProps, &IID_IZPersist};
    ComPtr<IUnknown> identity = QueryFor<IUnknown>(m_props.get());
    for (const IID *from : views) {
        ComPtr<IUnknown> a;
        ASSERT_EQ(m_props->QueryInterface(*from, reinterpret_cast<void **>(a.Put())), S_OK);
        for (const IID *to : views) {
            ComPtr<IUnknown> b;
            ASSERT_EQ(a->QueryInterface(*to, reinterpret_cast<void **>(b.Put())), S_OK);
            EXPECT_EQ(QueryFor<IUnknown>(b.get()).get(), identity.get());
        }
    }
    void *nothing = &views;
    EXPECT_EQ(m_props->QueryInterface(IID_IZFrame, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing, nullptr);
    EXPECT_EQ(m_props->QueryInterface(IID_IZPlugin, nullptr), E_POINTER);
}

}    // namespace
}    // namespace zck
