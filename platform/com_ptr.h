// `ComPtr`: the counted reference.
#pragma once

#include <utility>

#include "zchromakey/com.h"

namespace zck {

/// Holds one reference on an object, or nothing. A single pointer is not to be changed by two threads at once.
template <class T>
class ComPtr {
public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}
    /// Adds a reference of its own.
    ComPtr(T *object) noexcept : m_p(object) { AddRefHeld(); }
    ComPtr(const ComPtr &other) noexcept : m_p(other.m_p) { AddRefHeld(); }
    ComPtr(ComPtr &&other) noexcept : m_p(other.Detach()) {}
    ~ComPtr() { Reset(); }

    ComPtr &operator=(const ComPtr &other) noexcept {
        ComPtr(other).Swap(*this);
        return *this;
    }
    ComPtr &operator=(ComPtr &&other) noexcept {
        ComPtr(std::move(other)).Swap(*this);
        return *this;
    }
    ComPtr &operator=(T *object) noexcept {
        ComPtr(object).Swap(*this);
        return *this;
    }
    ComPtr &operator=(std::nullptr_t) noexcept {
        Reset();
        return *this;
    }

    T *get() const noexcept { return m_p; }
    T *operator->() const noexcept { return m_p; }
    T &operator*() const noexcept { return *m_p; }
    explicit operator bool() const noexcept { return m_p != nullptr; }

    /// The place for an output argument; what was held is released first.
    T **Put() noexcept {
        Reset();
        return &m_p;
    }
    void **PutVoid() noexcept { return reinterpret_cast<void **>(Put()); }

    /// Takes over the caller's reference.
    void Attach(T *object) noexcept {
        Reset();
        m_p = object;
    }
    /// Gives the reference to the caller.
    T *Detach() noexcept { return std::exchange(m_p, nullptr); }
    /// The member is empty before the object hears of it: its last release may come back here.
    void Reset() noexcept {
        if (T *object = Detach()) object->Release();
    }
    void Swap(ComPtr &other) noexcept { std::swap(m_p, other.m_p); }

    /// Hands out a further reference, or null when empty. `E_POINTER` for a null place.
    HRESULT CopyTo(T **out) const noexcept {
        if (out == nullptr) return E_POINTER;
        AddRefHeld();
        *out = m_p;
        return S_OK;
    }

    /// Another interface of the same object. `E_POINTER` when empty; `out` is empty after a failure.
    template <class U>
    HRESULT As(ComPtr<U> &out) const noexcept {
        out.Reset();
        if (m_p == nullptr) return E_POINTER;
        return m_p->QueryInterface(ZIidOf<U>(), out.PutVoid());
    }

    friend bool operator==(const ComPtr &a, const ComPtr &b) noexcept { return a.m_p == b.m_p; }
    friend bool operator==(const ComPtr &a, const T *b) noexcept { return a.m_p == b; }
    friend bool operator==(const ComPtr &a, std::nullptr_t) noexcept { return a.m_p == nullptr; }

private:
    void AddRefHeld() const noexcept {
        if (m_p != nullptr) m_p->AddRef();
    }

    T *m_p = nullptr;
};

/// The interface `T` of an object; empty when the object is null or does not have it.
template <class T>
ComPtr<T> QueryFor(IUnknown *object) noexcept {
    ComPtr<T> result;
    if (object != nullptr && FAILED(object->QueryInterface(ZIidOf<T>(), result.PutVoid()))) result.Detach();
    return result;
}

}    // namespace zck
