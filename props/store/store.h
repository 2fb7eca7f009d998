// `CPropsStore`: named text values in a tree of nodes, the body of every `IZProps`.
#pragma once

#include "platform/sync.h"
#include "platform/text.h"
#include "props/store/prop_name.h"
#include "xml/node.h"
#include "zchromakey/props.h"

namespace zck {

/// Operations as those of `IZProps`, with the same statuses, and typed reads for the owner. Any thread may call; reads share
/// the lock, writes hold it alone. Nothing here calls out.
///
/// A path is elements between "::". Those before the last name child nodes, "name(2)" the third of that name; the last one
/// names an attribute or a node. A read makes no node, a write makes all that its path lacks.
class CPropsStore {
public:
    CPropsStore();

    /// With an empty name the value is the whole tree's, taken by its `ValueKind`; null is refused there and an empty text
    /// elsewhere. A node of that path takes the value as text, otherwise an attribute does. `changed` is false when only the
    /// way of enumerating was set ("_info_enum_").
    HRESULT Set(TextView name, BSTR value, bool &changed);
    /// An attribute, or a node's text, or a node's attributes as a list where it has no text; the tree as XML for an empty
    /// name. `S_FALSE` and null when there is nothing of that name.
    HRESULT Get(TextView name, BSTR *value) const;
    HRESULT GetCount(TextView node, int32_t *count) const;
    HRESULT GetByIndex(TextView node, int32_t index, BSTR *name, BSTR *value, int32_t *isNode) const;
    HRESULT Remove(TextView name);
    HRESULT InfoGet(TextView name, eZInfoType type, BSTR *info) const;
    HRESULT OptionGetCount(TextView name, int32_t *count) const;
    HRESULT OptionGetByIndex(TextView name, int32_t index, BSTR *value, BSTR *help) const;
    HRESULT OptionGet(TextView name, int32_t *index, BSTR *value, BSTR *help) const;

    /// An attribute's value by its type; `fallback` only when there is none, so that an empty text is 0 or false. No memory
    /// is taken.
    bool GetBool(TextView name, bool fallback) const;
    int32_t GetInt(TextView name, int32_t fallback) const;
    double GetFloat(TextView name, double fallback) const;
    Text GetText(TextView name, TextView fallback) const;
    /// The same for names that are read again and again.
    bool GetBool(PropName name, bool fallback) const;
    int32_t GetInt(PropName name, int32_t fallback) const;
    /// Shows an attribute's text to `visit`, which must not come back to the store: it is locked. False when there is none.
    template <class Visit>
    bool VisitText(PropName name, Visit visit) const {
        const std::shared_lock guard(m_lock);
        return m_root && m_root->AttributeVisitOwn(name.Key(), visit);
    }

    /// Sets what the user has stored under a key of `platform/settings.h`; every setting is one `Set`, and one that is refused
    /// is passed over. Nothing is ever stored there. `S_FALSE` when nothing is stored.
    HRESULT LoadStored(TextView key);

    /// For one who reads or fills the tree directly; nodes have locks of their own. A store without a root answers `E_FAIL`.
    XMLParse::XMLNodePtr Root() const;
    void RootSet(XMLParse::XMLNodePtr root);

private:
    enum class InfoEnum : int32_t { Automatic = -1, Off = 0, On = 1 };

    Text HelpOf(TextView name, TextView option) const;
    bool Read(PropName name, ValueType type, ValueData &data) const;

    mutable FrameRWLock m_lock{1024, SharedRecursion::No};
    InfoEnum m_infoEnumMode = InfoEnum::Automatic;
    XMLParse::XMLNodePtr m_root;
};

}    // namespace zck
