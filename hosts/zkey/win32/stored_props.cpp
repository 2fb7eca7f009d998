#include "hosts/zkey/stored_props.h"

#include "hosts/zkey/failure.h"
#include "hosts/zkey/text.h"
#include "zchromakey/com.h"

namespace zkey {
namespace {

constexpr const WCHAR *kKey = L"Software\\Orvane\\Quorvex\\ZChromaKey";

void Require(LSTATUS status) {
    if (status != ERROR_SUCCESS) Fail("cannot write " + StoredPlace() + ": error " + std::to_string(status));
}

}    // namespace

std::string StoredPlace() { return "HKEY_CURRENT_USER\\Software\\Orvane\\Quorvex\\ZChromaKey in the registry"; }

std::optional<std::string> StoredProperty(const std::string &name) {
    const Counted wide(name);
    WCHAR text[4096];
    DWORD bytes = sizeof text;
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, wide.get(), RRF_RT_REG_SZ, nullptr, text, &bytes) == ERROR_SUCCESS) {
        Counted value;
        *value.Put() = SysAllocString(text);
        return value.Utf8();
    }
    DWORD number = 0;
    bytes = sizeof number;
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, wide.get(), RRF_RT_REG_DWORD, nullptr, &number, &bytes) != ERROR_SUCCESS) {
        return {};
    }
    return std::to_string(number);
}

bool StoreProperty(const std::string &name, const std::optional<std::string> &value) {
    const bool found = StoredProperty(name).has_value();
    const Counted wide(name);
    if (value) {
        const Counted text(*value);
        const auto bytes = static_cast<DWORD>((SysStringLen(text.get()) + 1) * sizeof(WCHAR));
        Require(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, wide.get(), REG_SZ, text.get(), bytes));
    } else if (found) {
        Require(RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, wide.get()));
    }
    return found;
}

}    // namespace zkey
