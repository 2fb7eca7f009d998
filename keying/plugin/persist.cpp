// The key of the keyer as a saved configuration.
#include <mutex>

#include "keying/plugin/chroma_key.h"
#include "props/persist/key_tree.h"
#include "zchromakey/module.h"

namespace zck {

const CLSID &CCoZChromaKey::PersistClassId() { return CLSID_ZChromaKey; }

HRESULT CCoZChromaKey::PersistTransfer(Transfer direction, TextView, const XMLParse::XMLNodePtr &root, TextView,
                                       const XMLParse::XMLNodePtr &) {
    if (direction == Transfer::Save) {
        const std::lock_guard guard(m_keyLock);
        KeyToTree(m_key, m_adjust, *root);
        return S_OK;
    }
    CHROMA_KEY_RAW key = KeyFromTree(*root);
    // Entered a second time by `KeyRawSet`: nobody sees the key without its adjustment.
    const std::lock_guard guard(m_keyLock);
    KeyRawSet(&key);
    AdjustFromTree(*root, m_adjust);
    return S_OK;
}

}    // namespace zck
