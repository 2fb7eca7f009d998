// `AutoObjBase`: what makes a holder reference-counted.
#pragma once

#include <atomic>

#include "zchromakey/com.h"

namespace zck {

/// Base of `T` itself: `class Thing : public AutoObjBase<Thing>`. Table order: `QueryInterface`, `AddRef`, `Release`, the
/// destructor.
///
/// A new object has one reference, its maker's; the last `Release` destroys it. An object that is a member or a local takes
/// no part in the counting.
template <class T>
class AutoObjBase : public IUnknown {
public:
    AutoObjBase(const AutoObjBase &) = delete;
    AutoObjBase &operator=(const AutoObjBase &) = delete;

    /// There is nothing to be asked for but the unknown object itself.
    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override {
        if (ppv == nullptr) return E_POINTER;
        *ppv = nullptr;
        if (riid != ZIidOf<IUnknown>()) return E_NOINTERFACE;
        AddRef();
        *ppv = static_cast<IUnknown *>(this);
        return S_OK;
    }
    ULONG Z_STDCALL AddRef() override { return m_nRefs.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG Z_STDCALL Release() override {
        const ULONG left = m_nRefs.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) delete this;
        return left;
    }
    virtual ~AutoObjBase() = default;

    /// References at this moment. 1 is final for the owner of that one; what other owners did before they let go is seen.
    ULONG RefCount() const { return m_nRefs.load(std::memory_order_acquire); }

protected:
    AutoObjBase() = default;

private:
    std::atomic<ULONG> m_nRefs{1};
};

}    // namespace zck
