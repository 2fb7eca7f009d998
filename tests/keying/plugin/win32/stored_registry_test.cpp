// Registry values that nobody would store.
#include "tests/keying/plugin/keyer_test.h"
#include "tests/support/settings_place.h"

namespace zck {
namespace {

class StoredRegistry : public KeyerTest {
protected:
    void Store(const wchar_t *name, DWORD type, const void *data, size_t bytes) {
        ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, Text(m_place.Key()).c_str(), name, type, data, static_cast<DWORD>(bytes)),
                  ERROR_SUCCESS);
    }

    test::SettingsPlace m_place{ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey")};
};

TEST_F(StoredRegistry, StringsAndNumbersTakeEffect) {
    const uint32_t blocks = 64;
    Store(L"detect.blocks", REG_DWORD, &blocks, sizeof(blocks));
    Store(L"background", REG_SZ, L"Navy", 10);
    Create();
    EXPECT_EQ(Get("detect.blocks"), "64");
    EXPECT_EQ(Get("background"), "Navy");
}

TEST_F(StoredRegistry, OtherKindsLeaveTheDefaults) {
    const std::string defaults = Get("");
    ASSERT_NE(defaults.find("detect.blocks"), std::string::npos) << defaults;
    const uint64_t number = 64;
    Store(L"detect.blocks", REG_QWORD, &number, sizeof(number));
    Store(L"detect.threshold", REG_BINARY, &number, sizeof(number));
    Store(L"detect.max_keys", REG_MULTI_SZ, L"3\0", 6);
    Store(L"background", REG_EXPAND_SZ, L"Navy", 10);
    Store(L"output.thread", REG_NONE, nullptr, 0);
    Store(L"process.threads", REG_DWORD, &number, 3);
    Store(L"", REG_SZ, L"process.threads=4", 36);
    const std::vector<wchar_t> longText((size_t{1} << 20) + 10, L'1');
    Store(L"keying.borders", REG_SZ, longText.data(), 2 * longText.size());
    Create();
    EXPECT_EQ(Get(""), defaults);
}

}    // namespace
}    // namespace zck
