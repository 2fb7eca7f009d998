#include "props/store/store.h"

#include <mutex>
#include <shared_mutex>
#include <utility>

#include "platform/settings.h"
#include "platform/status.h"
#include "props/store/computed.h"
#include "props/store/value_kind.h"
#include "xml/attribute_list.h"
#include "xml/parser.h"
#include "xml/path.h"
#include "xml/writer.h"

namespace zck {
namespace {

using XMLParse::CoXMLNode;
using XMLParse::SplitLast;
using XMLParse::SplitPath;
using XMLParse::XMLNodePtr;

constexpr TextView kRootName = ZCK_TEXT("z-props");

/// Names are paths here, and a name without a value is stored too.
HRESULT MergeAttributes(CoXMLNode &root, TextView list) {
    HRESULT hr = S_OK;
    const bool any =
        ParseAttributes(root, list, XMLParse::kListOverwrite, XMLParse::ListNames::Paths, XMLParse::BareNames::Store, &hr);
    if (FAILED(hr)) return hr;
    return any ? S_OK : E_INVALIDARG;
}

/// Takes a value as the whole tree.
HRESULT SetWhole(CoXMLNode &root, TextView value) {
    switch (ValueKindOf(value)) {
        case ValueKind::Empty:
            root.AttributesClear();
            return S_OK;
        case ValueKind::Plain:
            root.TextSet(value);
            return S_OK;
        case ValueKind::AttributeList:
            return MergeAttributes(root, value);
        case ValueKind::Xml:
            return XMLParse::ParseXML(root, value);
    }
    return E_INVALIDARG;
}

/// A property that grows a member turns into a node: what it held becomes that node's text.
void MoveParentAttribute(CoXMLNode &root, TextView name) {
    const SplitPath split = SplitLast(name);
    Text text;
    if (!split.hasParent || !root.AttributeText(split.parent, text)) return;
    const XMLNodePtr parent = root.NodeFind(split.parent);
    if (!parent) return;
    parent->TextSet(text);
    root.AttributeRemove(split.parent);
}

bool SetNamed(CoXMLNode &root, TextView name, TextView value) {
    if (const XMLNodePtr node = root.NodeFind(name)) {
        node->TextSet(value);
    } else if (!root.AttributeSet(name, value)) {
        return false;
    }
    MoveParentAttribute(root, name);
    return true;
}

}    // namespace

CPropsStore::CPropsStore() : m_root(CoXMLNode::Create(kRootName)) {}

HRESULT CPropsStore::Set(TextView name, BSTR value, bool &changed) {
    changed = false;
    const TextView text = ViewOf(value);
    const std::unique_lock guard(m_lock);
    if (!m_root) return E_FAIL;
    if (name.empty()) {
        if (value == nullptr) return E_INVALIDARG;
        const HRESULT hr = SetWhole(*m_root, text);
        changed = SUCCEEDED(hr);
        return hr;
    }
    if (EqualNoCase(name, ZCK_TEXT("_info_enum_"))) {
        m_infoEnumMode = text.empty() ? InfoEnum::Automatic : BoolFromText(text) ? InfoEnum::On : InfoEnum::Off;
        return S_OK;
    }
    changed = SetNamed(*m_root, name, text);
    return changed ? S_OK : E_INVALIDARG;
}

HRESULT CPropsStore::Get(TextView name, BSTR *value) const {
    if (value == nullptr) return E_POINTER;
    *value = nullptr;
    const std::shared_lock guard(m_lock);
    Text text;
    if (!name.empty() && ComputedProperty(name, text)) return BstrCopyTo(text, value);
    if (!m_root) return E_FAIL;
    if (name.empty()) return XMLParse::WriteXML(*m_root, value);
    if (m_root->AttributeText(name, text)) return BstrCopyTo(text, value);
    const XMLNodePtr node = m_root->NodeFind(name);
    if (!node) return S_FALSE;
    text = node->TextGet();
    return BstrCopyTo(text.empty() ? XMLParse::WriteAttributes(*node, false) : text, value);
}

HRESULT CPropsStore::Remove(TextView name) {
    if (name.empty()) return E_INVALIDARG;
    const std::unique_lock guard(m_lock);
    if (!m_root) return E_FAIL;
    if (EqualNoCase(name, ZCK_TEXT("_all_props_"))) {
        m_root->AttributesClear();
        return S_OK;
    }
    if (EqualNoCase(name, ZCK_TEXT("_all_nodes_"))) {
        m_root->ChildrenClear();
        return S_OK;
    }
    return m_root->AttributeRemove(name) || m_root->NodeRemove(name) ? S_OK : E_INVALIDARG;
}

bool CPropsStore::GetBool(TextView name, bool fallback) const {
    const std::shared_lock guard(m_lock);
    return m_root ? m_root->BoolGet(name, fallback) : fallback;
}

int32_t CPropsStore::GetInt(TextView name, int32_t fallback) const {
    const std::shared_lock guard(m_lock);
    return m_root ? m_root->IntGet(name, fallback) : fallback;
}

double CPropsStore::GetFloat(TextView name, double fallback) const {
    const std::shared_lock guard(m_lock);
    return m_root ? m_root->FloatGet(name, fallback) : fallback;
}

Text CPropsStore::GetText(TextView name, TextView fallback) const {
    Text text;
    const std::shared_lock guard(m_lock);
    if (!m_root || !m_root->AttributeText(name, text)) text = fallback;
    return text;
}

bool CPropsStore::Read(PropName name, ValueType type, ValueData &data) const {
    const std::shared_lock guard(m_lock);
    return m_root && m_root->AttributeReadOwn(name.Key(), type, data);
}

bool CPropsStore::GetBool(PropName name, bool fallback) const {
    ValueData data;
    return Read(name, ValueType::Boolean, data) ? data.boolean : fallback;
}

int32_t CPropsStore::GetInt(PropName name, int32_t fallback) const {
    ValueData data;
    return Read(name, ValueType::Integer, data) ? data.integer : fallback;
}

HRESULT CPropsStore::LoadStored(TextView key) {
    std::vector<StoredSetting> settings;
    const HRESULT hr = SettingsLoad(key, settings);
    for (const StoredSetting &setting : settings) {
        bool changed = false;
        if (Set(setting.name, Bstr(setting.value).get(), changed) == E_OUTOFMEMORY) return E_OUTOFMEMORY;
    }
    return hr;
}

XMLParse::XMLNodePtr CPropsStore::Root() const {
    const std::shared_lock guard(m_lock);
    return m_root;
}

void CPropsStore::RootSet(XMLParse::XMLNodePtr root) {
    const std::unique_lock guard(m_lock);
    m_root = std::move(root);
}

}    // namespace zck
