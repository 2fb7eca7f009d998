// What the plug-in takes from a key object.
#include <gtest/gtest.h>

#include <cstring>

#include "keying/plugin/chroma_key.h"
#include "tests/support/sample_key.h"

namespace zck {
namespace {

// Answers a key with a status that the test chose.
class KeyAnswer final : public CoObject<IZKey> {
public:
    KeyAnswer(HRESULT status, CHROMA_KEY_RAW key) : m_status(status), m_key(key) {}

    HRESULT Z_STDCALL KeyRawGet(CHROMA_KEY_RAW *key, CK_ADJUST *adjust) override {
        *key = m_key;
        *adjust = {};
        return m_status;
    }

    HRESULT Z_STDCALL KeyFrameSet(IUnknown *, IUnknown *) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyFrameGet(IUnknown **, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyDetect(BSTR, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyAddPoint(int32_t, int32_t, BSTR, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyExcludePoint(int32_t, int32_t, BSTR, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyAddRect(int32_t, int32_t, int32_t, int32_t, BSTR, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyAdjustSet(eCK_Adjust, double, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyAdjustGet(eCK_Adjust, double *) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyStepBack(int32_t, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyStepFwd(int32_t, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyReset(IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyRawSet(CHROMA_KEY_RAW *, CK_ADJUST *) override { return E_FAIL; }

private:
    HRESULT m_status;
    CHROMA_KEY_RAW m_key;
};

TEST(KeySet, TakesWhatTheKeyObjectGivesAndKeepsTheKeyOtherwise) {
    ComPtr<IZChromaKey> plugin;
    ASSERT_EQ(S_OK, CreateObject<CCoZChromaKey>(nullptr, IID_IZChromaKey, plugin.PutVoid()));
    const CHROMA_KEY_RAW sample = test::SampleKey();
    CHROMA_KEY_RAW other = sample;
    other.nEdgesSmooth = 1;
    for (const HRESULT status : {E_NOTIMPL, E_OUTOFMEMORY, S_OK, S_FALSE}) {
        CHROMA_KEY_RAW present = sample;
        ASSERT_EQ(S_OK, plugin->KeyRawSet(&present));
        ComPtr<IZKey> source;
        const CHROMA_KEY_RAW given = FAILED(status) ? CHROMA_KEY_RAW{} : other;
        ASSERT_EQ(S_OK, CreateObject<KeyAnswer>(nullptr, ZIidOf<IZKey>(), source.PutVoid(), status, given));
        EXPECT_EQ(S_OK, plugin->KeySet(source.get())) << status;
        ASSERT_EQ(S_OK, plugin->KeyRawGet(&present));
        EXPECT_EQ(0, std::memcmp(FAILED(status) ? &sample : &other, &present, sizeof(present))) << status;
    }
}

}    // namespace
}    // namespace zck
