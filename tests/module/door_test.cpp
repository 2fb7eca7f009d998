// The library seen by a stranger: public headers and exported functions only.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "tests/module/held.h"
#include "tests/module/keyed.h"
#include "tests/support/outer.h"
#include "zchromakey/zchromakey.h"

namespace {

using zck::test::Held;
using zck::test::Outer;

TEST(Door, ThePluginIsMadeByItsClassFactory) {
    {
        Held<IClassFactory> factory;
        ASSERT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.Out()), S_OK);
        Held<IZPlugin> plugin;
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IZPlugin, plugin.Out()), S_OK);
        EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    }
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST(Door, TheKeyObjectIsMadeByItsClassFactory) {
    {
        Held<IClassFactory> factory;
        ASSERT_EQ(DllGetClassObject(CLSID_ZKey, IID_IClassFactory, factory.Out()), S_OK);
        Held<IZKey> key;
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IZKey, key.Out()), S_OK);
        Held<IZProps> props;
        EXPECT_EQ(key->QueryInterface(IID_IZProps, props.Out()), S_OK);
        Held<IZPersist> persist;
        EXPECT_EQ(key->QueryInterface(IID_IZPersist, persist.Out()), S_OK);
        EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    }
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST(Door, ALockKeepsTheModule) {
    Held<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.Out()), S_OK);
    ASSERT_EQ(factory->LockServer(1), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    ASSERT_EQ(factory->LockServer(0), S_OK);
}

TEST(Door, UnknownClassesAndInterfacesAreRefused) {
    void *out = &out;
    EXPECT_EQ(DllGetClassObject(IID_IZFrame, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IZFrame, &out), E_NOINTERFACE);
    EXPECT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(ZFramesCreate(IID_IZFrame, &out), E_NOINTERFACE);
    EXPECT_EQ(ZFramesCreate(IID_IZFrames, nullptr), E_POINTER);
    Held<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.Out()), S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IZFrame, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IZPlugin, nullptr), E_POINTER);
}

TEST(Door, AnAggregatedPluginSpeaksForItsOuterObject) {
    Held<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.Out()), S_OK);
    Outer outer;
    void *out = nullptr;
    EXPECT_EQ(factory->CreateInstance(&outer, IID_IZPlugin, &out), CLASS_E_NOAGGREGATION)
        << "only the unknown may be asked for";
    ASSERT_EQ(factory->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void **>(&outer.inner)), S_OK);
    {
        Held<IZPlugin> plugin;
        ASSERT_EQ(outer.QueryInterface(IID_IZPlugin, plugin.Out()), S_OK);
        Held<IUnknown> identity;
        ASSERT_EQ(plugin->QueryInterface(IID_IUnknown, identity.Out()), S_OK);
        EXPECT_EQ(identity.p, &outer);
    }
    EXPECT_EQ(outer.count, 1u);
    outer.inner->Release();
}

TEST(Door, AFrameGoesInAndLeavesKeyed) {
    Held<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.Out()), S_OK);
    Held<IZChromaKey> key;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IZChromaKey, key.Out()), S_OK);
    Held<IZPlugin> plugin;
    ASSERT_EQ(key->QueryInterface(IID_IZPlugin, plugin.Out()), S_OK);
    Held<IZFrames> frames;
    ASSERT_EQ(ZFramesCreate(IID_IZFrames, frames.Out()), S_OK);

    CHROMA_KEY_RAW raw{};
    raw.eType = eCKT_RGB;
    raw.nKeysUsed = 1;
    raw.arrKeys[0].nValue = 0x0000C000;
    raw.arrKeys[0].nDelta = 0x00202020;
    raw.nMaxTransparent = 255;
    ASSERT_EQ(key->KeyRawSet(&raw), S_OK);

    Z_VID_PROPS props{};
    props.fccType = eZFCC_RGB32;
    props.nWidth = 32;
    props.nHeight = -16;
    props.nRowBytes = 128;
    props.eInterlace = eZI_Progressive;
    const std::vector<uint32_t> green(32 * 16, 0xFF00C000);
    Held<IZFrame> in;
    ASSERT_EQ(frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(green.data()), &in.p, nullptr), S_OK);
    Held<IZFrame> out;
    EXPECT_EQ(plugin->OnMediaReceive(0, nullptr, in.p, &out.p), S_FALSE);
    ASSERT_EQ(zck::test::ReceiveKeyed(plugin.p, in.p, &out.p), S_OK);
    int32_t bytes = 0;
    int64_t address = 0;
    ASSERT_EQ(out->FrameVideoGetBytes(&bytes, &address), S_OK);
    ASSERT_EQ(bytes, 32 * 16 * 4);
    const auto *pixels = reinterpret_cast<const uint32_t *>(address);
    for (int i = 0; i < 32 * 16; ++i) ASSERT_EQ(pixels[i], 0u) << i;
}

}    // namespace
