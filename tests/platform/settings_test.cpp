#include "platform/settings.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/settings_place.h"

namespace zck {
namespace {

class SettingsTest : public testing::Test {
protected:
    /// Sorted: the registry has an order of its own.
    std::vector<std::string> Loaded() {
        std::vector<StoredSetting> settings;
        EXPECT_EQ(SettingsLoad(m_place.Key(), settings), S_OK);
        std::vector<std::string> lines;
        for (const StoredSetting &s : settings) lines.push_back(Utf8FromText(s.name) + "|" + Utf8FromText(s.value));
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    static StoredSetting Setting(std::string_view name, std::string_view value) {
        return {TextFromUtf8(name), TextFromUtf8(value)};
    }

    test::SettingsPlace m_place{ZCK_TEXT("Software\\Orvane\\zck settings test\\Place")};
};

using Lines = std::vector<std::string>;

TEST_F(SettingsTest, NoKeyIsNoSettings) {
    std::vector<StoredSetting> settings(3);
    EXPECT_EQ(SettingsLoad(m_place.Key(), settings), S_FALSE);
    EXPECT_TRUE(settings.empty());
}

TEST_F(SettingsTest, WhatIsSavedComesBack) {
    ASSERT_EQ(SettingsSave(m_place.Key(), {Setting("process.threads", "4"), Setting("background", "checker")}), S_OK);
    EXPECT_EQ(Loaded(), (Lines{"background|checker", "process.threads|4"}));
}

TEST_F(SettingsTest, SavingReplacesEverything) {
    ASSERT_EQ(SettingsSave(m_place.Key(), {Setting("a", "1"), Setting("b", "2"), Setting("c", "3")}), S_OK);
    ASSERT_EQ(SettingsSave(m_place.Key(), {Setting("b", "5")}), S_OK);
    EXPECT_EQ(Loaded(), (Lines{"b|5"}));
    ASSERT_EQ(SettingsSave(m_place.Key(), {}), S_OK);
    EXPECT_EQ(Loaded(), Lines());
}

TEST_F(SettingsTest, SignsAndLineEndsSurvive) {
    const char *texts[] = {"",          " a = b ", "#x", "two\nlines\r\n", "back\\slash\\n", "=", "\xC3\xA9\xF0\x9F\x8E\xA5",
                           "<n a='1'/>"};
    std::vector<StoredSetting> settings;
    Lines lines;
    int number = 0;
    for (const char *text : texts) {
        const std::string name = std::string(text) + std::to_string(number++);
        settings.push_back(Setting(name, text));
        lines.push_back(name + "|" + text);
    }
    ASSERT_EQ(SettingsSave(m_place.Key(), settings), S_OK);
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(Loaded(), lines);
}

TEST_F(SettingsTest, RefusesWhatCannotBeStored) {
    EXPECT_EQ(SettingsSave(m_place.Key(), {Setting("", "1")}), E_INVALIDARG);
    EXPECT_EQ(SettingsSave(m_place.Key(), {Setting("a", std::string_view("1\0"
                                                                         "2",
                                                                         3))}),
              E_INVALIDARG);
    EXPECT_EQ(SettingsSave(m_place.Key(), {Setting(std::string_view("a\0", 2), "1")}), E_INVALIDARG);
}

TEST_F(SettingsTest, RefusesKeysThatLeadElsewhere) {
    std::vector<StoredSetting> settings;
    for (const TextView key : {ZCK_TEXT(""), ZCK_TEXT("A\\..\\B"), ZCK_TEXT("A\\\\B"), ZCK_TEXT("A\\B\\"), ZCK_TEXT("A\\."),
                               ZCK_TEXT("A/B"), ZCK_TEXT("\\A")}) {
        EXPECT_EQ(SettingsLoad(key, settings), E_INVALIDARG) << Utf8FromText(key);
        EXPECT_EQ(SettingsSave(key, settings), E_INVALIDARG) << Utf8FromText(key);
    }
}

TEST_F(SettingsTest, ReadsNoMoreThanItsBounds) {
    std::vector<StoredSetting> many;
    for (size_t i = 0; i < kMostSettings + 10; ++i) many.push_back(Setting("n" + std::to_string(i), "v"));
    ASSERT_EQ(SettingsSave(m_place.Key(), many), S_OK);
    EXPECT_EQ(Loaded().size(), kMostSettings);
    const std::string half(kMostSettingsText / 2 - 10, 'x');
    ASSERT_EQ(SettingsSave(m_place.Key(), {Setting("a", half), Setting("b", half), Setting("c", half)}), S_OK);
    EXPECT_EQ(Loaded().size(), 2U);
}

}    // namespace
}    // namespace zck
