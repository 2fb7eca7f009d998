// A reference as a stranger to the library holds it.
#pragma once

namespace zck::test {

template <class T>
struct Held {
    T *p = nullptr;
    Held() = default;
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
    ~Held() { Drop(); }
    void Drop() {
        if (p != nullptr) p->Release();
        p = nullptr;
    }
    void **Out() { return reinterpret_cast<void **>(&p); }
    T *operator->() const { return p; }
};

}    // namespace zck::test
