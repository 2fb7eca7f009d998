// The classes of this module, for code that makes an object by its class identifier and must not know the class.
#pragma once

#include <cstddef>

#include "zchromakey/com.h"

namespace zck {

/// A class that the module can create.
struct ClassEntry {
    const CLSID *clsid;
    HRESULT (*factory)(REFIID riid, void **ppv);
};

/// Tells the classes, which have to stay. The module does so when it is loaded, before any other thread can call it.
class ClassTable {
public:
    template <size_t N>
    explicit ClassTable(const ClassEntry (&entries)[N]) noexcept : ClassTable(entries, N) {}
    ~ClassTable();
    ClassTable(const ClassTable &) = delete;
    ClassTable &operator=(const ClassTable &) = delete;

private:
    ClassTable(const ClassEntry *entries, size_t count) noexcept;
};

/// The class object of a told class. `CLASS_E_CLASSNOTAVAILABLE` for any other; `E_POINTER`.
HRESULT ClassObjectGet(REFCLSID clsid, REFIID riid, void **ppv) noexcept;

/// A new object of a told class, without an outer one.
HRESULT ClassInstanceCreate(REFCLSID clsid, REFIID riid, void **ppv) noexcept;

}    // namespace zck
