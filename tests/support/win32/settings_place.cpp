#include "tests/support/settings_place.h"

#include "zchromakey/com.h"

namespace zck::test {
namespace {

void Move(const Text &from, const Text &to) {
    HKEY target = nullptr;
    RegDeleteTreeW(HKEY_CURRENT_USER, to.c_str());
    HKEY source = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, from.c_str(), 0, KEY_ALL_ACCESS, &source) != ERROR_SUCCESS) return;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, to.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &target, nullptr) ==
        ERROR_SUCCESS) {
        RegCopyTreeW(source, nullptr, target);
        RegCloseKey(target);
    }
    RegCloseKey(source);
    RegDeleteTreeW(HKEY_CURRENT_USER, from.c_str());
}

}    // namespace

SettingsPlace::SettingsPlace(TextView key) : m_key(key), m_aside(m_key + Text(ZCK_TEXT(" aside"))) { Move(m_key, m_aside); }

SettingsPlace::~SettingsPlace() {
    RegDeleteTreeW(HKEY_CURRENT_USER, m_key.c_str());
    Move(m_aside, m_key);
}

}    // namespace zck::test
