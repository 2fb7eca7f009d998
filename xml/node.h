// `CoXMLNode`: the node of every settings tree and every document.
//
// A node has a name, attributes in the order of their first setting, and children in order. Text is held in children of its
// own kind. A node lives as long as it is referenced; a parent references its children and never the other way round.
// All of it may be used from any thread; no operation holds locks of more than one node but to put a child in or out.
//
// Operations that take memory throw `std::bad_alloc`; the interface methods answer `E_OUTOFMEMORY` instead.
#pragma once

#include <atomic>
#include <vector>

#include "props/values/typed_value.h"
#include "xml/node_views.h"
#include "xml/objects_map.h"

namespace zck::XMLParse {

class CoXMLNode;
using XMLNodePtr = ComPtr<CoXMLNode>;

constexpr HRESULT kErrorNotFound = static_cast<HRESULT>(0x80070490);

/// The name of the children that describe attributes.
inline constexpr TextView kAttributesInfo = ZCK_TEXT("attributes_info");

/// Which children are meant.
enum class Children {
    All,         ///< text children too
    Elements,    ///< all but text
    Shown,       ///< neither text nor named in the hide list
};

enum class Existing { Keep, Overwrite };

/// The node's data and what the library does with it.
class XMLNodeImpl : public ObjectsMap {
public:
    // Name and text.

    /// For a text child the text itself.
    Text NameGet() const;
    /// The parent finds the node by its new name from then on.
    void NameSet(TextView name);
    uint64_t KeyGet() const;
    bool IsTextNode() const noexcept { return m_isTextNode; }
    /// The node's own name stands in its hide list.
    bool IsHidden() const;
    /// Of the first text child; empty without one.
    Text TextGet() const;
    /// Overwrites the first text child, or puts a new one in front of all children; an empty text too.
    void TextSet(TextView text);
    /// Extends the last child when it is text, else adds a text child at the end.
    void TextAppend(TextView text);

    // The tree.

    /// Empty for a root.
    XMLNodePtr ParentGet() const;
    /// Leaves the parent. False without one.
    bool Detach();
    size_t ChildCount(Children which) const;
    XMLNodePtr ChildAt(Children which, size_t index) const;
    std::vector<XMLNodePtr> ChildrenGet(Children which = Children::All) const;
    /// The nth child of that name. No path.
    XMLNodePtr ChildFind(TextView name, int32_t nth = 0) const;
    /// A new child at a position among all children; out of range appends.
    XMLNodePtr ChildAdd(TextView name, int32_t position = -1);
    void ChildrenClear();
    /// By path. Empty elements, and so an empty path, find nothing.
    XMLNodePtr NodeFind(TextView path);
    /// By path; what is missing is appended, the last element at the given position. Empty, and nothing is made, when an
    /// element of the path is empty.
    XMLNodePtr NodeFindOrCreate(TextView path, int32_t position = -1);
    bool NodeRemove(TextView path);
    /// The names from below the root, or below `stop`, down to this node.
    Text PathGet(const CoXMLNode *stop = nullptr) const;

    // Attributes by path. The last element is the attribute's name, "(" and all.

    bool AttributeExists(TextView path);
    /// False, and `out` unchanged, when there is none.
    bool AttributeText(TextView path, Text &out);
    /// The value keeps the asked type, so that the next reading costs no parse; then it takes no memory either.
    bool AttributeRead(TextView path, ValueType type, ValueData &out);
    bool BoolGet(TextView path, bool otherwise = false);
    int32_t IntGet(TextView path, int32_t otherwise = 0);
    uint32_t Hex32Get(TextView path, uint32_t otherwise = 0);
    double FloatGet(TextView path, double otherwise = 0);
    /// Makes the nodes of the path. False, and nothing is made, when an element of the path is empty.
    bool AttributeSet(TextView path, TypedValue value, Existing existing = Existing::Overwrite);
    bool AttributeSet(TextView path, TextView text) { return AttributeSet(path, TypedValue(text)); }
    bool BoolSet(TextView path, bool value);
    bool IntSet(TextView path, int32_t value);
    bool Hex32Set(TextView path, uint32_t value);
    bool FloatSet(TextView path, double value);
    bool AttributeRemove(TextView path);

    // The node's own attributes; names are no paths.

    size_t AttributeCount() const;
    /// By the key of its name, as `AttributeRead`.
    bool AttributeReadOwn(uint64_t key, ValueType type, ValueData &out);
    /// Shows the text to `visit`, which must not come back to the node: its lock is held. False when there is none.
    template <class Visit>
    bool AttributeVisitOwn(uint64_t key, Visit visit) const {
        std::shared_lock lock(m_attributesLock);
        const size_t at = m_attributes.Find(key);
        if (at == Attributes::kNone) return false;
        m_attributes[at].value.VisitText(visit);
        return true;
    }
    /// False past the end.
    bool AttributeAt(size_t index, Text &name, Text &value) const;
    void AttributesClear();
    /// An existing attribute keeps its place and the spelling of its name. False when it was kept as it was.
    bool AttributeSetOwn(TextView name, TypedValue value, Existing existing = Existing::Overwrite);

    // What is known about attributes: children of an "attributes_info" child, named after attributes.

    /// The description of an attribute: from this node, its parent, or the class of this node further up.
    XMLNodePtr InfoFind(TextView attribute);
    /// The place of that search that describes anything at all; empty when there is none. Its element children are the
    /// described attributes.
    XMLNodePtr InfoPlace();
    /// One piece of a description. Empty when it is not told.
    static Text InfoText(CoXMLNode &info, eZInfoType type);

    // The whole.

    /// A deep copy without parent. Values are copied as text.
    XMLNodePtr CopyTree(TextView name) const;
    /// Own attributes and all children are replaced by those of a fresh node that nobody else sees.
    void ContentTake(CoXMLNode &from);
    /// The writer sets such a child in its parent's line and lays nothing out inside of it.
    bool CompactOutput() const noexcept { return m_compactOutput; }
    void CompactOutputSet(bool compact) noexcept { m_compactOutput = compact; }
    /// Whether the hide list hides.
    bool HideListActive() const noexcept { return m_hideListActive; }
    void HideListActiveSet(bool active) noexcept { m_hideListActive = active; }
    /// Whether a name stands in the hide list.
    bool Hides(uint64_t key) const noexcept;

protected:
    XMLNodeImpl(TextView name, bool isTextNode) : m_nameValue(name), m_isTextNode(isTextNode) {}
    ~XMLNodeImpl() = default;
    /// The last reference is gone: children that live on have no parent from now on.
    void ChildrenRelease() noexcept;

private:
    struct Attribute {
        Text name;
        TypedValue value;
    };
    using Attributes = KeyedList<Attribute>;
    using ChildList = KeyedList<XMLNodePtr>;

    CoXMLNode &Self() noexcept;
    bool Shows(const CoXMLNode &child, Children which) const;
    void ParentSet(CoXMLNode *parent) noexcept;
    bool Rename(CoXMLNode &child, TextView name);
    bool ChildTakeOut(const CoXMLNode &child);
    XMLNodePtr ChildFindOrCreate(const TextView element, int32_t position);
    XMLNodePtr AttributeOwner(TextView path, TextView &name);
    void AttributesCopyTo(CoXMLNode &to) const;
    XMLNodePtr InfoNode();
    XMLNodePtr AncestorInfo();

    std::atomic<bool> m_compactOutput{false};
    std::atomic<bool> m_hideListActive{true};
    const TextView *m_hideList = kHideList;    // ends with an empty name
    Text m_nameValue;
    Attributes m_attributes;
    ChildList m_children;
    mutable FrameRWLock m_attributesLock;    // guards attributes, name and parent
    const bool m_isTextNode;
    CoXMLNode *m_parent = nullptr;         // not counted; taken away before the parent dies
    mutable FrameRWLock m_childrenLock;    // guards the children; the parent's is taken before a child's other lock

    static constexpr TextView kHideList[] = {kAttributesInfo, {}};
};

/// The operations of `IZAttributes`.
class IZAttributesImpl : public IZNode, public XMLNodeImpl {
public:
    HRESULT Z_STDCALL AttributesGetCount(int32_t *_pnCount) override;
    HRESULT Z_STDCALL AttributesGetByIndex(int32_t _nIndex, BSTR *_pbsName, BSTR *_pbsValue) override;
    HRESULT Z_STDCALL AttributesRemove(BSTR _bsName) override;
    HRESULT Z_STDCALL AttributesRemoveAll() override;
    HRESULT Z_STDCALL AttributesSetString(BSTR _bsName, BSTR _bsValue) override;
    HRESULT Z_STDCALL AttributesSetBool(BSTR _bsName, int32_t _bValue) override;
    HRESULT Z_STDCALL AttributesSetInt(BSTR _bsName, int32_t _nValue) override;
    HRESULT Z_STDCALL AttributesSetDouble(BSTR _bsName, double _dblValue) override;
    HRESULT Z_STDCALL AttributesGet(BSTR _bsName, int32_t *_pbFound, BSTR *_pbsValue) override;
    HRESULT Z_STDCALL AttributesGetString(BSTR _bsName, BSTR *_pbsValue) override;
    HRESULT Z_STDCALL AttributesGetInt(BSTR _bsName, int32_t *_pnValue) override;
    HRESULT Z_STDCALL AttributesGetBool(BSTR _bsName, int32_t *_pbValue) override;
    HRESULT Z_STDCALL AttributesGetDouble(BSTR _bsName, double *_pdblValue) override;
    HRESULT Z_STDCALL AttributesSetList(BSTR _bsList, int32_t _nMode) override;
    HRESULT Z_STDCALL AttributesGetList(BSTR *_pbsList) override;
    HRESULT Z_STDCALL AttributesClone(IZAttributes **_ppClone) override;
    HRESULT Z_STDCALL AttributesCopyFrom(IZAttributes *_pSource, int32_t _nMode) override;
    HRESULT Z_STDCALL AttributesInfoGetCount(int32_t *_pnCount) override;
    HRESULT Z_STDCALL AttributesInfoGetName(int32_t _nIndex, BSTR *_pbsName) override;
    HRESULT Z_STDCALL AttributesInfoGet(BSTR _bsName, eZInfoType _eType, BSTR *_pbsInfo) override;
    HRESULT Z_STDCALL AttributesOptionInfoGet(BSTR _bsName, BSTR _bsOption, BSTR _bsAttribute, BSTR *_pbsInfo) override;

protected:
    using XMLNodeImpl::XMLNodeImpl;
    ~IZAttributesImpl() = default;
};

/// The operations of `IZNode`.
class IZNodeImpl : public IZAttributesImpl {
public:
    HRESULT Z_STDCALL NodeNameGet(BSTR *_pbsName) override;
    HRESULT Z_STDCALL NodeNameSet(BSTR _bsName) override;
    HRESULT Z_STDCALL NodeValueGet(BSTR *_pbsValue) override;
    HRESULT Z_STDCALL NodeValueSet(BSTR _bsValue) override;
    HRESULT Z_STDCALL NodePathGet(BSTR *_pbsPath, IZNode *_pStop) override;
    HRESULT Z_STDCALL NodeParentGet(IZNode **_ppParent) override;
    HRESULT Z_STDCALL NodeDetach() override;
    HRESULT Z_STDCALL NodeChildGetCount(int32_t *_pnCount) override;
    HRESULT Z_STDCALL NodeChildGetByIndex(int32_t _nIndex, BSTR *_pbsName, IZNode **_ppChild) override;
    HRESULT Z_STDCALL NodeChildAdd(BSTR _bsName, int32_t _nPosition, IZNode **_ppChild) override;
    HRESULT Z_STDCALL NodeChildGet(BSTR _bsPath, int32_t _bCreate, IZNode **_ppChild) override;
    HRESULT Z_STDCALL NodeChildRemove(BSTR _bsPath) override;
    HRESULT Z_STDCALL NodeChildRemoveAll(int32_t _bWithAttributes) override;
    HRESULT Z_STDCALL NodeLoadXML(BSTR _bsXML, int32_t _bTakeName) override;
    HRESULT Z_STDCALL NodeSaveXML(BSTR *_pbsXML) override;
    HRESULT Z_STDCALL NodeClone(IZNode **_ppClone) override;
    HRESULT Z_STDCALL NodeReserved(void *_pReserved, int32_t _nReserved) override;
    HRESULT Z_STDCALL NodeAttributeInfoGet(BSTR _bsName, BSTR *_pbsInfo) override;

protected:
    using IZAttributesImpl::IZAttributesImpl;
    ~IZNodeImpl() = default;
};

class CoXMLNode final : public IZNodeImpl {
public:
    /// A free node.
    static XMLNodePtr Create(TextView name) { return Make(name, false); }
    static XMLNodePtr CreateText(TextView text) { return Make(text, true); }
    /// The node behind an interface of this module; empty for any other object.
    static XMLNodePtr From(IUnknown *object) noexcept;

    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override;
    ULONG Z_STDCALL AddRef() override;
    ULONG Z_STDCALL Release() override;
    /// A reference on a node that may be dying just now. False when it is.
    bool TryAddRef() noexcept;

    CoXMLNode(const CoXMLNode &) = delete;
    CoXMLNode &operator=(const CoXMLNode &) = delete;

private:
    CoXMLNode(TextView name, bool isTextNode);
    ~CoXMLNode();
    static XMLNodePtr Make(TextView name, bool isTextNode);
    HRESULT MarshalerQuery(REFIID riid, void **ppv) noexcept;

    std::atomic<ULONG> m_refs{1};
    std::atomic<IUnknown *> m_marshaler{nullptr};    // made by the first query for it
    CoXMLNode *m_nextDying = nullptr;
};

}    // namespace zck::XMLParse
