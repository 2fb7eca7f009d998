// The slots of the keyer's persistence.
#include "keying/plugin/chroma_key.h"

namespace zck {

HRESULT CCoZChromaKey::PersistSaveToFile(BSTR, BSTR, BSTR) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PersistSaveToString(BSTR, BSTR *, BSTR) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PersistLoad(BSTR, BSTR, BSTR) { return E_NOTIMPL; }

}    // namespace zck
