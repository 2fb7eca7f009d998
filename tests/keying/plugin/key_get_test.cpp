// `KeyGet` and `KeySet`: the round between the plug-in and a key object.
#include <cstring>

#include "keyobject/key_value.h"
#include "platform/class_table.h"
#include "tests/keying/plugin/keyer_test.h"
#include "tests/support/image_bytes.h"
#include "tests/support/scratch_folder.h"

namespace zck {
namespace {

HRESULT KeyFactory(REFIID riid, void **ppv) { return CreateObject<CoClassFactory<CCoZKeyValue>>(nullptr, riid, ppv); }
constexpr ClassEntry kClasses[] = {{&CLSID_ZKey, &KeyFactory}};

class KeyRound : public KeyerTest {
protected:
    ComPtr<IZKey> Key(IUnknown *frame, const char *options = "") {
        ComPtr<IZKey> key;
        const Bstr text(TextFromUtf8(options));
        EXPECT_EQ(m_key->KeyGet(frame, key.Put(), text.get()), S_OK);
        return key;
    }
    static std::string Property(IZKey *key, const char *name) {
        Bstr value;
        const Bstr bsName(TextFromUtf8(name));
        const HRESULT hr = QueryFor<IZProps>(key)->PropsGet(bsName.get(), value.Put());
        return hr == S_OK ? Utf8FromText(value.view()) : "status " + std::to_string(hr);
    }
    static ComPtr<IZFrame> Background(IZKey *key) {
        ComPtr<IUnknown> background;
        EXPECT_EQ(key->KeyFrameGet(nullptr, background.Put()), S_OK);
        return QueryFor<IZFrame>(background.get());
    }
    static Z_VID_PROPS PropsOf(IZFrame *frame) {
        Z_AV_PROPS props = {};
        EXPECT_EQ(frame->FrameAVPropsGet(&props), S_OK);
        return props.vidProps;
    }
    static CHROMA_KEY_RAW RawOf(IZKey *key, CK_ADJUST *adjust = nullptr) {
        CHROMA_KEY_RAW raw = {};
        EXPECT_EQ(key->KeyRawGet(&raw, adjust), S_OK);
        return raw;
    }

    ClassTable m_classes{kClasses};
};

TEST_F(KeyRound, WithoutTheClassThereIsNoKeyObject) {
    ComPtr<IZKey> key;
    {
        constexpr static ClassEntry kNone[] = {{&CLSID_ZChromaKey, &KeyFactory}};
        const ClassTable none(kNone);
        EXPECT_EQ(m_key->KeyGet(Frame().get(), key.Put(), nullptr), CLASS_E_CLASSNOTAVAILABLE);
    }
    EXPECT_FALSE(key);
    EXPECT_EQ(m_key->KeyGet(Frame().get(), nullptr, nullptr), E_POINTER);
}

TEST_F(KeyRound, PropertiesOfThePluginAndOfTheCallReachTheKeyObject) {
    Set("detect.blocks", "7");
    const ComPtr<IZKey> key = Key(Frame().get(), "max_keys=4 detect.threshold='9'");
    EXPECT_EQ(Property(key.get(), "detect.blocks"), "7");
    EXPECT_EQ(Property(key.get(), "detect.threshold"), "9");
    EXPECT_EQ(Property(key.get(), "detect.key_diff"), "1.0");
    EXPECT_EQ(Property(key.get(), "keying.borders"), "");
    EXPECT_EQ(Property(key.get(), "max_keys"), "4");
    // No tie remains, either way.
    Set("detect.blocks", "8");
    EXPECT_EQ(Property(key.get(), "detect.blocks"), "7");
    EXPECT_EQ(Get("max_keys"), "status 1");
}

TEST_F(KeyRound, TheFrameIsTheCallsOrElseTheLast) {
    Set("output.thread", "false");
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    ASSERT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame(eZFCC_RGB32, 40, 20).get(), out.Put()), S_OK);
    ComPtr<IUnknown> preview;
    ASSERT_EQ(Key(nullptr)->KeyFrameGet(preview.Put(), nullptr), S_OK);
    EXPECT_EQ(PropsOf(QueryFor<IZFrame>(preview.get()).get()).nWidth, 40);
    ASSERT_EQ(Key(Frame().get())->KeyFrameGet(preview.Put(), nullptr), S_OK);
    EXPECT_EQ(PropsOf(QueryFor<IZFrame>(preview.get()).get()).nWidth, kWidth);
    // An object that is no frame counts as none, and the frame of the call has not become the last one.
    ASSERT_EQ(Key(m_key.get())->KeyFrameGet(preview.Put(), nullptr), S_OK);
    EXPECT_EQ(PropsOf(QueryFor<IZFrame>(preview.get()).get()).nWidth, 40);
}

TEST_F(KeyRound, TheKeyGoesRound) {
    SetKey(eCKT_RGB);
    const ComPtr<IZKey> key = Key(Frame().get());
    CHROMA_KEY_RAW before = {};
    ASSERT_EQ(m_key->KeyRawGet(&before), S_OK);
    CK_ADJUST adjust = {};
    const CHROMA_KEY_RAW inside = RawOf(key.get(), &adjust);
    // The plug-in's adjustment was read off its raw key.
    EXPECT_EQ(adjust.dblTransparent, 20 / 255.0);
    EXPECT_EQ(adjust.rangeAdjust.dblRangeR_H_Y, 0);
    EXPECT_EQ(inside.nKeysUsed, 2);
    EXPECT_EQ(inside.arrKeys[0].nValue, before.arrKeys[0].nValue);
    EXPECT_EQ(inside.arrKeys[0].nSmoothRange, 20);
    // So power moves nothing until there is a range for it.
    ComPtr<IUnknown> preview;
    ASSERT_EQ(key->KeyAdjustSet(eCKA_Power, 1, preview.Put()), S_OK);
    EXPECT_EQ(RawOf(key.get()).arrKeys[0].nDelta, before.arrKeys[0].nDelta);
    ASSERT_EQ(key->KeyAdjustSet(eCKA_Power_R_H_Y, 1, preview.Put()), S_OK);
    EXPECT_EQ(RawOf(key.get()).arrKeys[0].nDelta & 0xFF, 0x28 + 64);
    // The plug-in keeps its key until it gets this one.
    CHROMA_KEY_RAW after = {};
    ASSERT_EQ(m_key->KeyRawGet(&after), S_OK);
    EXPECT_EQ(std::memcmp(&before, &after, sizeof(after)), 0);
    ASSERT_EQ(m_key->KeySet(key.get()), S_OK);
    ASSERT_EQ(m_key->KeyRawGet(&after), S_OK);
    const CHROMA_KEY_RAW edited = RawOf(key.get());
    EXPECT_EQ(std::memcmp(&edited, &after, sizeof(after)), 0);
    // The adjustment came along: the next key object starts with it.
    RawOf(Key(Frame().get()).get(), &adjust);
    EXPECT_EQ(adjust.dblPower, 1);
    EXPECT_EQ(adjust.rangeAdjust.dblRangeR_H_Y, 1);
}

TEST_F(KeyRound, OneStepBackIsTheEmptyKeyAndNoStepLeadsForward) {
    SetKey(eCKT_RGB);
    const ComPtr<IZKey> key = Key(Frame().get());
    ComPtr<IUnknown> preview;
    ASSERT_EQ(key->KeyStepBack(1, preview.Put()), S_OK);
    EXPECT_EQ(RawOf(key.get()).nKeysUsed, 0);
    ASSERT_EQ(key->KeyStepFwd(1, preview.Put()), S_OK);
    EXPECT_EQ(RawOf(key.get()).nKeysUsed, 0);
}

TEST_F(KeyRound, AFrameWithoutAViewShowsInTheKeyObjectsAnswers) {
    ComPtr<IZFrame> empty;
    ASSERT_EQ(m_frames->FrameCreate(0, nullptr, empty.Put()), S_OK);
    const ComPtr<IZKey> key = Key(empty.get());
    ASSERT_TRUE(key);
    ComPtr<IUnknown> preview;
    EXPECT_EQ(key->KeyReset(preview.Put()), kVfwEInvalidMediaType);
}

TEST_F(KeyRound, TheBackgroundIsTheCallsOrElseThePlugins) {
    ComPtr<IZFrame> background = Background(Key(Frame().get()).get());
    ASSERT_TRUE(background);
    // Without a last frame it has the size of NTSC.
    Z_VID_PROPS props = PropsOf(background.get());
    EXPECT_EQ(props.fccType, eZFCC_RGB32);
    EXPECT_EQ(props.nWidth, 720);
    EXPECT_EQ(props.nHeight, -486);
    background = Background(Key(Frame().get(), "background='Red'").get());
    ASSERT_TRUE(background);
    EXPECT_EQ(Pixels(background.get())[1000], 0xFFFF0000u);
    Set("background", "Blue");
    background = Background(Key(Frame().get()).get());
    ASSERT_TRUE(background);
    EXPECT_EQ(Pixels(background.get())[1000], 0xFF0000FFu);
    EXPECT_FALSE(Background(Key(Frame().get(), "background=''").get()));
    Set("background", "");
    EXPECT_FALSE(Background(Key(Frame().get()).get()));
}

TEST_F(KeyRound, NamesThatMakeNoBackgroundGiveNone) {
    for (const char *name : {"background=nonsense", "background='/no/such/file.png'"}) {
        const ComPtr<IZKey> key = Key(Frame().get(), name);
        ASSERT_TRUE(key);
        EXPECT_FALSE(Background(key.get())) << name;
    }
    // A point in a folder is no extension.
    EXPECT_FALSE(Background(Key(Frame().get(), "background='/a.b/Red'").get()));
}

TEST_F(KeyRound, ABackgroundComesFromAFile) {
    const test::ScratchFolder folder;
    folder.Put("a.bmp", test::BmpBytes({}));
    const ComPtr<IZFrame> background =
        Background(Key(Frame().get(), ("background='" + folder.Path("a.bmp") + "'").c_str()).get());
    ASSERT_TRUE(background);
    EXPECT_EQ(PropsOf(background.get()).nWidth, 2);
    EXPECT_EQ(PropsOf(background.get()).nHeight, -2);
    EXPECT_EQ(Pixels(background.get())[0], 0x6C6B6A69u);    // the row that the file has last
    // What is no picture is none, and no black one either.
    folder.Put("a.bmp", "no picture");
    EXPECT_FALSE(Background(Key(Frame().get(), ("background='" + folder.Path("a.bmp") + "'").c_str()).get()));
}

// The point makes an extension, the loader of files takes the name for a colour, and the point ends its alpha.
TEST_F(KeyRound, AColourWithAPointIsATransparentFrameOfAnotherSize) {
    const ComPtr<IZFrame> background = Background(Key(Frame().get(), "background='Red(0.5)'").get());
    ASSERT_TRUE(background);
    EXPECT_EQ(PropsOf(background.get()).fccType, eZFCC_ARGB32);
    EXPECT_EQ(PropsOf(background.get()).nWidth, 720);
    EXPECT_EQ(PropsOf(background.get()).nHeight, -486);
    EXPECT_EQ(Pixels(background.get())[0], 0x00FF0000u);
}

TEST_F(KeyRound, TheBackgroundHasTheSizeOfTheLastFrame) {
    Set("output.thread", "false");
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    ASSERT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame(eZFCC_RGB24, 44, 42).get(), out.Put()), S_OK);
    const ComPtr<IZFrame> background = Background(Key(Frame().get(), "background=CHECKER").get());
    ASSERT_TRUE(background);
    const Z_VID_PROPS props = PropsOf(background.get());
    EXPECT_EQ(props.nWidth, 44);
    EXPECT_EQ(props.nHeight, -42);
    EXPECT_EQ(props.nRowBytes, 176);
    const std::vector<uint32_t> pixels = Pixels(background.get());
    const auto at = [&](size_t x, size_t y) { return pixels[y * 44 + x]; };
    EXPECT_EQ(at(0, 0), 0xFFC8C8C8u);
    EXPECT_EQ(at(19, 0), 0xFFC8C8C8u);
    EXPECT_EQ(at(20, 0), 0xFF505050u);
    EXPECT_EQ(at(40, 0), 0xFFC8C8C8u);
    // One line higher than counted, and the last one empty.
    EXPECT_EQ(at(0, 18), 0xFFC8C8C8u);
    EXPECT_EQ(at(0, 19), 0xFF505050u);
    EXPECT_EQ(at(0, 39), 0xFFC8C8C8u);
    EXPECT_EQ(at(0, 40), 0xFFC8C8C8u);
    EXPECT_EQ(at(0, 41), 0u);
}

}    // namespace
}    // namespace zck
