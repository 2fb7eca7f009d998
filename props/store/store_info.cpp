// The answers of a store about its properties: how many there are, which, and their descriptions.
#include <algorithm>
#include <shared_mutex>

#include "platform/status.h"
#include "props/store/option_list.h"
#include "props/store/store.h"

namespace zck {
namespace {

using XMLParse::Children;
using XMLParse::CoXMLNode;
using XMLParse::XMLNodePtr;

XMLNodePtr FindNode(const XMLNodePtr &root, TextView name) { return name.empty() ? root : root->NodeFind(name); }

/// Hands out a text that the caller may not want.
HRESULT Give(TextView text, BSTR *out) { return out == nullptr ? S_OK : BstrCopyTo(text, out); }

HRESULT GivePair(TextView nameText, TextView valueText, BSTR *name, BSTR *value) {
    const HRESULT hr = Give(nameText, name);
    return SUCCEEDED(hr) ? Give(valueText, value) : hr;
}

size_t DescribedCount(CoXMLNode &node) {
    const XMLNodePtr place = node.InfoPlace();
    return place ? place->ChildCount(Children::Elements) : 0;
}

HRESULT DescribedAt(CoXMLNode &node, int32_t index, BSTR *name, BSTR *value) {
    const XMLNodePtr place = node.InfoPlace();
    const XMLNodePtr info = place && index >= 0 ? place->ChildAt(Children::Elements, static_cast<size_t>(index)) : XMLNodePtr();
    if (!info) return kErrorInvalidIndex;
    const Text attribute = info->NameGet();
    Text text;
    node.AttributeText(attribute, text);
    return GivePair(attribute, text, name, value);
}

HRESULT StoredAt(const CoXMLNode &node, size_t index, BSTR *name, BSTR *value, int32_t *isNode) {
    Text nameText;
    Text valueText;
    if (node.AttributeAt(index, nameText, valueText)) return GivePair(nameText, valueText, name, value);
    const XMLNodePtr child = node.ChildAt(Children::Elements, index - node.AttributeCount());
    if (!child) return kErrorInvalidIndex;
    if (isNode != nullptr) *isNode = 1;
    return GivePair(child->NameGet(), child->TextGet(), name, value);
}

Text OptionHelp(CoXMLNode &info, TextView option) {
    const XMLNodePtr described = info.ChildFind(option);
    return described ? described->TextGet() : Text();
}

}    // namespace

HRESULT CPropsStore::GetCount(TextView node, int32_t *count) const {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    const std::shared_lock guard(m_lock);
    if (!m_root) return E_FAIL;
    const XMLNodePtr found = FindNode(m_root, node);
    if (!found) return E_INVALIDARG;
    const size_t described = DescribedCount(*found);
    const bool byInfo = m_infoEnumMode == InfoEnum::On || (m_infoEnumMode == InfoEnum::Automatic && described > 0);
    *count = static_cast<int32_t>(byInfo ? described : found->AttributeCount() + found->ChildCount(Children::Elements));
    return S_OK;
}

HRESULT CPropsStore::GetByIndex(TextView node, int32_t index, BSTR *name, BSTR *value, int32_t *isNode) const {
    if (name != nullptr) *name = nullptr;
    if (value != nullptr) *value = nullptr;
    if (isNode != nullptr) *isNode = 0;
    const std::shared_lock guard(m_lock);
    if (!m_root) return E_FAIL;
    const XMLNodePtr found = FindNode(m_root, node);
    if (!found) {
        return EqualNoCase(node, ZCK_TEXT("_info_")) ? DescribedAt(*m_root, index, name, value) : E_INVALIDARG;
    }
    if (index < 0) return kErrorInvalidIndex;
    const bool automatic = m_infoEnumMode == InfoEnum::Automatic && DescribedCount(*found) > 0;
    if (m_infoEnumMode == InfoEnum::On || automatic) return DescribedAt(*found, index, name, value);
    return StoredAt(*found, static_cast<size_t>(index), name, value, isNode);
}

HRESULT CPropsStore::InfoGet(TextView name, eZInfoType type, BSTR *info) const {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (name.empty() || type < eZIT_Help || type > eZIT_Max) return E_INVALIDARG;
    const std::shared_lock guard(m_lock);
    if (!m_root) return E_FAIL;
    const XMLNodePtr found = m_root->InfoFind(name);
    const Text text = found ? CoXMLNode::InfoText(*found, type) : Text();
    return text.empty() ? S_FALSE : BstrCopyTo(text, info);
}

HRESULT CPropsStore::OptionGetCount(TextView name, int32_t *count) const {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    Bstr values;
    const HRESULT hr = InfoGet(name, eZIT_Values, values.Put());
    if (FAILED(hr)) return hr;
    *count = static_cast<int32_t>(OptionItems(values.view()).size());
    return S_OK;
}

HRESULT CPropsStore::OptionGetByIndex(TextView name, int32_t index, BSTR *value, BSTR *help) const {
    if (value != nullptr) *value = nullptr;
    if (help != nullptr) *help = nullptr;
    Bstr values;
    const HRESULT hr = InfoGet(name, eZIT_Values, values.Put());
    if (FAILED(hr)) return hr;
    const std::vector<TextView> items = OptionItems(values.view());
    if (index < 0 || static_cast<size_t>(index) >= items.size()) return kErrorInvalidIndex;
    const TextView item = items[static_cast<size_t>(index)];
    return GivePair(item, help != nullptr ? HelpOf(name, item) : Text(), value, help);
}

HRESULT CPropsStore::OptionGet(TextView name, int32_t *index, BSTR *value, BSTR *help) const {
    if (index != nullptr) *index = -1;
    if (value != nullptr) *value = nullptr;
    if (help != nullptr) *help = nullptr;
    if (name.empty()) return E_INVALIDARG;
    Text current;
    {
        const std::shared_lock guard(m_lock);
        if (!m_root) return E_FAIL;
        if (!m_root->AttributeText(name, current)) return kErrorFileNotFound;
    }
    Bstr values;
    const HRESULT hr = InfoGet(name, eZIT_Values, values.Put());
    if (FAILED(hr)) return hr;
    const std::vector<TextView> items = OptionItems(values.view());
    const auto at = std::find(items.begin(), items.end(), TextView(current));
    if (index != nullptr && at != items.end()) *index = static_cast<int32_t>(at - items.begin());
    return GivePair(current, help != nullptr ? HelpOf(name, current) : Text(), value, help);
}

Text CPropsStore::HelpOf(TextView name, TextView option) const {
    const std::shared_lock guard(m_lock);
    const XMLNodePtr info = m_root ? m_root->InfoFind(name) : XMLNodePtr();
    return info ? OptionHelp(*info, option) : Text();
}

}    // namespace zck
