// The options of one operation of the key object: a text of name=value pairs over the properties of its store.
#pragma once

#include <optional>

#include "keyobject/key_step.h"
#include "props/store/store.h"
#include "xml/node.h"

namespace zck {

/// A value is read once per call: the pair of the text, else the property, else the fallback. A property may be an attribute
/// of the store or a node with text.
class KeyOptions {
public:
    explicit KeyOptions(const CPropsStore &store) : m_store(store) {}

    /// Before any read. A failure for a text of too many pairs.
    HRESULT Parse(BSTR text);

    /// An empty `property` means that the store has no say.
    int32_t Int(TextView name, TextView property, int32_t fallback) const;
    double Float(TextView name, TextView property, double fallback) const;
    bool Bool(TextView name, bool fallback) const;
    /// "RGB", "HLS" or "YUV" in any case; other words count as missing.
    std::optional<KeySpace> Space(TextView name, TextView property) const;

private:
    bool Read(TextView name, TextView property, ValueType type, ValueData &out) const;

    const CPropsStore &m_store;
    XMLParse::XMLNodePtr m_pairs;
};

}    // namespace zck
