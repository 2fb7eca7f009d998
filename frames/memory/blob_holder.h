// `CBLOBHolder`: a byte block that is owned through a chosen allocator.
#pragma once

#include <algorithm>
#include <cstring>
#include <utility>

#include "frames/memory/auto_obj.h"
#include "frames/memory/blob_alloc.h"

namespace zck {

/// A block of `Capacity` bytes, of which the first `Size` are in use. Not for two threads at once, but for the counting.
template <class Allocator>
class CBLOBHolder final : public AutoObjBase<CBLOBHolder<Allocator>> {
public:
    CBLOBHolder() = default;
    ~CBLOBHolder() override { Allocator::Free(m_pData); }

    /// Makes the used size n. `S_FALSE` when the capacity reaches: block and bytes stay. Else the old block goes, its bytes
    /// with it, and a new one of exactly n bytes comes, all 0: `S_OK`, or `E_OUTOFMEMORY` with the holder empty.
    HRESULT Reserve(uint32_t n) noexcept {
        if (n <= m_nCapacity) {
            m_nSize = n;
            return S_FALSE;
        }
        Clear();
        m_pData = Allocator::Alloc(n);
        if (m_pData == nullptr) return E_OUTOFMEMORY;
        m_nSize = m_nCapacity = n;
        return S_OK;
    }

    /// The same, and fills the n used bytes with one value, also in a block that stayed.
    HRESULT Reserve(uint32_t n, uint8_t fill) noexcept {
        const HRESULT hr = Reserve(n);
        if (hr == S_FALSE || (hr == S_OK && fill != 0)) Fill(fill);
        return hr;
    }

    /// `E_INVALIDARG` above the capacity.
    HRESULT SetSize(uint32_t n) noexcept {
        if (n > m_nCapacity) return E_INVALIDARG;
        m_nSize = n;
        return S_OK;
    }

    uint32_t Size() const noexcept { return m_nSize; }
    uint32_t Capacity() const noexcept { return m_nCapacity; }

    /// The byte at an offset; null from the capacity on.
    uint8_t *Data(uint32_t offset = 0) const noexcept { return offset < m_nCapacity ? m_pData + offset : nullptr; }

    /// Takes a block over that the allocator can free; the old one goes. A null block has no bytes, whatever n says. The
    /// holder's own block may be given again.
    void Attach(void *block, uint32_t n) noexcept {
        auto *data = static_cast<uint8_t *>(block);
        if (data != m_pData) Allocator::Free(m_pData);
        m_pData = data;
        m_nSize = m_nCapacity = data != nullptr ? n : 0;
    }

    /// Gives the block to the caller and leaves the holder empty.
    uint8_t *Detach() noexcept {
        m_nSize = m_nCapacity = 0;
        return std::exchange(m_pData, nullptr);
    }

    void Clear() noexcept { Attach(nullptr, 0); }

    /// Writes at most what lies between the offset and the capacity; nothing from a null source. The used size stays.
    HRESULT CopyIn(const void *source, uint32_t n, uint32_t offset = 0) noexcept {
        if (source != nullptr && offset < m_nCapacity)
            std::memmove(m_pData + offset, source, std::min(n, m_nCapacity - offset));
        return S_OK;
    }

private:
    void Fill(uint8_t value) noexcept {
        if (m_nSize != 0) std::memset(m_pData, value, m_nSize);
    }

    uint32_t m_nSize = 0;
    uint8_t *m_pData = nullptr;
    uint32_t m_nCapacity = 0;
};

}    // namespace zck
