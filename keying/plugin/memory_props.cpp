#include "keying/plugin/memory_props.h"

#include <algorithm>
#include <mutex>

#include "platform/status.h"

namespace zck {

namespace {

/// A text that is no number counts as 0.
int32_t IntFromText(TextView text) {
    int32_t value = 0;
    ParseInt(text, value);
    return value;
}

/// "0" and "false" are false; "1", "true", "yes", "only", "on" and "y" are true; any other text by its number.
bool BoolFromText(TextView text) {
    for (const TextView word :
         {ZCK_TEXT("1"), ZCK_TEXT("true"), ZCK_TEXT("yes"), ZCK_TEXT("only"), ZCK_TEXT("on"), ZCK_TEXT("y")})
        if (EqualNoCase(text, word)) return true;
    return IntFromText(text) > 0;
}

}    // namespace

std::vector<CMemoryProps::Entry>::const_iterator CMemoryProps::Find(TextView name) const {
    return std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry &entry) { return EqualNoCase(entry.name, name); });
}

HRESULT CMemoryProps::Set(TextView name, TextView value) {
    if (name.empty()) return E_INVALIDARG;
    const std::lock_guard guard(m_lock);
    const auto at = Find(name);
    if (at == m_entries.end())
        m_entries.push_back({Text(name), Text(value)});
    else
        m_entries[static_cast<std::size_t>(at - m_entries.begin())].value = value;
    return S_OK;
}

HRESULT CMemoryProps::Get(TextView name, Text *value) const {
    value->clear();
    const std::lock_guard guard(m_lock);
    const auto at = Find(name);
    if (at == m_entries.end()) return S_FALSE;
    *value = at->value;
    return S_OK;
}

int32_t CMemoryProps::Count() const {
    const std::lock_guard guard(m_lock);
    return static_cast<int32_t>(m_entries.size());
}

HRESULT CMemoryProps::GetByIndex(int32_t index, Text *name, Text *value) const {
    const std::lock_guard guard(m_lock);
    if (index < 0 || static_cast<std::size_t>(index) >= m_entries.size()) return kErrorInvalidIndex;
    const Entry &entry = m_entries[static_cast<std::size_t>(index)];
    *name = entry.name;
    *value = entry.value;
    return S_OK;
}

HRESULT CMemoryProps::Remove(TextView name) {
    const std::lock_guard guard(m_lock);
    if (EqualNoCase(name, ZCK_TEXT("_all_props_"))) {
        m_entries.clear();
        return S_OK;
    }
    const auto at = Find(name);
    if (at == m_entries.end()) return E_INVALIDARG;
    m_entries.erase(at);
    return S_OK;
}

bool CMemoryProps::GetBool(TextView name, bool fallback) const {
    const std::lock_guard guard(m_lock);
    const auto at = Find(name);
    return at == m_entries.end() ? fallback : BoolFromText(at->value);
}

int32_t CMemoryProps::GetInt(TextView name, int32_t fallback) const {
    const std::lock_guard guard(m_lock);
    const auto at = Find(name);
    return at == m_entries.end() ? fallback : IntFromText(at->value);
}

}    // namespace zck
