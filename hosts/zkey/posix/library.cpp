#include "hosts/zkey/system.h"
#include "zchromakey/module.h"

namespace zkey {

HRESULT LibraryClassObject(REFCLSID rclsid, REFIID riid, void **ppv) { return DllGetClassObject(rclsid, riid, ppv); }

}    // namespace zkey
