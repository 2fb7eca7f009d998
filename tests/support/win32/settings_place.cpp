#include "tests/support/settings_place.h"

#include <stdexcept>
#include <utility>

#include "zchromakey/com.h"

namespace zck::test {
namespace {

/// What stands for the user's root now; null for the real one.
HKEY s_root = nullptr;

}    // namespace

struct SettingsPlace::State {
    Text path;
    HKEY own = nullptr;
    HKEY before = nullptr;
};

SettingsPlace::SettingsPlace(TextView key) : m_key(key), m_state(std::make_unique<State>()) {
    // A process that was killed leaves its key behind; the number of a new one may be the same.
    m_state->path = Text(ZCK_TEXT("Software\\zck tests\\")).append(TextFromInt(GetCurrentProcessId()));
    RegDeleteTreeW(HKEY_CURRENT_USER, m_state->path.c_str());
    if (RegCreateKeyExW(HKEY_CURRENT_USER, m_state->path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_state->own,
                        nullptr) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_CURRENT_USER, m_state->own) != ERROR_SUCCESS)
        throw std::runtime_error("no registry key");
    m_state->before = std::exchange(s_root, m_state->own);
}

SettingsPlace::~SettingsPlace() {
    s_root = m_state->before;
    RegOverridePredefKey(HKEY_CURRENT_USER, s_root);
    RegCloseKey(m_state->own);
    RegDeleteTreeW(HKEY_CURRENT_USER, m_state->path.c_str());
}

}    // namespace zck::test
