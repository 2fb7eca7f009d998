#include "keyobject/key_value.h"

#include "zchromakey/module.h"

namespace zck {

const CLSID &CCoZKeyValue::PersistClassId() { return CLSID_ZKey; }

HRESULT CCoZKeyValue::PersistTransfer(Transfer, TextView, const XMLParse::XMLNodePtr &, TextView,
                                      const XMLParse::XMLNodePtr &) {
    return S_OK;
}

}    // namespace zck
