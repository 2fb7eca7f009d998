// Scratch rows that are kept from frame to frame: fresh pages cost more than the arithmetic on them.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

namespace zck {

/// A block for rows, aligned to a cache line. Grows, never shrinks; what a row holds after `Reserve` is undefined.
class RowMemory {
public:
    /// Room for `rows` rows of `rowBytes`. Throws `std::bad_alloc`. Old contents are lost when it grows.
    void Reserve(int64_t rows, int64_t rowBytes) {
        // Rows start at different places of the cache's sets, so that neighbours do not push each other out.
        m_stride = (rowBytes + 127) / 64 * 64 + 64;
        const int64_t bytes = rows * m_stride;
        if (bytes <= m_bytes) return;
        m_bytes = 0;
        m_block.reset();
        m_block.reset(static_cast<uint8_t *>(::operator new (static_cast<size_t>(bytes), std::align_val_t{64})));
        std::memset(m_block.get(), 0, static_cast<size_t>(bytes));
        m_bytes = bytes;
    }
    uint8_t *Row(int64_t i) const { return m_block.get() + i * m_stride; }

private:
    struct Free {
        void operator()(uint8_t *p) const { ::operator delete (p, std::align_val_t{64}); }
    };
    std::unique_ptr<uint8_t, Free> m_block;
    int64_t m_bytes = 0;
    int64_t m_stride = 0;
};

}    // namespace zck
