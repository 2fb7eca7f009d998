// Names, text, parent and children of a node.
#include <limits>

#include "xml/node.h"
#include "xml/path.h"

namespace zck::XMLParse {

CoXMLNode &XMLNodeImpl::Self() noexcept { return static_cast<CoXMLNode &>(*this); }

Text XMLNodeImpl::NameGet() const {
    std::shared_lock lock(m_attributesLock);
    return m_nameValue;
}

uint64_t XMLNodeImpl::KeyGet() const {
    std::shared_lock lock(m_attributesLock);
    return NameKey(m_nameValue);
}

void XMLNodeImpl::NameSet(TextView name) {
    // The parent may change between looking and locking, hence again.
    while (XMLNodePtr parent = m_isTextNode ? XMLNodePtr() : ParentGet()) {
        if (parent->Rename(Self(), name)) return;
    }
    Text text(name);
    std::unique_lock lock(m_attributesLock);
    m_nameValue.swap(text);
}

bool XMLNodeImpl::Rename(CoXMLNode &child, TextView name) {
    Text text(name);
    std::unique_lock lock(m_childrenLock);
    for (size_t i = 0; i < m_children.Size(); ++i) {
        if (m_children[i].get() != &child) continue;
        m_children.Rekey(i, NameKey(name));
        std::unique_lock nameLock(child.m_attributesLock);
        child.m_nameValue.swap(text);
        return true;
    }
    return false;
}

bool XMLNodeImpl::Hides(uint64_t key) const noexcept {
    if (!m_hideListActive) return false;
    for (const TextView *name = m_hideList; !name->empty(); ++name) {
        if (NameKey(*name) == key) return true;
    }
    return false;
}

bool XMLNodeImpl::IsHidden() const { return !m_isTextNode && Hides(KeyGet()); }

bool XMLNodeImpl::Shows(const CoXMLNode &child, Children which) const {
    if (which == Children::All) return true;
    if (child.IsTextNode()) return false;
    return which == Children::Elements || !Hides(child.KeyGet());
}

Text XMLNodeImpl::TextGet() const {
    for (const XMLNodePtr &child : ChildrenGet()) {
        if (child->IsTextNode()) return child->NameGet();
    }
    return Text();
}

void XMLNodeImpl::TextSet(TextView text) {
    XMLNodePtr fresh = CoXMLNode::CreateText(text);
    std::unique_lock lock(m_childrenLock);
    for (size_t i = 0; i < m_children.Size(); ++i) {
        if (!m_children[i]->IsTextNode()) continue;
        m_children[i]->NameSet(text);
        return;
    }
    fresh->ParentSet(&Self());
    m_children.InsertUnkeyed(0, std::move(fresh));
}

void XMLNodeImpl::TextAppend(TextView text) {
    std::unique_lock lock(m_childrenLock);
    if (!m_children.Empty() && m_children[m_children.Size() - 1]->IsTextNode()) {
        CoXMLNode &last = *m_children[m_children.Size() - 1];
        std::unique_lock textLock(last.m_attributesLock);
        last.m_nameValue.append(text);
        return;
    }
    XMLNodePtr fresh = CoXMLNode::CreateText(text);
    fresh->ParentSet(&Self());
    m_children.AppendUnkeyed(std::move(fresh));
}

void XMLNodeImpl::ParentSet(CoXMLNode *parent) noexcept {
    std::unique_lock lock(m_attributesLock);
    m_parent = parent;
}

XMLNodePtr XMLNodeImpl::ParentGet() const {
    XMLNodePtr parent;
    // A parent that dies comes here for this lock before its memory goes.
    std::shared_lock lock(m_attributesLock);
    if (m_parent != nullptr && m_parent->TryAddRef()) parent.Attach(m_parent);
    return parent;
}

bool XMLNodeImpl::ChildTakeOut(const CoXMLNode &child) {
    XMLNodePtr taken;    // may be the last reference, so it outlives the lock
    std::unique_lock lock(m_childrenLock);
    for (size_t i = 0; i < m_children.Size(); ++i) {
        if (m_children[i].get() != &child) continue;
        taken = m_children.Remove(i);
        taken->ParentSet(nullptr);
        lock.unlock();
        return true;
    }
    return false;
}

bool XMLNodeImpl::Detach() {
    while (XMLNodePtr parent = ParentGet()) {
        if (parent->ChildTakeOut(Self())) return true;
    }
    return false;
}

size_t XMLNodeImpl::ChildCount(Children which) const {
    std::shared_lock lock(m_childrenLock);
    if (which == Children::All) return m_children.Size();
    size_t count = 0;
    for (size_t i = 0; i < m_children.Size(); ++i) count += Shows(*m_children[i], which) ? 1 : 0;
    return count;
}

XMLNodePtr XMLNodeImpl::ChildAt(Children which, size_t index) const {
    std::shared_lock lock(m_childrenLock);
    for (size_t i = which == Children::All ? index : 0; i < m_children.Size(); ++i) {
        if (which == Children::All || (Shows(*m_children[i], which) && index-- == 0)) return m_children[i];
    }
    return {};
}

std::vector<XMLNodePtr> XMLNodeImpl::ChildrenGet(Children which) const {
    std::vector<XMLNodePtr> children;
    std::shared_lock lock(m_childrenLock);
    children.reserve(m_children.Size());
    for (size_t i = 0; i < m_children.Size(); ++i) {
        if (Shows(*m_children[i], which)) children.push_back(m_children[i]);
    }
    return children;
}

XMLNodePtr XMLNodeImpl::ChildFind(TextView name, int32_t nth) const {
    if (name.empty() || nth < 0) return {};
    const uint64_t key = NameKey(name);
    std::shared_lock lock(m_childrenLock);
    const size_t at = m_children.Find(key, static_cast<size_t>(nth));
    return at != ChildList::kNone ? m_children[at] : XMLNodePtr();
}

XMLNodePtr XMLNodeImpl::ChildAdd(TextView name, int32_t position) {
    XMLNodePtr child = CoXMLNode::Create(name);
    const size_t at = position < 0 ? std::numeric_limits<size_t>::max() : static_cast<size_t>(position);
    std::unique_lock lock(m_childrenLock);
    m_children.Insert(at, NameKey(name), child);
    child->ParentSet(&Self());
    return child;
}

void XMLNodeImpl::ChildrenClear() {
    ChildList gone;    // released behind the lock
    std::unique_lock lock(m_childrenLock);
    m_children.Swap(gone);
    for (size_t i = 0; i < gone.Size(); ++i) gone[i]->ParentSet(nullptr);
    lock.unlock();
}

void XMLNodeImpl::ChildrenRelease() noexcept {
    for (size_t i = 0; i < m_children.Size(); ++i) m_children[i]->ParentSet(nullptr);
    m_children.Clear();
}

XMLNodePtr XMLNodeImpl::NodeFind(TextView path) {
    XMLNodePtr node(&Self());
    TextView element;
    for (bool more = true; node && NextElement(path, element, more);) {
        const ChildElement child = ChildOf(element);
        node = node->ChildFind(child.name, child.index);
    }
    return node;
}

XMLNodePtr XMLNodeImpl::ChildFindOrCreate(TextView element, int32_t position) {
    const ChildElement child = ChildOf(element);
    if (XMLNodePtr found = ChildFind(child.name, child.index)) return found;
    // One thread makes it, whoever else wanted it finds it then.
    std::unique_lock lock(m_objectLock);
    if (XMLNodePtr found = ChildFind(child.name, child.index)) return found;
    return ChildAdd(child.name, position);
}

XMLNodePtr XMLNodeImpl::NodeFindOrCreate(TextView path, int32_t position) {
    TextView element;
    TextView rest = path;
    for (bool more = true; NextElement(rest, element, more);) {
        if (ChildOf(element).name.empty()) return {};
    }
    XMLNodePtr node(&Self());
    for (bool more = true; NextElement(path, element, more);) {
        node = node->ChildFindOrCreate(element, more ? -1 : position);
    }
    return node;
}

bool XMLNodeImpl::NodeRemove(TextView path) {
    const XMLNodePtr node = NodeFind(path);
    return node && node->Detach();
}

Text XMLNodeImpl::PathGet(const CoXMLNode *stop) const {
    std::vector<Text> names;
    const XMLNodeImpl *at = this;
    XMLNodePtr keeper;
    while (at != stop) {
        XMLNodePtr parent = at->ParentGet();
        if (!parent) break;
        names.push_back(at->NameGet());
        keeper = std::move(parent);
        at = keeper.get();
    }
    Text path;
    for (size_t i = names.size(); i-- > 0;) {
        path.append(names[i]);
        if (i != 0) path.append(ZCK_TEXT("::"));
    }
    return path;
}

void XMLNodeImpl::ContentTake(CoXMLNode &from) {
    {
        std::unique_lock lock(m_attributesLock);
        m_attributes.Swap(from.m_attributes);
    }
    ChildList gone;
    gone.Swap(from.m_children);
    std::unique_lock lock(m_childrenLock);
    m_children.Swap(gone);
    for (size_t i = 0; i < gone.Size(); ++i) gone[i]->ParentSet(nullptr);
    for (size_t i = 0; i < m_children.Size(); ++i) m_children[i]->ParentSet(&Self());
    lock.unlock();
}

XMLNodePtr XMLNodeImpl::CopyTree(TextView name) const {
    struct Pair {
        const XMLNodeImpl *from;
        XMLNodePtr keeper;
        XMLNodePtr to;
    };
    XMLNodePtr copy = CoXMLNode::Create(name);
    std::vector<Pair> open;
    open.push_back({this, {}, copy});
    while (!open.empty()) {
        const Pair pair = std::move(open.back());
        open.pop_back();
        pair.from->AttributesCopyTo(*pair.to);
        pair.to->m_compactOutput = pair.from->CompactOutput();
        pair.to->m_hideListActive = pair.from->HideListActive();
        for (const XMLNodePtr &child : pair.from->ChildrenGet()) {
            if (child->IsTextNode()) {
                XMLNodePtr text = CoXMLNode::CreateText(child->NameGet());
                text->ParentSet(pair.to.get());
                pair.to->m_children.AppendUnkeyed(std::move(text));
            } else {
                XMLNodePtr to = pair.to->ChildAdd(child->NameGet());
                open.push_back({child.get(), child, std::move(to)});
            }
        }
    }
    return copy;
}

}    // namespace zck::XMLParse
