#include "platform/settings.h"

#include <algorithm>
#include <span>
#include <utility>

#include "platform/status.h"

namespace zck {
namespace {

constexpr DWORD kMostNameUnits = 16384;    // the system's own limit, the zero included

class Key {
public:
    ~Key() {
        if (m_key != nullptr) RegCloseKey(m_key);
    }
    Key() = default;
    Key(const Key &) = delete;
    Key &operator=(const Key &) = delete;
    HKEY get() const noexcept { return m_key; }
    HKEY *Put() noexcept { return &m_key; }

private:
    HKEY m_key = nullptr;
};

HRESULT StatusOfResult(LSTATUS result) { return SystemErrorStatus(static_cast<int32_t>(result), E_FAIL); }

/// A value's data as text; false for a type that is skipped. Stored data may be of any length and without a zero.
bool TextOfData(DWORD type, std::span<const uint8_t> data, Text &text) {
    if (type == REG_DWORD && data.size() == sizeof(uint32_t)) {
        text =
            TextFromInt(static_cast<int64_t>(data[0] | data[1] << 8 | data[2] << 16) + (static_cast<int64_t>(data[3]) << 24));
        return true;
    }
    if (type != REG_SZ) return false;
    text.clear();
    for (size_t i = 0; i + 1 < data.size(); i += 2) {
        const OLECHAR unit = static_cast<OLECHAR>(data[i] | data[i + 1] << 8);
        if (unit == 0) break;
        text.push_back(unit);
    }
    return true;
}

using Bytes = std::span<const uint8_t>;

/// Walks the values of a key until `take` says false. A value whose data are too long for the bound has type `REG_NONE`.
template <class Take>
LSTATUS EnumerateValues(HKEY key, Take take) {
    DWORD longest = 0;
    LSTATUS result = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &longest,
                                      nullptr, nullptr);
    if (result != ERROR_SUCCESS) return result;
    std::vector<uint8_t> data(std::min<size_t>(size_t{longest} + 2, 2 * kMostSettingsText));
    Text name(kMostNameUnits, static_cast<OLECHAR>(0));
    for (DWORD index = 0; index < kMostSettings; ++index) {
        DWORD units = kMostNameUnits;
        DWORD bytes = static_cast<DWORD>(data.size());
        DWORD type = REG_NONE;
        result = RegEnumValueW(key, index, name.data(), &units, nullptr, &type, data.data(), &bytes);
        if (result == ERROR_NO_MORE_ITEMS) break;
        if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA) return result;
        const bool whole = result == ERROR_SUCCESS;
        if (!take(TextView(name.data(), whole ? units : 0), whole ? type : REG_NONE, Bytes(data.data(), whole ? bytes : 0)))
            break;
    }
    return ERROR_SUCCESS;
}

LSTATUS RemoveAllValues(HKEY key) {
    std::vector<Text> names;
    const LSTATUS result = EnumerateValues(key, [&](TextView name, DWORD, Bytes) {
        names.emplace_back(name);
        return true;
    });
    for (const Text &name : names) RegDeleteValueW(key, name.c_str());
    return result;
}

}    // namespace

HRESULT SettingsLoad(TextView key, std::vector<StoredSetting> &settings) noexcept {
    settings.clear();
    return Guarded([&]() -> HRESULT {
        std::vector<Text> elements;
        if (!SettingsKeyElements(key, elements)) return E_INVALIDARG;
        Key opened;
        LSTATUS result = RegOpenKeyExW(HKEY_CURRENT_USER, Text(key).c_str(), 0, KEY_QUERY_VALUE, opened.Put());
        if (result == ERROR_FILE_NOT_FOUND || result == ERROR_PATH_NOT_FOUND) return S_FALSE;
        if (result != ERROR_SUCCESS) return StatusOfResult(result);
        size_t units = 0;
        result = EnumerateValues(opened.get(), [&](TextView name, DWORD type, Bytes data) {
            StoredSetting setting;
            if (name.empty() || !TextOfData(type, data, setting.value)) return true;
            setting.name = name;
            units += setting.name.size() + setting.value.size();
            if (units > kMostSettingsText) return false;
            settings.push_back(std::move(setting));
            return true;
        });
        return result == ERROR_SUCCESS ? S_OK : StatusOfResult(result);
    });
}

HRESULT SettingsSave(TextView key, const std::vector<StoredSetting> &settings) noexcept {
    return Guarded([&]() -> HRESULT {
        std::vector<Text> elements;
        if (!SettingsKeyElements(key, elements) || !SettingsAreValid(settings)) return E_INVALIDARG;
        Key opened;
        LSTATUS result = RegCreateKeyExW(HKEY_CURRENT_USER, Text(key).c_str(), 0, nullptr, 0, KEY_QUERY_VALUE | KEY_SET_VALUE,
                                         nullptr, opened.Put(), nullptr);
        if (result == ERROR_SUCCESS) result = RemoveAllValues(opened.get());
        for (const StoredSetting &setting : settings) {
            if (result != ERROR_SUCCESS) break;
            const DWORD bytes = static_cast<DWORD>((setting.value.size() + 1) * sizeof(OLECHAR));
            result = RegSetValueExW(opened.get(), setting.name.c_str(), 0, REG_SZ,
                                    reinterpret_cast<const BYTE *>(setting.value.c_str()), bytes);
        }
        return result == ERROR_SUCCESS ? S_OK : StatusOfResult(result);
    });
}

}    // namespace zck
