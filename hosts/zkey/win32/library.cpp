#include "hosts/zkey/system.h"

namespace zkey {

// Class objects are not for import libraries: they are asked for by name, of the library that the program came with. So
// zkey needs no registration.
HRESULT LibraryClassObject(REFCLSID rclsid, REFIID riid, void **ppv) {
    using GetClassObject = HRESULT(STDAPICALLTYPE *)(REFCLSID, REFIID, void **);
    const HMODULE library = GetModuleHandleW(L"ZChromaKey.dll");
    const FARPROC entry = library != nullptr ? GetProcAddress(library, "DllGetClassObject") : nullptr;
    if (entry == nullptr) return REGDB_E_CLASSNOTREG;
    // By way of void: the compiler warns of casts between unlike functions.
    return reinterpret_cast<GetClassObject>(reinterpret_cast<void *>(entry))(rclsid, riid, ppv);
}

}    // namespace zkey
