// A controlling unknown for tests of aggregation.
#pragma once

#include "zchromakey/com.h"

namespace zck::test {

/// Counts itself, and hands all questions but its identity to the object inside, which it does not own.
struct Outer : IUnknown {
    IUnknown *inner = nullptr;
    ULONG count = 1;
    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override {
        if (riid != IID_IUnknown) return inner->QueryInterface(riid, ppv);
        AddRef();
        *ppv = this;
        return S_OK;
    }
    ULONG Z_STDCALL AddRef() override { return ++count; }
    ULONG Z_STDCALL Release() override { return --count; }
};

}    // namespace zck::test
