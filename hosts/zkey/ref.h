// A counted reference on an object of the library.
#pragma once

#include <utility>

#include "zchromakey/com.h"

namespace zkey {

template <class T>
class Ref {
public:
    Ref() = default;
    Ref(const Ref &other) : m_p(other.m_p) {
        if (m_p != nullptr) m_p->AddRef();
    }
    Ref(Ref &&other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    Ref &operator=(Ref other) noexcept {
        std::swap(m_p, other.m_p);
        return *this;
    }
    ~Ref() { Reset(); }

    T *get() const { return m_p; }
    T *operator->() const { return m_p; }
    explicit operator bool() const { return m_p != nullptr; }
    void Reset() {
        if (T *p = std::exchange(m_p, nullptr)) p->Release();
    }
    /// For outputs: lets go of what it holds and takes over the reference that is written.
    T **Put() {
        Reset();
        return &m_p;
    }
    void **PutVoid() { return reinterpret_cast<void **>(Put()); }

private:
    T *m_p = nullptr;
};

}    // namespace zkey
