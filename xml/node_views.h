// `IZAttributes` and `IZNode`: a node of the document as other modules see it.
#pragma once

#include "zchromakey/props.h"

/// The attributes of a node. Names are paths: "::" stands between nodes, the last element is the attribute; `name(2)` is the
/// third child of that name. Names are compared without regard to case. Text and interfaces that are handed out belong to
/// the caller.
///
/// `E_POINTER` for a null output, `E_INVALIDARG` for an empty name, 0x80070490 for what is absent, 0x80070585 for an index
/// outside of the list. Any thread.
struct IZAttributes : IUnknown {
    /// The node's own attributes and those of its hidden children; `S_FALSE` for none.
    virtual HRESULT Z_STDCALL AttributesGetCount(int32_t *_pnCount) = 0;
    /// Own attributes first, then those of hidden children as `child::attribute`.
    virtual HRESULT Z_STDCALL AttributesGetByIndex(int32_t _nIndex, BSTR *_pbsName, BSTR *_pbsValue) = 0;
    virtual HRESULT Z_STDCALL AttributesRemove(BSTR _bsName) = 0;
    virtual HRESULT Z_STDCALL AttributesRemoveAll() = 0;
    /// The setters create the nodes of the path; `E_INVALIDARG` when that cannot be.
    virtual HRESULT Z_STDCALL AttributesSetString(BSTR _bsName, BSTR _bsValue) = 0;
    virtual HRESULT Z_STDCALL AttributesSetBool(BSTR _bsName, int32_t _bValue) = 0;
    virtual HRESULT Z_STDCALL AttributesSetInt(BSTR _bsName, int32_t _nValue) = 0;
    virtual HRESULT Z_STDCALL AttributesSetDouble(BSTR _bsName, double _dblValue) = 0;
    /// `*_pbFound` is 1, or 0 together with `S_FALSE`, and then the value is the described default, null without one.
    virtual HRESULT Z_STDCALL AttributesGet(BSTR _bsName, int32_t *_pbFound, BSTR *_pbsValue) = 0;
    virtual HRESULT Z_STDCALL AttributesGetString(BSTR _bsName, BSTR *_pbsValue) = 0;
    virtual HRESULT Z_STDCALL AttributesGetInt(BSTR _bsName, int32_t *_pnValue) = 0;
    virtual HRESULT Z_STDCALL AttributesGetBool(BSTR _bsName, int32_t *_pbValue) = 0;
    virtual HRESULT Z_STDCALL AttributesGetDouble(BSTR _bsName, double *_pdblValue) = 0;
    /// From name=value text. Mode 0 keeps existing attributes, 2 removes all first, others overwrite. `S_FALSE` when no pair
    /// was read.
    virtual HRESULT Z_STDCALL AttributesSetList(BSTR _bsList, int32_t _nMode) = 0;
    /// As name=value text; attributes of hidden children follow as `child::attribute`.
    virtual HRESULT Z_STDCALL AttributesGetList(BSTR *_pbsList) = 0;
    /// A free node "m_attributes" with a copy.
    virtual HRESULT Z_STDCALL AttributesClone(IZAttributes **_ppClone) = 0;
    /// Modes as in `AttributesSetList`.
    virtual HRESULT Z_STDCALL AttributesCopyFrom(IZAttributes *_pSource, int32_t _nMode) = 0;
    /// Attributes that are described, set or not; `S_FALSE` for none.
    virtual HRESULT Z_STDCALL AttributesInfoGetCount(int32_t *_pnCount) = 0;
    /// `E_INVALIDARG` for a negative index.
    virtual HRESULT Z_STDCALL AttributesInfoGetName(int32_t _nIndex, BSTR *_pbsName) = 0;
    /// `S_FALSE` and null when nothing is known.
    virtual HRESULT Z_STDCALL AttributesInfoGet(BSTR _bsName, eZInfoType _eType, BSTR *_pbsInfo) = 0;
    /// About one option of an attribute: an attribute of its description, or with null its text.
    virtual HRESULT Z_STDCALL AttributesOptionInfoGet(BSTR _bsName, BSTR _bsOption, BSTR _bsAttribute, BSTR *_pbsInfo) = 0;
};
Z_INTERFACE_ID(IZAttributes, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x60);

/// A node. Its children, to this interface, are those that are neither text nor hidden; a hidden node shows no children.
struct IZNode : IZAttributes {
    virtual HRESULT Z_STDCALL NodeNameGet(BSTR *_pbsName) = 0;
    virtual HRESULT Z_STDCALL NodeNameSet(BSTR _bsName) = 0;
    /// The node's text; for a hidden node the XML inside of it, empty without children.
    virtual HRESULT Z_STDCALL NodeValueGet(BSTR *_pbsValue) = 0;
    /// Sets the text; a hidden node takes the XML as its content.
    virtual HRESULT Z_STDCALL NodeValueSet(BSTR _bsValue) = 0;
    /// The names from below the root, or below the stop node, down to this node, joined with "::".
    virtual HRESULT Z_STDCALL NodePathGet(BSTR *_pbsPath, IZNode *_pStop) = 0;
    /// `S_FALSE` and null without a parent.
    virtual HRESULT Z_STDCALL NodeParentGet(IZNode **_ppParent) = 0;
    /// Leaves the parent; `S_FALSE` without one.
    virtual HRESULT Z_STDCALL NodeDetach() = 0;
    virtual HRESULT Z_STDCALL NodeChildGetCount(int32_t *_pnCount) = 0;
    virtual HRESULT Z_STDCALL NodeChildGetByIndex(int32_t _nIndex, BSTR *_pbsName, IZNode **_ppChild) = 0;
    /// A new child. The position counts all children, text and hidden ones too; -1 and positions out of range append.
    virtual HRESULT Z_STDCALL NodeChildAdd(BSTR _bsName, int32_t _nPosition, IZNode **_ppChild) = 0;
    /// The child at a path; with `_bCreate` what is missing is made.
    virtual HRESULT Z_STDCALL NodeChildGet(BSTR _bsPath, int32_t _bCreate, IZNode **_ppChild) = 0;
    /// `S_FALSE` when there was none.
    virtual HRESULT Z_STDCALL NodeChildRemove(BSTR _bsPath) = 0;
    /// All children, text and hidden ones too.
    virtual HRESULT Z_STDCALL NodeChildRemoveAll(int32_t _bWithAttributes) = 0;
    /// Replaces the content by parsed XML; after a failure the node is empty. The name stays unless `_bTakeName`.
    virtual HRESULT Z_STDCALL NodeLoadXML(BSTR _bsXML, int32_t _bTakeName) = 0;
    virtual HRESULT Z_STDCALL NodeSaveXML(BSTR *_pbsXML) = 0;
    /// A deep copy under the name "clone".
    virtual HRESULT Z_STDCALL NodeClone(IZNode **_ppClone) = 0;
    /// `E_NOTIMPL`.
    virtual HRESULT Z_STDCALL NodeReserved(void *_pReserved, int32_t _nReserved) = 0;
    /// About this node itself: an attribute of its description, or with an empty name its text.
    virtual HRESULT Z_STDCALL NodeAttributeInfoGet(BSTR _bsName, BSTR *_pbsInfo) = 0;
};
Z_INTERFACE_ID(IZNode, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x61);
