// Properties that the user has stored.
#include "platform/settings.h"
#include "tests/keying/plugin/keyer_test.h"
#include "tests/support/settings_place.h"

namespace zck {
namespace {

class StoredProps : public KeyerTest {
protected:
    /// A plug-in that was made with these stored.
    void CreateWith(std::initializer_list<std::pair<const char *, const char *>> pairs) {
        std::vector<StoredSetting> settings;
        for (const auto &[name, value] : pairs) settings.push_back({TextFromUtf8(name), TextFromUtf8(value)});
        ASSERT_EQ(SettingsSave(m_place.Key(), settings), S_OK);
        Create();
    }

    ComPtr<IZFrame> Receive(int height = kHeight) {
        ComPtr<IZFrame> out;
        EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame(eZFCC_RGB32, kWidth, height).get(), out.Put()), S_OK);
        return out;
    }

    test::SettingsPlace m_place{ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey")};
};

TEST_F(StoredProps, OverrideTheDefaultsInTheirPlace) {
    CreateWith({{"detect.blocks", "64"}, {"Background", "Navy"}, {"mine", "1"}, {"a::b", "2"}});
    EXPECT_EQ(Get("background"), "Navy");
    EXPECT_EQ(Get("detect.blocks"), "64");
    EXPECT_EQ(Get("detect.threshold"), "16");
    EXPECT_EQ(Get("mine"), "1");
    EXPECT_EQ(Get("a::b"), "2");
    Bstr name;
    ASSERT_EQ(m_props->PropsGetByIndex(nullptr, 0, name.Put(), nullptr, nullptr), S_OK);
    EXPECT_EQ(Utf8FromText(name.view()), "background");
    int32_t count = 0;
    ASSERT_EQ(m_props->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 10);
}

TEST_F(StoredProps, AreReadOnceAtTheConstruction) {
    CreateWith({{"detect.blocks", "64"}});
    ASSERT_EQ(SettingsSave(m_place.Key(), {}), S_OK);
    EXPECT_EQ(Get("detect.blocks"), "64");
    Set("detect.blocks", "12");
    Create();
    EXPECT_EQ(Get("detect.blocks"), "48") << "what a host sets is not stored";
}

TEST_F(StoredProps, TheOutputThreadAndBordersTakeEffect) {
    CreateWith({{"output.thread", "false"}, {"keying.borders", "16 4"}});
    SetKey(eCKT_RGB);
    const auto pixels = Pixels(Receive().get());
    EXPECT_EQ(At(pixels, 20, 3), kGreen);
    EXPECT_EQ(At(pixels, 20, 4), 0u);
    EXPECT_EQ(At(pixels, 15, 10), kGreen);
}

TEST_F(StoredProps, TheNumberOfThreadsTakesEffect) {
    CreateWith({{"output.thread", "no"}, {"process.threads", "1"}});
    CHROMA_KEY_RAW key{};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.arrKeys[0].nValue = 0x0020C010;
    key.arrKeys[0].nDelta = 0x00282828;
    key.nMaxTransparent = 255;
    key.nInverseKey = 1;
    ASSERT_EQ(m_key->KeyRawSet(&key), S_OK);
    // One slice inverts, two cancel each other.
    EXPECT_EQ(At(Pixels(Receive().get()), 60, 10), 0u);
    Set("process.threads", "2");
    EXPECT_EQ(At(Pixels(Receive().get()), 60, 10), kSkin);
}

TEST_F(StoredProps, AHugeNumberOfThreadsIsSixteen) {
    CreateWith({{"output.thread", "false"}, {"process.threads", "99999"}});
    EXPECT_EQ(Get("process.threads"), "99999");
    SetKey(eCKT_RGB);
    EXPECT_EQ(At(Pixels(Receive(16).get()), 3, 5), 0u);
    // A frame lower than the number of slices is not keyed.
    EXPECT_EQ(At(Pixels(Receive(15).get()), 3, 5), kGreen);
}

TEST_F(StoredProps, NonsenseMakesAPluginAllTheSame) {
    CreateWith({{"::", "1"},
                {"detect.blocks::x", "1"},
                {"_info_enum_", "maybe"},
                {"<n a='1'/>", "<"},
                {"keying.borders", "99999999999999999999 -99999999999999999999"},
                {"output.thread", ""},
                {"process.threads", "0x10"}});
    EXPECT_EQ(Get("output.thread"), "");
    EXPECT_EQ(Get("background"), "checker");
    SetKey(eCKT_Alpha);
    EXPECT_EQ(At(Pixels(Receive().get()), 3, 5), kGreen);
}

}    // namespace
}    // namespace zck
