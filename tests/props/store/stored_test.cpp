#include "platform/settings.h"
#include "tests/props/store/props_object.h"
#include "tests/support/settings_place.h"

namespace zck {
namespace {

class StoredTest : public PropsTest {
protected:
    static StoredSetting Setting(std::string_view name, std::string_view value) { return {In(name), In(value)}; }

    test::SettingsPlace m_place{ZCK_TEXT("Software\\Orvane\\zck store test")};
};

TEST_F(StoredTest, EverySettingIsSet) {
    ASSERT_EQ(Set("process.threads", "2"), S_OK);
    ASSERT_EQ(SettingsSave(m_place.Key(), {Setting("Process.Threads", "5"), Setting("a::b", "1"), Setting("x", "p=1 q=2")}),
              S_OK);
    EXPECT_EQ(m_object->Store().LoadStored(m_place.Key()), S_OK);
    EXPECT_EQ(Get("process.threads"), "5");
    EXPECT_EQ(Get("a"), "b='1'");
    // A named value is taken as it stands.
    EXPECT_EQ(Get("x"), "p=1 q=2");
}

TEST_F(StoredTest, SettingThatIsRefusedIsPassedOver) {
    ASSERT_EQ(SettingsSave(m_place.Key(), {Setting("::bad", "1"), Setting("z", "2")}), S_OK);
    EXPECT_EQ(m_object->Store().LoadStored(m_place.Key()), S_OK);
    EXPECT_EQ(Count(""), "1");
    EXPECT_EQ(Get("z"), "2");
}

TEST_F(StoredTest, NothingStoredIsNoFailure) {
    EXPECT_EQ(m_object->Store().LoadStored(m_place.Key()), S_FALSE);
    EXPECT_EQ(Count(""), "0");
}

TEST_F(StoredTest, NothingIsStoredByTheStore) {
    ASSERT_EQ(SettingsSave(m_place.Key(), {Setting("a", "1")}), S_OK);
    ASSERT_EQ(m_object->Store().LoadStored(m_place.Key()), S_OK);
    ASSERT_EQ(Set("a", "2"), S_OK);
    ASSERT_EQ(Set("b", "3"), S_OK);
    std::vector<StoredSetting> settings;
    ASSERT_EQ(SettingsLoad(m_place.Key(), settings), S_OK);
    ASSERT_EQ(settings.size(), 1U);
    EXPECT_EQ(Say(settings[0].value), "1");
}

TEST_F(StoredTest, DeepPathIsSurvived) {
    // The registry takes names of up to 16383 units.
    std::string path;
    for (int i = 0; i < 5000; ++i) path += "a::";
    ASSERT_EQ(SettingsSave(m_place.Key(), {Setting(path + "b", "1")}), S_OK);
    EXPECT_EQ(m_object->Store().LoadStored(m_place.Key()), S_OK);
    EXPECT_EQ(Get(path + "b"), "1");
    EXPECT_GT(Get("").size(), path.size());
    EXPECT_EQ(Remove("_all_nodes_"), S_OK);
}

}    // namespace
}    // namespace zck
