// `IPCBuffer`: one shared-memory section that holds the pixels of a frame.
#pragma once

#include <cstdint>

#include "frames/memory/auto_obj.h"
#include "platform/section.h"

namespace zck {

/// A section starts with a header of 32 bytes, of which the first four are its total size, header included; the pixels
/// follow. Its number names it in every process. Not for two threads at once, but for the counting; the bytes are as shared
/// as their users make them.
class IPCBuffer final : public AutoObjBase<IPCBuffer> {
public:
    static constexpr uint32_t kHeaderBytes = 32;

    /// Makes a section of at least `n` bytes behind the header, whole pages of zeros. A section of at least n bytes in total
    /// stays as it is, so that its usable size may be below n: who writes asks `DataSize`. Closed after a failure.
    HRESULT AllocBuffer(uint32_t n) noexcept;
    /// Opens a section by its number. `E_UNEXPECTED` for one that says it is larger than it is. Closed after a failure.
    HRESULT OpenBuffer(uint64_t id) noexcept;
    /// Safe when closed.
    void CloseBuffer() noexcept;

    /// Usable bytes behind the offset.
    uint32_t DataSize(uint32_t offset) const noexcept;
    /// The pixels at the offset; null when closed and past the end.
    uint8_t *DataPointer(uint32_t offset) const noexcept;
    /// The section's number, 0 when closed.
    uint64_t BufferId() const noexcept { return m_nId; }

    /// The section was made by this object and has not been through the pool: bytes that the present owner did not write
    /// are 0. Otherwise they hold old pixels.
    bool IsFresh() const noexcept { return m_bFresh; }
    void MarkUsed() noexcept { m_bFresh = false; }

private:
    HRESULT CreateSection(uint32_t total) noexcept;
    HRESULT ReadHeader() noexcept;

    Section m_section;
    uint32_t m_nTotal = 0;
    uint64_t m_nId = 0;
    bool m_bFresh = false;
};

}    // namespace zck
