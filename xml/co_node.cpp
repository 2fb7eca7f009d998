// The node as a counted object.
#include "platform/object.h"
#include "xml/node.h"

namespace zck::XMLParse {
namespace {

/// Answered by the nodes of this module only.
constexpr IID kIidNode = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x62}};

/// Nodes of this thread that wait for their destruction. A node releases its children, they theirs, and so on: done one
/// after the other, a deep tree needs no deep stack.
struct Dying {
    CoXMLNode *first = nullptr;
    bool draining = false;
};
thread_local Dying t_dying;

}    // namespace

CoXMLNode::CoXMLNode(TextView name, bool isTextNode) : IZNodeImpl(name, isTextNode) { ModuleCount::Add(); }

CoXMLNode::~CoXMLNode() {
    if (IUnknown *marshaler = m_marshaler.load()) marshaler->Release();
    ModuleCount::Sub();
}

XMLNodePtr CoXMLNode::Make(TextView name, bool isTextNode) {
    XMLNodePtr node;
    node.Attach(new CoXMLNode(name, isTextNode));
    return node;
}

XMLNodePtr CoXMLNode::From(IUnknown *object) noexcept {
    XMLNodePtr node;
    if (object != nullptr && FAILED(object->QueryInterface(kIidNode, node.PutVoid()))) node.Detach();
    return node;
}

HRESULT CoXMLNode::QueryInterface(REFIID riid, void **ppv) {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    if (riid == IID_IUnknown || riid == IID_IZNode || riid == IID_IZAttributes) {
        *ppv = static_cast<IZNode *>(this);
    } else if (riid == kIidNode) {
        *ppv = this;
    } else {
        return MarshalerQuery(riid, ppv);
    }
    AddRef();
    return S_OK;
}

HRESULT CoXMLNode::MarshalerQuery(REFIID riid, void **ppv) noexcept {
    if (!IsMarshalerInterface(riid)) return E_NOINTERFACE;
    IUnknown *marshaler = m_marshaler.load();
    if (marshaler == nullptr) {
        ComPtr<IUnknown> made;
        const HRESULT hr = FreeThreadedMarshalerCreate(static_cast<IZNode *>(this), made.Put());
        if (FAILED(hr)) return hr;
        // Another thread may have been first; then its marshaler stays.
        if (m_marshaler.compare_exchange_strong(marshaler, made.get())) marshaler = made.Detach();
    }
    return marshaler->QueryInterface(riid, ppv);
}

ULONG CoXMLNode::AddRef() { return ++m_refs; }

bool CoXMLNode::TryAddRef() noexcept {
    ULONG refs = m_refs.load();
    while (refs != 0) {
        if (m_refs.compare_exchange_weak(refs, refs + 1)) return true;
    }
    return false;
}

ULONG CoXMLNode::Release() {
    const ULONG left = --m_refs;
    if (left != 0) return left;
    Dying &dying = t_dying;
    m_nextDying = dying.first;
    dying.first = this;
    if (dying.draining) return 0;
    dying.draining = true;
    while (CoXMLNode *node = dying.first) {
        dying.first = node->m_nextDying;
        node->ChildrenRelease();
        delete node;
    }
    dying.draining = false;
    return 0;
}

}    // namespace zck::XMLParse
