#include <gtest/gtest.h>

#include <set>

#include "platform/settings.h"
#include "tests/support/settings_place.h"

namespace zck {
namespace {

class SettingsRegistryTest : public testing::Test {
protected:
    void Set(const wchar_t *name, DWORD type, const void *data, DWORD bytes) {
        ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, Text(m_place.Key()).c_str(), name, type, data, bytes), ERROR_SUCCESS);
    }

    std::string Loaded() {
        std::vector<StoredSetting> settings;
        EXPECT_EQ(SettingsLoad(m_place.Key(), settings), S_OK);
        // Sorted: the registry has an order of its own.
        std::set<std::string> lines;
        for (const StoredSetting &s : settings) lines.insert("[" + Utf8FromText(s.name) + "|" + Utf8FromText(s.value) + "]");
        std::string joined;
        for (const std::string &line : lines) joined += line;
        return joined;
    }

    test::SettingsPlace m_place{ZCK_TEXT("Software\\Orvane\\zck registry test")};
};

TEST_F(SettingsRegistryTest, TakesStringsAndNumbersAndSkipsTheRest) {
    const uint32_t number = 0xFFFFFFFF;
    const uint64_t wide = 5;
    Set(L"text", REG_SZ, L"checker", 16);
    Set(L"number", REG_DWORD, &number, sizeof(number));
    Set(L"wide", REG_QWORD, &wide, sizeof(wide));
    Set(L"binary", REG_BINARY, &wide, sizeof(wide));
    Set(L"expand", REG_EXPAND_SZ, L"%x%", 8);
    Set(L"", REG_SZ, L"unnamed", 16);
    EXPECT_EQ(Loaded(), "[number|4294967295][text|checker]");
}

TEST_F(SettingsRegistryTest, DataOfOddLengthAndWithoutAZeroAreText) {
    Set(L"open", REG_SZ, L"abc", 5);
    Set(L"zero", REG_SZ, L"ab\0cd", 12);
    Set(L"none", REG_SZ, nullptr, 0);
    EXPECT_EQ(Loaded().find("[none|][open|ab"), 0U);
    EXPECT_NE(Loaded().find("[zero|ab]"), std::string::npos);
}

TEST_F(SettingsRegistryTest, TooLongAValueIsSkipped) {
    const std::vector<wchar_t> data(kMostSettingsText + 10, L'x');
    Set(L"long", REG_SZ, data.data(), static_cast<DWORD>(2 * data.size()));
    Set(L"short", REG_SZ, L"1", 4);
    EXPECT_EQ(Loaded(), "[short|1]");
}

TEST_F(SettingsRegistryTest, KeysBelowAreNotRead) {
    const Text below = Text(m_place.Key()) + Text(ZCK_TEXT("\\below"));
    RegSetKeyValueW(HKEY_CURRENT_USER, below.c_str(), L"a", REG_SZ, L"1", 4);
    EXPECT_EQ(Loaded(), "");
}

}    // namespace
}    // namespace zck
