// The object model's server side: `CoObject`, the base of every object with interfaces, and what makes such objects.
#pragma once

#include <atomic>
#include <utility>

#include "platform/status.h"

namespace zck {

/// Counts the objects of this module and the locks of its factories; at 0 the module may be unloaded. Any thread.
class ModuleCount {
public:
    static void Add() noexcept { s_count.fetch_add(1, std::memory_order_relaxed); }
    static void Sub() noexcept { s_count.fetch_sub(1, std::memory_order_acq_rel); }
    static int32_t Get() noexcept { return s_count.load(std::memory_order_acquire); }

private:
    static inline std::atomic<int32_t> s_count{0};
};

/// The free-threaded marshaler of an object, by which its pointers pass between apartments as they are. `out` takes the
/// marshaler's own unknown; `controlling` is not counted. A system without apartments answers `S_OK` and null.
HRESULT FreeThreadedMarshalerCreate(IUnknown *controlling, IUnknown **out) noexcept;
/// Whether the marshaler answers a query for this identifier.
bool IsMarshalerInterface(REFIID riid) noexcept;

/// Base of an object with the given interfaces, alone or as a part of an outer object. Made by `CreateObject`.
///
/// The methods of `IUnknown` that the interfaces show go to the controlling unknown: the outer object's, or else the
/// object's own, `m_inner`, which is also what `IUnknown` answers. So a query from any interface of an object reaches the
/// same answers, and the identity is one. Free-threaded: any thread may count and query.
template <class... Interfaces>
class CoObject : public Interfaces... {
public:
    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override { return m_controlling->QueryInterface(riid, ppv); }
    ULONG Z_STDCALL AddRef() override { return m_controlling->AddRef(); }
    ULONG Z_STDCALL Release() override { return m_controlling->Release(); }

    /// The second construction step. A failure destroys the object and is what its creator gets. The object may hand
    /// out references to itself here.
    virtual HRESULT FinalConstruct() { return S_OK; }
    /// Runs before the destructor, while the object is still whole, also after a failed second step. The object may be
    /// counted up and down here; it is destroyed all the same.
    virtual void FinalRelease() noexcept {}

    CoObject(const CoObject &) = delete;
    CoObject &operator=(const CoObject &) = delete;

protected:
    CoObject() { ModuleCount::Add(); }
    virtual ~CoObject() {
        if (m_marshaler != nullptr) m_marshaler->Release();
        ModuleCount::Sub();
    }

    /// Interfaces that are not in the list, such as the bases of those that are: the address as that interface, not
    /// counted, or null.
    virtual void *InterfaceFind(REFIID) noexcept { return nullptr; }

    /// What a reference on the whole object is taken on.
    IUnknown *ControllingUnknown() noexcept { return m_controlling; }

private:
    /// The unknown that does not delegate.
    struct Inner final : IUnknown {
        explicit Inner(CoObject &object) noexcept : m_object(object) {}
        HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override { return m_object.InnerQuery(riid, ppv); }
        ULONG Z_STDCALL AddRef() override { return ++m_object.m_refs; }
        ULONG Z_STDCALL Release() override { return m_object.InnerRelease(); }
        CoObject &m_object;
    };

    template <class T, class... Args>
    friend HRESULT CreateObject(IUnknown *outer, REFIID riid, void **ppv, Args &&...args) noexcept;

    HRESULT InnerQuery(REFIID riid, void **ppv) noexcept {
        if (ppv == nullptr) return E_POINTER;
        *ppv = nullptr;
        if (riid == IID_IUnknown) {
            m_inner.AddRef();
            *ppv = static_cast<IUnknown *>(&m_inner);
            return S_OK;
        }
        void *found = nullptr;
        (void)((riid == ZIidOf<Interfaces>() && (found = static_cast<Interfaces *>(this), true)) || ...);
        if (found == nullptr) found = InterfaceFind(riid);
        if (found == nullptr) return MarshalerQuery(riid, ppv);
        // A pointer that is handed out is counted where it will be released.
        m_controlling->AddRef();
        *ppv = found;
        return S_OK;
    }

    HRESULT MarshalerQuery(REFIID riid, void **ppv) noexcept {
        if (m_marshaler == nullptr || !IsMarshalerInterface(riid)) return E_NOINTERFACE;
        return m_marshaler->QueryInterface(riid, ppv);
    }

    ULONG InnerRelease() noexcept {
        const ULONG left = --m_refs;
        if (left == 0) Destroy();
        return left;
    }

    void Destroy() noexcept {
        m_refs = kDying;
        FinalRelease();
        delete this;
    }

    HRESULT Complete(IUnknown *outer) noexcept {
        if (outer != nullptr) m_controlling = outer;
        const HRESULT hr = FreeThreadedMarshalerCreate(m_controlling, &m_marshaler);
        if (FAILED(hr)) return hr;
        return Guarded([this] { return FinalConstruct(); });
    }

    /// The creator's part after the constructor: gives up the first reference in all cases.
    HRESULT CompleteAndQuery(IUnknown *outer, REFIID riid, void **ppv) noexcept {
        HRESULT hr = Complete(outer);
        if (SUCCEEDED(hr)) hr = InnerQuery(riid, ppv);
        InnerRelease();
        return hr;
    }

    // So far from 0 that counting during destruction does not destroy again.
    static constexpr ULONG kDying = 0x40000000;

    std::atomic<ULONG> m_refs{1};
    Inner m_inner{*this};
    IUnknown *m_controlling = &m_inner;
    IUnknown *m_marshaler = nullptr;
};

/// Makes a `T` and answers its interface `riid`, counted. With an outer object only `IUnknown` may be asked for
/// (`CLASS_E_NOAGGREGATION` otherwise); the outer object keeps that pointer and is not counted by it.
template <class T, class... Args>
HRESULT CreateObject(IUnknown *outer, REFIID riid, void **ppv, Args &&...args) noexcept {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    if (outer != nullptr && riid != IID_IUnknown) return CLASS_E_NOAGGREGATION;
    T *object = nullptr;
    const HRESULT hr = Guarded([&] {
        object = new T(std::forward<Args>(args)...);
        return S_OK;
    });
    if (FAILED(hr)) return hr;
    return object->CompleteAndQuery(outer, riid, ppv);
}

/// The class factory of `T`, itself made by `CreateObject`.
template <class T>
class CoClassFactory : public CoObject<IClassFactory> {
public:
    HRESULT Z_STDCALL CreateInstance(IUnknown *pOuter, REFIID riid, void **ppv) override {
        return CreateObject<T>(pOuter, riid, ppv);
    }
    HRESULT Z_STDCALL LockServer(BOOL bLock) override {
        bLock != 0 ? ModuleCount::Add() : ModuleCount::Sub();
        return S_OK;
    }
};

}    // namespace zck
