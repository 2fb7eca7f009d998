// `Section`: shared memory that other processes find by a 64-bit number.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"

namespace zck {

/// One handle on a section and one view of it. Not for two threads at once; the memory itself is as shared as its users
/// make it.
///
/// Names: the number as upper-case hexadecimal without leading zeros behind a prefix, "Global\ZBuffer_" or "ZBuffer_" on
/// Windows. The global name is tried first, the session name when that fails. Both names are open to the same user only.
///
/// A section exists while a handle is open in any process, and ends with the last one, also when processes are killed.
class Section {
public:
    Section() noexcept = default;
    ~Section() { Close(); }
    Section(const Section &) = delete;
    Section &operator=(const Section &) = delete;

    /// Makes a section of `bytes` bytes, all zero and reserved in full: a system that has no room answers a failure here,
    /// and a later write does not. `S_FALSE` when a section of that number exists already; nothing is open then.
    /// `E_INVALIDARG` for 0 bytes.
    HRESULT Create(uint64_t id, uint64_t bytes) noexcept;
    /// Opens an existing section; 0x80070002 when no process holds one.
    HRESULT Open(uint64_t id) noexcept;
    /// Maps the whole section, read-write.
    HRESULT Map() noexcept;
    /// Unmaps and closes; safe when closed.
    void Close() noexcept;

    bool IsOpen() const noexcept { return m_handle != kClosed; }
    /// The start of the view, or null.
    uint8_t *View() const noexcept { return m_view; }
    /// Bytes that the view really has, whatever anybody wrote into the section; 0 when unmapped. At least what was asked
    /// for, rounded up by some systems to whole pages.
    uint64_t Size() const noexcept { return m_size; }

private:
    static constexpr int64_t kClosed = -1;

    int64_t m_handle = kClosed;
    uint8_t *m_view = nullptr;
    uint64_t m_size = 0;
    uint8_t *m_held = nullptr;    // memory that is kept beside the handle, seen by nobody before it is mapped
    uint64_t m_heldSize = 0;
    uint64_t m_id = 0;
    uint32_t m_process = 0;    // the process that opened the handle
    bool m_session = false;    // open under the session name
};

}    // namespace zck
