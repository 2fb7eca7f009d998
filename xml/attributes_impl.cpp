// `IZAttributes`.
#include "platform/status.h"
#include "xml/attribute_list.h"

namespace zck::XMLParse {
namespace {

bool IsEmpty(BSTR text) noexcept { return SysStringLen(text) == 0; }

std::vector<XMLNodePtr> HiddenChildren(const XMLNodeImpl &node) {
    std::vector<XMLNodePtr> hidden;
    for (XMLNodePtr &child : node.ChildrenGet(Children::Elements)) {
        if (node.Hides(child->KeyGet())) hidden.push_back(std::move(child));
    }
    return hidden;
}

Text PrefixOf(const CoXMLNode &child) { return child.NameGet().append(ZCK_TEXT("::")); }

/// Own attributes, then those of hidden children.
bool VisibleAttributeAt(const XMLNodeImpl &node, size_t index, Text &name, Text &value) {
    if (node.AttributeAt(index, name, value)) return true;
    index -= node.AttributeCount();
    for (const XMLNodePtr &child : HiddenChildren(node)) {
        if (child->AttributeAt(index, name, value)) {
            name.insert(0, PrefixOf(*child));
            return true;
        }
        index -= child->AttributeCount();
    }
    return false;
}

HRESULT CopyBoth(TextView name, TextView value, BSTR *nameOut, BSTR *valueOut) {
    Bstr nameCopy(name);
    Bstr valueCopy(value);
    *nameOut = nameCopy.Detach();
    *valueOut = valueCopy.Detach();
    return S_OK;
}

HRESULT SetTyped(XMLNodeImpl &node, BSTR name, TypedValue value) {
    if (IsEmpty(name)) return E_INVALIDARG;
    return node.AttributeSet(ViewOf(name), std::move(value)) ? S_OK : E_INVALIDARG;
}

/// Reads an attribute as `type` and gives the data to `take`.
template <class Take>
HRESULT GetTyped(XMLNodeImpl &node, BSTR name, ValueType type, Take take) {
    if (IsEmpty(name)) return E_INVALIDARG;
    return Guarded([&] {
        ValueData data;
        if (!node.AttributeRead(ViewOf(name), type, data)) return kErrorNotFound;
        take(data);
        return S_OK;
    });
}

/// A text, or null and `S_FALSE` for an empty one.
HRESULT CopyIfAny(TextView text, BSTR *out) { return text.empty() ? S_FALSE : BstrCopyTo(text, out); }

}    // namespace

HRESULT IZAttributesImpl::AttributesGetCount(int32_t *_pnCount) {
    if (_pnCount == nullptr) return E_POINTER;
    *_pnCount = 0;
    return Guarded([&] {
        size_t count = AttributeCount();
        for (const XMLNodePtr &child : HiddenChildren(*this)) count += child->AttributeCount();
        *_pnCount = static_cast<int32_t>(count);
        return count != 0 ? S_OK : S_FALSE;
    });
}

HRESULT IZAttributesImpl::AttributesGetByIndex(int32_t _nIndex, BSTR *_pbsName, BSTR *_pbsValue) {
    if (_pbsName == nullptr || _pbsValue == nullptr) return E_POINTER;
    *_pbsName = nullptr;
    *_pbsValue = nullptr;
    if (_nIndex < 0) return kErrorInvalidIndex;
    return Guarded([&] {
        Text name;
        Text value;
        if (!VisibleAttributeAt(*this, static_cast<size_t>(_nIndex), name, value)) return kErrorInvalidIndex;
        return CopyBoth(name, value, _pbsName, _pbsValue);
    });
}

HRESULT IZAttributesImpl::AttributesRemove(BSTR _bsName) {
    if (IsEmpty(_bsName)) return E_INVALIDARG;
    return Guarded([&] { return AttributeRemove(ViewOf(_bsName)) ? S_OK : kErrorNotFound; });
}

HRESULT IZAttributesImpl::AttributesRemoveAll() {
    AttributesClear();
    return S_OK;
}

HRESULT IZAttributesImpl::AttributesSetString(BSTR _bsName, BSTR _bsValue) {
    return Guarded([&] { return SetTyped(*this, _bsName, TypedValue(ViewOf(_bsValue))); });
}

HRESULT IZAttributesImpl::AttributesSetBool(BSTR _bsName, int32_t _bValue) {
    TypedValue value;
    value.SetBool(_bValue != 0);
    return Guarded([&] { return SetTyped(*this, _bsName, std::move(value)); });
}

HRESULT IZAttributesImpl::AttributesSetInt(BSTR _bsName, int32_t _nValue) {
    TypedValue value;
    value.SetInt(_nValue);
    return Guarded([&] { return SetTyped(*this, _bsName, std::move(value)); });
}

HRESULT IZAttributesImpl::AttributesSetDouble(BSTR _bsName, double _dblValue) {
    TypedValue value;
    value.SetFloat(_dblValue);
    return Guarded([&] { return SetTyped(*this, _bsName, std::move(value)); });
}

HRESULT IZAttributesImpl::AttributesGet(BSTR _bsName, int32_t *_pbFound, BSTR *_pbsValue) {
    if (_pbFound == nullptr || _pbsValue == nullptr) return E_POINTER;
    *_pbFound = 0;
    *_pbsValue = nullptr;
    if (IsEmpty(_bsName)) return E_INVALIDARG;
    return Guarded([&] {
        Text value;
        if (AttributeText(ViewOf(_bsName), value)) {
            const HRESULT hr = BstrCopyTo(value, _pbsValue);
            *_pbFound = SUCCEEDED(hr) ? 1 : 0;
            return hr;
        }
        if (const XMLNodePtr info = InfoFind(ViewOf(_bsName))) value = InfoText(*info, eZIT_Default);
        const HRESULT hr = CopyIfAny(value, _pbsValue);
        return FAILED(hr) ? hr : S_FALSE;
    });
}

HRESULT IZAttributesImpl::AttributesGetString(BSTR _bsName, BSTR *_pbsValue) {
    if (_pbsValue == nullptr) return E_POINTER;
    *_pbsValue = nullptr;
    if (IsEmpty(_bsName)) return E_INVALIDARG;
    return Guarded([&] {
        Text value;
        return AttributeText(ViewOf(_bsName), value) ? BstrCopyTo(value, _pbsValue) : kErrorNotFound;
    });
}

HRESULT IZAttributesImpl::AttributesGetInt(BSTR _bsName, int32_t *_pnValue) {
    if (_pnValue == nullptr) return E_POINTER;
    *_pnValue = 0;
    return GetTyped(*this, _bsName, ValueType::Integer, [&](const ValueData &data) { *_pnValue = data.integer; });
}

HRESULT IZAttributesImpl::AttributesGetBool(BSTR _bsName, int32_t *_pbValue) {
    if (_pbValue == nullptr) return E_POINTER;
    *_pbValue = 0;
    return GetTyped(*this, _bsName, ValueType::Boolean, [&](const ValueData &data) { *_pbValue = data.boolean ? 1 : 0; });
}

HRESULT IZAttributesImpl::AttributesGetDouble(BSTR _bsName, double *_pdblValue) {
    if (_pdblValue == nullptr) return E_POINTER;
    *_pdblValue = 0;
    return GetTyped(*this, _bsName, ValueType::Float, [&](const ValueData &data) { *_pdblValue = data.real; });
}

HRESULT IZAttributesImpl::AttributesSetList(BSTR _bsList, int32_t _nMode) {
    return Guarded([&] {
        HRESULT status = S_OK;
        const bool any = ParseAttributes(*this, ViewOf(_bsList), _nMode, ListNames::Paths, BareNames::Drop, &status);
        return FAILED(status) ? status : any ? S_OK : S_FALSE;
    });
}

HRESULT IZAttributesImpl::AttributesGetList(BSTR *_pbsList) {
    if (_pbsList == nullptr) return E_POINTER;
    *_pbsList = nullptr;
    return Guarded([&] {
        Text list;
        AppendAttributes(list, *this);
        for (const XMLNodePtr &child : HiddenChildren(*this)) AppendAttributes(list, *child, PrefixOf(*child));
        // The list leaves as a text of its own, without the blank in front.
        return BstrCopyTo(TextView(list).substr(list.empty() ? 0 : 1), _pbsList);
    });
}

HRESULT IZAttributesImpl::AttributesClone(IZAttributes **_ppClone) {
    if (_ppClone == nullptr) return E_POINTER;
    *_ppClone = nullptr;
    return Guarded([&] {
        XMLNodePtr clone = CoXMLNode::Create(ZCK_TEXT("m_attributes"));
        Text name;
        Text value;
        for (size_t i = 0; AttributeAt(i, name, value); ++i) clone->AttributeSetOwn(name, TypedValue(value));
        *_ppClone = clone.Detach();
        return S_OK;
    });
}

HRESULT IZAttributesImpl::AttributesCopyFrom(IZAttributes *_pSource, int32_t _nMode) {
    if (_pSource == nullptr) return E_POINTER;
    return Guarded([&] {
        const XMLNodePtr node = CoXMLNode::From(_pSource);
        const size_t flat = node ? node->AttributeCount() : 0;    // names of own attributes are no paths, however they look
        // All is read before anything changes: the source may be this node, or foreign.
        struct Entry {
            Bstr name;
            Bstr value;
        };
        int32_t count = 0;
        HRESULT hr = _pSource->AttributesGetCount(&count);
        if (FAILED(hr)) return hr;
        std::vector<Entry> entries(static_cast<size_t>(count > 0 ? count : 0));
        for (int32_t i = 0; i < count; ++i) {
            Entry &entry = entries[static_cast<size_t>(i)];
            hr = _pSource->AttributesGetByIndex(i, entry.name.Put(), entry.value.Put());
            if (FAILED(hr)) return hr;
        }
        if (_nMode == kListReplaceAll) AttributesClear();
        const Existing existing = _nMode == kListKeep ? Existing::Keep : Existing::Overwrite;
        for (size_t i = 0; i < entries.size(); ++i) {
            TypedValue value(entries[i].value.view());
            if (i < flat) {
                AttributeSetOwn(entries[i].name.view(), std::move(value), existing);
            } else {
                AttributeSet(entries[i].name.view(), std::move(value), existing);
            }
        }
        return S_OK;
    });
}

HRESULT IZAttributesImpl::AttributesInfoGetCount(int32_t *_pnCount) {
    if (_pnCount == nullptr) return E_POINTER;
    *_pnCount = 0;
    return Guarded([&] {
        const XMLNodePtr place = InfoPlace();
        if (!place) return S_FALSE;
        *_pnCount = static_cast<int32_t>(place->ChildCount(Children::Elements));
        return S_OK;
    });
}

HRESULT IZAttributesImpl::AttributesInfoGetName(int32_t _nIndex, BSTR *_pbsName) {
    if (_pbsName == nullptr) return E_POINTER;
    *_pbsName = nullptr;
    if (_nIndex < 0) return E_INVALIDARG;
    return Guarded([&] {
        const XMLNodePtr place = InfoPlace();
        const XMLNodePtr info = place ? place->ChildAt(Children::Elements, static_cast<size_t>(_nIndex)) : XMLNodePtr();
        return info ? BstrCopyTo(info->NameGet(), _pbsName) : kErrorInvalidIndex;
    });
}

HRESULT IZAttributesImpl::AttributesInfoGet(BSTR _bsName, eZInfoType _eType, BSTR *_pbsInfo) {
    if (_pbsInfo == nullptr) return E_POINTER;
    *_pbsInfo = nullptr;
    if (IsEmpty(_bsName) || _eType < eZIT_Help || _eType > eZIT_Max) return E_INVALIDARG;
    return Guarded([&] {
        const XMLNodePtr info = InfoFind(ViewOf(_bsName));
        return info ? CopyIfAny(InfoText(*info, _eType), _pbsInfo) : S_FALSE;
    });
}

HRESULT IZAttributesImpl::AttributesOptionInfoGet(BSTR _bsName, BSTR _bsOption, BSTR _bsAttribute, BSTR *_pbsInfo) {
    if (_pbsInfo == nullptr) return E_POINTER;
    *_pbsInfo = nullptr;
    if (IsEmpty(_bsName) || IsEmpty(_bsOption)) return E_INVALIDARG;
    return Guarded([&] {
        const XMLNodePtr info = InfoFind(ViewOf(_bsName));
        const XMLNodePtr option = info ? info->ChildFind(ViewOf(_bsOption)) : XMLNodePtr();
        if (!option) return kErrorNotFound;
        Text text;
        if (IsEmpty(_bsAttribute)) {
            text = option->TextGet();
        } else if (!option->AttributeText(ViewOf(_bsAttribute), text)) {
            return kErrorNotFound;
        }
        return BstrCopyTo(text, _pbsInfo);
    });
}

}    // namespace zck::XMLParse
