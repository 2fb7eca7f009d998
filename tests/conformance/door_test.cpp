// The plug-in as a host makes it: its properties, its key record, its configuration.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "platform/com_ptr.h"
#include "platform/settings.h"
#include "tests/conformance/answers.h"
#include "tests/conformance/key_model.h"
#include "tests/conformance/memory_stream.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/settings_place.h"
#include "zchromakey/zchromakey.h"

namespace conformance {
namespace {

using zck::ComPtr;
using zck::QueryFor;

const TextView kKey = ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey");

ComPtr<IZProps> Make() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.PutVoid()), S_OK);
    ComPtr<IZProps> props;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IZProps, props.PutVoid()), S_OK);
    return props;
}

std::string Get(const ComPtr<IZProps> &props, std::string_view name) {
    Out out;
    const HRESULT hr = props->PropsGet(B(name).get(), out);
    return Line(hr, out.Said());
}

class Door : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(DllCanUnloadNow(), S_OK); }
    void TearDown() override { EXPECT_EQ(DllCanUnloadNow(), S_OK); }

    zck::test::SettingsPlace m_place{kKey};
};

TEST_F(Door, QueriesAreSymmetric) {
    const ComPtr<IZProps> made = Make();
    const IID *const ids[] = {&IID_IUnknown, &IID_IZPlugin, &IID_IZChromaKey, &IID_IZProps, &IID_IZPersist};
    ComPtr<IUnknown> identity;
    ASSERT_EQ(made->QueryInterface(IID_IUnknown, identity.PutVoid()), S_OK);
    for (const IID *from : ids) {
        ComPtr<IUnknown> view;
        ASSERT_EQ(made->QueryInterface(*from, view.PutVoid()), S_OK);
        for (const IID *to : ids) {
            ComPtr<IUnknown> other, back, unknown;
            ASSERT_EQ(view->QueryInterface(*to, other.PutVoid()), S_OK);
            ASSERT_EQ(other->QueryInterface(*from, back.PutVoid()), S_OK);
            ASSERT_EQ(other->QueryInterface(IID_IUnknown, unknown.PutVoid()), S_OK);
            EXPECT_EQ(back.get(), view.get());
            EXPECT_EQ(unknown.get(), identity.get());
        }
    }
    void *out = &out;
    EXPECT_EQ(made->QueryInterface(IID_IZFrame, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

TEST_F(Door, PropertiesOfAFreshPlugin) {
    const ComPtr<IZProps> props = Make();
    EXPECT_EQ(Get(props, ""),
              Line(S_OK,
                   "<z-props background='checker' detect.blocks='48' detect.threshold='16' detect.key_diff='1.0' "
                   "detect.max_keys='1' output.thread='true' process.threads='2' keying.borders=''/>"));
    const char *const want[][2] = {{"background", "checker"},  {"detect.blocks", "48"},  {"detect.threshold", "16"},
                                   {"detect.key_diff", "1.0"}, {"detect.max_keys", "1"}, {"output.thread", "true"},
                                   {"process.threads", "2"},   {"keying.borders", ""}};
    int32_t count = -1;
    EXPECT_EQ(props->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 8);
    for (int32_t i = 0; i < 8; ++i) {
        Out name, value;
        int32_t isNode = 7;
        EXPECT_EQ(props->PropsGetByIndex(nullptr, i, name, value, &isNode), S_OK);
        EXPECT_EQ(name.Said(), want[i][0]);
        EXPECT_EQ(value.Said(), want[i][1]);
        EXPECT_EQ(isNode, 0);
        EXPECT_EQ(Get(props, want[i][0]), Line(S_OK, want[i][1]));
    }
    EXPECT_EQ(props->PropsGetByIndex(nullptr, 8, nullptr, nullptr, nullptr), static_cast<HRESULT>(0x80070585));
}

TEST_F(Door, PropertiesAreTheStoresOwn) {
    const ComPtr<IZProps> props = Make();
    EXPECT_EQ(props->PropsSet(B("any::thing").get(), B("goes").get()), S_OK);
    EXPECT_EQ(Get(props, "ANY"), Line(S_OK, "thing='goes'"));
    EXPECT_EQ(props->PropsSet(B("").get(), B("background=Red detect.blocks=7").get()), S_OK);
    EXPECT_EQ(Get(props, "Background"), Line(S_OK, "Red"));
    EXPECT_EQ(props->PropsSet(nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(props->PropsRemove(B("background").get()), S_OK);
    EXPECT_EQ(Get(props, "background"), Line(S_FALSE, "<null>"));
    EXPECT_EQ(props->PropsGet(B("a").get(), nullptr), E_POINTER);
    int32_t count = -1;
    EXPECT_EQ(props->PropsOptionGetCount(B("background").get(), &count), S_OK);
    EXPECT_EQ(count, 0);
    EXPECT_TEXT(props->PropsInfoGet(B("background").get(), eZIT_Help, out), S_FALSE, "<null>");
    EXPECT_TEXT(props->PropsOptionGet(B("detect.blocks").get(), &count, out, nullptr), S_OK, "7");
    EXPECT_EQ(count, -1);
    EXPECT_EQ(props->PropsOptionSetByIndex(B("detect.blocks").get(), 0), static_cast<HRESULT>(0x80070585));
    Out path;
    EXPECT_EQ(props->PropsGet(B("dll-path").get(), path), S_OK);
    EXPECT_NE(path.Said().find("hroma"), std::string::npos) << path.Said();    // of the library, not of the program
}

TEST_F(Door, StoredSettingsComeOverTheDefaults) {
    ASSERT_EQ(zck::SettingsSave(kKey, {{T("process.threads"), T("5")},
                                       {T("own::deep"), T("x")},
                                       {T("Background"), T("Red")},
                                       {T("bad::"), T("1")},
                                       {T("detect.blocks"), T("")}}),
              S_OK);
    ComPtr<IZProps> props = Make();
    EXPECT_EQ(Get(props, "process.threads"), Line(S_OK, "5"));
    EXPECT_EQ(Get(props, "own::deep"), Line(S_OK, "x"));
    EXPECT_EQ(Get(props, "background"), Line(S_OK, "Red"));
    EXPECT_EQ(Get(props, "detect.blocks"), Line(S_OK, ""));
    EXPECT_EQ(Get(props, "detect.max_keys"), Line(S_OK, "1"));
    // Nothing is ever written there.
    EXPECT_EQ(props->PropsSet(B("process.threads").get(), B("9").get()), S_OK);
    EXPECT_EQ(props->PropsSet(B("more").get(), B("9").get()), S_OK);
    props.Reset();
    std::vector<zck::StoredSetting> stored;
    EXPECT_EQ(zck::SettingsLoad(kKey, stored), S_OK);
    EXPECT_EQ(stored.size(), 5U);
    EXPECT_EQ(Get(Make(), "process.threads"), Line(S_OK, "5"));
}

TEST_F(Door, KeyRecords) {
    const ComPtr<IZChromaKey> key = QueryFor<IZChromaKey>(Make().get());
    CHROMA_KEY_RAW raw;
    std::memset(&raw, 0x5A, sizeof raw);
    EXPECT_EQ(key->KeyRawGet(&raw), S_OK);
    EXPECT_TRUE(Same(raw, CHROMA_KEY_RAW{}));
    EXPECT_EQ(key->KeyRawGet(nullptr), E_POINTER);
    EXPECT_EQ(key->KeyRawSet(nullptr), E_POINTER);
    std::mt19937 random(81);
    for (int i = 0; i < 100; ++i) {
        CHROMA_KEY_RAW in = NoiseKey(random), out = {};
        if (i % 2 != 0) in.nKeysUsed = 20;
        EXPECT_EQ(key->KeyRawSet(&in), S_OK);
        EXPECT_EQ(key->KeyRawGet(&out), S_OK);
        ASSERT_TRUE(Same(in, out));
    }
    EXPECT_EQ(key->KeyRawSet(nullptr), E_POINTER);
    EXPECT_EQ(key->KeyRawGet(&raw), S_OK);
    EXPECT_FALSE(Same(raw, CHROMA_KEY_RAW{}));    // still the last one
    EXPECT_EQ(key->KeySet(nullptr), S_OK);
    EXPECT_EQ(key->KeyRawGet(&raw), S_OK);
    EXPECT_TRUE(Same(raw, CHROMA_KEY_RAW{}));
}

std::string Saved(const ComPtr<IZPersist> &persist) {
    Out out;
    const HRESULT hr = persist->PersistSaveToString(nullptr, out, nullptr);
    return hr == S_OK ? out.Said() : Line(hr, out.Said());
}

TEST_F(Door, ConfigurationOfAKey) {
    const ComPtr<IZPersist> persist = QueryFor<IZPersist>(Make().get());
    const ComPtr<IZChromaKey> key = QueryFor<IZChromaKey>(persist.get());
    EXPECT_EQ(Saved(persist), ModelKeyText({}, ModelAdjustDefaults()));    // a fresh key has the defaults
    std::mt19937 random(82);
    for (int i = 0; i < 200; ++i) {
        CHROMA_KEY_RAW raw = NoiseKey(random);
        if (i % 3 == 0) raw.arrKeys[0].nCancelRange = 0;
        EXPECT_EQ(key->KeyRawSet(&raw), S_OK);
        const CK_ADJUST adjust = ModelAdjustFromRaw(raw);
        const std::string text = Saved(persist);
        ASSERT_EQ(text, ModelKeyText(raw, adjust));
        // Loaded again: one value for both transparencies, no entries that were not in use, a truth value of 1.
        EXPECT_EQ(persist->PersistLoad(nullptr, B(text).get(), nullptr), S_OK);
        CHROMA_KEY_RAW loaded;
        EXPECT_EQ(key->KeyRawGet(&loaded), S_OK);
        raw.nKeysUsed = std::min(raw.nKeysUsed, 16);
        raw.bColorCancel = raw.bColorCancel != 0;
        for (int32_t k = std::max(raw.nKeysUsed, 0); k < 16; ++k) raw.arrKeys[k] = {};
        ASSERT_TRUE(Same(loaded, raw)) << text;
    }
    CHROMA_KEY_RAW raw = NoiseKey(random);
    EXPECT_EQ(key->KeyRawSet(&raw), S_OK);
    EXPECT_EQ(key->KeySet(nullptr), S_OK);
    EXPECT_EQ(Saved(persist), ModelKeyText({}, ModelAdjustDefaults()));
}

TEST_F(Door, EditedConfigurations) {
    const ComPtr<IZPersist> persist = QueryFor<IZPersist>(Make().get());
    const ComPtr<IZChromaKey> key = QueryFor<IZChromaKey>(persist.get());
    std::mt19937 random(83);
    for (int i = 0; i < 1000; ++i) {
        const std::string s = EditedKeyText(random);
        ModelNode tree;
        size_t end = 0;
        ASSERT_TRUE(ModelParse(tree, T(s), end, false, false));
        const CHROMA_KEY_RAW want = ModelKeyFromTree(tree);
        CK_ADJUST adjust = ModelAdjustFromRaw(want);
        ModelAdjustFromTree(tree, adjust);
        ASSERT_EQ(persist->PersistLoad(B("ignored").get(), B(s).get(), nullptr), S_OK);
        CHROMA_KEY_RAW got;
        EXPECT_EQ(key->KeyRawGet(&got), S_OK);
        ASSERT_TRUE(Same(got, want)) << s;
        ASSERT_EQ(Saved(persist), ModelKeyText(want, adjust)) << s;
        if (i % 10 != 0) continue;
        EXPECT_EQ(persist->PersistLoad(nullptr, B("no tag").get(), nullptr), E_INVALIDARG);
        EXPECT_EQ(persist->PersistLoad(nullptr, nullptr, nullptr), E_INVALIDARG);
        ASSERT_EQ(Saved(persist), ModelKeyText(want, adjust));    // a refused text changes nothing
    }
    EXPECT_EQ(persist->PersistSaveToString(nullptr, nullptr, nullptr), E_POINTER);
}

TEST_F(Door, ConfigurationFilesAndStreams) {
    const ComPtr<IZPersist> persist = QueryFor<IZPersist>(Make().get()), other = QueryFor<IZPersist>(Make().get());
    std::mt19937 random(84);
    CHROMA_KEY_RAW raw = NoiseKey(random);
    raw.nKeysUsed = 3;
    EXPECT_EQ(QueryFor<IZChromaKey>(persist.get())->KeyRawSet(&raw), S_OK);
    EXPECT_EQ(persist->PersistLoad(nullptr, B(Saved(persist)).get(), nullptr), S_OK);
    const std::string want = Saved(persist);
    const zck::test::ScratchFolder folder;
    const std::string path = folder.Path("t.xml");
    for (const char *param : {"", "unicode=1"}) {
        EXPECT_EQ(persist->PersistSaveToFile(nullptr, B(path).get(), B(param).get()), S_OK);
        EXPECT_EQ(std::filesystem::file_size(path), want.size() * (*param != 0 ? 2 : 1));
        EXPECT_EQ(QueryFor<IZChromaKey>(other.get())->KeySet(nullptr), S_OK);
        EXPECT_EQ(other->PersistLoad(nullptr, B(path).get(), nullptr), S_OK);
        EXPECT_EQ(Saved(other), want);
    }
    std::filesystem::remove(path);
    EXPECT_EQ(other->PersistLoad(nullptr, B(path).get(), nullptr), E_INVALIDARG);
    EXPECT_EQ(Saved(other), want);
    EXPECT_EQ(persist->PersistSaveToFile(nullptr, B(path + "/x/y").get(), nullptr), S_OK);
    EXPECT_EQ(persist->PersistSaveToFile(nullptr, B("").get(), nullptr), E_INVALIDARG);

    ComPtr<IPersistStream> from, to;
    ASSERT_EQ(persist->QueryInterface(IID_IPersistStream, from.PutVoid()), S_OK);
    ASSERT_EQ(other->QueryInterface(IID_IPersistStream, to.PutVoid()), S_OK);
    CLSID id = {};
    EXPECT_EQ(from->GetClassID(&id), S_OK);
    EXPECT_TRUE(id == CLSID_ZChromaKey);
    ULARGE_INTEGER size;
    EXPECT_EQ(from->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, 2 * want.size() + 16);
    MemoryStream stream;
    EXPECT_EQ(from->Save(&stream, 1), S_OK);
    EXPECT_EQ(stream.m_bytes, TextBytes(T(want)));
    EXPECT_EQ(QueryFor<IZChromaKey>(other.get())->KeySet(nullptr), S_OK);
    stream.m_at = 0;
    EXPECT_EQ(to->Load(&stream), S_OK);
    EXPECT_EQ(Saved(other), want);
    stream.m_at = 1;
    EXPECT_TRUE(FAILED(to->Load(&stream)));
    EXPECT_EQ(Saved(other), want);
    EXPECT_EQ(from->IsDirty(), S_FALSE);
}

}    // namespace
}    // namespace conformance
