// The attributes of a node.
#include "xml/node.h"
#include "xml/path.h"

namespace zck::XMLParse {

/// The node that holds, or would hold, the attribute of a path; empty when the path leads nowhere.
XMLNodePtr XMLNodeImpl::AttributeOwner(TextView path, TextView &name) {
    const SplitPath split = SplitLast(path);
    name = split.last;
    return split.hasParent ? NodeFind(split.parent) : XMLNodePtr(&Self());
}

bool XMLNodeImpl::AttributeExists(TextView path) {
    TextView name;
    const XMLNodePtr owner = AttributeOwner(path, name);
    if (!owner || name.empty()) return false;
    std::shared_lock lock(owner->m_attributesLock);
    return owner->m_attributes.Find(NameKey(name)) != Attributes::kNone;
}

bool XMLNodeImpl::AttributeText(TextView path, Text &out) {
    TextView name;
    const XMLNodePtr owner = AttributeOwner(path, name);
    if (!owner || name.empty()) return false;
    std::shared_lock lock(owner->m_attributesLock);
    const size_t at = owner->m_attributes.Find(NameKey(name));
    if (at == Attributes::kNone) return false;
    out = owner->m_attributes[at].value.TextForm();
    return true;
}

bool XMLNodeImpl::AttributeReadOwn(uint64_t key, ValueType type, ValueData &out) {
    {
        std::shared_lock lock(m_attributesLock);
        const size_t at = m_attributes.Find(key);
        if (at == Attributes::kNone) return false;
        const TypedValue &value = m_attributes[at].value;
        if (value.Type() == type) {
            out = value.Read(type);
            return true;
        }
    }
    // Kept in the asked type for the next reader; another thread may have been here in between.
    std::unique_lock lock(m_attributesLock);
    const size_t at = m_attributes.Find(key);
    if (at == Attributes::kNone) return false;
    out = m_attributes[at].value.Convert(type);
    return true;
}

bool XMLNodeImpl::AttributeRead(TextView path, ValueType type, ValueData &out) {
    if (FindSeparator(path) == TextView::npos) return !path.empty() && AttributeReadOwn(NameKey(path), type, out);
    TextView name;
    const XMLNodePtr owner = AttributeOwner(path, name);
    return owner && !name.empty() && owner->AttributeReadOwn(NameKey(name), type, out);
}

bool XMLNodeImpl::BoolGet(TextView path, bool otherwise) {
    ValueData data;
    return AttributeRead(path, ValueType::Boolean, data) ? data.boolean : otherwise;
}

int32_t XMLNodeImpl::IntGet(TextView path, int32_t otherwise) {
    ValueData data;
    return AttributeRead(path, ValueType::Integer, data) ? data.integer : otherwise;
}

uint32_t XMLNodeImpl::Hex32Get(TextView path, uint32_t otherwise) {
    ValueData data;
    return AttributeRead(path, ValueType::Hexadecimal, data) ? data.number32 : otherwise;
}

double XMLNodeImpl::FloatGet(TextView path, double otherwise) {
    ValueData data;
    return AttributeRead(path, ValueType::Float, data) ? data.real : otherwise;
}

bool XMLNodeImpl::AttributeSet(TextView path, TypedValue value, Existing existing) {
    const SplitPath split = SplitLast(path);
    if (split.last.empty()) return false;
    XMLNodePtr owner = split.hasParent ? NodeFindOrCreate(split.parent) : XMLNodePtr(&Self());
    if (!owner) return false;
    owner->AttributeSetOwn(split.last, std::move(value), existing);
    return true;
}

bool XMLNodeImpl::BoolSet(TextView path, bool value) {
    TypedValue typed;
    typed.SetBool(value);
    return AttributeSet(path, std::move(typed));
}

bool XMLNodeImpl::IntSet(TextView path, int32_t value) {
    TypedValue typed;
    typed.SetInt(value);
    return AttributeSet(path, std::move(typed));
}

bool XMLNodeImpl::Hex32Set(TextView path, uint32_t value) {
    TypedValue typed;
    typed.SetHex32(value);
    return AttributeSet(path, std::move(typed));
}

bool XMLNodeImpl::FloatSet(TextView path, double value) {
    TypedValue typed;
    typed.SetFloat(value);
    return AttributeSet(path, std::move(typed));
}

bool XMLNodeImpl::AttributeRemove(TextView path) {
    TextView name;
    const XMLNodePtr owner = AttributeOwner(path, name);
    if (!owner || name.empty()) return false;
    std::unique_lock lock(owner->m_attributesLock);
    const size_t at = owner->m_attributes.Find(NameKey(name));
    if (at == Attributes::kNone) return false;
    owner->m_attributes.Remove(at);
    return true;
}

size_t XMLNodeImpl::AttributeCount() const {
    std::shared_lock lock(m_attributesLock);
    return m_attributes.Size();
}

bool XMLNodeImpl::AttributeAt(size_t index, Text &name, Text &value) const {
    std::shared_lock lock(m_attributesLock);
    if (index >= m_attributes.Size()) return false;
    name = m_attributes[index].name;
    value = m_attributes[index].value.TextForm();
    return true;
}

void XMLNodeImpl::AttributesClear() {
    std::unique_lock lock(m_attributesLock);
    m_attributes.Clear();
}

bool XMLNodeImpl::AttributeSetOwn(TextView name, TypedValue value, Existing existing) {
    const uint64_t key = NameKey(name);
    std::unique_lock lock(m_attributesLock);
    const size_t at = m_attributes.Find(key);
    if (at == Attributes::kNone) {
        m_attributes.Append(key, {Text(name), std::move(value)});
        return true;
    }
    if (existing == Existing::Keep) return false;
    m_attributes[at].value = std::move(value);
    return true;
}

void XMLNodeImpl::AttributesCopyTo(CoXMLNode &to) const {
    std::shared_lock lock(m_attributesLock);
    for (size_t i = 0; i < m_attributes.Size(); ++i) {
        to.AttributeSetOwn(m_attributes[i].name, TypedValue(m_attributes[i].value.TextForm()));
    }
}

}    // namespace zck::XMLParse
