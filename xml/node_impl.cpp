// `IZNode`.
#include "platform/status.h"
#include "xml/node.h"
#include "xml/parser.h"
#include "xml/writer.h"

namespace zck::XMLParse {
namespace {

bool IsEmpty(BSTR text) noexcept { return SysStringLen(text) == 0; }

HRESULT HandOut(XMLNodePtr node, IZNode **out) {
    *out = node.Detach();
    return S_OK;
}

}    // namespace

HRESULT IZNodeImpl::NodeNameGet(BSTR *_pbsName) {
    if (_pbsName == nullptr) return E_POINTER;
    *_pbsName = nullptr;
    return Guarded([&] { return BstrCopyTo(NameGet(), _pbsName); });
}

HRESULT IZNodeImpl::NodeNameSet(BSTR _bsName) {
    if (IsEmpty(_bsName)) return E_INVALIDARG;
    return Guarded([&] {
        NameSet(ViewOf(_bsName));
        return S_OK;
    });
}

HRESULT IZNodeImpl::NodeValueGet(BSTR *_pbsValue) {
    if (_pbsValue == nullptr) return E_POINTER;
    *_pbsValue = nullptr;
    return Guarded([&] {
        const bool hidden = IsHidden();
        return BstrCopyTo(hidden ? InnerXML(static_cast<CoXMLNode &>(*this)) : TextGet(), _pbsValue);
    });
}

HRESULT IZNodeImpl::NodeValueSet(BSTR _bsValue) {
    return Guarded([&] {
        if (!IsHidden()) {
            TextSet(ViewOf(_bsValue));
            return S_OK;
        }
        const Text wrapped = Text(ZCK_TEXT("<temp>")).append(ViewOf(_bsValue)).append(ZCK_TEXT("</temp>"));
        XMLNodePtr parsed = CoXMLNode::Create(ZCK_TEXT("temp"));
        const HRESULT hr = ParseXML(*parsed, wrapped);
        ContentTake(*parsed);
        return hr;
    });
}

HRESULT IZNodeImpl::NodePathGet(BSTR *_pbsPath, IZNode *_pStop) {
    if (_pbsPath == nullptr) return E_POINTER;
    *_pbsPath = nullptr;
    return Guarded([&] {
        const XMLNodePtr stop = CoXMLNode::From(_pStop);
        return BstrCopyTo(PathGet(stop.get()), _pbsPath);
    });
}

HRESULT IZNodeImpl::NodeParentGet(IZNode **_ppParent) {
    if (_ppParent == nullptr) return E_POINTER;
    *_ppParent = ParentGet().Detach();
    return *_ppParent != nullptr ? S_OK : S_FALSE;
}

HRESULT IZNodeImpl::NodeDetach() { return Detach() ? S_OK : S_FALSE; }

HRESULT IZNodeImpl::NodeChildGetCount(int32_t *_pnCount) {
    if (_pnCount == nullptr) return E_POINTER;
    *_pnCount = IsHidden() ? 0 : static_cast<int32_t>(ChildCount(Children::Shown));
    return S_OK;
}

HRESULT IZNodeImpl::NodeChildGetByIndex(int32_t _nIndex, BSTR *_pbsName, IZNode **_ppChild) {
    if (_pbsName == nullptr || _ppChild == nullptr) return E_POINTER;
    *_pbsName = nullptr;
    *_ppChild = nullptr;
    if (_nIndex < 0 || IsHidden()) return kErrorInvalidIndex;
    return Guarded([&] {
        XMLNodePtr child = ChildAt(Children::Shown, static_cast<size_t>(_nIndex));
        if (!child) return kErrorInvalidIndex;
        const HRESULT hr = BstrCopyTo(child->NameGet(), _pbsName);
        return FAILED(hr) ? hr : HandOut(std::move(child), _ppChild);
    });
}

HRESULT IZNodeImpl::NodeChildAdd(BSTR _bsName, int32_t _nPosition, IZNode **_ppChild) {
    if (_ppChild == nullptr) return E_POINTER;
    *_ppChild = nullptr;
    if (IsEmpty(_bsName)) return E_INVALIDARG;
    return Guarded([&] { return HandOut(ChildAdd(ViewOf(_bsName), _nPosition), _ppChild); });
}

HRESULT IZNodeImpl::NodeChildGet(BSTR _bsPath, int32_t _bCreate, IZNode **_ppChild) {
    if (_ppChild == nullptr) return E_POINTER;
    *_ppChild = nullptr;
    if (IsEmpty(_bsPath)) return E_INVALIDARG;
    return Guarded([&] {
        XMLNodePtr child = _bCreate != 0 ? NodeFindOrCreate(ViewOf(_bsPath)) : NodeFind(ViewOf(_bsPath));
        if (!child) return _bCreate != 0 ? E_INVALIDARG : kErrorNotFound;
        return HandOut(std::move(child), _ppChild);
    });
}

HRESULT IZNodeImpl::NodeChildRemove(BSTR _bsPath) {
    if (IsEmpty(_bsPath)) return E_INVALIDARG;
    return NodeRemove(ViewOf(_bsPath)) ? S_OK : S_FALSE;
}

HRESULT IZNodeImpl::NodeChildRemoveAll(int32_t _bWithAttributes) {
    ChildrenClear();
    if (_bWithAttributes != 0) AttributesClear();
    return S_OK;
}

HRESULT IZNodeImpl::NodeLoadXML(BSTR _bsXML, int32_t _bTakeName) {
    return Guarded([&] {
        const Text former = NameGet();
        const HRESULT hr = ParseXML(static_cast<CoXMLNode &>(*this), ViewOf(_bsXML));
        if (SUCCEEDED(hr) && _bTakeName == 0) NameSet(former);
        return hr;
    });
}

HRESULT IZNodeImpl::NodeSaveXML(BSTR *_pbsXML) { return WriteXML(static_cast<CoXMLNode &>(*this), _pbsXML); }

HRESULT IZNodeImpl::NodeClone(IZNode **_ppClone) {
    if (_ppClone == nullptr) return E_POINTER;
    *_ppClone = nullptr;
    return Guarded([&] { return HandOut(CopyTree(ZCK_TEXT("clone")), _ppClone); });
}

HRESULT IZNodeImpl::NodeReserved(void *, int32_t) { return E_NOTIMPL; }

HRESULT IZNodeImpl::NodeAttributeInfoGet(BSTR _bsName, BSTR *_pbsInfo) {
    if (_pbsInfo == nullptr) return E_POINTER;
    *_pbsInfo = nullptr;
    return Guarded([&] {
        const XMLNodePtr parent = ParentGet();
        const XMLNodePtr info = parent ? parent->InfoFind(NameGet()) : XMLNodePtr();
        Text text;
        if (!info) return kErrorNotFound;
        if (IsEmpty(_bsName)) {
            text = info->TextGet();
        } else if (!info->AttributeText(ViewOf(_bsName), text)) {
            return kErrorNotFound;
        }
        return BstrCopyTo(text, _pbsInfo);
    });
}

}    // namespace zck::XMLParse
