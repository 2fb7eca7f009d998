// Holders for what the library hands out: `ZComPtr` for references, `ZBstr` for counted strings. Header only; a host may use
// them or its own.
#pragma once

#include <cstddef>
#include <utility>

#include "zchromakey/com.h"

/// Holds one reference on an object, or nothing. A single pointer is not to be changed by two threads at once.
template <class T>
class ZComPtr {
public:
    ZComPtr() noexcept = default;
    ZComPtr(std::nullptr_t) noexcept {}
    /// Adds a reference of its own.
    ZComPtr(T *object) noexcept : m_p(object) { AddRefHeld(); }
    ZComPtr(const ZComPtr &other) noexcept : m_p(other.m_p) { AddRefHeld(); }
    ZComPtr(ZComPtr &&other) noexcept : m_p(other.Detach()) {}
    ~ZComPtr() { Reset(); }

    ZComPtr &operator=(const ZComPtr &other) noexcept {
        ZComPtr(other).Swap(*this);
        return *this;
    }
    ZComPtr &operator=(ZComPtr &&other) noexcept {
        ZComPtr(std::move(other)).Swap(*this);
        return *this;
    }
    ZComPtr &operator=(T *object) noexcept {
        ZComPtr(object).Swap(*this);
        return *this;
    }
    ZComPtr &operator=(std::nullptr_t) noexcept {
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
    void Swap(ZComPtr &other) noexcept { std::swap(m_p, other.m_p); }

    /// Hands out a further reference, or null when empty. `E_POINTER` for a null place.
    HRESULT CopyTo(T **out) const noexcept {
        if (out == nullptr) return E_POINTER;
        AddRefHeld();
        *out = m_p;
        return S_OK;
    }

    /// Another interface of the same object. `E_POINTER` when empty; `out` is empty after a failure.
    template <class U>
    HRESULT As(ZComPtr<U> &out) const noexcept {
        out.Reset();
        if (m_p == nullptr) return E_POINTER;
        return m_p->QueryInterface(ZIidOf<U>(), out.PutVoid());
    }

    friend bool operator==(const ZComPtr &a, const ZComPtr &b) noexcept { return a.m_p == b.m_p; }
    friend bool operator==(const ZComPtr &a, const T *b) noexcept { return a.m_p == b; }
    friend bool operator==(const ZComPtr &a, std::nullptr_t) noexcept { return a.m_p == nullptr; }

private:
    void AddRefHeld() const noexcept {
        if (m_p != nullptr) m_p->AddRef();
    }

    T *m_p = nullptr;
};

/// The interface `T` of an object; empty when the object is null or does not have it.
template <class T>
ZComPtr<T> ZQueryFor(IUnknown *object) noexcept {
    ZComPtr<T> result;
    if (object != nullptr && FAILED(object->QueryInterface(ZIidOf<T>(), result.PutVoid()))) result.Detach();
    return result;
}

/// Owns a counted string, or null. Freed with `SysFreeString`.
class ZBstr {
public:
    ZBstr() noexcept = default;
    /// A copy of a zero-terminated text; null for null and when there is no memory.
    explicit ZBstr(const OLECHAR *text) noexcept : m_text(SysAllocString(text)) {}
    /// A copy of ASCII text, such as the name of a property: its bytes become units. Null for null and when there is no memory.
    explicit ZBstr(const char *ascii) noexcept : m_text(FromAscii(ascii)) {}
    ZBstr(ZBstr &&other) noexcept : m_text(other.Detach()) {}
    ZBstr &operator=(ZBstr &&other) noexcept {
        std::swap(m_text, other.m_text);
        return *this;
    }
    ZBstr(const ZBstr &) = delete;
    ZBstr &operator=(const ZBstr &) = delete;
    ~ZBstr() { SysFreeString(m_text); }

    BSTR get() const noexcept { return m_text; }
    explicit operator bool() const noexcept { return m_text != nullptr; }
    /// The place for an output argument; what was held is freed first.
    BSTR *Put() noexcept {
        Reset();
        return &m_text;
    }
    void Attach(BSTR text) noexcept {
        Reset();
        m_text = text;
    }
    /// Gives the string to the caller, who frees it with `SysFreeString`.
    BSTR Detach() noexcept { return std::exchange(m_text, nullptr); }
    void Reset() noexcept { SysFreeString(Detach()); }

private:
    static BSTR FromAscii(const char *ascii) noexcept {
        if (ascii == nullptr) return nullptr;
        uint32_t count = 0;
        while (ascii[count] != '\0') ++count;
        BSTR text = SysAllocStringLen(nullptr, count);
        if (text == nullptr) return nullptr;
        for (uint32_t i = 0; i < count; ++i) text[i] = static_cast<OLECHAR>(static_cast<unsigned char>(ascii[i]));
        return text;
    }

    BSTR m_text = nullptr;
};
